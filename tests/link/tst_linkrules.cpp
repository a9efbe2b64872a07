#include "announcementrules.h"
#include "figurerules.h"
#include "receivingrules.h"
#include "sendingrules.h"

#include <hexbytes.h>

#include <QtCore/QMetaProperty>
#include <QtTest/QTest>

#include <functional>

// Each rule of the whole link is broken here, and has to be the one that is named.

using canbus::LinkHealth;

namespace {

const QByteArray kOne = bytes("9f 02 50 93 00 12 01 00 d0 9f 03");
const QByteArray kTwo = bytes("9f 02 51 93 00 13 01 00 d0 9f 03");

struct Sending {
    Findings findings;
    WireCounts counts;
    SendingRules rules {findings, counts};

    void at(qint64 ms) { findings.setNow(ms); }

    /// A command that the library sends at once, as it must.
    void sendAt(qint64 ms, const QByteArray &frame)
    {
        at(ms);
        rules.commandGiven(frame);
        rules.frameWritten(frame);
    }

    void expireAt(qint64 ms)
    {
        at(ms);
        rules.timerExpired(SendingRules::Send);
    }

    /// Up to the moment at which it is to be given up.
    void sendThreeTimes()
    {
        sendAt(0, kOne);
        expireAt(300);
        rules.frameWritten(kOne);
        expireAt(600);
        rules.frameWritten(kOne);
        expireAt(900);
    }

    void end(LinkHealth::Fate fate, int transmissions, int ms)
    {
        rules.frameEnded(kOne, fate, transmissions, qint64(ms) * 1000);
    }

    /// The box has said that it is ready, and the check has gone out and was answered.
    void connect()
    {
        const QByteArray check = bytes("9f 02 40 01 00 00 01 40 9f 03");
        rules.readyRead(0x40);
        rules.frameWritten(check);
        rules.answerRead(true, 0x40);
        rules.frameEnded(check, LinkHealth::Fate::Acknowledged, 1, 0);
        rules.statusTold(true);
    }
};

struct Receiving {
    Findings findings;
    WireCounts counts;
    ReceivingRules rules {findings, counts};

    /// A good frame, taken as it must be.
    void takeGood()
    {
        receive("9f 02 50 03 05 01 02 55 9f 03");
        rules.notified({3, 5, bytes("01 02")});
        rules.answered(bytes("9f 06 50 50 9f 03"));
        rules.passEnds({});
    }

    void receive(const char *hex)
    {
        rules.arrive(bytes(hex));
        rules.passBegins();
    }
};

const char kGood[] = "9f 02 50 03 05 01 02 55 9f 03";
// Its payload is 9f 03: the head unit ends it at the first 03.
const char kEndInside[] = "9f 02 50 03 05 9f 9f 03 ca 9f 03";
const char kBad[] = "9f 02 50 03 05 01 02 56 9f 03";

using BreakSending = std::function<void(Sending &)>;
using BreakReceiving = std::function<void(Receiving &)>;

} // namespace

Q_DECLARE_METATYPE(BreakSending)
Q_DECLARE_METATYPE(BreakReceiving)

class LinkRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sendingAsItMustBreaksNoRule();
    void brokenSendingIsNamed_data();
    void brokenSendingIsNamed();
    void aRefusedCheckIsRemembered();
    void receivingAsItMustBreaksNoRule();
    void comparesAgainOnceTheLineIsQuiet();
    void brokenReceivingIsNamed_data();
    void brokenReceivingIsNamed();
    void wrongAnnouncementsAreNamed();
    void repeatedConnectStatusIsNamed();
    void eachWrongFigureIsNamed();

private:
    static void addLimits();
    static void addTimes();
    static void addReports();
};

void LinkRulesTest::sendingAsItMustBreaksNoRule()
{
    Sending sending;
    sending.connect();
    sending.sendThreeTimes();
    sending.end(LinkHealth::Fate::GivenUp, 3, 900);
    sending.rules.statusTold(false);
    sending.rules.settled();
    QCOMPARE(sending.findings.text(), QString());
}

