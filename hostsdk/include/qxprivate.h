#pragma once

#include <QtCore/qglobal.h>

/// The private data of a class `T`, kept behind a pointer so that the class's layout never changes.
///
/// A class derives its private data from this. Its owner creates it, destroys it through the virtual
/// destructor, and decides on which thread it lives.
template <class T>
class QxPrivate {
public:
    /// @param owner  the object that this is the private data of
    explicit QxPrivate(T *owner)
        : q(owner)
    {
    }
    virtual ~QxPrivate() = default;

    /// The back pointer: the object that this is the private data of.
    T *q;

private:
    Q_DISABLE_COPY(QxPrivate)
};
