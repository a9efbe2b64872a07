#include "handdrivenprotocol.h"
#include "heardannouncements.h"
#include "hexbytes.h"
#include "itemtable.h"

#include <QtCore/QLoggingCategory>
#include <QtTest/QTest>

#include <functional>
#include <memory>
#include <random>
#include <set>
#include <vector>

using namespace canbus;

/// Payloads of every category and sub-type, of every length around the least and of some far beyond, with
/// contents that no box should send, through the facade's slots. What they make the groups announce and store
/// is compared with the table of items.
class TestHostilePayloads : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void beginsWithWhatTheTableBeginsWith();
    void announcesWhatTheTableGives_data();
    void announcesWhatTheTableGives();
    void turnsTransitionsIntoTouchesOnly();
    void answersVersionsAsTheTableGives_data();
    void answersVersionsAsTheTableGives();
    void storesWhatTheTableGives();
    void coversEverySignal();
    void hasSentEnough();

private:
    void send(int category, const QByteArray &TPMOD, const QByteArray &payload);
    void sendAll(int category, int mod, int length);
    void compareStored(const char *when);
    void sendVersion(HandDrivenProtocol &protocol, int mod, const QByteArray &payload);
    QByteArray randomBytes(int length);

    std::unique_ptr<HeardAnnouncements> m_heard;
    itemtable::Items m_items;
    std::mt19937 m_random {20260719};
    std::set<int> m_announced; // rows of the table
    int m_sent = 0;
};

namespace {

constexpr int kSubTypesEach = 9; // 0 to 8: each category has fewer
constexpr int kRandomContents = 160;
constexpr int kLeastPayloads = 50000;
constexpr quint8 kContents[] = {0x00, 0x7F, 0x80, 0x9F, 0xFF};

/// The length that the longest minimum of a sub-type is; 0 for those that take any.
int minimumOf(int category, int mod)
{
    int minimum = 0;
    for (const itemtable::Row &row : itemtable::allRows()) {
        if (row.category == category && (row.mod == itemtable::kAny || row.mod == mod))
            minimum = qMax(minimum, row.minimum);
    }
    return minimum;
}

QByteArray describe(const itemtable::Announcements &announcements)
{
    QString text;
    QDebug debug(&text);
    for (const itemtable::Announcement &each : announcements)
        debug << itemtable::allRows().at(std::size_t(each.row)).signal << each.value.numbers
              << each.value.texts;
    return text.toUtf8();
}

/// A Version frame as the box sends it, with the id 35.
QByteArray versionFrame(int mod, const QByteArray &payload)
{
    const QByteArray content = bytes("35 01") + char(mod) + payload;
    char check = 0;
    for (const char byte : content)
        check = char(check ^ byte);
    return bytes("9f 02") + QByteArray(content + check).replace(bytes("9f"), bytes("9f 9f")) + bytes("9f 03");
}

/// What the head unit does with it, and what it does when its own frame is then acknowledged.
struct VersionRow {
    int readiness; ///< -1: any other
    QStringList events;
    const char *answer;
    QStringList eventsOfAnswer;
};

const QString kVersionAck = QStringLiteral("write 9f0635359f03");
const VersionRow kVersionRows[] = {
    {0, {"write 9f022101000000209f03", kVersionAck}, "9f 06 21 21 9f 03", {}},
    {1, {"write 9f023501000001359f03", kVersionAck}, "9f 06 35 35 9f 03", {"status true"}},
    {-1, {kVersionAck}, "", {}},
};
// More than the receive buffer holds is thrown away, unread.
const VersionRow kVersionTooLong {-1, {}, "", {}};
constexpr int kReceiveBuffer = 2048;

const VersionRow &versionRow(const QByteArray &payload, int frameSize)
{
    const int readiness = payload.size() > 1 ? quint8(payload.at(1)) : 0;
    if (frameSize > kReceiveBuffer)
        return kVersionTooLong;
    return kVersionRows[readiness > 1 ? 2 : readiness];
}

/// What a category that is none of the groups' does with a payload.
bool isFacades(int category)
{
    return category == 0x02 || category == 0x07 || category == 0x11;
}

} // namespace

void TestHostilePayloads::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("default=false"));
    m_heard = std::make_unique<HeardAnnouncements>();
}

