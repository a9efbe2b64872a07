#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLibraryInfo>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QSet>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtTest/QTest>

#include <longestwait.h>
#include <pseudoterminal.h>
#include <runnable.h>

#include <algorithm>
#include <csignal>

// The command itself, in a process of its own: what it says when it cannot begin, and its pictures.

namespace {

struct Ended {
    int status = -1;
    QByteArray output;
    QByteArray errors;

    bool isOneLine() const { return errors.count('\n') == 1 && errors.startsWith("canbus-headunit: "); }
};

QString program()
{
    return QStringLiteral(CANBUS_BIN_DIR "/canbus-headunit");
}

void start(QProcess *process, const QString &path, const QStringList &arguments,
           const QStringList &environment = {})
{
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    variables.insert(QStringLiteral("XDG_RUNTIME_DIR"), QDir::tempPath());
    for (const QString &name : {QStringLiteral("DISPLAY"), QStringLiteral("WAYLAND_DISPLAY"),
                                QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("QML2_IMPORT_PATH")})
        variables.remove(name);
    for (const QString &variable : environment)
        variables.insert(variable.section('=', 0, 0), variable.section('=', 1));
    process->setProcessEnvironment(variables);
    QStringList command = runnable(path) + arguments;
    process->start(command.takeFirst(), command);
}

Ended run(const QString &path, const QStringList &arguments, const QStringList &environment = {})
{
    QProcess process;
    start(&process, path, arguments, environment);
    Ended ended;
    if (process.waitForFinished(kLongestWaitMs) && process.exitStatus() == QProcess::NormalExit)
        ended.status = process.exitCode();
    ended.output = process.readAllStandardOutput();
    ended.errors = process.readAllStandardError();
    return ended;
}

/// Points of the picture that stand far from each other, so that a blank one has one colour of them.
QSet<QRgb> coloursOf(const QImage &picture)
{
    QSet<QRgb> colours;
    for (int y = 2; y < picture.height(); y += 7) {
        for (int x = 2; x < picture.width(); x += 7)
            colours.insert(picture.pixel(x, y));
    }
    return colours;
}

int lightnessOf(const QImage &picture)
{
    return QColor(picture.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixel(0, 0))
        .lightness();
}

} // namespace

