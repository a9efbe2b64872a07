#pragma once

#include <QtCore/QMetaMethod>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <functional>
#include <vector>

namespace canbus::monitor {

/// Hears every signal of the objects that it watches, whatever the signals are: it finds them through the
/// meta-object system.
///
/// The listener is called on the spy's own thread. A signal that is emitted there is heard at once; one that
/// is emitted on another thread travels as a queued call with copied arguments.
class SignalSpy : public QObject {
public:
    /// @param object  the name that was given to watch()
    /// @param arguments  as many as the signal has parameters; one of a type that Qt cannot copy is invalid
    using Listener =
        std::function<void(const QString &object, const QMetaMethod &signal, const QVariantList &arguments)>;

    explicit SignalSpy(Listener listener);

    /// Watches every signal of the object's class, those of QObject excepted. Call it on the spy's thread.
    void watch(const QString &name, QObject *object);

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override;

private:
    struct Watched {
        QString object;
        QMetaMethod signal;
        QVector<int> types;
    };

    void watchSignal(const QString &name, QObject *object, const QMetaMethod &signal);
    void hear(const Watched &watched, void **arguments) const;

    Listener m_listener;
    std::vector<Watched> m_watched; // the index is the number of the slot that stands for it
};

} // namespace canbus::monitor
