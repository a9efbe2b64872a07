#include "boxsim/box.h"

#include "hexbytes.h"

#include <QtTest/QtTest>

using boxsim::Box;
using boxsim::BoxOptions;
using boxsim::Event;
using boxsim::Output;

namespace {

const char kConnectRequest[] = "9f 02 21 01 00 00 00 20 9f 03";
const char kAckOfRequest[] = "9f 06 21 21 9f 03";
const char kAcButton[] = "9f 02 52 93 00 12 01 00 d2 9f 03";

QString hexId(int id)
{
    return id < 0 ? QStringLiteral("none") : QString::number(id, 16);
}

QString text(const Event &event)
{
    const QString reason = event.reason.isEmpty() ? QString() : QStringLiteral(": ") + event.reason;
    switch (event.kind) {
    case Event::Kind::Command:
        return boxsim::toText(event.command) + QLatin1String(event.repeated ? " again" : "");
    case Event::Kind::Ack:
        return QStringLiteral("ack ") + hexId(event.id) + reason;
    case Event::Kind::Nack:
        return QStringLiteral("nack ") + hexId(event.id);
    case Event::Kind::BadFrame:
        return QStringLiteral("bad frame") + reason;
    case Event::Kind::Resend:
        return QStringLiteral("resend ") + hexId(event.id);
    case Event::Kind::GiveUp:
        return QStringLiteral("give up ") + hexId(event.id);
    case Event::Kind::LinkUp:
        return QStringLiteral("link up");
    case Event::Kind::LinkDown:
        return QStringLiteral("link down");
    case Event::Kind::Silent:
        return QStringLiteral("silent");
    }
    return {};
}

BoxOptions withoutDrive()
{
    BoxOptions options;
    options.drive = false;
    return options;
}

/// A box whose writes and events are collected until they are taken.
class Bench {
public:
    explicit Bench(const BoxOptions &options = withoutDrive())
        : box(options)
    {
    }

    void receive(qint64 nowMs, const char *hex) { collect(box.receive(bytes(hex), nowMs)); }
    void advance(qint64 nowMs) { collect(box.advance(nowMs)); }

    /// Passes the time in steps of a millisecond.
    void run(qint64 fromMs, qint64 toMs)
    {
        for (qint64 now = fromMs; now <= toMs; ++now)
            advance(now);
    }

    /// What was written since the last call, a line for each block, without the time.
    QStringList writes() { return std::exchange(m_writes, {}); }

    QStringList events() { return std::exchange(m_events, {}); }

    /// Handshake at 0 ms and whole state acknowledged: at 200 ms the line is quiet.
    void connectAndSettle()
    {
        receive(0, kConnectRequest);
        receive(100, "9f 06 40 40 9f 03  9f 02 40 01 00 00 01 40 9f 03");
        receive(110, "9f 06 50 50 9f 03");
        advance(130);
        receive(140, "9f 06 51 51 9f 03");
        advance(160);
        receive(170, "9f 06 52 52 9f 03");
        advance(200);
        m_writes.clear();
        m_events.clear();
    }

    Box box;

private:
    void collect(const Output &output)
    {
        for (const QByteArray &block : output.writes)
            m_writes.append(QString::fromLatin1(block.toHex(' ')));
        for (const Event &event : output.events)
            m_events.append(text(event));
    }

    QStringList m_writes;
    QStringList m_events;
};

QString wire(const char *hex)
{
    return QString::fromLatin1(bytes(hex).toHex(' '));
}

/// The climate state of a box without a drive: all zero, on the wire with this id.
QString zeroState(const char *id, const char *check)
{
    return wire((QByteArray("9f 02 ") + id + " 03 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 " + check
                 + " 9f 03")
                    .constData());
}

} // namespace

