#include "scenarioschema.h"

#include "boxsim/bench/report.h"
#include "boxsim/fields/fields.h"
#include "boxsim/link/commands.h"
#include "boxsim/scenario/scenariodeeds.h"
#include "boxsim/scenario/scenariosteps.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QPair>
#include <QtCore/QVector>

#include <algorithm>

namespace boxsim {

namespace {

QJsonObject typed(const char *type, const char *about = nullptr)
{
    QJsonObject schema {{"type", type}};
    if (about != nullptr)
        schema["description"] = QString::fromUtf8(about);
    return schema;
}

QJsonObject numeric(const char *type, double least, double most, const char *about = nullptr)
{
    QJsonObject schema = typed(type, about);
    schema["minimum"] = least;
    schema["maximum"] = most;
    return schema;
}

QJsonObject milliseconds(int least, const char *about)
{
    return numeric("integer", least, double(kLongestMs), about);
}

QJsonObject matching(const char *pattern, const char *about)
{
    QJsonObject schema = typed("string", about);
    schema["pattern"] = pattern;
    return schema;
}

QJsonObject oneLine(const char *about)
{
    QJsonObject schema = matching("^[^\\u0000-\\u001F]+$", about);
    schema["minLength"] = 1;
    return schema;
}

QJsonObject hexBytes(const char *about)
{
    return matching("^( *[0-9A-Fa-f] *[0-9A-Fa-f])* *$", about);
}

QJsonObject hexByte(const char *about)
{
    return matching("^ *[0-9A-Fa-f] *[0-9A-Fa-f] *$", about);
}

QJsonObject alwaysTrue(const char *about)
{
    QJsonObject schema = typed("boolean", about);
    schema["enum"] = QJsonArray {true};
    return schema;
}

QJsonObject defined(const QString &name)
{
    return {{"$ref", QStringLiteral("#/definitions/") + name}};
}

QJsonObject listOf(const QJsonObject &item, int least, int most)
{
    QJsonObject schema {{"type", "array"}, {"items", item}};
    if (least > 0)
        schema["minItems"] = least;
    if (most >= 0)
        schema["maxItems"] = most;
    return schema;
}

/// An object with these members alone.
QJsonObject objectOf(const QJsonObject &members, const QStringList &required = {})
{
    QJsonObject schema {{"type", "object"}, {"properties", members}, {"additionalProperties", false}};
    if (!required.isEmpty())
        schema["required"] = QJsonArray::fromStringList(required);
    return schema;
}

QJsonObject exactlyOneOf(const QStringList &members)
{
    QJsonArray ways;
    for (const QString &member : members)
        ways.append(QJsonObject {{"required", QJsonArray {member}}});
    return {{"oneOf", ways}};
}

QJsonObject joined(QJsonObject schema, const QJsonObject &more)
{
    for (auto member = more.begin(); member != more.end(); ++member)
        schema[member.key()] = member.value();
    return schema;
}

QJsonObject flagOf(const Field &field)
{
    QStringList words = field.words + QStringList {"true", "false", "on", "off", "1", "0"};
    words.removeDuplicates();
    QJsonArray values {true, false};
    for (const QString &word : qAsConst(words))
        values.append(word);
    return {{"enum", values}};
}

QJsonObject entryOf(const Field &field)
{
    switch (field.kind) {
    case FieldKind::Flag:
        return flagOf(field);
    case FieldKind::Number:
        return numeric("integer", field.least, field.most);
    case FieldKind::Share:
        return numeric("number", field.least, field.most);
    case FieldKind::Text:
        return typed("string");
    case FieldKind::Texts:
        return listOf(typed("string"), 0, int(field.most));
    }
    return {};
}

QJsonObject pointsOf(const Field &field)
{
    QJsonObject point = listOf({}, 2, 2);
    point["items"] = QJsonArray {numeric("integer", 0, double(kLongestMs)), entryOf(field)};
    return listOf(point, 2, -1);
}

QString rampName(const Field &field)
{
    return QStringLiteral("ramp.") + field.name;
}

/// What each field takes, and each that can move along a ramp.
void addFieldDefinitions(QJsonObject &definitions)
{
    for (const Field &field : allFields()) {
        const QJsonObject about {{"description", field.about}};
        definitions[field.name] = joined(entryOf(field), about);
        if (field.kind == FieldKind::Number)
            definitions[rampName(field)] = joined(pointsOf(field), about);
    }
}

/// Adds a member for each name that one value of the field has.
void addNames(QJsonObject &members, const Field &field, const QString &definition)
{
    if (field.count == 1)
        members[field.name] = defined(definition);
    for (int i = 1; i <= field.count && field.count > 1; ++i)
        members[QStringLiteral("%1.%2").arg(field.name).arg(i)] = defined(definition);
}

QJsonObject fieldsSchema()
{
    QJsonObject members;
    for (const Field &field : allFields()) {
        addNames(members, field, field.name);
        if (field.count > 1)
            members[field.name] = listOf(defined(field.name), field.count, field.count);
    }
    return objectOf(members);
}

QJsonObject rampSchema()
{
    QJsonObject members;
    for (const Field &field : allFields()) {
        if (field.kind == FieldKind::Number)
            addNames(members, field, rampName(field));
    }
    QJsonObject schema = objectOf(members);
    schema["minProperties"] = 1;
    return schema;
}

QJsonObject argumentOf(const ArgumentForm &form)
{
    switch (form.kind) {
    case ArgumentForm::Kind::Flag:
        return form.least == form.most ? alwaysTrue("the control reports no release") : typed("boolean");
    case ArgumentForm::Kind::Byte:
        return numeric("integer", form.least, form.most);
    case ArgumentForm::Kind::Hex:
        return hexBytes("bytes as hexadecimal text");
    }
    return {};
}

QJsonObject argumentsOf(const CommandForm &form)
{
    if (form.arguments.isEmpty())
        return {{"not", QJsonObject()}};
    QJsonObject members;
    for (const ArgumentForm &argument : form.arguments)
        members[argument.name] = argumentOf(argument);
    return objectOf(members);
}

/// A condition on a command, for each set of arguments that there is.
QJsonArray commandWays()
{
    QVector<QPair<QJsonObject, QJsonArray>> groups;
    for (const CommandForm &form : commandForms()) {
        const QJsonObject arguments = argumentsOf(form);
        auto group = std::find_if(groups.begin(), groups.end(),
                                  [&arguments](const auto &one) { return one.first == arguments; });
        if (group == groups.end())
            group = groups.insert(groups.end(), {arguments, {}});
        group->second.append(form.name);
    }
    QJsonArray ways;
    for (const auto &group : qAsConst(groups)) {
        const QJsonObject members {{"command", QJsonObject {{"enum", group.second}}},
                                   {"arguments", group.first}};
        ways.append(QJsonObject {{"properties", members}, {"required", QJsonArray {"command"}}});
    }
    return ways;
}

QJsonArray conditionWays()
{
    QJsonArray ways = commandWays();
    const QJsonObject noArguments {{"not", QJsonObject {{"required", QJsonArray {"arguments"}}}}};
    ways.append(joined(noArguments, {{"required", QJsonArray {"event"}}}));
    ways.append(joined(noArguments, {{"required", QJsonArray {"link"}}}));
    return ways;
}

QJsonObject conditionMembersSchema()
{
    QJsonArray commands;
    for (const CommandForm &form : commandForms())
        commands.append(form.name);
    const QJsonObject event {{"enum", QJsonArray::fromStringList(eventNames())}};
    return {
        {"command", QJsonObject {{"enum", commands}, {"description", "the head unit sends this command"}}},
        {"arguments", typed("object", "what the command carries at least")},
        {"event", joined(event, {{"description", "the box reports this"}})},
        {"link",
         QJsonObject {{"enum", QJsonArray {"up", "down"}},
                      {"description", "the link is so, or comes to be"}}},
    };
}

QJsonObject waitSchema()
{
    QJsonObject members = conditionMembersSchema();
    members["timeout"] = milliseconds(1, "how long it waits");
    QJsonObject schema = objectOf(members);
    schema["allOf"] = QJsonArray {defined(QStringLiteral("condition"))};
    return schema;
}

QJsonObject optionSchema()
{
    QJsonObject members = conditionMembersSchema();
    members["steps"] = defined(QStringLiteral("steps"));
    QJsonObject schema = objectOf(members, {"steps"});
    schema["allOf"] = QJsonArray {defined(QStringLiteral("condition"))};
    return schema;
}

QJsonObject branchSchema()
{
    QJsonObject schema = objectOf({{"on", listOf(optionSchema(), 1, -1)},
                                   {"timeout", milliseconds(1, "how long it waits")},
                                   {"else", defined(QStringLiteral("steps"))}},
                                  {"on"});
    schema["dependencies"] = QJsonObject {{"else", QJsonArray {"timeout"}}};
    return schema;
}

QJsonObject sendSchema()
{
    return objectOf({{"id", hexByte("the frame's id, two hexadecimal digits")},
                     {"tp", hexByte("the category")},
                     {"mod", hexByte("the sub-type; 00 if it is missing")},
                     {"data", hexBytes("the payload before escaping")}},
                    {"id", "tp"});
}

QJsonObject repeatSchema()
{
    return objectOf({{"times", numeric("integer", 1, kMostTimes, "how often; for ever if it is missing")},
                     {"steps", defined(QStringLiteral("steps"))}},
                    {"steps"});
}

/// What a step can do: one of these.
QJsonObject deedMembers()
{
    QJsonObject bytes = hexBytes("bytes on the line, as they are");
    bytes["minLength"] = 2;
    return {
        {"set",
         QJsonObject {{"allOf", QJsonArray {defined(QStringLiteral("fields"))}}, {"minProperties", 1}}},
        {"ramp", rampSchema()},
        {"send", sendSchema()},
        {"bytes", bytes},
        {"restart", alwaysTrue("the box is switched off and on")},
        {"hangUp",
         numeric("integer", kShortestHangUpMs, kLongestHangUpMs,
                 "the line is gone for so many milliseconds")},
        {"note", oneLine("a line for the report")},
        {"wait", waitSchema()},
        {"branch", branchSchema()},
        {"repeat", repeatSchema()},
        {"end", alwaysTrue("the run ends with success")},
        {"fail", oneLine("the run ends with a failure, and why")},
    };
}

QJsonArray stepWays(const QStringList &deeds)
{
    QJsonArray ways = exactlyOneOf(deeds)["oneOf"].toArray();
    QJsonArray none;
    for (const QString &deed : deeds)
        none.append(QJsonObject {{"required", QJsonArray {deed}}});
    // A step of a time alone.
    const QJsonObject timed {{"anyOf", exactlyOneOf({"at", "after"})["oneOf"]},
                             {"not", QJsonObject {{"anyOf", none}}}};
    ways.append(timed);
    return ways;
}

QJsonObject stepSchema()
{
    const QJsonObject deeds = deedMembers();
    const QJsonObject others {
        {"about", oneLine("what the step is for")},
        {"at", milliseconds(0, "milliseconds since the list of steps began")},
        {"after", milliseconds(0, "milliseconds since the end of the step before")},
        {"every", milliseconds(1, "milliseconds between two values of a ramp")},
        {"then", defined(QStringLiteral("steps"))},
        {"else", defined(QStringLiteral("steps"))},
    };
    QJsonObject schema = objectOf(joined(deeds, others));
    const QJsonObject timed {
        {"properties", QJsonObject {{"wait", QJsonObject {{"required", QJsonArray {"timeout"}}}}}},
        {"required", QJsonArray {"wait"}}};
    schema["dependencies"] = QJsonObject {{"every", QJsonArray {"ramp"}},
                                          {"ramp", QJsonArray {"every"}},
                                          {"then", QJsonArray {"wait"}},
                                          {"else", timed}};
    schema["not"] = QJsonObject {{"required", QJsonArray {"at", "after"}}};
    schema["oneOf"] = stepWays(deeds.keys());
    return schema;
}

QJsonObject rootSchema()
{
    QJsonObject schema =
        objectOf({{"$schema", typed("string")},
                  {"about", oneLine("what the scenario is for")},
                  {"seed", numeric("integer", 0, 4294967295, "what all chance is drawn from")},
                  {"start", defined(QStringLiteral("fields"))},
                  {"loop", typed("boolean", "the steps begin again when they have ended")},
                  {"steps", defined(QStringLiteral("steps"))}},
                 {"steps"});
    schema["$schema"] = "http://json-schema.org/draft-04/schema#";
    schema["title"] = "A scenario of canbus-boxsim";
    QJsonObject definitions {{"fields", fieldsSchema()},
                             {"condition", QJsonObject {{"oneOf", conditionWays()}}},
                             {"step", stepSchema()},
                             {"steps", listOf(defined(QStringLiteral("step")), 0, -1)}};
    addFieldDefinitions(definitions);
    schema["definitions"] = definitions;
    return schema;
}

} // namespace

QByteArray scenarioSchema()
{
    return QJsonDocument(rootSchema()).toJson();
}

} // namespace boxsim
