#include "boxsim/link/box.h"
#include "canbusplayer.h"
#include "linkhealth.h"
#include "velcanbusprotocol.h"

#include <failingwrites.h>
#include <hexbytes.h>
#include <logrecorder.h>
#include <longestwait.h>
#include <playerrig.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QMutexLocker>
#include <QtCore/QTimer>
#include <QtSerialPort/QSerialPort>
#include <QtTest/QTest>

#include <atomic>

using namespace canbus;

namespace {

constexpr int kBurst = 6;
constexpr int kAcknowledged = int(LinkHealth::Fate::Acknowledged);

boxsim::BoxOptions quietBox()
{
    boxsim::BoxOptions options;
    options.reportsState = false;
    return options;
}

/// The other end of the line: a box that answers.
class AnsweringBox : public QObject {
public:
    explicit AnsweringBox(PseudoTerminal &line)
        : m_line(line)
    {
        m_clock.start();
        connect(&m_timer, &QTimer::timeout, this, &AnsweringBox::work);
        m_timer.start(1);
    }

    /// The commands other than those of the connection, in order, without their repetitions.
    const QList<QByteArray> &commands() const { return m_commands; }

private:
    void work()
    {
        const QByteArray all = m_line.received();
        const QByteArray fresh = all.mid(m_seen);
        m_seen = all.size();
        handle(m_box.receive(fresh, m_clock.elapsed()));
        handle(m_box.advance(m_clock.elapsed()));
    }

    void handle(const boxsim::Output &output)
    {
        for (const QByteArray &block : output.writes)
            m_line.send(block);
        for (const boxsim::Event &event : output.events) {
            const bool isCommand = event.kind == boxsim::Event::Kind::Command && !event.repeated;
            if (isCommand && quint8(event.bytes.at(3)) != 0x01 && !m_commands.contains(event.bytes))
                m_commands += event.bytes;
        }
    }

    PseudoTerminal &m_line;
    boxsim::Box m_box {quietBox()};
    QElapsedTimer m_clock;
    QTimer m_timer;
    int m_seen = 0;
    QList<QByteArray> m_commands;
};

/// A head unit on a line, from the port to the commands' fates.
struct HeadUnit {
    std::atomic<quint64> lateWrites {
        0}; // of the port's errors, those of writes that waited for the processor
    PlayerRig rig;
    AnsweringBox box {rig.line};
    VelCanBusProtocol protocol;
    QVector<int> fates; // of the commands that are not the connection's
    int blocks = 0;     // for the port

    HeadUnit()
    {
        QObject::connect(protocol.linkHealth(), &LinkHealth::commandEnded, &rig.player,
                         [this](const QByteArray &frame, LinkHealth::Fate fate) {
                             if (quint8(frame.at(3)) != 0x01)
                                 fates += int(fate);
                         });
        QObject::connect(&protocol, &CanbusProtocol::onWritPortData, &rig.player, [this] { ++blocks; });
        rig.player.setUartPort(rig.line.name(), 57600);
        rig.player.init(&protocol);
        const auto count = [this](const QString &, int code) {
            if (code == QSerialPort::TimeoutError)
                ++lateWrites;
        };
        QObject::connect(rig.port(), &SerialPort::error, rig.port(), count, Qt::DirectConnection);
    }

    ~HeadUnit()
    {
        const QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
        CanBusReadBuff::instance()->data.clear();
    }

    bool isUp() { return rig.player.getCanbusConnectStatus(); }
    quint64 portErrors() const { return protocol.linkHealth()->figures().portErrors; }
};

/// Presses of six buttons, each with an id of its own: answers are matched by the id alone.
const QByteArray kCommands[] = {
    bytes("9f 02 41 93 00 12 01 00 c1 9f 03"), bytes("9f 02 42 93 00 13 01 00 c3 9f 03"),
    bytes("9f 02 43 93 00 14 01 00 c5 9f 03"), bytes("9f 02 44 93 00 15 01 00 c3 9f 03"),
    bytes("9f 02 45 93 00 16 01 00 c1 9f 03"), bytes("9f 02 46 93 00 17 01 00 c3 9f 03"),
};

QList<QByteArray> commands()
{
    return {std::begin(kCommands), std::end(kCommands)};
}

/// The handshake and a burst of commands, as far as they come. @return whether all have come to their end
bool run(HeadUnit &unit, int longestWaitMs)
{
    unit.protocol.onRequestConnect();
    const bool isUp = QTest::qWaitFor([&] { return unit.isUp(); }, longestWaitMs);
    for (const QByteArray &command : kCommands)
        unit.protocol.onSaveSendCmdData(command);
    return isUp && QTest::qWaitFor([&] { return unit.fates.size() == kBurst; }, longestWaitMs);
}

/// How many writes there are to the line when none fails.
int writesOfARun()
{
    HeadUnit unit;
    FailingWrites::failNone();
    if (!run(unit, kLongestWaitMs))
        return 0;
    // What acknowledges the last reports.
    QTest::qWait(100);
    return FailingWrites::attempts();
}

} // namespace