class TestBoxsimBox : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answersAConnectRequestWithReady();
    void saysNotReadyAsOftenAsItIsTold();
    void answersAConnectRequestThatComesBeforeTheAcknowledgement();
    void sendsNothingBeforeTheHeadUnitHasConnected();
    void bringsTheLinkUpWithTheConnectionCheckAndSendsItsState();
    void acknowledgesEachConnectionCheck();
    void beginsAnewWithAConnectRequest();
    void sendsOneFrameAtATime();
    void leavesTheHeadUnitTimeBetweenFrames();
    void resendsTwiceAndGivesUp();
    void comesBackWithAConnectionCheckAfterGivingUp();
    void stopsResendingWhenAcknowledged();
    void takesNoOtherIdForAnAcknowledgement();
    void keepsItsFrameUnderWayWhenItIsRefused();
    void acknowledgesWhatItDoesNotKnow();
    void doublesTheIdInTheAcknowledgementOf9F();
    void doesNotAnswerABadFrame();
    void carriesOutAButtonAndReportsTheState();
    void carriesOutARetransmissionOnce();
    void carriesOutTheSameButtonAgainWhenItsIdIsNew();
    void carriesOutTheSameBytesAgainAfterTheRetransmissionTime();
    void answersAButtonThatChangesNothing();
    void sendsThreePagesOnRequest();
    void sendsOnlyTheNewestOfAWaitingState();
    void usesEightIdsInTurn();
    void sendsWhatWasSetAndNothingElse();
    void fallsSilent();
    void followsTheDrive();
    void keepsWhatAButtonChangedUntilTheDriveChangesIt();
    void readsTheHandshakeHoweverItIsCut();
    void tellsWhoseIdACommandCarries();
};

void TestBoxsimBox::answersAConnectRequestWithReady()
{
    Bench bench;
    bench.receive(0, kConnectRequest);

    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 40 01 00 00 01 40 9f 03")}));
    QCOMPARE(bench.events(), QStringList {"connection.request"});
    QVERIFY(!bench.box.isLinkUp());
}

void TestBoxsimBox::saysNotReadyAsOftenAsItIsTold()
{
    BoxOptions options = withoutDrive();
    options.notReadyReplies = 2;
    Bench bench(options);

    bench.receive(0, kConnectRequest);
    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 40 01 00 00 00 41 9f 03")}));
    bench.receive(2000, kConnectRequest);
    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 41 01 00 00 00 40 9f 03")}));
    bench.receive(4000, kConnectRequest);
    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 42 01 00 00 01 42 9f 03")}));
}

void TestBoxsimBox::answersAConnectRequestThatComesBeforeTheAcknowledgement()
{
    BoxOptions options = withoutDrive();
    options.notReadyReplies = 1;
    Bench bench(options);
    bench.receive(0, kConnectRequest);
    bench.writes();

    bench.receive(10, "9f 02 21 01 00 00 00 20 9f 03  9f 06 40 40 9f 03");
    bench.advance(20);

    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 41 01 00 00 01 41 9f 03")}));
}

void TestBoxsimBox::sendsNothingBeforeTheHeadUnitHasConnected()
{
    Bench bench {BoxOptions()};

    bench.run(0, 5000);
    QCOMPARE(bench.writes(), QStringList());

    bench.receive(5000, "9f 02 00 93 00 12 01 00 80 9f 03");
    bench.run(5001, 6000);
    QCOMPARE(bench.writes(), QStringList {wire("9f 06 00 00 9f 03")});
}

void TestBoxsimBox::bringsTheLinkUpWithTheConnectionCheckAndSendsItsState()
{
    Bench bench;
    bench.receive(0, kConnectRequest);
    bench.writes();
    bench.events();

    bench.receive(100, "9f 06 40 40 9f 03  9f 02 40 01 00 00 01 40 9f 03");
    QVERIFY(bench.box.isLinkUp());
    QCOMPARE(bench.events(), QStringList({"ack 40", "connection.check", "link up"}));
    QCOMPARE(bench.writes(), QStringList({wire("9f 06 40 40 9f 03"), wire("9f 02 50 03 00 00 00 53 9f 03")}));

    bench.receive(120, "9f 06 50 50 9f 03");
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 51 03 01 53 9f 03")});
    bench.receive(140, "9f 06 51 51 9f 03");
    QCOMPARE(bench.writes(), QStringList {zeroState("52", "53")});
    bench.receive(160, "9f 06 52 52 9f 03");
    bench.run(161, 5000);
    QCOMPARE(bench.writes(), QStringList());
}

void TestBoxsimBox::acknowledgesEachConnectionCheck()
{
    Bench bench;
    bench.connectAndSettle();

    for (const qint64 now : {15100, 30100, 45100}) {
        bench.receive(now, "9f 02 40 01 00 00 01 40 9f 03");
        QCOMPARE(bench.writes(), QStringList {wire("9f 06 40 40 9f 03")});
        QCOMPARE(bench.events(), QStringList {"connection.check"});
    }
}

