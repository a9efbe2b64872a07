#pragma once

#include <QtCore/qglobal.h>

/// The private data of a class `T`, kept behind a pointer so that the class's layout never changes.
///
/// A class derives its private data from this. Its owner creates it and destroys it through the virtual
/// destructor.
///
/// @thread{The one that its owner decides on.}
template <class T>
class QxPrivate {
public:
    /// Joins the data to its owner.
    /// @param owner  the object that this is the private data of
    explicit QxPrivate(T *owner)
        : q(owner)
    {
    }
    /// For the owner to destroy the derived data by.
    virtual ~QxPrivate() = default;

    /// The back pointer: the object that this is the private data of.
    T *q;

private:
    Q_DISABLE_COPY(QxPrivate)
};