/// Each write of a handshake and a burst of commands fails in turn.
class FailedWritesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup() { FailingWrites::failNone(); }

    void recoversFromASingleFailure_data() { addWrites(); }
    void recoversFromASingleFailure();
    void recoversFromALostBlock_data() { addWrites(); }
    void recoversFromALostBlock();
    void comesUpAgainAfterWritesThatKeptFailing_data() { addWrites(); }
    void comesUpAgainAfterWritesThatKeptFailing();
    void tellsOfAPortThatDoesNotOpen();

private:
    void addWrites();

    int m_writes = 0;
};

void FailedWritesTest::initTestCase()
{
    m_writes = writesOfARun();
    // A request, a check, an acknowledgement; six commands, of which five send the first again.
    QVERIFY2(m_writes >= 3 + 6, qPrintable(QString::number(m_writes)));
}

void FailedWritesTest::addWrites()
{
    QTest::addColumn<int>("number");

    for (int number = 1; number <= m_writes; ++number)
        QTest::newRow(qPrintable(QStringLiteral("write %1").arg(number))) << number;
}

void FailedWritesTest::recoversFromASingleFailure()
{
    QFETCH(int, number);

    LogRecorder log;
    HeadUnit unit;
    FailingWrites::fail(number, 1, EIO);
    QVERIFY(run(unit, kLongestWaitMs));
    QVERIFY(unit.isUp());
    QCOMPARE(unit.fates, QVector<int>(kBurst, kAcknowledged));
    QTRY_COMPARE_WITH_TIMEOUT(unit.box.commands(), commands(), kLongestWaitMs);
    QCOMPARE(unit.portErrors() - unit.lateWrites, 1U);
    QVERIFY2(log.messages("[ERR]").size() < 10, qPrintable(log.messages("[ERR]").join('/')));
}

void FailedWritesTest::recoversFromALostBlock()
{
    QFETCH(int, number);

    LogRecorder log;
    HeadUnit unit;
    // The port's own second attempt fails as well.
    FailingWrites::fail(number, 2, EIO);
    QVERIFY(run(unit, kLongestWaitMs));
    QVERIFY(unit.isUp());
    QCOMPARE(unit.fates, QVector<int>(kBurst, kAcknowledged));
    QTRY_COMPARE_WITH_TIMEOUT(unit.box.commands(), commands(), kLongestWaitMs);
    QVERIFY(unit.portErrors() >= 1U);
    QVERIFY2(log.messages("[ERR]").size() < 10, qPrintable(log.messages("[ERR]").join('/')));
}

void FailedWritesTest::comesUpAgainAfterWritesThatKeptFailing()
{
    QFETCH(int, number);

    LogRecorder log;
    HeadUnit unit;
    FailingWrites::fail(number, FailingWrites::kForEver, EIO);
    // A late failure may leave all that is waited for behind.
    const bool isThrough = run(unit, 1500);
    if (isThrough)
        unit.protocol.onCheckConnectTmrout();
    QTRY_VERIFY_WITH_TIMEOUT(!unit.isUp(), kLongestWaitMs);
    const int failed = FailingWrites::attempts() - number + 1;
    QVERIFY(failed >= 1);
    QVERIFY(unit.portErrors() >= 1U);
    // Each block twice at the most, and three lines for each.
    QVERIFY2(failed <= 2 * unit.blocks, qPrintable(QString::number(failed)));
    QVERIFY2(log.messages("[ERR]").size() <= 3 * unit.blocks, qPrintable(log.messages("[ERR]").join('/')));

    FailingWrites::failNone();
    unit.protocol.onRequestConnect();
    QTRY_VERIFY_WITH_TIMEOUT(unit.isUp(), kLongestWaitMs);
    unit.fates.clear();
    unit.protocol.onSaveSendCmdData(bytes("9f 02 00 93 00 18 01 00 8a 9f 03"));
    QTRY_VERIFY_WITH_TIMEOUT(unit.fates.contains(kAcknowledged), kLongestWaitMs);
}

void FailedWritesTest::tellsOfAPortThatDoesNotOpen()
{
    LogRecorder log;
    PlayerRig rig;
    VelCanBusProtocol protocol;
    rig.player.setUartPort("/dev/canbus-missing", 57600);
    for (int attempt = 1; attempt <= 3; ++attempt) {
        rig.player.init(&protocol);
        QCOMPARE(protocol.linkHealth()->figures().portErrors, quint64(attempt));
        QCOMPARE(log.messages("[ERR]").last(), QString("not open"));
    }
    QVERIFY(log.messages("[ERR]").size() <= 10);
    // It opens as soon as the device is there.
    rig.player.setUartPort(rig.line.name(), 57600);
    rig.player.init(&protocol);
    QCOMPARE(protocol.linkHealth()->figures().portErrors, 3U);
    protocol.onRequestConnect();
    QTRY_VERIFY_WITH_TIMEOUT(rig.line.received().contains(bytes("9f 02 21 01 00 00 00 20 9f 03")),
                             kLongestWaitMs);
}

QTEST_GUILESS_MAIN(FailedWritesTest)
#include "tst_failedwrites.moc"
