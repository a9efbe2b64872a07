#include "jsontree.h"

#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <algorithm>

namespace boxsim {

namespace {

using Kind = JsonValue::Kind;

constexpr char kByteOrderMark[] = "\xef\xbb\xbf";

/// Turns positions that never go back into line numbers.
class LineCounter {
public:
    explicit LineCounter(const QByteArray &json)
        : m_json(json)
    {
    }

    int lineOf(int position)
    {
        const int end = qMin(position, m_json.size());
        m_line += int(std::count(m_json.begin() + m_counted, m_json.begin() + end, '\n'));
        m_counted = end;
        return m_line;
    }

private:
    const QByteArray &m_json;
    int m_counted = 0;
    int m_line = 1;
};

/// Builds the tree from what the reader finds.
class TreeBuilder : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, TreeBuilder> {
public:
    TreeBuilder(const QByteArray &json, const rapidjson::MemoryStream &stream, JsonValue *root)
        : m_lines(json)
        , m_stream(stream)
        , m_root(root)
    {
    }

    /// What the reader could not know to be wrong, or nothing.
    QString objection() const { return m_objection; }

    bool Null() { return add(Kind::Null) != nullptr; }

    bool Bool(bool flag)
    {
        add(Kind::Flag)->flag = flag;
        return true;
    }

    bool Int(int number) { return Double(number); }
    bool Uint(unsigned number) { return Double(number); }
    bool Int64(int64_t number) { return Double(double(number)); }
    bool Uint64(uint64_t number) { return Double(double(number)); }

    bool Double(double number)
    {
        add(Kind::Number)->number = number;
        return true;
    }

    bool String(const char *utf8, rapidjson::SizeType size, bool /*copy*/)
    {
        return take(utf8, size, &add(Kind::Text)->text);
    }

    bool Key(const char *utf8, rapidjson::SizeType size, bool /*copy*/)
    {
        m_open.back()->members.push_back({QString(), line(), {}});
        return take(utf8, size, &m_open.back()->members.back().name);
    }

    bool StartObject() { return open(Kind::Object); }
    bool EndObject(rapidjson::SizeType /*count*/) { return close(); }
    bool StartArray() { return open(Kind::List); }
    bool EndArray(rapidjson::SizeType /*count*/) { return close(); }

private:
    int line() { return m_lines.lineOf(int(m_stream.Tell())); }

    JsonValue *place()
    {
        if (m_open.empty())
            return m_root;
        JsonValue *parent = m_open.back();
        if (parent->kind == Kind::Object)
            return &parent->members.back().value;
        parent->items.emplace_back();
        return &parent->items.back();
    }

    JsonValue *add(Kind kind)
    {
        JsonValue *value = place();
        value->kind = kind;
        value->line = line();
        return value;
    }

    // A pointer into an open value stays: only the innermost list or object grows.
    bool open(Kind kind)
    {
        m_open.push_back(add(kind));
        if (int(m_open.size()) > kDeepestJson)
            m_objection = QStringLiteral("more than %1 lists and objects in one another").arg(kDeepestJson);
        return m_objection.isEmpty();
    }

    bool close()
    {
        m_open.pop_back();
        return true;
    }

    bool take(const char *utf8, rapidjson::SizeType size, QString *text)
    {
        *text = QString::fromUtf8(utf8, int(size));
        if (text->contains(QChar(0)))
            m_objection = QStringLiteral("a text cannot contain the character \\u0000");
        return m_objection.isEmpty();
    }

    LineCounter m_lines;
    const rapidjson::MemoryStream &m_stream;
    JsonValue *m_root;
    std::vector<JsonValue *> m_open;
    QString m_objection;
};

const char *plainWords(rapidjson::ParseErrorCode code)
{
    switch (code) {
    case rapidjson::kParseErrorDocumentEmpty:
        return "there is nothing in it";
    case rapidjson::kParseErrorDocumentRootNotSingular:
        return "something follows after the end";
    case rapidjson::kParseErrorObjectMissName:
        return "a member's name in quotation marks is missing";
    case rapidjson::kParseErrorObjectMissColon:
        return "a colon after a member's name is missing";
    case rapidjson::kParseErrorObjectMissCommaOrCurlyBracket:
        return "a comma or } after a member is missing";
    case rapidjson::kParseErrorArrayMissCommaOrSquareBracket:
        return "a comma or ] after an item is missing";
    case rapidjson::kParseErrorStringUnicodeEscapeInvalidHex:
        return "\\u takes four hexadecimal digits";
    case rapidjson::kParseErrorStringUnicodeSurrogateInvalid:
        return "\\u names half a character";
    case rapidjson::kParseErrorStringEscapeInvalid:
        return "a \\ with a character that it does not go with";
    case rapidjson::kParseErrorStringMissQuotationMark:
        return "a text has no closing quotation mark";
    case rapidjson::kParseErrorStringInvalidEncoding:
        return "a text that is no UTF-8";
    case rapidjson::kParseErrorNumberTooBig:
        return "a number that is too large";
    case rapidjson::kParseErrorNumberMissFraction:
        return "a number without digits after its point";
    case rapidjson::kParseErrorNumberMissExponent:
        return "a number without digits after its e";
    default:
        return "neither a value nor a bracket that fits";
    }
}

/// The reader takes a line break within a text for a wrong escape.
bool isControlAt(const QByteArray &json, int position)
{
    return position < json.size() && quint8(json.at(position)) < 0x20U;
}

QString reasonOf(const rapidjson::ParseResult &result, const QByteArray &json)
{
    if (result.Code() == rapidjson::kParseErrorStringEscapeInvalid && isControlAt(json, int(result.Offset())))
        return QStringLiteral("a line break or another control character in a text");
    return QString::fromLatin1(plainWords(result.Code()));
}

JsonError errorAt(const QByteArray &json, int position, const QString &text)
{
    const QByteArray before = json.left(position);
    const QByteArray row = before.mid(before.lastIndexOf('\n') + 1);
    const auto beginsCharacter = [](char byte) { return (quint8(byte) & 0xC0U) != 0x80U; };
    const auto characters = std::count_if(row.begin(), row.end(), beginsCharacter);
    return {before.count('\n') + 1, int(characters) + 1, text};
}

} // namespace

bool parseJson(const QByteArray &json, JsonValue *value, JsonError *error)
{
    const QByteArray text = json.startsWith(kByteOrderMark) ? json.mid(3) : json;
    // The reader would take it for the end.
    const int zero = text.indexOf('\0');
    rapidjson::MemoryStream stream(text.constData(), std::size_t(zero < 0 ? text.size() : zero));
    TreeBuilder builder(text, stream, value);
    rapidjson::Reader reader;
    constexpr unsigned flags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
    const rapidjson::ParseResult result = reader.Parse<flags>(stream, builder);
    if (!result.IsError() && zero < 0)
        return true;
    if (!result.IsError() || (zero >= 0 && int(result.Offset()) >= zero))
        *error = errorAt(text, zero, QStringLiteral("a zero byte, which no text file has"));
    else if (!builder.objection().isEmpty())
        *error = errorAt(text, int(result.Offset()), builder.objection());
    else
        *error = errorAt(text, int(result.Offset()), reasonOf(result, text));
    return false;
}

} // namespace boxsim
