#include "boxsim/bench/session.h"

#include "scriptedbench.h"

#include <longestwait.h>

#include <QtTest/QTest>

#include <functional>

using namespace scriptedbench;
using boxsim::Ending;
using boxsim::Line;
using boxsim::Session;

namespace {

/// Keeps what is done to it.
class RecordedLine : public Line {
public:
    void write(const QByteArray &block) override { steps.append(QString::fromLatin1(block.toHex(' '))); }
    void hangUp() override { steps.append(QStringLiteral("hang-up")); }
    void comeBack() override { steps.append(QStringLiteral("return")); }

    QStringList steps;
};

struct Ended {
    int times = 0;
    Ending ending = Ending::None;
    QString failure;
};

/// A session whose script is set up before it begins.
class Run {
public:
    explicit Run(const std::function<void(WrittenScript &)> &write = {},
                 const boxsim::BenchOptions &benchOptions = options())
    {
        auto script = std::make_unique<WrittenScript>();
        if (write)
            write(*script);
        session = std::make_unique<Session>(&line, benchOptions, std::move(script));
        QObject::connect(session.get(), &Session::happened, session.get(),
                         [this](const boxsim::Event &event) { events.append(boxbench::text(event)); });
        QObject::connect(session.get(), &Session::ended, session.get(),
                         [this](Ending ending, const QString &failure) {
                             ended = {ended.times + 1, ending, failure};
                         });
    }

    RecordedLine line;
    QStringList events;
    Ended ended;
    std::unique_ptr<Session> session;
};

} // namespace

class TestBoxsimSession : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answersOnTheLine_data();
    void answersOnTheLine();
    void resendsWhenItIsTime();
    void followsItsScript();
    void saysOnceThatTheRunHasEnded();
    void saysWhyTheRunHasFailed();
    void carriesOutWhatItIsTold();
};

void TestBoxsimSession::answersOnTheLine_data()
{
    QTest::addColumn<bool>("split");
    QTest::addColumn<QStringList>("blocks");

    QTest::newRow("in whole blocks") << false
                                     << QStringList {"9f 06 21 21 9f 03", "9f 02 40 01 00 00 01 40 9f 03"};
    QTest::newRow("byte by byte") << true << QStringList {"9f", "06", "21", "21", "9f", "03", "9f", "02",
                                                          "40", "01", "00", "00", "01", "40", "9f", "03"};
}

void TestBoxsimSession::answersOnTheLine()
{
    QFETCH(bool, split);
    QFETCH(QStringList, blocks);
    boxsim::BenchOptions benchOptions = options();
    benchOptions.faults.split = split;
    Run run({}, benchOptions);

    Q_EMIT run.line.received(bytes(boxbench::kConnectRequest));

    QCOMPARE(run.line.steps, blocks);
    QCOMPARE(run.events, QStringList {"connection.request"});
}

void TestBoxsimSession::resendsWhenItIsTime()
{
    Run run;
    Q_EMIT run.line.received(bytes(boxbench::kConnectRequest));

    QTRY_COMPARE_WITH_TIMEOUT(run.line.steps.size(), 4, kLongestWaitMs);

    QCOMPARE(run.line.steps.at(3), QStringLiteral("9f 02 40 01 00 00 01 40 9f 03"));
    QTRY_COMPARE_WITH_TIMEOUT(run.events,
                              QStringList({"connection.request", "resend 40", "resend 40", "give up 40"}),
                              kLongestWaitMs);
}

void TestBoxsimSession::followsItsScript()
{
    Run run([](WrittenScript &script) {
        script.at(0, sendBytes("01"));
        script.at(20, hangUp(20));
        script.at(60, sendBytes("02"));
    });

    QTRY_COMPARE_WITH_TIMEOUT(run.line.steps, QStringList({"01", "hang-up", "return", "02"}), kLongestWaitMs);
    QCOMPARE(run.ended.times, 0);
}

void TestBoxsimSession::saysOnceThatTheRunHasEnded()
{
    Run run([](WrittenScript &script) {
        script.at(10, sendBytes("01"));
        script.at(10, instruction(Instruction::Kind::End));
    });

    QTRY_COMPARE_WITH_TIMEOUT(run.ended.times, 1, kLongestWaitMs);
    Q_EMIT run.line.received(bytes(boxbench::kConnectRequest));

    QCOMPARE(run.ended.times, 1);
    QCOMPARE(int(run.ended.ending), int(Ending::Success));
    QCOMPARE(run.line.steps, QStringList {"01"});
}

void TestBoxsimSession::saysWhyTheRunHasFailed()
{
    Run run([](WrittenScript &script) {
        script.at(10, instruction(Instruction::Kind::Fail, QStringLiteral("no link")));
    });

    QTRY_COMPARE_WITH_TIMEOUT(run.ended.times, 1, kLongestWaitMs);

    QCOMPARE(int(run.ended.ending), int(Ending::Failure));
    QCOMPARE(run.ended.failure, QStringLiteral("no link"));
}

void TestBoxsimSession::carriesOutWhatItIsTold()
{
    Run run;

    run.session->carryOut(set("vehicle.hood=true"));
    run.session->carryOut(sendBytes("01"));

    QVERIFY(run.session->state().car.vehicle.hood);
    QCOMPARE(run.line.steps, QStringList {"01"});
}

QTEST_GUILESS_MAIN(TestBoxsimSession)
#include "tst_boxsim_session.moc"