void LinkRulesTest::addLimits()
{
    const auto add = [](const char *name, const QByteArray &rule, const BreakSending &breaks) {
        QTest::newRow(name) << rule << breaks;
    };
    add("a command is refused by a cache with room", "commands never grow the cache past 65", [](Sending &s) {
        s.at(0);
        s.rules.commandGiven(kOne);
        s.end(LinkHealth::Fate::NotAccepted, 0, 0);
    });
    add("a 66th command is taken", "commands never grow the cache past 65", [](Sending &s) {
        for (int i = 0; i < 65; ++i)
            s.sendAt(0, kOne);
        s.rules.commandGiven(kOne);
        s.rules.settled();
    });
    add("a 66th command sends the first again", "commands never grow the cache past 65", [](Sending &s) {
        for (int i = 0; i < 65; ++i)
            s.sendAt(0, kOne);
        s.rules.commandGiven(kOne);
        s.rules.frameWritten(kOne);
    });
    add("a frame that nobody gave is sent", "only the head of the cache is on the wire",
        [](Sending &s) { s.rules.frameWritten(kOne); });
    add("a frame that waits is sent", "first in, first out", [](Sending &s) {
        s.sendAt(0, kOne);
        s.rules.commandGiven(kTwo);
        s.rules.frameWritten(kTwo);
    });
    add("a frame that waits is answered", "first in, first out", [](Sending &s) {
        s.sendAt(0, kTwo);
        s.rules.commandGiven(kOne);
        s.rules.frameWritten(kTwo);
        s.end(LinkHealth::Fate::Acknowledged, 1, 0);
    });
    add("an answer with another id takes a frame off", "an answer with a foreign id changes nothing",
        [](Sending &s) {
            s.sendAt(0, kOne);
            s.rules.answerRead(true, 0x51);
            s.end(LinkHealth::Fate::Acknowledged, 1, 0);
        });
    add("an answer takes nothing off", "a frame leaves by an answer with its id", [](Sending &s) {
        s.sendAt(0, kOne);
        s.rules.answerRead(false, 0x50);
        s.rules.settled();
    });
    add("a frame is given up after two transmissions", "after at least three transmissions", [](Sending &s) {
        s.sendAt(0, kOne);
        s.expireAt(300);
        s.rules.frameWritten(kOne);
        s.end(LinkHealth::Fate::GivenUp, 2, 300);
    });
    add("the next frame is not sent", "the next frame follows the answer at once", [](Sending &s) {
        s.sendAt(0, kOne);
        s.rules.commandGiven(kTwo);
        s.rules.frameWritten(kOne);
        s.rules.answerRead(true, 0x50);
        s.end(LinkHealth::Fate::Acknowledged, 2, 0);
        s.rules.settled();
    });
}

void LinkRulesTest::addTimes()
{
    const char *const pace = "a frame is sent at 0, 300 and 600 ms and gone at 900 ms";
    const auto add = [](const char *name, const QByteArray &rule, const BreakSending &breaks) {
        QTest::newRow(name) << rule << breaks;
    };
    add("a frame is sent early", pace, [](Sending &s) {
        s.sendAt(0, kOne);
        s.expireAt(290);
    });
    add("a frame is sent again for nothing", pace, [](Sending &s) {
        s.sendAt(0, kOne);
        s.rules.frameWritten(kOne);
    });
    add("a frame is not sent again", pace, [](Sending &s) {
        s.sendAt(0, kOne);
        s.at(310);
        s.rules.settled();
    });
    add("a frame is sent a fourth time", pace, [](Sending &s) {
        s.sendThreeTimes();
        s.rules.frameWritten(kOne);
    });
    add("a new frame sends nothing", "each new frame sends the head at once", [](Sending &s) {
        s.rules.commandGiven(kOne);
        s.rules.settled();
    });
    add("a frame waits for ever", "every command ends in bounded time", [](Sending &s) {
        s.sendAt(0, kOne);
        s.at(5000);
        s.rules.settled();
    });
    add("no connect request comes", "connect requests come every 2 s", [](Sending &s) {
        s.at(2010);
        s.rules.settled();
    });
    add("a connect request comes early after a loss", "2 s after the last loss", [](Sending &s) {
        s.connect();
        s.sendThreeTimes();
        s.end(LinkHealth::Fate::GivenUp, 3, 900);
        s.rules.statusTold(false);
        s.at(2000);
        s.rules.timerExpired(SendingRules::RequestConnect);
    });
    add("a connect request comes while connected", "connect requests come every 2 s", [](Sending &s) {
        s.connect();
        s.at(2000);
        s.rules.timerExpired(SendingRules::RequestConnect);
    });
    add("no connection check comes", "connection checks come every 15 s", [](Sending &s) {
        s.connect();
        s.at(15010);
        s.rules.settled();
    });
}

