#pragma once

#include "support/changerule.h"

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QVariantList>

namespace canbus::qml {

/// What the state objects have in common: whether anything was received, and whether the link is down.
///
/// A state object is filled when it is made, from what the group or the player holds, and follows their
/// signals from then on. It lives on their thread, the GUI thread. It keeps its values when the link goes
/// down.
class State : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool valid READ isValid NOTIFY validChanged)
    Q_PROPERTY(bool stale READ isStale NOTIFY staleChanged)

public:
    /// Whether an item was received that differs from what all items are at first.
    bool isValid() const { return m_isValid; }
    /// Whether the link is down.
    bool isStale() const { return m_isStale; }

Q_SIGNALS:
    void validChanged();
    void staleChanged();

protected:
    explicit State(QObject *parent);

    /// The change signal of a property of Self.
    template <class Self>
    using Changed = void (Self::*)();

    /// Stores `next`. @return the signal that is due, null where nothing has changed
    template <class Self, class T>
    static Changed<Self> store(T &stored, const T &next, Changed<Self> changed)
    {
        return replaceIfChanged(stored, next) ? changed : nullptr;
    }

    /// Emits those signals that are due, after everything was stored: a handler of one sees all new values.
    template <class Self, class... Signals>
    static void announce(Self *self, Signals... due)
    {
        if ((... || due))
            self->setValid();
        (emitDue<Self>(self, due), ...);
    }

    /// Keeps an item as the sender's signal reports it, and announces its changes.
    template <class Self, class Sender, class Arg, class T>
    static void follow(Self *self, Sender *sender, void (Sender::*reported)(Arg), T Self::*item,
                       Changed<Self> changed)
    {
        connect(sender, reported, self, [self, item, changed](const Arg &next) {
            announce(self, store(self->*item, readable(next), changed));
        });
    }

    /// Likewise for two items that are reported together.
    template <class Self, class Sender, class T>
    static void follow(Self *self, Sender *sender, void (Sender::*reported)(T, T), T Self::*first,
                       Changed<Self> firstChanged, T Self::*second, Changed<Self> secondChanged)
    {
        connect(sender, reported, self, [=](const T &nextFirst, const T &nextSecond) {
            announce(self, store(self->*first, nextFirst, firstChanged),
                     store(self->*second, nextSecond, secondChanged));
        });
    }

    void setValid();

    // A reported item as QML can read it: lists of numbers and flags as an array.
    template <class T>
    static const T &readable(const T &item)
    {
        return item;
    }
    static QVariantList readable(const QList<int> &numbers) { return listOf(numbers); }
    static QVariantList readable(const QList<bool> &flags) { return listOf(flags); }
    /// The flags of the keys 0, 1, ... in their order.
    static QVariantList readable(const QMap<int, bool> &flags) { return listOf(flags.values()); }

private:
    template <class T>
    static QVariantList listOf(const QList<T> &values)
    {
        QVariantList list;
        list.reserve(values.size());
        for (const T value : values)
            list.append(value);
        return list;
    }

    template <class Self>
    static void emitDue(Self *self, Changed<Self> due)
    {
        if (due)
            Q_EMIT(self->*due)();
    }

    void setStale(bool isStale);

    bool m_isValid = false;
    bool m_isStale = true;
};

} // namespace canbus::qml