void TestBoxsimBox::beginsAnewWithAConnectRequest()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(300, "9f 02 52 97 00 01 c4 9f 03");
    bench.writes();
    bench.events();

    bench.receive(400, kConnectRequest);
    bench.run(401, 650);

    QVERIFY(!bench.box.isLinkUp());
    QCOMPARE(bench.events(), QStringList({"connection.request", "link down"}));
    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 41 01 00 00 01 41 9f 03")}));
}

void TestBoxsimBox::sendsOneFrameAtATime()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(300, "9f 02 52 97 00 01 c4 9f 03");
    bench.run(301, 599);
    QCOMPARE(bench.writes(), QStringList({wire("9f 06 52 52 9f 03"), wire("9f 02 53 03 00 00 00 50 9f 03")}));

    bench.receive(599, "9f 06 53 53 9f 03");
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 54 03 01 56 9f 03")});
}

void TestBoxsimBox::leavesTheHeadUnitTimeBetweenFrames()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(300, "9f 02 52 97 00 01 c4 9f 03");
    bench.writes();

    bench.receive(301, "9f 06 53 53 9f 03");
    bench.run(302, 319);
    QCOMPARE(bench.writes(), QStringList());
    QCOMPARE(bench.box.dueMs(), qint64(320));
    bench.advance(320);
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 54 03 01 56 9f 03")});
}

void TestBoxsimBox::resendsTwiceAndGivesUp()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    const QString frame = wire("9f 02 53 03 02 00 00 00 00 00 01 00 00 00 00 00 00 00 00 00 53 9f 03");
    QCOMPARE(bench.writes(), QStringList({wire("9f 06 52 52 9f 03"), frame}));
    bench.events();

    bench.run(1001, 1299);
    QCOMPARE(bench.writes(), QStringList());
    bench.advance(1300);
    QCOMPARE(bench.writes(), QStringList {frame});
    bench.run(1301, 1599);
    QCOMPARE(bench.writes(), QStringList());
    bench.advance(1600);
    QCOMPARE(bench.writes(), QStringList {frame});
    QCOMPARE(bench.events(), QStringList({"resend 53", "resend 53"}));
    bench.run(1601, 1899);
    QVERIFY(bench.box.isLinkUp());
    bench.run(1900, 9000);
    QCOMPARE(bench.writes(), QStringList());
    QCOMPARE(bench.events(), QStringList({"give up 53", "link down"}));
}

void TestBoxsimBox::comesBackWithAConnectionCheckAfterGivingUp()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.run(1001, 2000);
    bench.writes();
    bench.events();

    bench.receive(15100, "9f 02 40 01 00 00 01 40 9f 03");

    QCOMPARE(bench.events(), QStringList({"connection.check", "link up"}));
    QCOMPARE(bench.writes(), QStringList({wire("9f 06 40 40 9f 03"), wire("9f 02 54 03 00 00 00 57 9f 03")}));
}

void TestBoxsimBox::stopsResendingWhenAcknowledged()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.advance(1300);
    bench.writes();
    bench.events();

    bench.receive(1310, "9f 06 53 53 9f 03");
    bench.run(1311, 5000);

    QCOMPARE(bench.writes(), QStringList());
    QCOMPARE(bench.events(), QStringList {"ack 53"});
}

void TestBoxsimBox::takesNoOtherIdForAnAcknowledgement()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.writes();
    bench.events();

    bench.receive(1010, "9f 06 52 52 9f 03  9f 06 9f 03");
    bench.advance(1300);

    QCOMPARE(bench.writes().size(), 1);
    QCOMPARE(bench.events(),
             QStringList({"ack 52: no frame with this id is under way",
                          "ack none: no frame with this id is under way", "resend 53"}));
}

void TestBoxsimBox::keepsItsFrameUnderWayWhenItIsRefused()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.writes();
    bench.events();

    bench.receive(1010, "9f 15 53 53 9f 03  9f 15 9f 03");
    QCOMPARE(bench.events(), QStringList({"nack 53", "nack none"}));
    bench.run(1011, 1299);
    QCOMPARE(bench.writes(), QStringList());
    bench.advance(1300);
    QCOMPARE(bench.events(), QStringList {"resend 53"});
    bench.receive(1310, "9f 06 53 53 9f 03");
    QCOMPARE(bench.events(), QStringList {"ack 53"});
}