void LinkRulesTest::addReports()
{
    const auto add = [](const char *name, const QByteArray &rule, const BreakSending &breaks) {
        QTest::newRow(name) << rule << breaks;
    };
    add("up is told for nothing", "up is told only of an ACK with the connection id",
        [](Sending &s) { s.rules.statusTold(true); });
    add("up is told of a NACK", "up is told only of an ACK with the connection id", [](Sending &s) {
        s.rules.readyRead(0x40);
        s.rules.frameWritten(bytes("9f 02 40 01 00 00 01 40 9f 03"));
        s.rules.answerRead(false, 0x40);
        s.rules.frameEnded(bytes("9f 02 40 01 00 00 01 40 9f 03"), LinkHealth::Fate::Refused, 1, 0);
        s.rules.statusTold(true);
    });
    add("up is not told", "up is told only of an ACK with the connection id", [](Sending &s) {
        s.connect();
        s.rules.answerRead(true, 0x40);
        s.rules.settled();
    });
    add("down is told in the handshake", "down is told exactly when a frame is given up", [](Sending &s) {
        s.at(2000);
        s.rules.timerExpired(SendingRules::RequestConnect);
        s.rules.frameWritten(bytes("9f 02 21 01 00 00 00 20 9f 03"));
        s.rules.statusTold(false);
    });
    add("down is not told", "down is told exactly when a frame is given up", [](Sending &s) {
        s.connect();
        s.sendThreeTimes();
        s.end(LinkHealth::Fate::GivenUp, 3, 900);
        s.rules.settled();
    });
    add("a wrong number of transmissions is told", "an end is told with its transmissions", [](Sending &s) {
        s.sendThreeTimes();
        s.end(LinkHealth::Fate::GivenUp, 4, 900);
    });
    add("a wrong time is told", "an end is told with its transmissions and its time", [](Sending &s) {
        s.sendThreeTimes();
        s.end(LinkHealth::Fate::GivenUp, 3, 899);
    });
}

void LinkRulesTest::brokenSendingIsNamed_data()
{
    QTest::addColumn<QByteArray>("rule");
    QTest::addColumn<BreakSending>("breaks");
    addLimits();
    addTimes();
    addReports();
}

void LinkRulesTest::brokenSendingIsNamed()
{
    QFETCH(QByteArray, rule);
    QFETCH(BreakSending, breaks);
    Sending sending;
    breaks(sending);
    QVERIFY2(sending.findings.text().contains(QString::fromLatin1(rule)),
             qPrintable(sending.findings.text()));
}

void LinkRulesTest::aRefusedCheckIsRemembered()
{
    const QByteArray check = bytes("9f 02 9f9f 01 00 00 01 9f9f 9f 03");
    Sending sending;
    sending.rules.readyRead(0x9f);
    sending.rules.frameWritten(check);
    QVERIFY(!sending.rules.isCheckRefused());
    sending.rules.answerRead(false, 0x9f);
    sending.rules.frameEnded(check, LinkHealth::Fate::Refused, 1, 0);
    QVERIFY(sending.rules.isCheckRefused());
    // A refused command is no refused check, and an accepted one none that was accepted.
    sending.sendAt(0, kOne);
    sending.rules.answerRead(true, 0x50);
    sending.end(LinkHealth::Fate::Acknowledged, 1, 0);
    QVERIFY(sending.rules.isCheckRefused());
    sending.connect();
    QVERIFY(!sending.rules.isCheckRefused());
    sending.sendAt(0, kOne);
    sending.rules.answerRead(false, 0x50);
    sending.end(LinkHealth::Fate::Refused, 1, 0);
    QVERIFY(!sending.rules.isCheckRefused());
    sending.rules.settled();
    QCOMPARE(sending.findings.text(), QString());
}

