#include "sendingrules.h"

#include <hexbytes.h>

#include <QtTest/QTest>

#include <functional>

// Each rule of what the library sends is broken here, and has to be the one that is named.

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

using BreakSending = std::function<void(Sending &)>;

} // namespace

Q_DECLARE_METATYPE(BreakSending)

class SendingRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sendingAsItMustBreaksNoRule();
    void brokenSendingIsNamed_data();
    void brokenSendingIsNamed();
    void aRefusedCheckIsRemembered();

private:
    static void addLimits();
    static void addTimes();
    static void addReports();
};

void SendingRulesTest::sendingAsItMustBreaksNoRule()
{
    Sending sending;
    sending.connect();
    sending.sendThreeTimes();
    sending.end(LinkHealth::Fate::GivenUp, 3, 900);
    sending.rules.statusTold(false);
    sending.rules.settled();
    QCOMPARE(sending.findings.text(), QString());
}

void SendingRulesTest::addLimits()
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

void SendingRulesTest::addTimes()
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

void SendingRulesTest::addReports()
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

void SendingRulesTest::brokenSendingIsNamed_data()
{
    QTest::addColumn<QByteArray>("rule");
    QTest::addColumn<BreakSending>("breaks");
    addLimits();
    addTimes();
    addReports();
}

void SendingRulesTest::brokenSendingIsNamed()
{
    QFETCH(QByteArray, rule);
    QFETCH(BreakSending, breaks);
    Sending sending;
    breaks(sending);
    QVERIFY2(sending.findings.text().contains(QString::fromLatin1(rule)),
             qPrintable(sending.findings.text()));
}

void SendingRulesTest::aRefusedCheckIsRemembered()
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

QTEST_GUILESS_MAIN(SendingRulesTest)
#include "tst_sendingrules.moc"
