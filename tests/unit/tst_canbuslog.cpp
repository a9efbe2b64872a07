#include "canbuslog.h"

#include <hexbytes.h>
#include <logrecorder.h>
#include <longestwait.h>

#include <QtCore/QLoggingCategory>
#include <QtCore/QStringList>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <memory>
#include <sys/syscall.h>
#include <unistd.h>

using canbus::logging::asIs;
using canbus::logging::hex;

namespace car {

constexpr int kReportLine = __LINE__ + 4;

void report(int value)
{
    CANBUS_DEBUG() << "speed" << value;
}

class Heater {
public:
    static bool fail(const QByteArray &, bool)
    {
        CANBUS_ERROR() << "too hot";
        return false;
    }
};

void reportFor(const canbus::logging::Origin &origin)
{
    CANBUS_DEBUG_AT(origin) << "from the shared part";
    CANBUS_ERROR_AT(origin) << "failed in the shared part";
}

void callTheSharedPart(char)
{
    reportFor(CANBUS_HERE);
}

} // namespace car

namespace {

QString kernelThreadId()
{
    return QString::number(::syscall(SYS_gettid));
}

/// The context of the last message, which the recorder does not keep.
struct Context {
    QString file;
    QString function;
    int line = 0;
};
Context g_context;

void keepContext(QtMsgType, const QMessageLogContext &context, const QString &)
{
    g_context = {QString::fromUtf8(context.file), QString::fromUtf8(context.function), context.line};
}

/// Sets a level of the category "default" and gives it back.
class Level {
public:
    Level(QtMsgType type, bool enabled)
        : m_type(type)
        , m_before(QLoggingCategory::defaultCategory()->isEnabled(type))
    {
        QLoggingCategory::defaultCategory()->setEnabled(type, enabled);
    }
    ~Level() { QLoggingCategory::defaultCategory()->setEnabled(m_type, m_before); }

private:
    Q_DISABLE_COPY(Level)
    QtMsgType m_type;
    bool m_before;
};

} // namespace

class TestCanbusLog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesADebugLineInTheCommonForm();
    void writesAnErrorLineAtCriticalLevel();
    void writesToTheCategoryDefault();
    void handsTheSourcePositionOn();
    void namesTheCallerInSharedCode();
    void namesTheThreadThatWrites();
    void writesValues_data();
    void writesValues();
    void writesAnEmptyMessage();
    void joinsSeveralValuesByBlanks();
    void evaluatesNothingWhileDebugIsOff();
    void evaluatesNothingWhileErrorsAreOff();
    void writesErrorsWhileDebugIsOff();
    void takesNoElseThatIsNotItsOwn();
};

void TestCanbusLog::writesADebugLineInTheCommonForm()
{
    LogRecorder log;
    car::report(30);
    QCOMPARE(log.lines().size(), 1);
    const QString expected = QStringLiteral("[DBG] %1 void car::report(int) %2 -- speed 30")
                                 .arg(kernelThreadId())
                                 .arg(car::kReportLine);
    QCOMPARE(log.lines().at(0).text, expected);
    QCOMPARE(log.lines().at(0).type, QtDebugMsg);
}

void TestCanbusLog::writesAnErrorLineAtCriticalLevel()
{
    LogRecorder log;
    car::Heater::fail({}, true);
    QCOMPARE(log.lines().size(), 1);
    const QString text = log.lines().at(0).text;
    QVERIFY2(
        text.startsWith(QStringLiteral("[ERR] %1 static bool car::Heater::fail(const QByteArray&, bool) ")
                            .arg(kernelThreadId())),
        qPrintable(text));
    QVERIFY2(text.endsWith(QLatin1String(" -- too hot")), qPrintable(text));
    QCOMPARE(log.lines().at(0).type, QtCriticalMsg);
}

void TestCanbusLog::writesToTheCategoryDefault()
{
    LogRecorder log;
    car::report(1);
    car::Heater::fail({}, true);
    QCOMPARE(log.lines().at(0).category, QStringLiteral("default"));
    QCOMPARE(log.lines().at(1).category, QStringLiteral("default"));
}

void TestCanbusLog::handsTheSourcePositionOn()
{
    const Level debug(QtDebugMsg, true);
    const QtMessageHandler former = qInstallMessageHandler(keepContext);
    car::report(1);
    qInstallMessageHandler(former);
    QVERIFY2(g_context.file.endsWith(QLatin1String("tst_canbuslog.cpp")), qPrintable(g_context.file));
    QCOMPARE(g_context.function, QStringLiteral("void car::report(int)"));
    QCOMPARE(g_context.line, car::kReportLine);
}

void TestCanbusLog::namesTheCallerInSharedCode()
{
    LogRecorder log;
    car::callTheSharedPart('a');
    QCOMPARE(log.lines().size(), 2);
    for (const LogLine &line : log.lines())
        QVERIFY2(line.text.contains(QLatin1String(" void car::callTheSharedPart(char) ")),
                 qPrintable(line.text));
    QCOMPARE(log.messages("[DBG]"), QStringList {"from the shared part"});
    QCOMPARE(log.messages("[ERR]"), QStringList {"failed in the shared part"});
}

void TestCanbusLog::namesTheThreadThatWrites()
{
    LogRecorder log;
    QString otherId;
    const std::unique_ptr<QThread> other(QThread::create([&otherId] {
        otherId = kernelThreadId();
        car::report(1);
        car::report(2);
    }));
    car::report(0);
    other->start();
    QVERIFY(other->wait(kLongestWaitMs));
    QCOMPARE(log.lines().size(), 3);
    QVERIFY(otherId != kernelThreadId());
    QCOMPARE(log.lines().at(0).text.section(' ', 1, 1), kernelThreadId());
    QCOMPARE(log.lines().at(1).text.section(' ', 1, 1), otherId);
    QCOMPARE(log.lines().at(2).text.section(' ', 1, 1), otherId);
}

