#pragma once

#include <QtCore/QObject>
#include <QtCore/QThread>

namespace canbus {

/// The one object of a class, for a static local variable: made on first use, destroyed when the process
/// exits. When the process exits by another thread than the object's, it is left alone: that thread may be
/// using it, and its timers cannot be stopped from elsewhere.
template <class T>
class ProcessWide {
public:
    ProcessWide()
        : m_object(new T)
    {
    }
    ~ProcessWide()
    {
        const QObject *const object = m_object; // the player has a member of that name
        if (object->thread() == QThread::currentThread())
            delete m_object;
    }

    T *get() const { return m_object; }

private:
    Q_DISABLE_COPY(ProcessWide)
    T *const m_object;
};

} // namespace canbus
