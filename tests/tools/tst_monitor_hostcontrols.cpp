#include "hostcontrols.h"

#include <displaystate.h>
#include <eventhandler.h>
#include <mcuservice.h>
#include <mcuvechiclebridge.h>
#include <srcdsplctrl.h>

#include <QtTest/QtTest>

using canbus::monitor::HostControls;

class tst_monitor_hostcontrols : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsADisplay();
    void engagesAndReleasesTheReverseGear();
    void saysWhetherTheClockNeedsSynchronisation();
};

void tst_monitor_hostcontrols::showsADisplay()
{
    HostControls host;
    SrcDsplCtrl *const screen = EventHandler::instance()->srcDsplCtrl();
    QSignalSpy changes(screen, &SrcDsplCtrl::dsplAndSrcChanged);
    host.display(75);
    QCOMPARE(screen->currentDspl(), C::DSPL_Climate);
    QCOMPARE(changes.size(), 1);
    host.display(12);
    QCOMPARE(int(screen->currentDspl()), 12);
}

void tst_monitor_hostcontrols::engagesAndReleasesTheReverseGear()
{
    HostControls host;
    QSignalSpy changes(McuVechicleBridge::instance(), &McuVechicleBridge::reverseChanged);
    host.reverse(true);
    host.reverse(false);
    QCOMPARE(changes.size(), 2);
    QCOMPARE(changes[0][0].toBool(), true);
    QCOMPARE(changes[1][0].toBool(), false);
}

void tst_monitor_hostcontrols::saysWhetherTheClockNeedsSynchronisation()
{
    HostControls host;
    host.needsync(true);
    QVERIFY(mcu::McuService::instance()->getNeedSyncTimeState());
    host.needsync(false);
    QVERIFY(!mcu::McuService::instance()->getNeedSyncTimeState());
}

QTEST_GUILESS_MAIN(tst_monitor_hostcontrols)
#include "tst_monitor_hostcontrols.moc"
