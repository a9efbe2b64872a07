#include "canbusplayer.h"
#include "groups/grouptexts.h"
#include "plaintexts.h"
#include "support/text.h"
#include "target.h"

/// The readers of texts and bits, and the escaping rule.
///
/// The input: five bytes of arguments, then the text.

using namespace canbus;

namespace {

/// What the bytes are by the book.
struct Plain {
    explicit Plain(const QByteArray &bytes)
        : texts(plaintexts::split(bytes))
        , raw(plaintexts::decoded(plaintexts::upToZero(bytes)))
        , cleaned(plaintexts::cleaned(raw))
    {
    }

    QStringList texts;
    QString raw; ///< the title, as it is compared
    QString cleaned;
};

void compareSplitting(const QByteArray &bytes, const Plain &plain)
{
    fuzz::check(textsIn(bytes) == plain.texts, "texts are what stands before each zero byte, cleaned");
    QStringList list {QStringLiteral("before")};
    CanBusPlayer::instance()->onSplitEOFstrings(list, bytes);
    fuzz::check(list == QStringList {QStringLiteral("before")} + plain.texts, "the list is appended to");
}

void compareCleaning(const QByteArray &bytes, int from)
{
    const QString decoded = plaintexts::decoded(plaintexts::upToZero(bytes.mid(from)));
    fuzz::check(textUpToZero(bytes, from) == decoded, "a text ends before its first zero byte");
    QString text = decoded;
    CanBusPlayer::instance()->removeGarbledCodeFromUtf8(text);
    fuzz::check(text == plaintexts::cleaned(decoded), "replacement characters go, and nothing else");
}

void compareTitle(const QByteArray &bytes, const Plain &plain, const QString &before)
{
    const bool isNews = !bytes.isEmpty() && (plain.raw != before || plain.raw.isEmpty());
    QString stored = before;
    fuzz::check(takeTitle(CANBUS_HERE, stored, bytes) == isNews,
                "a title is news when it changes or is empty");
    fuzz::check(stored == (isNews ? plain.cleaned : before), "and stored cleaned");
}

void compareTexts(const QByteArray &bytes, const Plain &plain, const QStringList &before)
{
    const bool isNews = !bytes.isEmpty() && (plain.texts != before || plain.texts.isEmpty());
    QStringList stored = before;
    fuzz::check(takeTexts(CANBUS_HERE, stored, bytes) == isNews,
                "texts are news when they change or are none");
    fuzz::check(stored == (isNews ? plain.texts : before), "and stored");
}

int bitOf(quint8 value, int position)
{
    return position < 0 || position > 7 ? 0 : value / (1 << position) % 2;
}

void compareStates(quint8 value, const int (&at)[4])
{
    CanBusPlayer *const player = CanBusPlayer::instance();
    const int two = bitOf(value, at[0]) + 2 * bitOf(value, at[1]);
    const int three = two + 4 * bitOf(value, at[2]);
    const int four = three + 8 * bitOf(value, at[3]);
    fuzz::check(player->on2bitComparisonStates(char(value), at[0], at[1]) == two, "two bits: 0 to 3");
    fuzz::check(player->on3bitComparisonStates(char(value), at[0], at[1], at[2]) == (three > 6 ? 0 : three),
                "three bits: 0 to 6");
    fuzz::check(player->on4bitComparisonStates(char(value), at[0], at[1], at[2], at[3])
                    == (four > 8 ? 0 : four),
                "four bits: 0 to 8");
}

void compareEscaping(const QByteArray &bytes)
{
    QByteArray frame;
    frame.reserve(2 * bytes.size());
    for (const char byte : bytes)
        CanBusPlayer::instance()->onEscapeFrameHeader(byte, frame);
    QByteArray plain(bytes.constData(), bytes.size());
    plain.replace("\x9f", "\x9f\x9f");
    fuzz::check(frame == plain, "a 9F is written twice, and no other byte");
}

/// A bit's position, from before the byte to behind it, and far away.
int positionOf(quint8 byte)
{
    return byte < 0x80 ? int(byte & 0x0F) - 3 : (int(byte) - 0xC0) * 0x01000000;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Program program(data, size);
    const quint8 value = program.byte();
    int positions[4];
    for (int &position : positions)
        position = positionOf(program.byte());
    const QByteArray bytes = program.rest();

    compareStates(value, positions);
    compareEscaping(bytes);
    const Plain plain(bytes);
    compareSplitting(bytes, plain);
    compareCleaning(bytes, value & 0x0F);
    // What is stored already: nothing, the same, the same before it is cleaned.
    for (const QString &before : {QString(), plain.cleaned, plain.raw})
        compareTitle(bytes, plain, before);
    for (const QStringList &before : {QStringList(), plain.texts, QStringList {QString()}})
        compareTexts(bytes, plain, before);
    return 0;
}