using Write = void (*)();
Q_DECLARE_METATYPE(Write)

void TestCanbusLog::writesValues_data()
{
    QTest::addColumn<Write>("write");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, Write write, const char *message) {
        QTest::newRow(name) << write << QString::fromUtf8(message);
    };
    row(
        "a text", [] { CANBUS_DEBUG() << "open"; }, "open");
    row(
        "a text keeps its trailing blank", [] { CANBUS_DEBUG() << "Status " << true; }, "Status  true");
    row(
        "a trailing blank at the end of the line", [] { CANBUS_DEBUG() << "Status "; }, "Status ");
    row(
        "a text is UTF-8", [] { CANBUS_DEBUG() << "0 \xe2\x80\x93 255"; }, "0 \xe2\x80\x93 255");
    row(
        "true", [] { CANBUS_DEBUG() << true; }, "true");
    row(
        "false", [] { CANBUS_DEBUG() << false; }, "false");
    row(
        "a number", [] { CANBUS_DEBUG() << 57600; }, "57600");
    row(
        "a negative number", [] { CANBUS_DEBUG() << -1; }, "-1");
    row(
        "a hexadecimal number", [] { CANBUS_DEBUG() << hex(0x9f); }, "9f");
    row(
        "a small hexadecimal number is not padded", [] { CANBUS_DEBUG() << hex(0x05); }, "5");
    row(
        "bytes", [] { CANBUS_DEBUG() << bytes("9f 02 00 0a"); }, "9f02000a");
    row(
        "no bytes", [] { CANBUS_DEBUG() << QByteArray() << "end"; }, " end");
    row(
        "bytes as they are", [] { CANBUS_DEBUG() << asIs(bytes("21")); }, "\"!\"");
    row(
        "bytes as they are, without a printed form", [] { CANBUS_DEBUG() << asIs(bytes("9f")); },
        "\"\\x9F\"");
    row(
        "a QString", [] { CANBUS_DEBUG() << QStringLiteral("AC on"); }, "\"AC on\"");
    row(
        "a list of numbers",
        [] {
            CANBUS_DEBUG() << QList<int> {1, 0, 3};
        },
        "(1, 0, 3)");
    row(
        "a list of flags",
        [] {
            CANBUS_DEBUG() << QList<bool> {true, false};
        },
        "(true, false)");
    row(
        "a list of texts",
        [] {
            CANBUS_DEBUG() << QStringList {"A", ""};
        },
        "(\"A\", \"\")");
    row(
        "an empty list", [] { CANBUS_DEBUG() << QStringList(); }, "()");
}

void TestCanbusLog::writesValues()
{
    QFETCH(Write, write);
    QFETCH(QString, message);
    LogRecorder log;
    write();
    QCOMPARE(log.messages("[DBG]"), QStringList {message});
}

void TestCanbusLog::writesAnEmptyMessage()
{
    LogRecorder log;
    CANBUS_DEBUG();
    QCOMPARE(log.lines().size(), 1);
    QVERIFY(log.lines().at(0).text.endsWith(QLatin1String(" --")));
}

void TestCanbusLog::joinsSeveralValuesByBlanks()
{
    LogRecorder log;
    CANBUS_ERROR() << "id-" << bytes("21") << 7 << hex(0xb5) << QStringLiteral("x") << false;
    QCOMPARE(log.messages("[ERR]"), QStringList {"id- 21 7 b5 \"x\" false"});
}

void TestCanbusLog::evaluatesNothingWhileDebugIsOff()
{
    LogRecorder log;
    const Level debug(QtDebugMsg, false);
    int evaluated = 0;
    CANBUS_DEBUG() << "value" << ++evaluated;
    CANBUS_DEBUG_AT(CANBUS_HERE) << ++evaluated;
    QCOMPARE(evaluated, 0);
    QCOMPARE(log.lines().size(), 0);
    QVERIFY(!canbus::logging::isDebugEnabled());
}

void TestCanbusLog::evaluatesNothingWhileErrorsAreOff()
{
    LogRecorder log;
    const Level errors(QtCriticalMsg, false);
    int evaluated = 0;
    CANBUS_ERROR() << "value" << ++evaluated;
    CANBUS_ERROR_AT(CANBUS_HERE) << ++evaluated;
    QCOMPARE(evaluated, 0);
    QCOMPARE(log.lines().size(), 0);
    CANBUS_DEBUG() << ++evaluated;
    QCOMPARE(log.messages("[DBG]"), QStringList {"1"});
}

void TestCanbusLog::writesErrorsWhileDebugIsOff()
{
    LogRecorder log;
    const Level debug(QtDebugMsg, false);
    car::report(1);
    car::Heater::fail({}, true);
    QCOMPARE(log.lines().size(), 1);
    QCOMPARE(log.messages("[ERR]"), QStringList {"too hot"});
}

void TestCanbusLog::takesNoElseThatIsNotItsOwn()
{
    LogRecorder log;
    bool otherwise = false;
    for (const bool cold : {true, false}) {
        if (cold)
            CANBUS_DEBUG() << "cold";
        else
            otherwise = true;
    }
    QVERIFY(otherwise);
    QCOMPARE(log.messages("[DBG]"), QStringList {"cold"});
}

QTEST_GUILESS_MAIN(TestCanbusLog)
#include "tst_canbuslog.moc"
