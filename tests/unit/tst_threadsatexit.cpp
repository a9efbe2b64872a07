#include "support/threadsatexit.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

using namespace canbus;

namespace {

/// Writes to the process's output at once, whatever is gone already.
void say(const char *word)
{
    if (::write(STDOUT_FILENO, word, qstrlen(word)) < 0)
        ::_exit(99);
}

/// A thread that runs until it is told to end.
class Worker : public QThread {
public:
    void requestEnd() { m_end.release(); }

protected:
    void run() override { m_end.acquire(); }

private:
    QSemaphore m_end;
};

/// A static object that tells, when it is destroyed, whether a thread was still running then.
class Witness {
public:
    explicit Witness(const QThread *thread)
        : m_thread(thread)
    {
    }
    ~Witness() { say(m_thread->isFinished() ? "finished " : "running "); }

private:
    Q_DISABLE_COPY(Witness)
    const QThread *m_thread;
};

constexpr int kMany = 100; // threads that do not end

/// A running thread that is never deleted, as a host leaves it behind.
Worker *startedWorker()
{
    auto *worker = new Worker;
    worker->start();
    return worker;
}

void addAsking(Worker *worker)
{
    threadsAtExit::add(worker, [worker] {
        say("asked ");
        worker->requestEnd();
    });
}

QCoreApplication *makeApplication()
{
    static char name[] = "host";
    static char *arguments[] = {name, nullptr};
    static int count = 1;
    return new QCoreApplication(count, arguments);
}

Worker *g_worker = nullptr; // what the leak checker finds the threads of a child by
Worker *g_secondWorker = nullptr;

// The ways in which a process ends. Each runs in a child process of its own.

void destroysTheApplication()
{
    QCoreApplication *const application = makeApplication();
    g_worker = startedWorker();
    addAsking(g_worker);
    delete application;
    say(g_worker->isFinished() ? "finished " : "running ");
}

void leavesTheApplicationAlone()
{
    makeApplication();
    g_worker = startedWorker();
    static Witness witness(g_worker);
    addAsking(g_worker);
}

void addsAThreadBehindAYoungerObject()
{
    g_worker = startedWorker();
    addAsking(g_worker);
    g_secondWorker = startedWorker();
    static Witness witness(g_secondWorker);
    addAsking(g_secondWorker);
}

void addsAThreadInASecondApplication()
{
    for (Worker **thread : {&g_worker, &g_secondWorker}) {
        QCoreApplication *const application = makeApplication();
        *thread = startedWorker();
        addAsking(*thread);
        delete application;
        say((*thread)->isFinished() ? "finished " : "running ");
    }
}

void forgetsAThread()
{
    g_worker = startedWorker();
    addAsking(g_worker);
    g_secondWorker = startedWorker();
    threadsAtExit::add(g_secondWorker, [] {
        say("the other ");
        g_secondWorker->requestEnd();
    });
    g_worker->requestEnd();
    g_worker->wait();
    threadsAtExit::remove(g_worker);
}

void leavesAThreadThatDoesNotEnd()
{
    g_worker = startedWorker();
    threadsAtExit::add(g_worker, [] { say("asked "); });
}

void leavesManyThreadsThatDoNotEnd()
{
    for (int count = 0; count < kMany; ++count) {
        g_worker = startedWorker();
        threadsAtExit::add(g_worker, [] { say("asked "); });
    }
}

void endsOnARegisteredThread()
{
    static QThread *const exiting = QThread::create([] { std::exit(0); });
    threadsAtExit::add(exiting, [] { say("asked "); });
    exiting->start();
    for (;;)
        ::pause();
}

void takesAThreadOffTheListWhileEnding()
{
    g_worker = startedWorker();
    threadsAtExit::add(g_worker, [] {
        // A host may take threads off the list on its own way out: the list's lock is free here.
        threadsAtExit::remove(g_secondWorker);
        say("asked ");
        g_worker->requestEnd();
    });
}

void endsAThreadThatPostsToAnOlderOne()
{
    g_worker = startedWorker();
    threadsAtExit::add(g_worker, [] {
        say(g_secondWorker->isFinished() ? "asked afterwards " : "asked too early ");
        g_worker->requestEnd();
    });
    g_secondWorker = startedWorker();
    const auto endSecond = [] {
        say("the first ");
        g_secondWorker->requestEnd();
    };
    threadsAtExit::add(g_secondWorker, endSecond, threadsAtExit::Order::First);
}

void leavesAFirstThreadThatDoesNotEnd()
{
    g_worker = startedWorker();
    threadsAtExit::add(
        g_worker, [] { say("the first "); }, threadsAtExit::Order::First);
    g_secondWorker = startedWorker();
    static Witness witness(g_secondWorker);
    addAsking(g_secondWorker);
}

void logsWhileThreadsEnd()
{
    const auto logged = [] { return qFormatLogMessage(QtDebugMsg, {}, QStringLiteral("logged")); };
    ::setenv("QT_MESSAGE_PATTERN", "<%{message}>", 1);
    g_worker = startedWorker();
    threadsAtExit::add(g_worker, [logged] {
        say(qPrintable(logged()));
        g_worker->requestEnd();
    });
    logged();
}

/// What a child process has written, errors included, and how it has ended.
struct Outcome {
    QByteArray output;
    int status = -1;
    qint64 elapsedMs = 0;
};

Outcome outcomeOf(void (*way)())
{
    QElapsedTimer clock;
    clock.start();
    int ends[2];
    if (::pipe(ends) != 0)
        return {};
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(60); // one that hangs ends by a signal
        ::dup2(ends[1], STDOUT_FILENO);
        ::dup2(ends[1], STDERR_FILENO);
        ::close(ends[0]);
        ::close(ends[1]);
        way();
        std::exit(0);
    }
    ::close(ends[1]);
    Outcome outcome;
    char block[256];
    for (ssize_t size = ::read(ends[0], block, sizeof block); size > 0;
         size = ::read(ends[0], block, sizeof block))
        outcome.output.append(block, int(size));
    ::close(ends[0]);
    ::waitpid(child, &outcome.status, 0);
    outcome.elapsedMs = clock.elapsed();
    return outcome;
}

} // namespace