void TestBoxsimBox::acknowledgesWhatItDoesNotKnow()
{
    Bench bench;
    bench.receive(0, "9f 02 21 55 00 01 75 9f 03");

    QCOMPARE(bench.writes(), QStringList {wire("9f 06 21 21 9f 03")});
    QCOMPARE(bench.events(), QStringList {"unknown tp=55 mod=00 data=01"});
}

void TestBoxsimBox::doublesTheIdInTheAcknowledgementOf9F()
{
    Bench bench;
    bench.receive(0, "9f 02 9f9f 97 00 01 09 9f 03");

    QCOMPARE(bench.writes(), QStringList {wire("9f 06 9f9f 9f9f 9f 03")});
}

void TestBoxsimBox::doesNotAnswerABadFrame()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, "9f 02 52 93 00 12 01 00 d3 9f 03");

    QCOMPARE(bench.writes(), QStringList());
    QCOMPARE(bench.events(), QStringList {"bad frame: the check byte is d3, not d2"});
    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 0);
}

void TestBoxsimBox::carriesOutAButtonAndReportsTheState()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, "9f 02 52 93 00 1b 01 9f9f 44 9f 03");

    QCOMPARE(bench.events(), QStringList {"climate.manualTemp press=true value=159"});
    QCOMPARE(bench.writes(),
             QStringList({wire("9f 06 52 52 9f 03"),
                          wire("9f 02 53 03 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 9f9f cd 9f 03")}));
}

void TestBoxsimBox::carriesOutARetransmissionOnce()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, kAcButton);
    bench.receive(1010, "9f 06 53 53 9f 03");
    bench.receive(1300, kAcButton);
    bench.receive(1600, kAcButton);

    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 1);
    QCOMPARE(
        bench.events(),
        QStringList({"climate.acBtn press=true value=0", "ack 53", "climate.acBtn press=true value=0 again",
                     "climate.acBtn press=true value=0 again"}));
    QCOMPARE(bench.writes().filter(wire("9f 06 52 52 9f 03")).size(), 3);
}

void TestBoxsimBox::carriesOutTheSameButtonAgainWhenItsIdIsNew()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, kAcButton);
    bench.receive(1050, "9f 06 53 53 9f 03  9f 02 53 93 00 12 01 00 d3 9f 03");

    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 0);
}

void TestBoxsimBox::carriesOutTheSameBytesAgainAfterTheRetransmissionTime()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, kAcButton);
    bench.receive(1010, "9f 06 53 53 9f 03");
    bench.receive(1899, kAcButton);
    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 1);
    bench.receive(2799, kAcButton);
    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 0);
}

void TestBoxsimBox::answersAButtonThatChangesNothing()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, "9f 02 52 93 00 02 00 00 c3 9f 03");

    QCOMPARE(bench.events(), QStringList {"climate.rearZone press=false value=0"});
    QCOMPARE(bench.writes(), QStringList({wire("9f 06 52 52 9f 03"), zeroState("53", "52")}));
}

void TestBoxsimBox::sendsThreePagesOnRequest()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, "9f 02 52 97 00 01 c4 9f 03");
    bench.receive(1020, "9f 06 53 53 9f 03");
    bench.receive(1040, "9f 06 54 54 9f 03");

    QCOMPARE(bench.writes(),
             QStringList({wire("9f 06 52 52 9f 03"), wire("9f 02 53 03 00 00 00 50 9f 03"),
                          wire("9f 02 54 03 01 56 9f 03"), zeroState("55", "54")}));
}

void TestBoxsimBox::sendsOnlyTheNewestOfAWaitingState()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.receive(1010, "9f 02 52 93 00 1b 01 01 da 9f 03");
    bench.receive(1020, "9f 02 52 93 00 1b 01 02 d9 9f 03");
    bench.writes();

    bench.receive(1100, "9f 06 53 53 9f 03");
    QCOMPARE(bench.writes(),
             QStringList {wire("9f 02 54 03 02 00 00 00 00 00 01 00 00 00 00 00 00 00 00 02 56 9f 03")});
    bench.receive(1200, "9f 06 54 54 9f 03");
    QCOMPARE(bench.writes(), QStringList());
}

