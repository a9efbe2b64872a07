#include "signalspy.h"

#include "metamethods.h"

#include <utility>

namespace canbus::monitor {

namespace {

QVector<int> parameterTypes(QObject *object, const QMetaMethod &method)
{
    QVector<int> types;
    for (int i = 0; i < method.parameterCount(); ++i)
        types << parameterType(object, method, i);
    return types;
}

} // namespace

SignalSpy::SignalSpy(Listener listener)
    : m_listener(std::move(listener))
{
}

void SignalSpy::watch(const QString &name, QObject *object)
{
    const QMetaObject *const meta = object->metaObject();
    for (int i = QObject::staticMetaObject.methodCount(); i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.methodType() == QMetaMethod::Signal && !isShortened(method))
            watchSignal(name, object, method);
    }
}

void SignalSpy::watchSignal(const QString &name, QObject *object, const QMetaMethod &signal)
{
    const int slot = QObject::staticMetaObject.methodCount() + int(m_watched.size());
    m_watched.push_back({name, signal, parameterTypes(object, signal)});
    QMetaObject::connect(object, signal.methodIndex(), this, slot, Qt::AutoConnection, nullptr);
}

int SignalSpy::qt_metacall(QMetaObject::Call call, int id, void **arguments)
{
    id = QObject::qt_metacall(call, id, arguments);
    if (id < 0 || call != QMetaObject::InvokeMetaMethod)
        return id;
    const int count = int(m_watched.size());
    if (id < count)
        hear(m_watched[std::size_t(id)], arguments);
    return id - count;
}

void SignalSpy::hear(const Watched &watched, void **arguments) const
{
    QVariantList values;
    for (int i = 0; i < watched.types.size(); ++i) {
        const int type = watched.types[i];
        // The first of the pointers is the return value's.
        values << (type == QMetaType::UnknownType ? QVariant() : QVariant(type, arguments[i + 1]));
    }
    m_listener(watched.object, watched.signal, values);
}

} // namespace canbus::monitor
