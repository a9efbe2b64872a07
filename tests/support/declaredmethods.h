#pragma once

#include <QtCore/QMetaMethod>
#include <QtCore/QMetaObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// A method as it is declared: "void open(QString portName)", with "private" or "protected" before one that
/// is not public.
inline QString declaredMethod(const QMetaMethod &method)
{
    QStringList parameters;
    for (int i = 0; i < method.parameterCount(); ++i)
        parameters += QString::fromLatin1(method.parameterTypes().at(i) + ' ' + method.parameterNames().at(i))
                          .trimmed();
    static const char *const accesses[] = {"private ", "protected ", ""};
    return QStringLiteral("%1%2 %3(%4)")
        .arg(QLatin1String(accesses[method.access()]), QLatin1String(method.typeName()),
             QLatin1String(method.name()), parameters.join(QLatin1String(", ")));
}

/// A class's own methods of one kind, in their order.
inline QStringList declaredMethods(const QMetaObject &type, QMetaMethod::MethodType kind)
{
    QStringList all;
    for (int index = type.methodOffset(); index < type.methodCount(); ++index) {
        if (type.method(index).methodType() == kind)
            all += declaredMethod(type.method(index));
    }
    return all;
}
