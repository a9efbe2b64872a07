#pragma once

#include <QtCore/QMetaMethod>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace canbus::monitor {

/// Whether the method is one with its last default arguments left out, which moc lists as one of its own.
bool isShortened(const QMetaMethod &method);

/// The type of a parameter, registered with Qt if need be; QMetaType::UnknownType where Qt cannot copy it.
int parameterType(QObject *object, const QMetaMethod &method, int index);

/// The parameter's name as it was declared, or "arg1", "arg2".. by position where it has none.
QString parameterName(const QMetaMethod &method, int index);

/// One operation that can be called by name.
struct Callable {
    QMetaMethod method;         ///< with all its parameters
    int requiredParameters = 0; ///< those without a default argument
};

/// What can be called on the object: its class's public slots, then its invokable methods, each in order of
/// declaration; those of QObject excepted.
QVector<Callable> callablesOf(const QObject *object);

/// The methods of that name that can be called, the shortened ones included, in the same order.
QVector<QMetaMethod> methodsNamed(const QObject *object, const QString &name);

} // namespace canbus::monitor
