#include "hexbytes.h"
#include "logrecorder.h"
#include "longestwait.h"
#include "velcanbusprotocol.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QMutexLocker>
#include <QtTest/QTest>

using namespace canbus;

namespace {

/// What the protocol does while its own timers and its parser thread run, with the time of each.
class TimedProtocol : public QObject {
public:
    TimedProtocol()
    {
        // Queued for what the parser thread emits: recorded on this thread alone.
        connect(&m_protocol, &CanbusProtocol::onWritPortData, this, [this](const QByteArray &data) {
            note(QStringLiteral("write ") + QString::fromLatin1(data.toHex()));
        });
        connect(&m_protocol, &CanbusProtocol::notifyCanbusStatus, this,
                [this](bool up) { note(up ? "status true" : "status false"); });
    }

    ~TimedProtocol() override
    {
        QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
        CanBusReadBuff::instance()->data.clear();
    }

    void arrive(const QByteArray &bytes)
    {
        QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
        CanBusReadBuff::instance()->data += bytes;
    }

    const QStringList &events() const { return m_events; }
    qint64 timeOf(int event) const { return m_times.at(event); }
    qint64 gapBefore(int event) const { return timeOf(event) - timeOf(event - 1); }

private:
    static QElapsedTimer startedClock()
    {
        QElapsedTimer clock;
        clock.start();
        return clock;
    }

    void note(const QString &event)
    {
        m_events += event;
        m_times += m_clock.elapsed();
    }

    LogRecorder m_log;
    QElapsedTimer m_clock = startedClock(); // before the protocol starts its timers
    QStringList m_events;
    QList<qint64> m_times;
    VelCanBusProtocol m_protocol;
};

// Timers of this kind may be early by a twentieth, and late by whatever the machine does meanwhile.
constexpr int kLeastResendMs = 280;
constexpr int kLeastRequestMs = 1890;

} // namespace

class VelCanBusProtocolTimersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void requestsAConnectionOfASilentBox();
    void losesTheLinkToABoxThatFallsSilent();
};

void VelCanBusProtocolTimersTest::requestsAConnectionOfASilentBox()
{
    TimedProtocol protocol;
    QTRY_VERIFY_WITH_TIMEOUT(protocol.events().size() >= 6, kLongestWaitMs);

    const QString request = "write 9f022101000000209f03";
    QCOMPARE(protocol.events().mid(0, 6),
             (QStringList {request, request, request, request, request, request}));
    QVERIFY(protocol.timeOf(0) >= kLeastRequestMs);
    // From what has started a timer on: the gap between two of its expiries shrinks when the first is late.
    QVERIFY(protocol.timeOf(1) - protocol.timeOf(0) >= kLeastResendMs);
    QVERIFY(protocol.timeOf(2) - protocol.timeOf(0) >= 2 * kLeastResendMs);
    // Given up after three times: the fourth is the next request.
    QVERIFY(protocol.timeOf(3) >= 2 * kLeastRequestMs);
    QVERIFY(protocol.timeOf(4) - protocol.timeOf(3) >= kLeastResendMs);
    QVERIFY(protocol.timeOf(5) - protocol.timeOf(3) >= 2 * kLeastResendMs);
}

void VelCanBusProtocolTimersTest::losesTheLinkToABoxThatFallsSilent()
{
    TimedProtocol protocol;
    protocol.arrive(bytes("9f 02 31 01 00 00 01 31 9f 03"));
    QTRY_VERIFY_WITH_TIMEOUT(protocol.events().size() >= 6, kLongestWaitMs);

    const QString check = "write 9f023101000001319f03";
    QCOMPARE(protocol.events().mid(0, 6),
             (QStringList {check, "write 9f0631319f03", check, check, "status false",
                           "write 9f022101000000209f03"}));
    QVERIFY(protocol.timeOf(2) - protocol.timeOf(0) >= kLeastResendMs);
    QVERIFY(protocol.timeOf(3) - protocol.timeOf(0) >= 2 * kLeastResendMs);
    QVERIFY(protocol.timeOf(4) - protocol.timeOf(0) >= 3 * kLeastResendMs);
    // The requests begin afresh with the loss.
    QVERIFY(protocol.gapBefore(5) >= kLeastRequestMs);
}

QTEST_GUILESS_MAIN(VelCanBusProtocolTimersTest)
#include "tst_velcanbusprotocol_timers.moc"
