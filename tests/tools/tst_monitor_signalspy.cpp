#include "signalspy.h"

#include <longestwait.h>

#include <QtCore/QMap>
#include <QtCore/QMetaMethod>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <memory>

using canbus::monitor::SignalSpy;

namespace {

struct NotCopyable { };

/// "object signal:argument,argument": what the spy was told, for comparison.
QString described(const QString &object, const QMetaMethod &signal, const QVariantList &arguments)
{
    QStringList texts;
    for (const QVariant &argument : arguments)
        texts << (argument.isValid() ? argument.toString() : QStringLiteral("invalid"));
    return object + QLatin1Char(' ') + QString::fromLatin1(signal.name()) + QLatin1Char(':')
        + texts.join(QLatin1Char(','));
}

} // namespace

class Instrument : public QObject {
    Q_OBJECT

Q_SIGNALS:
    void pressed(int button, bool isLong);
    void labelled(QString text, QByteArray bytes);
    void mapped(QMap<int, bool> map);
    void idle();
    void withDefault(int first, int second = 7);
    void strange(NotCopyable *thing, int number);
};

class DerivedInstrument : public Instrument {
    Q_OBJECT

Q_SIGNALS:
    void derived(int value);
};

class tst_monitor_signalspy : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void hearsEverySignalAtOnce();
    void keepsObjectsApart();
    void hearsTheSignalsOfBaseClasses();
    void hearsASignalWithADefaultArgumentOnce();
    void leavesOutTheSignalsOfQObject();
    void copiesContainers();
    void givesAnInvalidValueForATypeThatCannotBeCopied();
    void hearsOtherThreadsOnItsOwn();
    void isSilentAfterTheObjectIsGone();
    void mayBeDestroyedBeforeTheObject();

private:
    QStringList m_heard;
    QVariantList m_lastArguments;
    QThread *m_thread = nullptr; // on which the last signal was heard
    std::unique_ptr<SignalSpy> m_spy;
};

void tst_monitor_signalspy::initTestCase()
{
    // As the library does for the types of its own signals.
    qRegisterMetaType<QMap<int, bool>>("QMap<int,bool>");
}

void tst_monitor_signalspy::init()
{
    m_heard.clear();
    m_spy = std::make_unique<SignalSpy>(
        [this](const QString &object, const QMetaMethod &signal, const QVariantList &arguments) {
            m_heard << described(object, signal, arguments);
            m_lastArguments = arguments;
            m_thread = QThread::currentThread();
        });
}

void tst_monitor_signalspy::hearsEverySignalAtOnce()
{
    Instrument instrument;
    m_spy->watch(QStringLiteral("panel"), &instrument);
    Q_EMIT instrument.pressed(3, true);
    QCOMPARE(m_heard, QStringList {"panel pressed:3,true"});
    Q_EMIT instrument.idle();
    Q_EMIT instrument.labelled(QStringLiteral("warm"), QByteArray("ab"));
    QCOMPARE(m_heard, (QStringList {"panel pressed:3,true", "panel idle:", "panel labelled:warm,ab"}));
}

void tst_monitor_signalspy::keepsObjectsApart()
{
    Instrument left;
    Instrument right;
    m_spy->watch(QStringLiteral("left"), &left);
    m_spy->watch(QStringLiteral("right"), &right);
    Q_EMIT right.idle();
    Q_EMIT left.pressed(1, false);
    QCOMPARE(m_heard, (QStringList {"right idle:", "left pressed:1,false"}));
}

void tst_monitor_signalspy::hearsTheSignalsOfBaseClasses()
{
    DerivedInstrument instrument;
    m_spy->watch(QStringLiteral("panel"), &instrument);
    Q_EMIT instrument.derived(5);
    Q_EMIT instrument.idle();
    QCOMPARE(m_heard, (QStringList {"panel derived:5", "panel idle:"}));
}

void tst_monitor_signalspy::hearsASignalWithADefaultArgumentOnce()
{
    Instrument instrument;
    m_spy->watch(QStringLiteral("panel"), &instrument);
    Q_EMIT instrument.withDefault(1);
    QCOMPARE(m_heard, QStringList {"panel withDefault:1,7"});
}

void tst_monitor_signalspy::leavesOutTheSignalsOfQObject()
{
    {
        Instrument instrument;
        m_spy->watch(QStringLiteral("panel"), &instrument);
        instrument.setObjectName(QStringLiteral("renamed"));
    }
    QCOMPARE(m_heard, QStringList());
}

void tst_monitor_signalspy::copiesContainers()
{
    Instrument instrument;
    m_spy->watch(QStringLiteral("panel"), &instrument);
    const QMap<int, bool> map {{1, true}, {4, false}};
    Q_EMIT instrument.mapped(map);
    QCOMPARE(m_lastArguments.size(), 1);
    QCOMPARE((m_lastArguments.constFirst().value<QMap<int, bool>>()), map);
}

void tst_monitor_signalspy::givesAnInvalidValueForATypeThatCannotBeCopied()
{
    Instrument instrument;
    m_spy->watch(QStringLiteral("panel"), &instrument);
    Q_EMIT instrument.strange(nullptr, 8);
    QCOMPARE(m_heard, QStringList {"panel strange:invalid,8"});
}

void tst_monitor_signalspy::hearsOtherThreadsOnItsOwn()
{
    constexpr int kSignals = 1000;
    Instrument instrument;
    m_spy->watch(QStringLiteral("panel"), &instrument);
    const std::unique_ptr<QThread> thread(QThread::create([&instrument] {
        for (int i = 0; i < kSignals; ++i)
            Q_EMIT instrument.labelled(QString::number(i), QByteArray(i % 7, 'x'));
    }));
    thread->start();
    QVERIFY(thread->wait(kLongestWaitMs));
    QCOMPARE(m_heard, QStringList()); // nothing was heard behind this thread's back
    QTRY_COMPARE_WITH_TIMEOUT(m_heard.size(), kSignals, 30000);
    QCOMPARE(m_heard.first(), QStringLiteral("panel labelled:0,"));
    QCOMPARE(m_heard.last(), QStringLiteral("panel labelled:999,xxxxx"));
    QCOMPARE(m_thread, QThread::currentThread());
}

void tst_monitor_signalspy::isSilentAfterTheObjectIsGone()
{
    auto instrument = std::make_unique<Instrument>();
    m_spy->watch(QStringLiteral("gone"), instrument.get());
    instrument.reset();
    Instrument other;
    m_spy->watch(QStringLiteral("there"), &other);
    Q_EMIT other.idle();
    QCOMPARE(m_heard, QStringList {"there idle:"});
}

void tst_monitor_signalspy::mayBeDestroyedBeforeTheObject()
{
    Instrument instrument;
    m_spy->watch(QStringLiteral("panel"), &instrument);
    m_spy.reset();
    Q_EMIT instrument.idle();
    QCOMPARE(m_heard, QStringList());
}

QTEST_GUILESS_MAIN(tst_monitor_signalspy)
#include "tst_monitor_signalspy.moc"
