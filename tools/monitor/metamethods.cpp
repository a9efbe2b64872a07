#include "metamethods.h"

namespace canbus::monitor {

namespace {

bool isCallable(const QMetaMethod &method)
{
    return method.access() == QMetaMethod::Public
        && (method.methodType() == QMetaMethod::Slot || method.methodType() == QMetaMethod::Method);
}

QVector<QMetaMethod> callableMethods(const QObject *object)
{
    QVector<QMetaMethod> methods;
    const QMetaObject *const meta = object->metaObject();
    for (int i = QObject::staticMetaObject.methodCount(); i < meta->methodCount(); ++i) {
        if (isCallable(meta->method(i)))
            methods << meta->method(i);
    }
    return methods;
}

} // namespace

bool isShortened(const QMetaMethod &method)
{
    return (method.attributes() & QMetaMethod::Cloned) != 0;
}

int parameterType(QObject *object, const QMetaMethod &method, int index)
{
    int type = method.parameterType(index);
    if (type != QMetaType::UnknownType)
        return type;
    void *request[] = {&type, &index};
    QMetaObject::metacall(object, QMetaObject::RegisterMethodArgumentMetaType, method.methodIndex(), request);
    return type == -1 ? int(QMetaType::UnknownType) : type;
}

QString parameterName(const QMetaMethod &method, int index)
{
    const QByteArray name = method.parameterNames().value(index);
    return name.isEmpty() ? QStringLiteral("arg%1").arg(index + 1) : QString::fromLatin1(name);
}

QVector<Callable> callablesOf(const QObject *object)
{
    QVector<Callable> callables;
    const QVector<QMetaMethod> all = callableMethods(object);
    for (const QMetaMethod &method : all) {
        if (isShortened(method)) // follows the method that it shortens
            callables.last().requiredParameters = method.parameterCount();
        else
            callables << Callable {method, method.parameterCount()};
    }
    return callables;
}

QVector<QMetaMethod> methodsNamed(const QObject *object, const QString &name)
{
    QVector<QMetaMethod> methods;
    const QVector<QMetaMethod> all = callableMethods(object);
    for (const QMetaMethod &method : all) {
        if (QLatin1String(method.name()) == name)
            methods << method;
    }
    return methods;
}

} // namespace canbus::monitor
