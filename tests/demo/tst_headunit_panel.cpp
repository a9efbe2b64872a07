#include "rig.h"

#include <longestwait.h>

// The control panel plays the car, and the head unit shows it.

class HeadUnitPanel : public QObject {
    Q_OBJECT

private:
    Rig m_rig;
    QQuickWindow m_window;
    std::unique_ptr<QObject> m_panel;

    QQuickItem *item(const QString &name) const { return Rig::findIn(m_window.contentItem(), name); }

    void click(const QString &name)
    {
        QTest::mouseClick(&m_window, Qt::LeftButton, {}, Rig::pointOf(item(name)));
    }

    QVariant stateOf(const char *singleton, const char *property) const
    {
        QQmlEngine *const engine = m_rig.unit->engine();
        return engine->singletonInstance<QObject *>(qmlTypeId("CanBus", 1, 0, singleton))->property(property);
    }

    QVariant entryOf(const char *singleton, const char *property, int index) const
    {
        return stateOf(singleton, property).toList().value(index);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_rig.start());
        QString error;
        m_panel.reset(m_rig.unit->load(QStringLiteral("panel/Panel.qml"), {}, &error));
        auto *const panel = qobject_cast<QQuickItem *>(m_panel.get());
        QVERIFY2(panel, qPrintable(error));
        panel->setParentItem(m_window.contentItem());
        m_window.resize(panel->size().toSize());
        m_window.show();
        QSignalSpy frames(&m_window, &QQuickWindow::frameSwapped);
        QVERIFY(frames.wait(kLongestWaitMs));
    }

    void theCarBeginsClosed()
    {
        QTRY_COMPARE_WITH_TIMEOUT(stateOf("VehicleState", "doors").toList(),
                                  (QVariantList {false, false, false, false}), kLongestWaitMs);
        QTRY_COMPARE_WITH_TIMEOUT(stateOf("VehicleState", "trunk").toBool(), false, kLongestWaitMs);
    }

    void doorsOpenAndClose_data()
    {
        QTest::addColumn<int>("index");
        for (int i = 0; i < 4; ++i)
            QTest::addRow("door%d", i + 1) << i;
    }

    void doorsOpenAndClose()
    {
        QFETCH(int, index);
        click(QTest::currentDataTag());
        QTRY_COMPARE_WITH_TIMEOUT(entryOf("VehicleState", "doors", index).toBool(), true, kLongestWaitMs);
        click(QTest::currentDataTag());
        QTRY_COMPARE_WITH_TIMEOUT(entryOf("VehicleState", "doors", index).toBool(), false, kLongestWaitMs);
    }

    void switchesReachTheHeadUnit_data()
    {
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<int>("on");
        QTest::newRow("hood") << QByteArray("hood") << 1;
        QTest::newRow("trunk") << QByteArray("trunk") << 1;
        QTest::newRow("engine") << QByteArray("checkEngine") << 1;
        QTest::newRow("battery") << QByteArray("battery") << 1;
    }

    void switchesReachTheHeadUnit()
    {
        QFETCH(QByteArray, property);
        QFETCH(int, on);
        click(QTest::currentDataTag());
        QTRY_COMPARE_WITH_TIMEOUT(stateOf("VehicleState", property.constData()).toInt(), on, kLongestWaitMs);
        click(QTest::currentDataTag());
        QTRY_COMPARE_WITH_TIMEOUT(stateOf("VehicleState", property.constData()).toInt(), 0, kLongestWaitMs);
    }

    void aSoftTireReachesTheHeadUnit()
    {
        click(QStringLiteral("tire"));
        QTRY_COMPARE_WITH_TIMEOUT(entryOf("VehicleState", "tires", 2).toInt(), 2, kLongestWaitMs);
    }

    void valuesReachTheHeadUnit_data()
    {
        QTest::addColumn<QByteArray>("state");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QVariant>("highest");
        QTest::newRow("speed") << QByteArray("GaugesState") << QByteArray("valueTexts")
                               << QVariant("200 km/h");
        QTest::newRow("coolant") << QByteArray("GaugesState") << QByteArray("valueTexts")
                                 << QVariant("150 °C");
        QTest::newRow("distance") << QByteArray("ParkingState") << QByteArray("rear") << QVariant(255);
    }

    void valuesReachTheHeadUnit()
    {
        QFETCH(QByteArray, state);
        QFETCH(QByteArray, property);
        QFETCH(QVariant, highest);
        QTest::mouseClick(&m_window, Qt::LeftButton, {}, Rig::pointOf(item(QTest::currentDataTag()), 0.99));
        QTRY_VERIFY_WITH_TIMEOUT(stateOf(state.constData(), property.constData()).toList().contains(highest),
                                 kLongestWaitMs);
    }

    void theEngineSpeedLightsTheShiftLight()
    {
        QTest::mouseClick(&m_window, Qt::LeftButton, {},
                          Rig::pointOf(item(QStringLiteral("engineSpeed")), 0.99));
        QTRY_COMPARE_WITH_TIMEOUT(stateOf("GaugesState", "shift").toBool(), true, kLongestWaitMs);
    }

    void noiseIsOnTheLine()
    {
        const auto skipped = [this] {
            return stateOf("LinkState", "figures").toMap().value(QStringLiteral("skippedBytes")).toInt();
        };
        const int before = skipped();
        click(QStringLiteral("noise"));
        QTRY_VERIFY_WITH_TIMEOUT(skipped() > before, kLongestWaitMs);
        click(QStringLiteral("noise"));
    }

    void answersGetLost()
    {
        const auto repeated = [this] {
            return std::count_if(m_rig.reports.begin(), m_rig.reports.end(), [](const QJsonObject &report) {
                return report["name"] == "climate.acBtn" && report["repeated"].toBool();
            });
        };
        QVERIFY(m_rig.open(QStringLiteral("climate")));
        click(QStringLiteral("answers"));
        for (int i = 0; i < 20 && repeated() == 0; ++i) {
            const int before = m_rig.count("climate.acBtn");
            m_rig.click(QStringLiteral("acBtn"));
            QTRY_VERIFY_WITH_TIMEOUT(m_rig.count("climate.acBtn") > before, kLongestWaitMs);
            // A repetition comes 300 ms after what it repeats.
            static_cast<void>(QTest::qWaitFor([&] { return repeated() > 0; }, 500));
        }
        QVERIFY(repeated() > 0);
        click(QStringLiteral("answers"));
        QTRY_VERIFY_WITH_TIMEOUT(stateOf("LinkState", "connected").toBool(), kLongestWaitMs);
    }

    void theTemperatureReachesTheHeadUnit()
    {
        QTRY_COMPARE_WITH_TIMEOUT(stateOf("ClimateState", "mainTemp").toInt(), 215, kLongestWaitMs);
        QTest::mouseClick(&m_window, Qt::LeftButton, {}, Rig::pointOf(item(QStringLiteral("cabin")), 0.01));
        QTRY_COMPARE_WITH_TIMEOUT(stateOf("ClimateState", "mainTemp").toInt(), 160, kLongestWaitMs);
    }

    void reverseBringsTheParkingPage()
    {
        click(QStringLiteral("reverse"));
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.page(), QStringLiteral("parking"), kLongestWaitMs);
        click(QStringLiteral("reverse"));
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.page(), QStringLiteral("climate"), kLongestWaitMs);
    }

    void theBoxRestartsAndIsThereAgain()
    {
        const auto restarts = [this] {
            return std::count_if(m_rig.reports.begin(), m_rig.reports.end(),
                                 [](const QJsonObject &report) { return report["event"] == "restart"; });
        };
        click(QStringLiteral("restart"));
        QTRY_COMPARE_WITH_TIMEOUT(int(restarts()), 1, kLongestWaitMs);
        QTRY_VERIFY_WITH_TIMEOUT(stateOf("LinkState", "connected").toBool(), kLongestWaitMs);
    }

    void theBoxStopsAnsweringWithOneClick()
    {
        QTRY_VERIFY_WITH_TIMEOUT(stateOf("LinkState", "connected").toBool(), kLongestWaitMs);
        click(QStringLiteral("silence"));
        m_rig.click(QStringLiteral("acBtn")); // the loss is noticed by the next command that is not answered
        QTRY_VERIFY_WITH_TIMEOUT(!stateOf("LinkState", "connected").toBool(), kLongestWaitMs);
        click(QStringLiteral("silence"));
        QTRY_VERIFY_WITH_TIMEOUT(stateOf("LinkState", "connected").toBool(), kLongestWaitMs);
    }
};

QTEST_MAIN(HeadUnitPanel)

#include "tst_headunit_panel.moc"