class TestThreadsAtExit : public QObject {
    Q_OBJECT

public:
    /// Called before the application object exists: a child process is made while there is but one thread.
    static void initMain();

private Q_SLOTS:
    void endsThreadsWithTheApplicationObject();
    void endsThreadsBeforeObjectsThatWereThereWhenTheyWereAdded();
    void endsAThreadBeforeAnObjectThatIsYoungerThanTheFirstThread();
    void endsTheThreadsOfASecondApplicationObject();
    void leavesAForgottenThreadAlone();
    void exitsInSpiteOfAThreadThatDoesNotEnd();
    void waitsForThreadsThatDoNotEndTogether();
    void doesNotWaitForTheThreadThatExits();
    void holdsNoLockWhileAThreadIsAsked();
    void asksAThreadWhenThoseThatPostToItHaveEnded();
    void asksTheOthersInSpiteOfAFirstThreadThatDoesNotEnd();
    void keepsWhatLogLinesAreMadeWithUntilTheThreadsHaveEnded();

private:
    static Outcome s_destroyed, s_left, s_younger, s_second, s_forgotten, s_stuck, s_allStuck, s_own,
        s_nested, s_ordered, s_firstStuck, s_logging;
};

Outcome TestThreadsAtExit::s_destroyed, TestThreadsAtExit::s_left, TestThreadsAtExit::s_younger,
    TestThreadsAtExit::s_second, TestThreadsAtExit::s_forgotten, TestThreadsAtExit::s_stuck,
    TestThreadsAtExit::s_allStuck, TestThreadsAtExit::s_own, TestThreadsAtExit::s_nested,
    TestThreadsAtExit::s_ordered, TestThreadsAtExit::s_firstStuck, TestThreadsAtExit::s_logging;

