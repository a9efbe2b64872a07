#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <vector>

namespace boxsim {

struct JsonMember;

/// A value of a JSON document, and where it stands. Members keep their order, and those given twice stay.
struct JsonValue {
    enum class Kind { Null, Flag, Number, Text, List, Object };

    Kind kind = Kind::Null;
    int line = 0; ///< counted from 1; of a list or an object the line of its bracket
    bool flag = false;
    double number = 0;
    QString text;
    std::vector<JsonValue> items;
    std::vector<JsonMember> members;
};

struct JsonMember {
    QString name;
    int line = 0;
    JsonValue value;
};

/// Where the text stops being JSON, and why.
struct JsonError {
    int line = 0;   ///< counted from 1
    int column = 0; ///< counted from 1, in characters
    QString text;
};

constexpr int kDeepestJson = 40;

/// Reads JSON in UTF-8, with or without a byte order mark, nested kDeepestJson deep at most.
/// @return whether it is JSON; else `error` is set
bool parseJson(const QByteArray &json, JsonValue *value, JsonError *error);

} // namespace boxsim
