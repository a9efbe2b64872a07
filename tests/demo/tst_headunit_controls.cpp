#include "rig.h"

#include <longestwait.h>

// Every control of every page, touched as a finger does, and what the box gets of it.

class HeadUnitControls : public QObject {
    Q_OBJECT

private:
    Rig m_rig;

    static void addHeld(const char *page, const char *path, const char *command)
    {
        QTest::newRow(command) << QString(page) << QString(path) << QString(command);
    }

    static void addTapped(const char *page, const char *path, const char *command,
                          const QJsonObject &arguments)
    {
        QTest::addRow("%s %s", command, path)
            << QString(page) << QString(path) << QString(command) << arguments;
    }

    static void addGroup(const char *page)
    {
        for (const char *name : {"customControl1", "customControl2"})
            addTapped(page, name, qPrintable(QStringLiteral("%1.%2").arg(page, name)), {{"press", true}});
        addTapped(page, "settings", qPrintable(QStringLiteral("%1.settings").arg(page)), {});
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_rig.start()); }

    // The first of all: once a key was used, the focus is shown.
    void theFocusIsShownToThoseWhoUseKeys()
    {
        m_rig.click(QStringLiteral("climateTab"));
        QVERIFY(!m_rig.find("climateTab/focusRing")->isVisible());
        QTest::keyClick(&m_rig.window, Qt::Key_Tab);
        QCOMPARE(m_rig.window.activeFocusItem(), m_rig.find("gaugesTab"));
        QVERIFY(m_rig.find("gaugesTab/focusRing")->isVisible());
    }

    void keysWorkWhenTheFocusHasGoneWithItsPage()
    {
        QVERIFY(m_rig.open(QStringLiteral("climate")));
        m_rig.find("acBtn")->forceActiveFocus();
        QTest::keyClick(&m_rig.window, Qt::Key_2);
        QCOMPARE(m_rig.page(), QStringLiteral("gauges"));
        QTest::keyClick(&m_rig.window, Qt::Key_3);
        QCOMPARE(m_rig.page(), QStringLiteral("vehicle"));
    }

    void heldButtonsTellPressAndRelease_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("command");
        addHeld("climate", "main/plus", "climate.autoMainZoneTempPlus");
        addHeld("climate", "main/minus", "climate.autoMainZoneTempMinus");
        addHeld("climate", "second/plus", "climate.autoSecondZoneTempPlus");
        addHeld("climate", "second/minus", "climate.autoSecondZoneTempMinus");
        addHeld("climate", "fanPlus", "climate.fanSpeedUp");
        addHeld("climate", "fanMinus", "climate.fanSpeedDown");
        addHeld("climate", "manualTempPlus", "climate.manualMainZoneTempUp");
        addHeld("climate", "manualTempMinus", "climate.manualMainZoneTempDown");
        addHeld("climate", "rearZone", "climate.rearZone");
        addHeld("gauges", "Gauge1_CenterGauge", "gauges.Gauge1_CenterGauge");
        addHeld("gauges", "Gauge2_TopLeft", "gauges.Gauge2_TopLeft");
        addHeld("gauges", "Gauge3_TopRight", "gauges.Gauge3_TopRight");
        addHeld("gauges", "Gauge4_BottomLeft", "gauges.Gauge4_BottomLeft");
        addHeld("gauges", "Gauge5_BottomRight", "gauges.Gauge5_BottomRight");
    }

    void heldButtonsTellPressAndRelease()
    {
        QFETCH(QString, page);
        QFETCH(QString, path);
        QFETCH(QString, command);
        QVERIFY(m_rig.open(page));
        QVERIFY(m_rig.find(path));
        const int releases = m_rig.count(command, {{"press", false}});
        m_rig.press(path);
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.count(command, {{"press", true}}), 1, kLongestWaitMs);
        QCOMPARE(m_rig.count(command, {{"press", false}}), releases);
        m_rig.release(path);
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.count(command, {{"press", false}}), releases + 1, kLongestWaitMs);
        QCOMPARE(m_rig.count(command, {{"press", true}}), 1);
    }

    void tappedButtonsReachTheBoxOnce_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("command");
        QTest::addColumn<QJsonObject>("arguments");
        for (const char *name : {"onOff", "autoBtn", "acBtn", "maxACBtn", "dualBtn", "recircFresh",
                                 "frontDefroster", "rearDefroster", "heatedSteerWheel", "ventPos"})
            addTapped("climate", name, qPrintable(QStringLiteral("climate.") + name), {{"press", true}});
        addTapped("climate", "main/heat", "climate.leftHeatedSeat", {{"press", true}});
        addTapped("climate", "main/cool", "climate.leftCooledSeat", {{"press", true}});
        addTapped("climate", "second/heat", "climate.rightHeatedSeat", {{"press", true}});
        addTapped("climate", "second/cool", "climate.rightCooledSeat", {{"press", true}});
        for (const char *page : {"climate", "gauges", "vehicle", "parking"})
            addGroup(page);
        addTapped("vehicle", "checkEngine", "vehicle.checkEngine", {{"press", true}});
        addTapped("menu", "line1", "player.onMenuPress", {{"menu", 1}, {"item", 1}, {"action", 0}});
        addTapped("menu", "minus", "player.onMenuPress", {{"menu", 1}, {"item", 1}, {"action", 1}});
        addTapped("menu", "plus", "player.onMenuPress", {{"menu", 1}, {"item", 1}, {"action", 2}});
        addTapped("menu", "back", "player.onMenuPress", {{"menu", 1}, {"item", 2}, {"action", 0}});
    }

    void tappedButtonsReachTheBoxOnce()
    {
        QFETCH(QString, page);
        QFETCH(QString, path);
        QFETCH(QString, command);
        QFETCH(QJsonObject, arguments);
        QVERIFY(m_rig.open(page));
        QVERIFY(m_rig.find(path));
        const QVariantList menu = m_rig.pageItem()->property("menu").toList();
        m_rig.click(path);
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.count(command, arguments), 1, kLongestWaitMs);
        // The menu answers with what is pressed next.
        if (page == QLatin1String("menu"))
            QTRY_VERIFY_WITH_TIMEOUT(m_rig.pageItem()->property("menu").toList() != menu, kLongestWaitMs);
    }

    void aLampFollowsTheBox()
    {
        QVERIFY(m_rig.open(QStringLiteral("climate")));
        m_rig.send(QStringLiteral("climate.button.7=0"));
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.find("maxACBtn")->property("lamp").toInt(), 0, kLongestWaitMs);
        m_rig.click(QStringLiteral("maxACBtn"));
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.find("maxACBtn")->property("lamp").toInt(), 1, kLongestWaitMs);
    }

    void everyLampShowsItsState_data()
    {
        QTest::addColumn<int>("lamp");
        QTest::addColumn<QString>("path");
        const char *const paths[] = {"onOff",         "rearZone",       "autoBtn",        "recircFresh",
                                     "dualBtn",       "acBtn",          "maxACBtn",       "frontDefroster",
                                     "rearDefroster", "customControl1", "customControl2", "heatedSteerWheel",
                                     "main/plus",     "main/minus",     "second/plus",    "second/minus",
                                     "fanPlus",       "fanMinus",       "ventPos"};
        int number = 0;
        for (const char *path : paths)
            QTest::newRow(path) << ++number << QString(path);
        QTest::newRow("seats, left") << 20 << QStringLiteral("main/seatLamp");
        QTest::newRow("seats, right") << 20 << QStringLiteral("second/seatLamp");
    }

    void everyLampShowsItsState()
    {
        QFETCH(int, lamp);
        QFETCH(QString, path);
        QVERIFY(m_rig.open(QStringLiteral("climate")));
        const QQuickItem *const item = m_rig.find(path);
        QVERIFY(item);
        for (const int state : {3, 0}) {
            m_rig.send(QStringLiteral("climate.button.%1=%2").arg(lamp).arg(state));
            QTRY_COMPARE_WITH_TIMEOUT(item->property("lamp").toInt(), state, kLongestWaitMs);
        }
    }

    void draggedValuesReachTheBox_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("last");
        QTest::newRow("air flow") << "autoFanDirectValue"
                                  << "climate.autoFanDirectValue" << 255;
        QTest::newRow("temperature by hand, above what is plain text") << "manualTemp"
                                                                       << "climate.manualTemp" << 255;
        QTest::newRow("fan speed") << "fan"
                                   << "climate.manualFanSpeed" << 3;
    }

    void draggedValuesReachTheBox()
    {
        QFETCH(QString, path);
        QFETCH(QString, command);
        QFETCH(int, last);
        QVERIFY(m_rig.open(QStringLiteral("climate")));
        QQuickItem *const bar = m_rig.find(path);
        QVERIFY(bar);
        QTest::mousePress(&m_rig.window, Qt::LeftButton, {}, Rig::pointOf(bar, 0.05));
        for (int step = 1; step <= 50; ++step)
            QTest::mouseMove(&m_rig.window, Rig::pointOf(bar, 0.05 + 0.0186 * step));
        QTest::mouseRelease(&m_rig.window, Qt::LeftButton, {}, Rig::pointOf(bar, 0.98));
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.count(command, {{"value", last}}), 1, kLongestWaitMs);
        // The link takes one command at a time: a drag is not fifty of them.
        QVERIFY(m_rig.count(command) >= 2);
        QVERIFY(m_rig.count(command) < 25);
        QTRY_COMPARE_WITH_TIMEOUT(bar->property("shown").toInt(), last, kLongestWaitMs);
    }

    void keysMoveAndPress()
    {
        QTest::keyClick(&m_rig.window, Qt::Key_1);
        QCOMPARE(m_rig.page(), QStringLiteral("climate"));
        m_rig.find("recircFresh")->forceActiveFocus();
        QTest::keyClick(&m_rig.window, Qt::Key_Right);
        QCOMPARE(m_rig.window.activeFocusItem(), m_rig.find("rearZone"));
        QTest::keyClick(&m_rig.window, Qt::Key_Down);
        QCOMPARE(m_rig.window.activeFocusItem(), m_rig.find("settings"));
        QTest::keyClick(&m_rig.window, Qt::Key_Up);
        QCOMPARE(m_rig.window.activeFocusItem(), m_rig.find("rearZone"));
        const int before = m_rig.count("climate.rearZone");
        QTest::keyPress(&m_rig.window, Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.count("climate.rearZone"), before + 1, kLongestWaitMs);
        QTest::keyRelease(&m_rig.window, Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.count("climate.rearZone"), before + 2, kLongestWaitMs);
    }

    void spaceTaps()
    {
        QVERIFY(m_rig.open(QStringLiteral("climate")));
        m_rig.find("dualBtn")->forceActiveFocus();
        const int before = m_rig.count("climate.dualBtn");
        QTest::keyClick(&m_rig.window, Qt::Key_Space);
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.count("climate.dualBtn"), before + 1, kLongestWaitMs);
    }

    void tabReachesEveryControl()
    {
        QVERIFY(m_rig.open(QStringLiteral("climate")));
        m_rig.find("climateTab")->forceActiveFocus();
        QSet<QString> reached;
        for (int i = 0; i < 60; ++i) {
            QTest::keyClick(&m_rig.window, Qt::Key_Tab);
            reached.insert(m_rig.window.activeFocusItem()->objectName());
        }
        for (const char *name :
             {"gaugesTab", "linkTab", "night", "plus", "minus", "heat", "cool", "onOff", "ventPos",
              "fanMinus", "fan", "fanPlus", "manualTemp", "autoFanDirectValue", "autoBtn", "settings"})
            QVERIFY2(reached.contains(QString(name)), name);
    }

    void plusAndMinusChangeAValue()
    {
        QVERIFY(m_rig.open(QStringLiteral("climate")));
        m_rig.send(QStringLiteral("climate.manualTemp=96"));
        QQuickItem *const bar = m_rig.find("manualTemp");
        QTRY_COMPARE_WITH_TIMEOUT(bar->property("value").toInt(), 96, kLongestWaitMs);
        bar->forceActiveFocus();
        QTest::keyClick(&m_rig.window, Qt::Key_Minus);
        QTRY_COMPARE_WITH_TIMEOUT(bar->property("value").toInt(), 91, kLongestWaitMs);
        QTest::keyClick(&m_rig.window, Qt::Key_Plus);
        QTRY_COMPARE_WITH_TIMEOUT(bar->property("value").toInt(), 96, kLongestWaitMs);
    }

    void stepsThatComeFastAddUp()
    {
        QVERIFY(m_rig.open(QStringLiteral("climate")));
        m_rig.send(QStringLiteral("climate.fanDirectValue=40"));
        QQuickItem *const bar = m_rig.find("autoFanDirectValue");
        QTRY_COMPARE_WITH_TIMEOUT(bar->property("value").toInt(), 40, kLongestWaitMs);
        bar->forceActiveFocus();
        for (int i = 0; i < 4; ++i)
            QTest::keyClick(&m_rig.window, Qt::Key_Plus);
        QTRY_COMPARE_WITH_TIMEOUT(bar->property("value").toInt(), 60, kLongestWaitMs);
    }

    void aButtonThatIsHeldIsReleasedWhenItsPageGoes_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("by a finger") << false;
        QTest::newRow("by a key") << true;
    }

    void aButtonThatIsHeldIsReleasedWhenItsPageGoes()
    {
        QFETCH(bool, byKey);
        QVERIFY(m_rig.open(QStringLiteral("climate")));
        const int presses = m_rig.count("climate.fanSpeedUp", {{"press", true}});
        const int releases = m_rig.count("climate.fanSpeedUp", {{"press", false}});
        if (byKey) {
            m_rig.find("fanPlus")->forceActiveFocus();
            QTest::keyPress(&m_rig.window, Qt::Key_Return);
        } else {
            m_rig.press(QStringLiteral("fanPlus"));
        }
        m_rig.send(QStringLiteral("parking.sensor.2=true"));
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.page(), QStringLiteral("parking"), kLongestWaitMs);
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.count("climate.fanSpeedUp", {{"press", true}}), presses + 1,
                                  kLongestWaitMs);
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.count("climate.fanSpeedUp", {{"press", false}}), releases + 1,
                                  kLongestWaitMs);
        m_rig.send(QStringLiteral("parking.sensor.2=false"));
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.page(), QStringLiteral("climate"), kLongestWaitMs);
        QTest::mouseRelease(&m_rig.window, Qt::LeftButton);
    }

    void aKeyThatIsHeldIsReleasedWhenTheFocusGoes()
    {
        QVERIFY(m_rig.open(QStringLiteral("climate")));
        const int before = m_rig.count("climate.rearZone", {{"press", false}});
        m_rig.find("rearZone")->forceActiveFocus();
        QTest::keyPress(&m_rig.window, Qt::Key_Return);
        m_rig.find("settings")->forceActiveFocus();
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.count("climate.rearZone", {{"press", false}}), before + 1,
                                  kLongestWaitMs);
    }

    void aFingerThatLeavesAButtonDoesNotTapIt()
    {
        QVERIFY(m_rig.open(QStringLiteral("climate")));
        const int before = m_rig.count("climate.acBtn");
        const int others = m_rig.count("climate.dualBtn");
        m_rig.press(QStringLiteral("acBtn"));
        QTest::mouseMove(&m_rig.window, Rig::pointOf(m_rig.find("dualBtn")));
        m_rig.release(QStringLiteral("dualBtn"));
        m_rig.click(QStringLiteral("dualBtn"));
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.count("climate.dualBtn"), others + 1, kLongestWaitMs);
        QCOMPARE(m_rig.count("climate.acBtn"), before);
    }
};

QTEST_MAIN(HeadUnitControls)

#include "tst_headunit_controls.moc"