void TestThreadsAtExit::initMain()
{
    s_destroyed = outcomeOf(destroysTheApplication);
    s_left = outcomeOf(leavesTheApplicationAlone);
    s_younger = outcomeOf(addsAThreadBehindAYoungerObject);
    s_second = outcomeOf(addsAThreadInASecondApplication);
    s_forgotten = outcomeOf(forgetsAThread);
    s_stuck = outcomeOf(leavesAThreadThatDoesNotEnd);
    s_allStuck = outcomeOf(leavesManyThreadsThatDoNotEnd);
    s_own = outcomeOf(endsOnARegisteredThread);
    s_nested = outcomeOf(takesAThreadOffTheListWhileEnding);
    s_ordered = outcomeOf(endsAThreadThatPostsToAnOlderOne);
    s_firstStuck = outcomeOf(leavesAFirstThreadThatDoesNotEnd);
    s_logging = outcomeOf(logsWhileThreadsEnd);
}

void TestThreadsAtExit::endsThreadsWithTheApplicationObject()
{
    // Asked once, although the process exits afterwards.
    QCOMPARE(s_destroyed.output, QByteArray("asked finished "));
    QCOMPARE(s_destroyed.status, 0);
}

void TestThreadsAtExit::endsThreadsBeforeObjectsThatWereThereWhenTheyWereAdded()
{
    QCOMPARE(s_left.output, QByteArray("asked finished "));
    QCOMPARE(s_left.status, 0);
}

void TestThreadsAtExit::endsAThreadBeforeAnObjectThatIsYoungerThanTheFirstThread()
{
    QCOMPARE(s_younger.output, QByteArray("asked asked finished "));
    QCOMPARE(s_younger.status, 0);
}

void TestThreadsAtExit::endsTheThreadsOfASecondApplicationObject()
{
    QCOMPARE(s_second.output, QByteArray("asked finished asked finished "));
    QCOMPARE(s_second.status, 0);
}

void TestThreadsAtExit::leavesAForgottenThreadAlone()
{
    QCOMPARE(s_forgotten.output, QByteArray("the other "));
    QCOMPARE(s_forgotten.status, 0);
}

void TestThreadsAtExit::exitsInSpiteOfAThreadThatDoesNotEnd()
{
    QCOMPARE(s_stuck.output, QByteArray("asked "));
    QCOMPARE(s_stuck.status, 0);
    QVERIFY2(s_stuck.elapsedMs < 20000, qPrintable(QString::number(s_stuck.elapsedMs)));
}

void TestThreadsAtExit::waitsForThreadsThatDoNotEndTogether()
{
    QCOMPARE(s_allStuck.output.count("asked "), kMany);
    QCOMPARE(s_allStuck.status, 0);
    // One after the other would take forty seconds.
    QVERIFY2(s_allStuck.elapsedMs < 20000, qPrintable(QString::number(s_allStuck.elapsedMs)));
}

void TestThreadsAtExit::doesNotWaitForTheThreadThatExits()
{
    // Waiting for oneself is answered by a warning in the output.
    QCOMPARE(s_own.output, QByteArray("asked "));
    QCOMPARE(s_own.status, 0);
}

void TestThreadsAtExit::holdsNoLockWhileAThreadIsAsked()
{
    QCOMPARE(s_nested.output, QByteArray("asked "));
    QCOMPARE(s_nested.status, 0);
}

void TestThreadsAtExit::asksAThreadWhenThoseThatPostToItHaveEnded()
{
    QCOMPARE(s_ordered.output, QByteArray("the first asked afterwards "));
    QCOMPARE(s_ordered.status, 0);
}

void TestThreadsAtExit::asksTheOthersInSpiteOfAFirstThreadThatDoesNotEnd()
{
    QCOMPARE(s_firstStuck.output, QByteArray("the first asked finished "));
    QCOMPARE(s_firstStuck.status, 0);
}

void TestThreadsAtExit::keepsWhatLogLinesAreMadeWithUntilTheThreadsHaveEnded()
{
    QCOMPARE(s_logging.output, QByteArray("<logged>"));
    QCOMPARE(s_logging.status, 0);
}

QTEST_GUILESS_MAIN(TestThreadsAtExit)
#include "tst_threadsatexit.moc"