void LinkRulesTest::comparesAgainOnceTheLineIsQuiet()
{
    Receiving receiving;
    receiving.rules.expectWellFormed(true);
    receiving.takeGood();
    receiving.receive(kEndInside);
    receiving.rules.passEnds(bytes("ca 9f 03"));
    QCOMPARE(receiving.counts.comparisonsStopped, 1U);
    receiving.takeGood();
    QCOMPARE(receiving.counts.wellFormedTaken, 1U);
    receiving.takeGood();
    QCOMPARE(receiving.counts.wellFormedTaken, 2U);
    QCOMPARE(receiving.rules.checkWellFormed(), 2);
    QCOMPARE(receiving.findings.text(), QString());
    receiving.rules.arrive(bytes(kGood));
    receiving.rules.checkWellFormed();
    QVERIFY2(receiving.findings.text().contains("was not taken"), qPrintable(receiving.findings.text()));
}

void LinkRulesTest::receivingAsItMustBreaksNoRule()
{
    Receiving receiving;
    receiving.rules.expectWellFormed(true);
    receiving.receive(kGood);
    receiving.rules.notified({3, 5, bytes("01 02")});
    receiving.rules.answered(bytes("9f 06 50 50 9f 03"));
    receiving.rules.passEnds({});
    receiving.rules.expectWellFormed(false);
    receiving.receive(kBad);
    receiving.rules.passEnds({});
    receiving.rules.settled();
    QCOMPARE(receiving.findings.text(), QString());
}

void LinkRulesTest::brokenReceivingIsNamed_data()
{
    QTest::addColumn<QByteArray>("rule");
    QTest::addColumn<BreakReceiving>("breaks");
    const auto add = [](const char *name, const QByteArray &rule, const BreakReceiving &breaks) {
        QTest::newRow(name) << rule << breaks;
    };
    const QByteArray ack = bytes("9f 06 50 50 9f 03");
    const ReceivingRules::Notified told {3, 5, bytes("01 02")};
    add("a good frame is not told", "decoded once", [=](Receiving &r) {
        r.receive(kGood);
        r.rules.answered(ack);
        r.rules.passEnds({});
    });
    add("a good frame is told twice", "decoded once", [=](Receiving &r) {
        r.receive(kGood);
        r.rules.notified(told);
        r.rules.notified(told);
        r.rules.passEnds({});
    });
    add("another content is told", "decoded once", [=](Receiving &r) {
        r.receive(kGood);
        r.rules.notified({3, 5, bytes("01 03")});
        r.rules.passEnds({});
    });
    add("a good frame is not acknowledged", "acknowledged once", [=](Receiving &r) {
        r.receive(kGood);
        r.rules.notified(told);
        r.rules.passEnds({});
    });
    add("a good frame is acknowledged twice", "acknowledged once", [=](Receiving &r) {
        r.receive(kGood);
        r.rules.notified(told);
        r.rules.answered(ack);
        r.rules.answered(ack);
        r.rules.passEnds({});
    });
    add("a bad frame is acknowledged", "a bad check byte gives no answer", [=](Receiving &r) {
        r.receive(kBad);
        r.rules.answered(ack);
        r.rules.passEnds({});
    });
    add("a bad frame is told", "a bad check byte gives no answer and no signal", [=](Receiving &r) {
        r.receive(kBad);
        r.rules.notified(told);
        r.rules.passEnds({});
    });
    add("no NACK goes out", "while a closing mark is awaited", [=](Receiving &r) {
        r.receive("9f 02 50 03 05 01 02 55 9f");
        r.rules.passEnds(bytes("9f 02 50 03 05 01 02 55 9f"));
    });
    add("a frame stays in the buffer", "a pass takes one frame", [=](Receiving &r) {
        r.receive(kGood);
        r.rules.passEnds(bytes(kGood));
    });
    add("a well-formed frame is taken for another", "well-formed frames are taken in order",
        [=](Receiving &r) {
            r.rules.expectWellFormed(true);
            r.receive("9f 06 50 50 9f 03");
            r.rules.passEnds({});
            r.rules.arrive(bytes(kGood));
            r.rules.checkWellFormed();
        });
    add("an answer goes out between the passes", "between the passes", [=](Receiving &r) {
        r.rules.answered(ack);
        r.rules.settled();
    });
    add("the loop-back reply is missing", "loop-back", [=](Receiving &r) {
        r.receive("31 32");
        r.rules.settled();
    });
    add("the loop-back reply comes for nothing", "loop-back",
        [=](Receiving &r) { r.rules.textWritten("716151413121"); });
}