QByteArray TestHostilePayloads::randomBytes(int length)
{
    // Every fourth byte ends a text.
    QByteArray bytes;
    for (int i = 0; i < length; ++i)
        bytes += char(m_random() % 4 == 0 ? 0 : m_random() % 256);
    return bytes;
}

void TestHostilePayloads::send(int category, const QByteArray &TPMOD, const QByteArray &payload)
{
    CanBusPlayer *const player = CanBusPlayer::instance();
    static const QMap<int, std::function<void(const QByteArray &, const QByteArray &)>> slotsOf {
        {0x02, [=](const QByteArray &, const QByteArray &data) { player->suppScreen(data); }},
        {0x03, [=](const QByteArray &mod, const QByteArray &data) { player->onClimateInfo(mod, data); }},
        {0x04, [=](const QByteArray &mod, const QByteArray &data) { player->onGaugesInfo(mod, data); }},
        {0x05, [=](const QByteArray &mod, const QByteArray &data) { player->onVehicleInfo(mod, data); }},
        {0x06, [=](const QByteArray &mod, const QByteArray &data) { player->onParingAssistInfo(mod, data); }},
        {0x07, [=](const QByteArray &, const QByteArray &data) { player->onChangeDsp(data); }},
        {0x11, [=](const QByteArray &, const QByteArray &data) { player->onTextScreen(data); }},
    };
    // The bytes alone, with nothing behind them that could be read by mistake.
    const std::vector<char> exact(payload.begin(), payload.end());
    slotsOf[category](TPMOD, QByteArray::fromRawData(exact.data(), int(exact.size())));
    ++m_sent;

    const itemtable::Announcements heard = m_heard->take();
    const int mod = TPMOD.isEmpty() ? 0 : quint8(TPMOD.at(0));
    const itemtable::Announcements expected = m_items.receive(category, mod, payload);
    for (const itemtable::Announcement &each : heard)
        m_announced.insert(each.row);
    if (!(heard == expected))
        QFAIL("category " + QByteArray::number(category) + ", sub-type " + TPMOD.toHex() + ", payload "
              + payload.toHex() + ": announced " + describe(heard) + " and not " + describe(expected));
}

void TestHostilePayloads::beginsWithWhatTheTableBeginsWith()
{
    compareStored("at the start");
}

void TestHostilePayloads::announcesWhatTheTableGives_data()
{
    QTest::addColumn<int>("category");
    QTest::newRow("screens info") << 0x02;
    QTest::newRow("climate") << 0x03;
    QTest::newRow("gauges") << 0x04;
    QTest::newRow("vehicle") << 0x05;
    QTest::newRow("parking assist") << 0x06;
    QTest::newRow("text screen") << 0x11;
}

void TestHostilePayloads::announcesWhatTheTableGives()
{
    QFETCH(int, category);
    QList<int> mods {0x7F, 0x80, 0x9F, 0xFF};
    for (int mod = 0; mod < kSubTypesEach; ++mod)
        mods += mod;
    if (isFacades(category))
        mods = {0, 0xFF};
    for (const int mod : qAsConst(mods)) {
        for (int length = 0; length <= minimumOf(category, mod) + 2; ++length)
            sendAll(category, mod, length);
        for (const int length : {32, 33, 100, 2000})
            sendAll(category, mod, length);
        if (QTest::currentTestFailed())
            return;
    }
    // A sub-type of no byte reads as 0, and of several the first one counts.
    send(category, QByteArray(), randomBytes(20));
    send(category, QByteArray("\x01\x02"), randomBytes(20));
}

void TestHostilePayloads::sendAll(int category, int mod, int length)
{
    const QByteArray TPMOD(1, char(mod));
    for (const quint8 content : kContents) {
        // Twice: the second one is no change.
        send(category, TPMOD, QByteArray(length, char(content)));
        send(category, TPMOD, QByteArray(length, char(content)));
    }
    const int contents = length > 100 ? kRandomContents / 16 : kRandomContents;
    for (int i = 0; i < contents; ++i)
        send(category, TPMOD, randomBytes(length));
}

