#include <mcuservice.h>
#include <mcuvechiclebridge.h>
#include <qxprivate.h>
#include <touchevent.h>

#include <longestwait.h>

#include <QtCore/QCoreApplication>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>
#include <type_traits>

namespace {

struct Owner { };

class OwnerPrivate : public QxPrivate<Owner> {
public:
    OwnerPrivate(Owner *owner, bool &destroyed)
        : QxPrivate<Owner>(owner)
        , m_destroyed(destroyed)
    {
    }
    ~OwnerPrivate() override { m_destroyed = true; }

private:
    bool &m_destroyed;
};

class TouchRecorder : public QObject {
public:
    struct Touch {
        Qx::Touch touch;
        int a;
        int b;
    };
    QList<Touch> touches;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != 1008)
            return QObject::eventFilter(watched, event);
        const auto *touch = static_cast<TouchEvent *>(event);
        touches.append({touch->touch, touch->a, touch->b});
        return true;
    }
};

} // namespace

/// The host's vehicle bridge, MCU service, touch events and private-data template.
class TestHostSdk : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void bridgeIsOneObject();
    void announcesTheReverseGearOnlyOnAChange();
    void playsTheReverseGearByTheSlotsName();
    void deliversTheReverseGearQueued();

    void clockNeedsNoSynchronisationAtStart();
    void remembersWhetherTheClockNeedsSynchronisation();

    void serialisesATouchInSixteenBytes_data();
    void serialisesATouchInSixteenBytes();
    void carriesTheTouchAndItsNumbers();
    void isAnEventOfType1008();
    void reachesTheApplicationSentOrPosted();
    void touchIsAnIntNamedForEachTouchOfTheBox();

    void privateDataPointsBackToItsOwner();
    void privateDataIsDestroyedThroughItsBase();
};

void TestHostSdk::init()
{
    McuVechicleBridge::instance()->setReverse(false);
}

void TestHostSdk::bridgeIsOneObject()
{
    QVERIFY(McuVechicleBridge::instance());
    QCOMPARE(McuVechicleBridge::instance(), McuVechicleBridge::instance());
}

void TestHostSdk::announcesTheReverseGearOnlyOnAChange()
{
    McuVechicleBridge *bridge = McuVechicleBridge::instance();
    QSignalSpy changes(bridge, &McuVechicleBridge::reverseChanged);

    bridge->setReverse(false);
    QCOMPARE(changes.count(), 0);

    bridge->setReverse(true);
    bridge->setReverse(true);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.at(0), (QVariantList {true, 0}));

    bridge->setReverse(false);
    QCOMPARE(changes.count(), 2);
    QCOMPARE(changes.at(1), (QVariantList {false, 0}));
}

void TestHostSdk::playsTheReverseGearByTheSlotsName()
{
    QSignalSpy changes(McuVechicleBridge::instance(), SIGNAL(reverseChanged(bool, int)));
    QVERIFY(changes.isValid());
    QVERIFY(QMetaObject::invokeMethod(McuVechicleBridge::instance(), "setReverse", Q_ARG(bool, true)));
    QCOMPARE(changes.count(), 1);
}

