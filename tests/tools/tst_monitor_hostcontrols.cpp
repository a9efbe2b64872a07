#include "hostcontrols.h"

#include <displaystate.h>
#include <eventhandler.h>
#include <mcuservice.h>
#include <mcuvechiclebridge.h>
#include <srcdsplctrl.h>
#include <touchevent.h>

#include <QtCore/QCoreApplication>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using canbus::monitor::HostControls;

class tst_monitor_hostcontrols : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsADisplay();
    void engagesAndReleasesTheReverseGear();
    void saysWhetherTheClockNeedsSynchronisation();
    void tellsWhatTheLibraryAsksOfTheUserInterface();
    void tellsWhatTheHostShows();
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

void tst_monitor_hostcontrols::tellsWhatTheLibraryAsksOfTheUserInterface()
{
    HostControls host;
    QSignalSpy events(&host, &HostControls::eventReceived);
    QSignalSpy touches(&host, &HostControls::touch);
    EventHandler::instance()->onEvent(4);
    QCOMPARE(events, QList<QVariantList>({{4}}));
    TouchEvent touch(Qx::Touch(83), -1, 5);
    QCoreApplication::sendEvent(QCoreApplication::instance(), &touch);
    QEvent other(QEvent::User);
    QCoreApplication::sendEvent(QCoreApplication::instance(), &other);
    QCOMPARE(touches, QList<QVariantList>({{83, -1, 5}}));
}

void tst_monitor_hostcontrols::tellsWhatTheHostShows()
{
    HostControls host;
    QSignalSpy displays(&host, &HostControls::displayShown);
    QSignalSpy gear(&host, &HostControls::reverseChanged);
    host.display(74);
    host.reverse(true);
    host.reverse(false);
    QCOMPARE(displays, QList<QVariantList>({{74}}));
    QCOMPARE(gear, QList<QVariantList>({{true}, {false}}));
}

QTEST_GUILESS_MAIN(tst_monitor_hostcontrols)
#include "tst_monitor_hostcontrols.moc"
