#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QEvent>

namespace Qx {

/// The touches that the user interface understands. What each one does is the user interface's; the ones
/// named here are those that the box can ask for.
enum Touch : int { Touch15 = 15, Touch81 = 81, Touch82 = 82, Touch83 = 83, Touch84 = 84 };

} // namespace Qx

/// An event of the user interface that carries a value of one type, with a copy of itself as bytes.
///
/// Like every event it is built and delivered by whoever sends it: sent from the stack, or posted from the
/// heap and then owned by Qt's event queue.
///
/// @thread{That of its sender; it is delivered on the host's main thread.}
template <class T>
class SimpleEvent : public QEvent {
public:
    /// An event with its bytes.
    /// @param eventType  the event's number, as QEvent::type() tells it
    /// @param content  the event as bytes
    SimpleEvent(int eventType, const QByteArray &content)
        : QEvent(static_cast<QEvent::Type>(eventType))
        , serialized(content)
    {
    }

    /// The event as bytes.
    QByteArray serialized;

protected:
    /// A 32-bit value for each argument, in host byte order, one after the other.
    /// @param eventType, value, first, second  the four, in this order
    /// @return 16 bytes
    static QByteArray words(qint32 eventType, T value, qint32 first, qint32 second)
    {
        const qint32 all[] = {eventType, static_cast<qint32>(value), first, second};
        return QByteArray(reinterpret_cast<const char *>(all), sizeof(all));
    }
};

/// A touch of the user interface, delivered to the application object. Its event type is 1008.
///
/// @thread{That of its sender; it is delivered on the host's main thread.}
class TouchEvent : public SimpleEvent<Qx::Touch> {
public:
    /// A touch with its two numbers. `serialized` becomes 16 bytes: 1008, the touch and the two numbers, 32
    /// bits each in host byte order.
    /// @param which  the touch
    /// @param first, second  its two numbers, whose meaning is the user interface's
    TouchEvent(Qx::Touch which, int first, int second)
        : SimpleEvent<Qx::Touch>(kType, words(kType, which, first, second))
        , touch(which)
        , a(first)
        , b(second)
    {
    }

    Qx::Touch touch; ///< the touch
    int a;           ///< its first number
    int b;           ///< its second number

private:
    static constexpr int kType = 1008;
};