void TestHostSdk::deliversTheReverseGearQueued()
{
    McuVechicleBridge *bridge = McuVechicleBridge::instance();
    QObject receiver;
    QList<bool> received;
    QObject::connect(
        bridge, &McuVechicleBridge::reverseChanged, &receiver,
        [&received](bool reverse, int) { received.append(reverse); }, Qt::QueuedConnection);
    bridge->setReverse(true);
    QVERIFY(received.isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(received, QList<bool> {true}, kLongestWaitMs);
}

void TestHostSdk::clockNeedsNoSynchronisationAtStart()
{
    QCOMPARE(mcu::McuService::instance(), mcu::McuService::instance());
    QCOMPARE(mcu::McuService::instance()->getNeedSyncTimeState(), false);
}

void TestHostSdk::remembersWhetherTheClockNeedsSynchronisation()
{
    mcu::McuService *service = mcu::McuService::instance();
    service->setNeedSyncTimeState(true);
    QCOMPARE(mcu::McuService::instance()->getNeedSyncTimeState(), true);
    service->setNeedSyncTimeState(false);
    QCOMPARE(mcu::McuService::instance()->getNeedSyncTimeState(), false);
}

void TestHostSdk::serialisesATouchInSixteenBytes_data()
{
    QTest::addColumn<int>("touch");
    QTest::addColumn<int>("a");
    QTest::addColumn<int>("b");
    QTest::addColumn<QByteArray>("bytes");
    // Little-endian, as every processor is that this runs on.
    QTest::newRow("touch 15 with two negative numbers")
        << 15 << -3 << -1 << QByteArray::fromHex("f0030000 0f000000 fdffffff ffffffff");
    QTest::newRow("touch 83 with a positive number")
        << 83 << -1 << 5 << QByteArray::fromHex("f0030000 53000000 ffffffff 05000000");
    QTest::newRow("numbers that fill all their bytes")
        << 84 << 0x12345678 << -2147483647 - 1 << QByteArray::fromHex("f0030000 54000000 78563412 00000080");
}

void TestHostSdk::serialisesATouchInSixteenBytes()
{
    QFETCH(const int, touch);
    QFETCH(const int, a);
    QFETCH(const int, b);
    QTEST(TouchEvent(static_cast<Qx::Touch>(touch), a, b).serialized, "bytes");
}

void TestHostSdk::carriesTheTouchAndItsNumbers()
{
    const TouchEvent event(Qx::Touch82, -1, 5);
    QCOMPARE(event.touch, Qx::Touch82);
    QCOMPARE(event.a, -1);
    QCOMPARE(event.b, 5);
}

void TestHostSdk::isAnEventOfType1008()
{
    const TouchEvent event(Qx::Touch15, -3, -1);
    const SimpleEvent<Qx::Touch> &simple = event;
    const QEvent &plain = simple;
    QCOMPARE(static_cast<int>(plain.type()), 1008);
}

void TestHostSdk::reachesTheApplicationSentOrPosted()
{
    TouchRecorder recorder;
    qApp->installEventFilter(&recorder);

    TouchEvent sent(Qx::Touch15, -3, -1);
    QCoreApplication::sendEvent(qApp, &sent);
    QCOMPARE(recorder.touches.count(), 1);
    QCOMPARE(recorder.touches.at(0).touch, Qx::Touch15);
    QCOMPARE(recorder.touches.at(0).a, -3);
    QCOMPARE(recorder.touches.at(0).b, -1);

    QCoreApplication::postEvent(qApp, new TouchEvent(Qx::Touch81, -1, 5));
    QCOMPARE(recorder.touches.count(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(recorder.touches.count(), 2, kLongestWaitMs);
    QCOMPARE(recorder.touches.at(1).touch, Qx::Touch81);
    QCOMPARE(recorder.touches.at(1).a, -1);
    QCOMPARE(recorder.touches.at(1).b, 5);
}

void TestHostSdk::touchIsAnIntNamedForEachTouchOfTheBox()
{
    QVERIFY((std::is_same_v<std::underlying_type_t<Qx::Touch>, int>));
    QCOMPARE(static_cast<int>(Qx::Touch15), 15);
    QCOMPARE(static_cast<int>(Qx::Touch81), 81);
    QCOMPARE(static_cast<int>(Qx::Touch82), 82);
    QCOMPARE(static_cast<int>(Qx::Touch83), 83);
    QCOMPARE(static_cast<int>(Qx::Touch84), 84);
}

void TestHostSdk::privateDataPointsBackToItsOwner()
{
    Owner owner;
    bool destroyed = false;
    const OwnerPrivate data(&owner, destroyed);
    QCOMPARE(data.q, &owner);
}

void TestHostSdk::privateDataIsDestroyedThroughItsBase()
{
    Owner owner;
    bool destroyed = false;
    std::unique_ptr<QxPrivate<Owner>> data = std::make_unique<OwnerPrivate>(&owner, destroyed);
    QVERIFY(!destroyed);
    data.reset();
    QVERIFY(destroyed);
}

QTEST_GUILESS_MAIN(TestHostSdk)
#include "tst_hostsdk.moc"
