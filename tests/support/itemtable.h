#pragma once

#include "plaintexts.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

/// What the box's payloads mean, as a table of their bit fields that is written down from docs/protocol.md,
/// and by which rules items are announced: what the decoders are compared with.
///
/// Nothing of the library is used here.
namespace itemtable {

/// The value of an item: its numbers (flags as 0 and 1), its texts.
struct Value {
    QList<int> numbers;
    QStringList texts;
};

inline bool operator==(const Value &a, const Value &b)
{
    return a.numbers == b.numbers && a.texts == b.texts;
}

/// A signal, by its row in the table, with what it carries.
struct Announcement {
    int row;
    Value value;
};

inline bool operator==(const Announcement &a, const Announcement &b)
{
    return a.row == b.row && a.value == b.value;
}

using Announcements = std::vector<Announcement>;

/// A number in a payload.
struct Bits {
    int byte;
    int shift;
    int width; ///< 16: the byte and the one behind it, which is the less significant
    int most;  ///< a number above this reads as 0
};

enum class Texts {
    None,
    Title,       ///< one text, cleaned when it is stored and compared before
    List,        ///< texts, each closed by a zero byte
    Scale,       ///< two characters, then ten times three
    BehindScale, ///< the list behind a scale
};

enum class Rule {
    OnChange,
    Always,
    Throttled, ///< stored; announced with the others of this rule, by the timer
    Delayed,   ///< stored; announced by the timer
};

/// One item. The rows of a sub-type are in the order in which their signals come.
struct Row {
    int category;
    int mod;     ///< kAny where the sub-type does not count
    int minimum; ///< bytes that the sub-type's payload has at least
    const char *signal;
    Rule rule;
    bool isEmptyNews; ///< an empty title or list counts as a change each time
    Texts texts;
    int textsFrom;
    std::vector<Bits> bits;
    QList<int> first; ///< the numbers before anything has been received
};

constexpr int kAny = -1;

inline Bits flag(int byte, int bit)
{
    return {byte, bit, 1, 1};
}
inline Bits state2(int byte, int low)
{
    return {byte, low, 2, 3};
}
inline Bits state3(int byte, int low)
{
    return {byte, low, 3, 6};
}
inline Bits state4(int byte, int low)
{
    return {byte, low, 4, 8};
}
inline Bits whole(int byte)
{
    return {byte, 0, 8, 255};
}
inline Bits both(int byte)
{
    return {byte, 0, 16, 65535};
}

inline Row numbers(int category, int mod, int minimum, const char *signal, std::vector<Bits> bits,
                   const QList<int> &first)
{
    return {category, mod, minimum, signal, Rule::OnChange, false, Texts::None, 0, std::move(bits), first};
}

inline Row texts(int category, int mod, int minimum, const char *signal, Texts kind, int from)
{
    return {category, mod, minimum, signal, Rule::OnChange, true, kind, from, {}, {}};
}

inline Row withRule(Row row, Rule rule)
{
    row.rule = rule;
    return row;
}

inline Row withoutEmptyNews(Row row)
{
    row.isEmptyNews = false;
    return row;
}

inline std::vector<Row> climateRows()
{
    const std::vector<Bits> buttons {state2(4, 2),  state2(4, 0),  state2(5, 6),  state2(5, 4),
                                     state2(5, 2),  state2(5, 0),  state2(9, 4),  state2(9, 2),
                                     state2(9, 0),  state2(10, 2), state2(10, 0), state2(11, 6),
                                     state2(11, 4), state2(11, 2), state2(11, 0), state2(12, 6),
                                     state2(12, 4), state2(12, 2), state2(13, 0), state2(13, 2)};
    return {
        numbers(3, 0, 2, "updateClimateType", {whole(0)}, {-1}),
        withoutEmptyNews(texts(3, 0, 2, "updateClimateTopText", Texts::Title, 1)),
        texts(3, 1, 1, "updateClimateComText", Texts::List, 0),
        numbers(3, 2, 15, "updateClimateSystem", {flag(13, 4)}, {0}),
        numbers(3, 2, 15, "updateClimateDriverSeatPos", {flag(13, 5)}, {0}),
        numbers(3, 2, 15, "updateClimateBtnStatus", buttons, {}),
        numbers(3, 2, 15, "updateClimateMainTemp", {both(0), state2(4, 6)}, {-1, -1}),
        numbers(3, 2, 15, "updateClimateSecondTemp", {both(2), state2(4, 4)}, {-1, -1}),
        numbers(3, 2, 15, "updateClimateHeatSeat", {state4(6, 4), state4(6, 0)}, {-1, -1}),
        numbers(3, 2, 15, "updateClimateCoolSeat", {state4(7, 4), state4(7, 0)}, {-1, -1}),
        numbers(3, 2, 15, "updateClimateFanDirectValue", {whole(8)}, {-1}),
        numbers(3, 2, 15, "updateClimateFanSpeedStatus", {state2(9, 6)}, {-1}),
        numbers(3, 2, 15, "updateClimateVentPosition", {state4(10, 4)}, {-1}),
        numbers(3, 2, 15, "updateClimateFanDirect", {state2(12, 0)}, {-1}),
        numbers(3, 2, 15, "updateClimateManualTempValue", {whole(14)}, {-1}),
    };
}

inline std::vector<Row> gaugesRows()
{
    const Row type =
        numbers(4, 0, 2, "updateGaugeType", {flag(0, 0), flag(0, 1), flag(0, 2), flag(0, 3)}, {});
    const Row shift = numbers(4, 5, 13, "updateGaugeShift", {flag(2, 0)}, {0});
    const Row values =
        numbers(4, 5, 13, "updateGaugeValue", {whole(1), whole(5), whole(7), whole(9), whole(11)}, {});
    return {
        texts(4, 0, 2, "updateGaugeTopText", Texts::Title, 1),
        withRule(type, Rule::Always),
        texts(4, 1, 1, "updateGaugeComText", Texts::List, 0),
        withoutEmptyNews(texts(4, 2, 2, "updateGaugeScale", Texts::Scale, 0)),
        texts(4, 2, 2, "updateGaugeCenterText", Texts::BehindScale, 32),
        texts(4, 3, 1, "updateGaugeTopLRText", Texts::List, 0),
        texts(4, 4, 1, "updateGaugeBottomLRText", Texts::List, 0),
        withRule(shift, Rule::Throttled),
        numbers(4, 5, 13, "updateGaugeFormat", {flag(2, 1), flag(2, 2), flag(2, 3), flag(2, 4), flag(2, 5)},
                {}),
        numbers(4, 5, 13, "updateGaugeComLabelsState", {state2(2, 6), state2(3, 0)}, {-1, -1}),
        numbers(4, 5, 13, "updateGaugePeakColorState", {state3(3, 2)}, {-1}),
        numbers(4, 5, 13, "updateGaugeZeroPos", {whole(0), whole(4), whole(6), whole(8), whole(10)}, {}),
        withRule(values, Rule::Throttled),
        withRule(texts(4, 5, 13, "updateGaugeValueText", Texts::List, 12), Rule::Throttled),
    };
}

inline std::vector<Row> vehicleRows()
{
    return {
        texts(5, 0, 1, "updateVehicleTopText", Texts::Title, 0),
        texts(5, 1, 1, "updateVehicleComText", Texts::List, 0),
        numbers(5, 2, 3, "updateVehicleDoorStatus", {flag(0, 0), flag(0, 1), flag(0, 2), flag(0, 3)}, {}),
        numbers(5, 2, 3, "updateVehicleHoodk", {flag(0, 4)}, {0}),
        numbers(5, 2, 3, "updateVehicleTrunk", {flag(0, 5)}, {0}),
        numbers(5, 2, 3, "updateVehicleBattery", {flag(2, 2)}, {0}),
        numbers(5, 2, 3, "updateVehicleTire", {state2(1, 0), state2(1, 2), state2(1, 4), state2(1, 6)}, {}),
        numbers(5, 2, 3, "updateVehicleCheckEngineState", {state2(2, 0)}, {0}),
        numbers(5, 2, 3, "updateVehicleComLabelsState", {state2(2, 4), state2(2, 6)}, {-1, -1}),
        withRule(texts(5, 2, 3, "updateVehicleTireText", Texts::List, 3), Rule::Delayed),
    };
}

inline std::vector<Row> parkingRows()
{
    return {
        texts(6, 0, 1, "updateParkTopText", Texts::Title, 0),
        texts(6, 1, 1, "updateParkComText", Texts::List, 0),
        numbers(6, 2, 17, "updateParkSensorFront", {whole(0), whole(1), whole(2), whole(3)}, {}),
        numbers(6, 2, 17, "updateParkSensorRear", {whole(4), whole(5), whole(6), whole(7)}, {}),
        numbers(6, 2, 17, "updateParkSensorLeft", {whole(8), whole(9), whole(10), whole(11)}, {}),
        numbers(6, 2, 17, "updateParkSensorRight", {whole(12), whole(13), whole(14), whole(15)}, {}),
        numbers(6, 2, 17, "updateParkComLabelsState", {state2(16, 0), state2(16, 2)}, {0, 0}),
        numbers(6, 2, 17, "updateParkSensorStatus", {flag(16, 4), flag(16, 5), flag(16, 6), flag(16, 7)}, {}),
    };
}

/// What the facade keeps for itself. The entries of the menu are followed by minus and plus.
inline std::vector<Row> facadeRows()
{
    const Row screens = numbers(2, kAny, 0, "updateScreenInfo",
                                {flag(0, 0), flag(0, 1), flag(0, 2), flag(0, 3), flag(0, 4)}, {});
    Row menu = numbers(17, kAny, 0, "updateMenuInfo",
                       {whole(0), whole(1), whole(2), whole(3), flag(4, 0), flag(4, 1)}, {});
    menu.texts = Texts::List;
    menu.textsFrom = 5;
    return {withRule(screens, Rule::Always), menu};
}

inline const std::vector<Row> &allRows()
{
    static const std::vector<Row> rows = [] {
        std::vector<Row> all;
        for (const auto &some : {climateRows(), gaugesRows(), vehicleRows(), parkingRows(), facadeRows()})
            all.insert(all.end(), some.begin(), some.end());
        return all;
    }();
    return rows;
}

/// The row of a signal; -1 where the table has none.
inline int rowOf(const char *signal)
{
    for (std::size_t i = 0; i < allRows().size(); ++i) {
        if (QLatin1String(allRows()[i].signal) == QLatin1String(signal))
            return int(i);
    }
    return -1;
}

/// What a byte that is not there reads as.
inline int byteOf(const QByteArray &payload, int index)
{
    return index < payload.size() ? quint8(payload.at(index)) : 0;
}

inline int numberIn(const QByteArray &payload, const Bits &bits)
{
    if (bits.width == 16)
        return byteOf(payload, bits.byte) * 256 + byteOf(payload, bits.byte + 1);
    const int number = byteOf(payload, bits.byte) / (1 << bits.shift) % (1 << bits.width);
    return number > bits.most ? 0 : number;
}

/// The first entry has the first two bytes, each further one the next three as long as there are three, and
/// there are eleven at most.
inline QStringList scaleIn(const QByteArray &payload)
{
    QStringList entries {plaintexts::decoded(plaintexts::upToZero(payload.left(2)))};
    for (int from = 2; from + 3 <= payload.size() && entries.size() < 11; from += 3)
        entries += plaintexts::decoded(plaintexts::upToZero(payload.mid(from, 3)));
    return entries;
}

inline QStringList textsIn(const QByteArray &payload, const Row &row)
{
    switch (row.texts) {
    case Texts::None:
        break;
    case Texts::Title:
        return {plaintexts::decoded(plaintexts::upToZero(payload.mid(row.textsFrom)))};
    case Texts::List:
    case Texts::BehindScale:
        return plaintexts::split(payload.mid(row.textsFrom));
    case Texts::Scale:
        return scaleIn(payload);
    }
    return {};
}

/// What the decoders hold, and what they announce.
class Items {
public:
    Items()
    {
        for (const Row &row : allRows())
            m_stored.push_back(
                {row.first, row.texts == Texts::Title ? QStringList {QString()} : QStringList()});
    }

