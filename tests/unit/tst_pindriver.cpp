#include "player/pindriver.h"

#include "canbusprotocol.h"
#include "player/canbusplayer.h"

#include <logrecorder.h>

#include <QtCore/QThread>
#include <QtTest/QTest>

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// The board's device, played: what is done with it is written down.
struct Device {
    static constexpr int kDescriptor = 4711;

    bool present = true;
    bool writesBack = false;
    int result = 0;
    QStringList calls;
    QList<void *> arguments;
    QStringList logBeforeFirstCall;
    const LogRecorder *log = nullptr;

    void note(const QString &call)
    {
        if (calls.isEmpty() && log)
            logBeforeFirstCall = log->messages("[DBG]") + log->messages("[ERR]");
        calls += call;
    }

    int open(int flags)
    {
        note(QStringLiteral("open %1").arg(flags & O_ACCMODE));
        if (present)
            return kDescriptor;
        errno = ENOENT;
        return -1;
    }

    int control(unsigned long request, void *argument)
    {
        auto *const pin = static_cast<quint32 *>(argument);
        note(QStringLiteral("ioctl %1 %2").arg(quint32(request), 0, 16).arg(*pin));
        arguments += argument;
        if (writesBack)
            ++*pin;
        return result;
    }
};

Device g_device;

const QStringList kAllFour {
    "open 2", "ioctl c0045390 39", "ioctl c0045392 39", "ioctl c0045394 39", "ioctl c0045397 39", "close"};

} // namespace

// These stand before the C library's own.

extern "C" int open(const char *path, int flags, ...)
{
    if (std::strcmp(path, "/dev/sp_gpio") == 0)
        return g_device.open(flags);
    va_list arguments;
    va_start(arguments, flags);
    const int mode = va_arg(arguments, int);
    va_end(arguments);
    return int(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void *const argument = va_arg(arguments, void *);
    va_end(arguments);
    if (descriptor == Device::kDescriptor)
        return g_device.control(request, argument);
    return int(::syscall(SYS_ioctl, descriptor, request, argument));
}

extern "C" int close(int descriptor)
{
    if (descriptor != Device::kDescriptor)
        return int(::syscall(SYS_close, descriptor));
    g_device.note(QStringLiteral("close"));
    return 0;
}

namespace {

class SilentProtocol : public canbus::CanbusProtocol {
    Q_OBJECT

public:
    void analyseData(QByteArray) override { }
};

} // namespace

class TestPinDriver : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void makesFourRequestsInOrder();
    void usesOneArgumentForAll();
    void ignoresTheResults();
    void opensTheDeviceAnewEachTime();
    void skipsAMissingDeviceInSilence();
    void triesAMissingDeviceAgain();
    void comesBeforeThePortAtEveryInitialisation();
};

void TestPinDriver::init()
{
    g_device = Device();
}

void TestPinDriver::makesFourRequestsInOrder()
{
    canbus::pinDriver::setUp();
    QCOMPARE(g_device.calls, kAllFour);
}

void TestPinDriver::usesOneArgumentForAll()
{
    g_device.writesBack = true;
    canbus::pinDriver::setUp();
    QCOMPARE(g_device.arguments.size(), 4);
    QCOMPARE(g_device.arguments, QVector<void *>(4, g_device.arguments.at(0)).toList());
    // What the driver writes back is what the next request carries.
    QCOMPARE(
        g_device.calls.mid(1, 4),
        (QStringList {"ioctl c0045390 39", "ioctl c0045392 40", "ioctl c0045394 41", "ioctl c0045397 42"}));
}

void TestPinDriver::ignoresTheResults()
{
    g_device.result = -1;
    LogRecorder log;
    canbus::pinDriver::setUp();
    QCOMPARE(g_device.calls, kAllFour);
    QVERIFY(log.lines().isEmpty());
}

void TestPinDriver::opensTheDeviceAnewEachTime()
{
    canbus::pinDriver::setUp();
    canbus::pinDriver::setUp();
    QCOMPARE(g_device.calls, kAllFour + kAllFour);
}

void TestPinDriver::skipsAMissingDeviceInSilence()
{
    g_device.present = false;
    LogRecorder log;
    canbus::pinDriver::setUp();
    QCOMPARE(g_device.calls, QStringList {"open 2"});
    QVERIFY(log.lines().isEmpty());
}

void TestPinDriver::triesAMissingDeviceAgain()
{
    g_device.present = false;
    canbus::pinDriver::setUp();
    g_device.present = true;
    canbus::pinDriver::setUp();
    QCOMPARE(g_device.calls, QStringList {"open 2"} + kAllFour);
}

void TestPinDriver::comesBeforeThePortAtEveryInitialisation()
{
    LogRecorder log;
    g_device.log = &log;
    SilentProtocol protocol;
    auto *const player = canbus::CanBusPlayer::instance();
    player->setUartPort(QStringLiteral("/dev/canbus-missing"), 57600);
    player->init(&protocol);
    QCOMPARE(g_device.calls, kAllFour);
    QCOMPARE(g_device.logBeforeFirstCall, QStringList());
    QVERIFY(log.contains("[ERR]", "not open"));
    player->init(&protocol);
    QCOMPARE(g_device.calls, kAllFour + kAllFour);
}

QTEST_GUILESS_MAIN(TestPinDriver)
#include "tst_pindriver.moc"
