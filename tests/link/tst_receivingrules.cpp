#include "receivingrules.h"

#include <hexbytes.h>

#include <QtTest/QTest>

#include <functional>

// Each rule of what the library receives is broken here, and has to be the one that is named.

namespace {

const char kGood[] = "9f 02 50 03 05 01 02 55 9f 03";
// Its payload is 9f 03: the head unit ends it at the first 03.
const char kEndInside[] = "9f 02 50 03 05 9f 9f 03 ca 9f 03";
const char kBad[] = "9f 02 50 03 05 01 02 56 9f 03";

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

using BreakReceiving = std::function<void(Receiving &)>;

} // namespace

Q_DECLARE_METATYPE(BreakReceiving)

class ReceivingRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void receivingAsItMustBreaksNoRule();
    void comparesAgainOnceTheLineIsQuiet();
    void brokenReceivingIsNamed_data();
    void brokenReceivingIsNamed();
};

void ReceivingRulesTest::receivingAsItMustBreaksNoRule()
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

void ReceivingRulesTest::comparesAgainOnceTheLineIsQuiet()
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

void ReceivingRulesTest::brokenReceivingIsNamed_data()
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

void ReceivingRulesTest::brokenReceivingIsNamed()
{
    QFETCH(QByteArray, rule);
    QFETCH(BreakReceiving, breaks);
    Receiving receiving;
    breaks(receiving);
    QVERIFY2(receiving.findings.text().contains(QString::fromLatin1(rule)),
             qPrintable(receiving.findings.text()));
}

QTEST_GUILESS_MAIN(ReceivingRulesTest)
#include "tst_receivingrules.moc"