void TestBoxsimBox::usesEightIdsInTurn()
{
    Bench bench;
    QStringList ids;
    for (int i = 0; i < 9; ++i) {
        bench.receive(2000 * i, kConnectRequest);
        ids.append(bench.writes().at(1).mid(6, 2));
    }

    QCOMPARE(ids, QStringList({"40", "41", "42", "43", "44", "45", "46", "47", "40"}));
}

void TestBoxsimBox::sendsWhatWasSetAndNothingElse()
{
    Bench bench;
    bench.connectAndSettle();

    boxsim::ClimateState state = bench.box.climate();
    state.title = QStringLiteral("A");
    bench.box.setClimate(state);
    bench.advance(1000);
    bench.receive(1050, "9f 06 53 53 9f 03");
    bench.advance(1100);
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 53 03 00 00 41 00 11 9f 03")});

    state.labels = QStringList {"B"};
    bench.box.setClimate(state);
    bench.advance(2000);
    bench.receive(2050, "9f 06 54 54 9f 03");
    bench.advance(2100);
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 54 03 01 42 00 14 9f 03")});
}

void TestBoxsimBox::fallsSilent()
{
    BoxOptions options = withoutDrive();
    options.silentAfterMs = 1100;
    Bench bench(options);
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.writes();
    bench.events();

    QCOMPARE(bench.box.dueMs(), qint64(1100));
    bench.run(1099, 1500);
    bench.receive(1500, kConnectRequest);
    bench.run(1501, 3000);

    QCOMPARE(bench.writes(), QStringList());
    QCOMPARE(bench.events(), QStringList({"silent", "connection.request"}));
    QCOMPARE(bench.box.dueMs(), boxsim::kNever);
}

void TestBoxsimBox::followsTheDrive()
{
    Bench bench {BoxOptions()};
    bench.connectAndSettle();

    QCOMPARE(bench.box.dueMs(), qint64(1000));
    bench.run(201, 999);
    QCOMPARE(bench.writes(), QStringList());
    bench.advance(1000);

    const QStringList writes = bench.writes();
    QCOMPARE(writes.size(), 1);
    QVERIFY2(writes.at(0).startsWith("9f 02 53 03 "), qPrintable(writes.at(0)));
}

void TestBoxsimBox::keepsWhatAButtonChangedUntilTheDriveChangesIt()
{
    Bench bench {BoxOptions()};
    bench.connectAndSettle();
    bench.receive(500, "9f 02 52 93 00 1b 01 63 b8 9f 03");
    QCOMPARE(int(bench.box.climate().manualTemp), 0x63);

    bench.advance(1000);
    QCOMPARE(int(bench.box.climate().manualTemp), 0x63);
    bench.advance(2000);
    QCOMPARE(int(bench.box.climate().manualTemp), 31);
}

void TestBoxsimBox::readsTheHandshakeHoweverItIsCut()
{
    const QByteArray all = bytes("9f 02 21 01 00 00 00 20 9f 03  9f 06 40 40 9f 03");
    for (int cut = 0; cut <= all.size(); ++cut) {
        Box box(withoutDrive());
        Output first = box.receive(all.left(cut), 0);
        const Output second = box.receive(all.mid(cut), 1);

        QCOMPARE((first.events + second.events).size(), 2);
        QCOMPARE((first.writes + second.writes),
                 QVector<QByteArray>({bytes("9f 06 21 21 9f 03"), bytes("9f 02 40 01 00 00 01 40 9f 03")}));
    }
}

void TestBoxsimBox::tellsWhoseIdACommandCarries()
{
    Box box(withoutDrive());
    const Output output = box.receive(
        bytes("9f 02 57 92 00 00 c5 9f 03  9f 02 40 01 00 00 01 40 9f 03  9f 02 21 92 00 00 b3 9f 03"), 0);

    QCOMPARE(output.events.size(), 4);
    QCOMPARE(int(output.events.at(0).category), 3);
    QCOMPARE(int(output.events.at(1).category), 1);
    QCOMPARE(int(output.events.at(3).category), 0);
}

QTEST_GUILESS_MAIN(TestBoxsimBox)
#include "tst_boxsim_box.moc"