void LinkRulesTest::brokenReceivingIsNamed()
{
    QFETCH(QByteArray, rule);
    QFETCH(BreakReceiving, breaks);
    Receiving receiving;
    breaks(receiving);
    QVERIFY2(receiving.findings.text().contains(QString::fromLatin1(rule)),
             qPrintable(receiving.findings.text()));
}

void LinkRulesTest::wrongAnnouncementsAreNamed()
{
    using Climate = canbus::VelClimateGroupCmd;
    using Gauges = canbus::VelGaugesGroupCmd;
    const QByteArray gauges = bytes("01 02 03 04 05 06 07 08 09 0a 0b 0c 00 00");
    const QVector<QPair<const char *, std::function<void(AnnouncementRules &)>>> wrong {
        {"an item is announced when it changes", [](auto &rules) { rules.frameTaken(3, 0, bytes("05 41")); }},
        {"an item is announced when it changes",
         [](auto &rules) {
             Q_EMIT Climate::instance()->updateClimateTopText("A");
             rules.frameTaken(3, 7, bytes("05 41"));
         }},
        {"between frames nothing is announced",
         [](auto &rules) {
             Q_EMIT Climate::instance()->updateClimateType(5);
             rules.timePassed();
         }},
        {"a screens transition becomes one touch", [](auto &rules) { rules.frameTaken(7, 0, bytes("01")); }},
        {"at once and 300 ms later",
         [&](auto &rules) {
             Q_EMIT Gauges::instance()->updateGaugeShift(true);
             rules.frameTaken(4, 7, gauges);
         }},
    };
    for (const auto &each : wrong) {
        Findings findings;
        WireCounts counts;
        AnnouncementRules rules(findings, counts);
        each.second(rules);
        QVERIFY2(findings.text().contains(each.first), qPrintable(findings.text()));
    }
}

void LinkRulesTest::repeatedConnectStatusIsNamed()
{
    const QVector<std::function<void(AnnouncementRules &)>> wrong {
        [](AnnouncementRules &rules) { rules.connectStatusHeard(false); },
        [](AnnouncementRules &rules) {
            rules.statusTold(true);
            rules.settled();
        },
    };
    for (const auto &breaks : wrong) {
        Findings findings;
        WireCounts counts;
        AnnouncementRules rules(findings, counts);
        breaks(rules);
        QVERIFY2(findings.text().contains("canbusConnectStatus"), qPrintable(findings.text()));
    }
}

void LinkRulesTest::eachWrongFigureIsNamed()
{
    const QMetaObject &type = canbus::LinkFigures::staticMetaObject;
    for (int i = 0; i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        canbus::LinkFigures figures;
        QVariant value = 1U;
        WireCounts counts;
        counts.timedAnswers = 1;
        if (property.userType() == QMetaType::QVariantMap)
            value = QVariantMap {{property.name(), QVariantMap {{"frames", 1}}}};
        QVERIFY(property.writeOnGadget(&figures, value));
        Findings findings;
        checkFigures(figures, counts, findings);
        QVERIFY2(findings.text().contains(property.name()), property.name());
    }
}

QTEST_GUILESS_MAIN(LinkRulesTest)
#include "tst_linkrules.moc"