class HeadUnitCommand : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wrongArgumentsAreToldInOneLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("a mistyped option")
            << QStringList {"--prot", "x"} << QByteArray("did you mean --port?");
        QTest::newRow("no option") << QStringList {"ttyS3"} << QByteArray("--help");
        QTest::newRow("a mistyped page")
            << QStringList {"--page", "climat"} << QByteArray("did you mean climate?");
        QTest::newRow("no page at all")
            << QStringList {"--page", "zzzzzz"} << QByteArray("write climate, gauges");
        QTest::newRow("a baud rate of letters") << QStringList {"--baud", "q"} << QByteArray("57600");
        QTest::newRow("a size of nothing") << QStringList {"--size", "10x10"} << QByteArray("800x480");
        QTest::newRow("a panel without a car") << QStringList {"--panel"} << QByteArray("--simulate");
        QTest::newRow("a port and a simulated box")
            << QStringList {"--simulate", "--port", "x"} << QByteArray("--port");
        QTest::newRow("a scenario that is not there")
            << QStringList {"--simulate", "--scenario", "/nonexistent.json"}
            << QByteArray("/nonexistent.json");
    }

    void wrongArgumentsAreToldInOneLine()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, expected);
        const Ended ended = run(program(), arguments);
        QCOMPARE(ended.status, 2);
        QVERIFY2(ended.isOneLine() && ended.errors.contains(expected), ended.errors.constData());
        QVERIFY(ended.output.isEmpty());
    }

    void helpAndVersionArePrintedWithoutADisplay()
    {
        const Ended help = run(program(), {"--help"});
        QCOMPARE(help.status, 0);
        for (const char *option : {"--port", "--baud", "--simulate", "--panel", "--scenario", "--page",
                                   "--night", "--size", "--screenshot"})
            QVERIFY2(help.output.contains(option), option);
        const Ended version = run(program(), {"--version"});
        QCOMPARE(version.status, 0);
        QVERIFY(version.output.startsWith("canbus-headunit "));
    }

    void aMissingDisplayIsToldInOneLine_data()
    {
        QTest::addColumn<QStringList>("environment");
        QTest::newRow("none") << QStringList();
        QTest::newRow("one that is not there") << QStringList {"DISPLAY=:7654"};
        QTest::newRow("a framebuffer that is not there")
            << QStringList {"QT_QPA_PLATFORM=linuxfb:fb=/dev/nothing"};
        QTest::newRow("a platform that nobody knows") << QStringList {"QT_QPA_PLATFORM=nowhere"};
    }

    void aMissingDisplayIsToldInOneLine()
    {
        QFETCH(QStringList, environment);
        const Ended ended = run(program(), {"--simulate"}, environment);
        QCOMPARE(ended.status, 1);
        QVERIFY2(ended.isOneLine() && ended.errors.contains("xvfb-run"), ended.errors.constData());
    }

    void aMissingPortIsToldInOneLine()
    {
        const Ended ended = run(program(), {"--port", "/dev/nothing"}, {"QT_QPA_PLATFORM=offscreen"});
        QCOMPARE(ended.status, 1);
        QVERIFY2(ended.isOneLine() && ended.errors.contains("/dev/nothing")
                     && ended.errors.contains("--simulate"),
                 ended.errors.constData());
    }

    void aMissingModuleIsToldInOneLine()
    {
        if (QDir(QLibraryInfo::location(QLibraryInfo::Qml2ImportsPath)).exists("CanBus"))
            QSKIP("the module is installed on this machine, and cannot be missing");
        const QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkpath("bin"));
        // Where the program does not find its modules, and no module is installed.
        const QString copy = folder.filePath("bin/canbus-headunit");
        QVERIFY(QFile::copy(program(), copy));
        const Ended ended =
            run(copy, {"--simulate"}, {"QT_QPA_PLATFORM=offscreen", "QML2_IMPORT_PATH=" + folder.path()});
        QCOMPARE(ended.status, 1);
        QVERIFY2(ended.isOneLine() && ended.errors.contains("QML module CanBus"), ended.errors.constData());
    }

    void itEndsWhenItIsTold_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("Ctrl-C") << SIGINT;
        QTest::newRow("a plain kill") << SIGTERM;
        QTest::newRow("a terminal that is closed") << SIGHUP;
    }

    void itEndsWhenItIsTold()
    {
        QFETCH(int, signal);
        QProcess process;
        start(&process, program(), {"--simulate"},
              {"QT_QPA_PLATFORM=offscreen", "QT_QUICK_BACKEND=software"});
        QVERIFY(process.waitForStarted());
        // Its arguments are read and its signals are watched before it has children of /proc/PID/task.
        const QString tasks = QStringLiteral("/proc/%1/task").arg(process.processId());
        QTRY_VERIFY_WITH_TIMEOUT(QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size() > 2,
                                 kLongestWaitMs);
        sendSignal(process, signal);
        QVERIFY(process.waitForFinished(kLongestWaitMs));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(process.readAllStandardError(), QByteArray());
    }

    void picturesOfABoxThatIsSilentEndWhenTheyAreTold()
    {
        PseudoTerminal line;
        const QTemporaryDir folder;
        QProcess process;
        start(&process, program(), {"--port", line.name(), "--screenshot", folder.filePath("pictures")});
        // It is waiting for the box once it has asked for the connection.
        QTRY_VERIFY_WITH_TIMEOUT(!line.received().isEmpty(), kLongestWaitMs);
        sendSignal(process, SIGINT);
        QVERIFY(process.waitForFinished(10000)); // by itself it waits for 30 s
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(process.readAllStandardError(), QByteArray());
    }

    void everyPageIsDrawnByDayAndByNight_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("1024x600") << QSize(1024, 600);
        QTest::newRow("800x480") << QSize(800, 480);
        QTest::newRow("1280x720") << QSize(1280, 720);
    }

    void everyPageIsDrawnByDayAndByNight()
    {
        QFETCH(QSize, size);
        const QTemporaryDir folder;
        const QString pictures = folder.filePath("pictures");
        const Ended ended =
            run(program(), {"--simulate", "--size", QTest::currentDataTag(), "--screenshot", pictures});
        QVERIFY2(ended.status == 0, ended.errors.constData());
        QCOMPARE(ended.errors, QByteArray());
        QSet<QByteArray> different;
        for (const char *page : {"climate", "gauges", "vehicle", "parking", "menu", "link"}) {
            const QImage day(QDir(pictures).filePath(QString(page) + "-day.png"));
            const QImage night(QDir(pictures).filePath(QString(page) + "-night.png"));
            QCOMPARE(day.size(), size);
            QCOMPARE(night.size(), size);
            QVERIFY2(coloursOf(day).size() > 20, page);
            QVERIFY2(coloursOf(night).size() > 20, page);
            QVERIFY2(lightnessOf(day) > lightnessOf(night) + 100, page);
            different.insert(
                QByteArray(reinterpret_cast<const char *>(day.constBits()), int(day.sizeInBytes())));
        }
        QCOMPARE(different.size(), 6);
        QCOMPARE(QDir(pictures).entryList(QDir::Files).size(), 12);
    }

    void aFolderThatCannotBeMadeIsToldInOneLine()
    {
        const Ended ended = run(program(), {"--simulate", "--screenshot", "/proc/pictures"});
        QCOMPARE(ended.status, 1);
        QVERIFY2(ended.isOneLine() && ended.errors.contains("/proc/pictures"), ended.errors.constData());
    }
};

QTEST_MAIN(HeadUnitCommand)

#include "tst_headunit_command.moc"
