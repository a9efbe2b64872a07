#include "reportlines.h"

#include <QtCore/QStringList>

namespace canbus::monitor {

namespace {

QString nameOf(const QMetaMethod &method)
{
    return QString::fromLatin1(method.name());
}

QString typeOf(const QMetaMethod &method, int index)
{
    return QString::fromLatin1(method.parameterTypes().value(index));
}

QString member(const QString &key, const QString &json)
{
    return quoted(key) + QLatin1Char(':') + json;
}

QString jsonObject(const QStringList &members)
{
    return QLatin1Char('{') + members.join(QLatin1Char(',')) + QLatin1Char('}');
}

QString argumentText(const QMetaMethod &method, int index, const QVariant &value, Form form)
{
    // Nothing arrived of a type that Qt cannot copy.
    return value.isValid() ? valueText(value, form)
                           : quoted(QStringLiteral("<%1>").arg(typeOf(method, index)));
}

/// (char Type[, bool isPress[, char value]])
QString parameterList(const Callable &callable)
{
    QString text(QLatin1Char('('));
    const int count = callable.method.parameterCount();
    for (int i = 0; i < count; ++i) {
        if (i >= callable.requiredParameters)
            text += QLatin1Char('[');
        if (i > 0)
            text += QLatin1String(", ");
        text += typeOf(callable.method, i) + QLatin1Char(' ') + parameterName(callable.method, i);
    }
    return text + QString(count - callable.requiredParameters, QLatin1Char(']')) + QLatin1Char(')');
}

QString callableJson(const QString &object, const Callable &callable)
{
    QStringList parameters;
    for (int i = 0; i < callable.method.parameterCount(); ++i)
        parameters << member(parameterName(callable.method, i), quoted(typeOf(callable.method, i)));
    return jsonObject({
        member(QStringLiteral("object"), quoted(object)),
        member(QStringLiteral("callable"), quoted(nameOf(callable.method))),
        member(QStringLiteral("parameters"), jsonObject(parameters)),
        member(QStringLiteral("required"), QString::number(callable.requiredParameters)),
        member(QStringLiteral("returns"), quoted(QString::fromLatin1(callable.method.typeName()))),
    });
}

} // namespace

QString secondsText(qint64 ms)
{
    return QStringLiteral("%1.%2").arg(ms / 1000).arg(ms % 1000, 3, 10, QLatin1Char('0'));
}

QString signalLine(Form form, qint64 ms, const QString &object, const QMetaMethod &signal,
                   const QVariantList &arguments)
{
    QStringList words {object, nameOf(signal)};
    QStringList members;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString name = parameterName(signal, i);
        const QString value = argumentText(signal, i, arguments[i], form);
        words << name + QLatin1Char('=') + value;
        members << member(name, value);
    }
    if (form == Form::Text)
        return words.join(QLatin1Char(' '));
    return jsonObject({
        member(QStringLiteral("t"), secondsText(ms)),
        member(QStringLiteral("object"), quoted(object)),
        member(QStringLiteral("signal"), quoted(nameOf(signal))),
        member(QStringLiteral("args"), jsonObject(members)),
    });
}

QString resultLine(Form form, qint64 ms, const QString &object, const QMetaMethod &method,
                   const QVariant &result)
{
    if (form == Form::Text)
        return QStringLiteral("%1 %2 -> ").arg(object, nameOf(method)) + valueText(result, form);
    return jsonObject({
        member(QStringLiteral("t"), secondsText(ms)),
        member(QStringLiteral("object"), quoted(object)),
        member(QStringLiteral("call"), quoted(nameOf(method))),
        member(QStringLiteral("result"), valueText(result, form)),
    });
}

QString callableLine(Form form, const QString &object, const Callable &callable)
{
    if (form == Form::Json)
        return callableJson(object, callable);
    QString call = object + QLatin1Char('.') + nameOf(callable.method) + parameterList(callable);
    if (callable.method.returnType() != QMetaType::Void)
        call += QLatin1String(" -> ") + QLatin1String(callable.method.typeName());
    return call;
}

} // namespace canbus::monitor