    /// @return what a payload must make the decoders announce, in order
    Announcements receive(int category, int mod, const QByteArray &payload)
    {
        Announcements announced;
        for (std::size_t i = 0; i < allRows().size(); ++i) {
            const Row &row = allRows()[i];
            const bool isMeant = row.category == category && (row.mod == kAny || row.mod == mod);
            if (isMeant && payload.size() >= row.minimum)
                take(i, payload, announced);
        }
        return announced;
    }

    /// What the throttle of the gauges announces when its time is over.
    Announcements throttled() const
    {
        static const int kRows[] = {rowOf("updateGaugeValueText"), rowOf("updateGaugeValue"),
                                    rowOf("updateGaugeShift")};
        Announcements all;
        for (const int row : kRows)
            all.push_back({row, stored(row)});
        return all;
    }

    /// What the delay of the tires' texts announces when it is over.
    Announcements delayed() const
    {
        static const int kRow = rowOf("updateVehicleTireText");
        return {{kRow, stored(kRow)}};
    }

    /// The value that an item has now.
    const Value &stored(int row) const { return m_stored[std::size_t(row)]; }

private:
    void take(std::size_t i, const QByteArray &payload, Announcements &announced)
    {
        const Row &row = allRows()[i];
        Value next;
        for (const Bits &bits : row.bits)
            next.numbers += numberIn(payload, bits);
        next.texts = textsIn(payload, row);
        if (!isNews(row, m_stored[i], next))
            return;
        // Compared before it is cleaned.
        if (row.texts == Texts::Title)
            next.texts.first() = plaintexts::cleaned(next.texts.first());
        m_stored[i] = next;
        announce(int(i), announced);
    }

    static bool isNews(const Row &row, const Value &stored, const Value &next)
    {
        if (row.rule == Rule::Always || !(stored == next))
            return true;
        const bool isEmpty = row.texts == Texts::Title ? next.texts.first().isEmpty() : next.texts.isEmpty();
        return row.isEmptyNews && isEmpty;
    }

    void announce(int row, Announcements &announced)
    {
        const Rule rule = allRows()[std::size_t(row)].rule;
        if (rule == Rule::Delayed)
            return;
        if (rule != Rule::Throttled) {
            announced.push_back({row, stored(row)});
        } else if (!m_isThrottling) {
            // The other two with what they are at this moment.
            m_isThrottling = true;
            for (const Announcement &each : throttled())
                announced.push_back(each);
        }
    }

    std::vector<Value> m_stored; // a value for each row
    bool m_isThrottling = false; // since the first; no timer expires here
};

} // namespace itemtable
