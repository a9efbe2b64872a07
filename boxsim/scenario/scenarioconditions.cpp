#include "scenarioconditions.h"

#include "boxsim/bench/report.h"

#include <algorithm>

namespace boxsim {

namespace {

const QString kCommand = QStringLiteral("command");
const QString kEvent = QStringLiteral("event");
const QString kLink = QStringLiteral("link");
const QString kArguments = QStringLiteral("arguments");

template <class Forms>
QStringList namesOf(const Forms &forms)
{
    QStringList names;
    for (const auto &form : forms)
        names.append(form.name);
    return names;
}

template <class Forms>
auto formNamed(const QString &name, const Forms &forms)
{
    const auto form =
        std::find_if(forms.begin(), forms.end(), [&name](const auto &one) { return one.name == name; });
    return form == forms.end() ? nullptr : &*form;
}

QVariant readFlag(const JsonPlace &value, const ArgumentForm &form)
{
    const bool flag = value.flag();
    if (int(flag) < form.least || int(flag) > form.most)
        value.refuse(QStringLiteral("is always %1 in this command")
                         .arg(QLatin1String(form.least != 0 ? "true" : "false")));
    return flag;
}

QVariant readArgument(const JsonPlace &value, const ArgumentForm &form)
{
    switch (form.kind) {
    case ArgumentForm::Kind::Flag:
        return readFlag(value, form);
    case ArgumentForm::Kind::Byte:
        return int(value.wholeNumber(form.least, form.most));
    case ArgumentForm::Kind::Hex:
        return QString::fromLatin1(value.bytes().toHex());
    }
    return {};
}

QVector<Argument> readArguments(const JsonPlace &object, const CommandForm &form)
{
    QVector<Argument> arguments;
    if (form.arguments.isEmpty()) {
        object.refuse(QStringLiteral("are none of %1's; it has no arguments").arg(form.name));
        return arguments;
    }
    if (!object.isObjectOf(namesOf(form.arguments)))
        return arguments;
    for (const ArgumentForm &argument : form.arguments) {
        if (object.has(argument.name))
            arguments.append({argument.name, readArgument(object[argument.name], argument)});
    }
    return arguments;
}

Condition readCommand(const JsonPlace &object)
{
    Condition condition;
    condition.kind = Condition::Kind::Command;
    condition.name = object[kCommand].choice(namesOf(commandForms()));
    const CommandForm *form = formNamed(condition.name, commandForms());
    if (form != nullptr && object.has(kArguments))
        condition.arguments = readArguments(object[kArguments], *form);
    return condition;
}

} // namespace

QStringList conditionMembers()
{
    return {kCommand, kEvent, kLink, kArguments};
}

Condition readCondition(const JsonPlace &object)
{
    const QStringList kinds = object.present({kCommand, kEvent, kLink});
    if (kinds.size() != 1) {
        object.refuse(
            QStringLiteral("takes one of command, event and link, not %1")
                .arg(kinds.isEmpty() ? QStringLiteral("none") : kinds.join(QStringLiteral(" and "))));
        return {};
    }
    if (kinds.first() == kCommand)
        return readCommand(object);
    if (object.has(kArguments))
        object[kArguments].refuse(QStringLiteral("go with a command alone"));
    if (kinds.first() == kEvent)
        return {Condition::Kind::Event, object[kEvent].choice(eventNames()), {}};
    const bool up =
        object[kLink].choice({QStringLiteral("up"), QStringLiteral("down")}) == QLatin1String("up");
    return {up ? Condition::Kind::LinkUp : Condition::Kind::LinkDown, {}, {}};
}

} // namespace boxsim
