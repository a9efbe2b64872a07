#include "rig.h"

#include <pseudoterminal.h>

#include <canbusplayer.h>
#include <velparkinggroupcmd.h>
#include <velvehiclegroupcmd.h>

// What a page shows of which nothing but a title has arrived: the link is up, and nobody sends more.

class HeadUnitUnknown : public QObject {
    Q_OBJECT

private:
    PseudoTerminal m_line;
    Rig m_rig;

    bool open(const QString &page)
    {
        const bool isOpen = m_rig.open(page);
        canbus::CanBusPlayer::instance()->setCanbusConnectStatus(true);
        return isOpen;
    }

    QString textOf(const QString &path) const { return m_rig.find(path)->property("text").toString(); }

private Q_SLOTS:
    void initTestCase()
    {
        canbus::headunit::Options options;
        options.port = m_line.name();
        QVERIFY(m_rig.begin(options));
    }

    void aDoorIsNeitherOpenNorClosed()
    {
        auto *const group = canbus::VelVehicleGroupCmd::instance();
        group->onVehicleTopText("Auto");
        QVERIFY(open(QStringLiteral("vehicle")));
        QVERIFY(!m_rig.find("notLive")->isVisible());
        for (const char *line :
             {"doorLine0", "doorLine3", "engineLine", "batteryLine", "hoodLine", "trunkLine"})
            QCOMPARE(textOf(line), QStringLiteral("--"));
        group->onVehicleData(QByteArray::fromHex("280000"));
        QCOMPARE(textOf("doorLine0"), QStringLiteral("Closed"));
        QCOMPARE(textOf("doorLine3"), QStringLiteral("Open"));
        QCOMPARE(textOf("engineLine"), QStringLiteral("OK"));
        QCOMPARE(textOf("batteryLine"), QStringLiteral("OK"));
        QCOMPARE(textOf("hoodLine"), QStringLiteral("Closed"));
        QCOMPARE(textOf("trunkLine"), QStringLiteral("Open"));
    }

    void aSideIsNotClear()
    {
        auto *const group = canbus::VelParkingGroupCmd::instance();
        group->onParkTopText("Park");
        QVERIFY(open(QStringLiteral("parking")));
        QVERIFY(!m_rig.find("notLive")->isVisible());
        QCOMPARE(textOf("side0"), QStringLiteral("--"));
        group->onParkData(QByteArray::fromHex("ffffffff 32ffffff ffffffff ffffffff f0"));
        QCOMPARE(textOf("side0"), QStringLiteral("Clear"));
        QCOMPARE(textOf("side1"), QStringLiteral("50"));
    }
};

QTEST_MAIN(HeadUnitUnknown)

#include "tst_headunit_unknown.moc"