void TestHostilePayloads::turnsTransitionsIntoTouchesOnly()
{
    static const QMap<int, int> touches {{1, 83}, {2, 81}, {3, 82}, {4, 84}};
    m_heard->takeTouches();
    for (const int length : {0, 1, 2, 100, 2000}) {
        for (int code = 0; code < 256; ++code) {
            send(0x07, QByteArray(1, '\0'), QByteArray(length, char(code)));
            const QList<int> expected =
                length > 0 && touches.contains(code) ? QList<int> {touches.value(code)} : QList<int>();
            QCOMPARE(m_heard->takeTouches(), expected);
        }
    }
}

void TestHostilePayloads::answersVersionsAsTheTableGives_data()
{
    QTest::addColumn<int>("mod");
    for (const int mod : {0, 1, 2, 3, 4, 5, 6, 7, 8, 0x7F, 0x80, 0x9F, 0xFF})
        QTest::newRow(qPrintable(QStringLiteral("sub-type %1").arg(mod, 2, 16, QChar('0')))) << mod;
}

void TestHostilePayloads::answersVersionsAsTheTableGives()
{
    QFETCH(int, mod);
    HandDrivenProtocol protocol;
    for (const int length : {0, 1, 2, 3, 4, 100, 2000}) {
        for (const quint8 content : kContents)
            sendVersion(protocol, mod, QByteArray(length, char(content)));
        for (int i = 0; i < 20; ++i) {
            // An escape before a 03 ends the frame there; that has tests of its own.
            QByteArray payload = randomBytes(length).replace('\x03', '\x04');
            if (length > 1 && i % 2 == 0)
                payload[1] = char(i % 3);
            sendVersion(protocol, mod, payload);
        }
    }
    const QStringList ready = protocol.passOver(bytes("9f 02 35 01 00 00 01 35 9f 03"));
    QCOMPARE(ready, kVersionRows[1].events);
}

void TestHostilePayloads::sendVersion(HandDrivenProtocol &protocol, int mod, const QByteArray &payload)
{
    const QByteArray frame = versionFrame(mod, payload);
    if (frame.endsWith(bytes("9f 9f 03 9f 03")))
        return;
    const VersionRow &row = versionRow(payload, frame.size());
    const QByteArray what = frame.toHex();
    const QStringList events = protocol.passOver(frame);
    QVERIFY2(events == row.events, what + ": " + events.join(" / ").toUtf8());
    const QStringList answered = protocol.passOver(bytes(row.answer));
    QVERIFY2(answered == row.eventsOfAnswer, what + ", answered: " + answered.join(" / ").toUtf8());
    QVERIFY2(HandDrivenProtocol::buffer()->data.isEmpty(), what);
    protocol.log().clear();
    ++m_sent;
}

void TestHostilePayloads::storesWhatTheTableGives()
{
    compareStored("at the end");
    VelGaugesGroupCmd::instance()->onTimerOut();
    QVERIFY(m_heard->take() == m_items.throttled());
    VelVehicleGroupCmd::instance()->onTimerOut();
    QVERIFY(m_heard->take() == m_items.delayed());
    m_announced.insert(itemtable::rowOf("updateVehicleTireText"));
}

void TestHostilePayloads::compareStored(const char *when)
{
    VelClimateGroupCmd::instance()->getClimateInfo();
    VelGaugesGroupCmd::instance()->getGaugesInfo();
    VelVehicleGroupCmd::instance()->getVehicleInfo();
    VelParkingGroupCmd::instance()->getParkInfo();
    const itemtable::Announcements heard = m_heard->take();
    QCOMPARE(heard.size(), std::size_t(15 + 14 + 10 + 8));
    for (const itemtable::Announcement &each : heard) {
        const itemtable::Announcement expected {each.row, m_items.stored(each.row)};
        if (!(each == expected))
            QFAIL(QByteArray(when) + ": stored " + describe({each}) + " and not " + describe({expected}));
    }
}

void TestHostilePayloads::coversEverySignal()
{
    // Otherwise a row that never speaks would compare nothing with nothing.
    for (std::size_t i = 0; i < itemtable::allRows().size(); ++i)
        QVERIFY2(m_announced.count(int(i)) == 1, itemtable::allRows()[i].signal);
}

void TestHostilePayloads::hasSentEnough()
{
    QVERIFY2(m_sent >= kLeastPayloads, QByteArray::number(m_sent));
}

QTEST_GUILESS_MAIN(TestHostilePayloads)
#include "tst_hostilepayloads.moc"
