#include "methodcall.h"

#include "argument.h"
#include "commandline/similarnames.h"
#include "metamethods.h"
#include "valuetext.h"

#include <QtCore/QStringList>

#include <algorithm>
#include <iterator>

namespace canbus::monitor {

namespace {

/// A call as it was written.
struct Request {
    QString object;
    QString control;
    QStringList arguments;
};

Outcome<Request> parseRequest(const QString &text)
{
    const int equals = text.indexOf(QLatin1Char('='));
    const QString path = text.left(equals).trimmed();
    const int dot = path.indexOf(QLatin1Char('.'));
    if (dot < 1 || dot == path.size() - 1) {
        return Failure {
            QStringLiteral("%1 is no call: write GROUP.CONTROL or GROUP.CONTROL=ARG,...").arg(quoted(text))};
    }
    Request request {path.left(dot), path.mid(dot + 1), {}};
    if (equals < 0)
        return request;
    const Outcome<QStringList> arguments = splitArguments(text.mid(equals + 1));
    if (!arguments)
        return arguments.failure();
    request.arguments = *arguments;
    return request;
}

Failure unknownObject(const Targets &targets, const QString &name)
{
    QStringList names;
    for (const Target &target : targets)
        names << target.name;
    return {QStringLiteral("there is no object %1: there is %2")
                .arg(quoted(name), names.join(QLatin1String(", ")))};
}

Failure unknownControl(const Target &target, const QString &name)
{
    QStringList names;
    const QVector<Callable> callables = callablesOf(target.object);
    for (const Callable &callable : callables)
        names << QString::fromLatin1(callable.method.name());
    names.removeDuplicates();
    const QStringList near = similarNames(name, names);
    const QString offer = near.isEmpty()
        ? QStringLiteral("it has ") + names.join(QLatin1String(", "))
        : QStringLiteral("did you mean %1?").arg(near.join(QLatin1String(" or ")));
    return {QStringLiteral("%1 has no call %2: %3").arg(target.name, quoted(name), offer)};
}

QString counted(int count)
{
    return count == 1 ? QStringLiteral("1 argument") : QStringLiteral("%1 arguments").arg(count);
}

QString parameters(const QMetaMethod &method)
{
    QStringList list;
    for (int i = 0; i < method.parameterCount(); ++i)
        list << QString::fromLatin1(method.parameterTypes().at(i)) + QLatin1Char(' ')
                + parameterName(method, i);
    return list.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(list.join(QLatin1String(", ")));
}

Failure wrongCount(const Request &request, const QVector<QMetaMethod> &methods)
{
    QStringList offers;
    for (const QMetaMethod &method : methods)
        offers << counted(method.parameterCount()) + parameters(method);
    return {QStringLiteral("%1.%2 was given %3 and takes %4")
                .arg(request.object, request.control, counted(request.arguments.size()),
                     offers.join(QLatin1String(" or ")))};
}

Outcome<QVariantList> toArguments(const Target &target, const QMetaMethod &method, const QStringList &texts)
{
    QVariantList arguments;
    for (int i = 0; i < texts.size(); ++i) {
        const Outcome<QVariant> value = toArgument(texts[i], parameterType(target.object, method, i));
        if (!value) {
            return Failure {QStringLiteral("%1.%2, %3: %4")
                                .arg(target.name, QString::fromLatin1(method.name()),
                                     parameterName(method, i), value.error())};
        }
        arguments << *value;
    }
    return arguments;
}

Outcome<PreparedCall> fitArguments(const Target &target, const QVector<QMetaMethod> &methods,
                                   const QStringList &texts)
{
    Failure firstFailure;
    for (const QMetaMethod &method : methods) {
        const Outcome<QVariantList> arguments = toArguments(target, method, texts);
        if (arguments)
            return PreparedCall {target, method, *arguments};
        if (firstFailure.text.isEmpty())
            firstFailure = arguments.failure();
    }
    return firstFailure;
}

} // namespace

Outcome<PreparedCall> prepareCall(const Targets &targets, const QString &text)
{
    const Outcome<Request> request = parseRequest(text);
    if (!request)
        return request.failure();
    const auto target = std::find_if(targets.cbegin(), targets.cend(),
                                     [&](const Target &row) { return row.name == request->object; });
    if (target == targets.cend())
        return unknownObject(targets, request->object);
    const QVector<QMetaMethod> methods = methodsNamed(target->object, request->control);
    if (methods.isEmpty())
        return unknownControl(*target, request->control);
    QVector<QMetaMethod> fitting;
    std::copy_if(
        methods.cbegin(), methods.cend(), std::back_inserter(fitting),
        [&](const QMetaMethod &method) { return method.parameterCount() == request->arguments.size(); });
    if (fitting.isEmpty())
        return wrongCount(*request, methods);
    return fitArguments(*target, fitting, request->arguments);
}

QVariant invoke(const PreparedCall &call)
{
    const int resultType = call.method.returnType();
    QVariant result;
    if (resultType != QMetaType::Void && resultType != QMetaType::UnknownType)
        result = QVariant(resultType, nullptr);
    QVector<void *> pointers {result.isValid() ? result.data() : nullptr};
    QVariantList arguments = call.arguments;
    for (QVariant &argument : arguments)
        pointers << argument.data();
    QMetaObject::metacall(call.target.object, QMetaObject::InvokeMetaMethod, call.method.methodIndex(),
                          pointers.data());
    return result;
}

} // namespace canbus::monitor
