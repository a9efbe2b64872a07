#include "rig.h"

#include <longestwait.h>

#include <QtCore/QMetaProperty>
#include <QtQml/QJSValue>

#include <linkhealth.h>

// Which page is shown, and what it shows of the link.

class HeadUnitPages : public QObject {
    Q_OBJECT

private:
    Rig m_rig;

    bool isNotLive() const
    {
        const auto *const notice = m_rig.find("notLive");
        return notice && notice->isVisible();
    }

    static QString sensors(const char *value)
    {
        return QStringLiteral("parking.sensor.1=%1 parking.sensor.2=%1").arg(value);
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_rig.start()); }

    void eachPageOpensThroughTheRail_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("request");
        QTest::newRow("gauges") << "Gauges"
                                << "gauges.requestGaugesInfo";
        QTest::newRow("vehicle") << "Vehicle"
                                 << "vehicle.requestVehicleInfo";
        QTest::newRow("parking") << "Parking assist"
                                 << "parking.requestParkInfo";
        QTest::newRow("menu") << "Lights"
                              << "player.requestNormal";
        QTest::newRow("climate") << "Climate"
                                 << "climate.requestClimateInfo";
        QTest::newRow("link") << "Link"
                              << "player.requestNormal";
    }

    void eachPageOpensThroughTheRail()
    {
        QFETCH(QString, title);
        QFETCH(QString, request);
        const int before = m_rig.count(request);
        QVERIFY(m_rig.open(QTest::currentDataTag()));
        QVERIFY(m_rig.pageItem());
        QCOMPARE(m_rig.pageItem()->property("title").toString(), title);
        QTRY_VERIFY_WITH_TIMEOUT(m_rig.count(request) > before, kLongestWaitMs);
        QVERIFY(!isNotLive());
    }

    void numbersOpenPages_data()
    {
        QTest::addColumn<int>("key");
        const QStringList pages = canbus::headunit::pageNames();
        for (int i = 0; i < pages.size(); ++i)
            QTest::newRow(qPrintable(pages.at(i))) << int(Qt::Key_1) + i;
    }

    void numbersOpenPages()
    {
        QFETCH(int, key);
        QTest::keyClick(&m_rig.window, Qt::Key(key));
        QCOMPARE(m_rig.page(), QString(QTest::currentDataTag()));
    }

    void reverseBringsParkingAndTakesItAway()
    {
        QVERIFY(m_rig.open(QStringLiteral("vehicle")));
        QVERIFY(!m_rig.find("reverseSign")->isVisible());
        m_rig.send(sensors("true"));
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.page(), QStringLiteral("parking"), kLongestWaitMs);
        QVERIFY(m_rig.find("reverseSign")->isVisible());
        m_rig.send(sensors("false"));
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.page(), QStringLiteral("vehicle"), kLongestWaitMs);
        QVERIFY(!m_rig.find("reverseSign")->isVisible());
    }

    void aPageChosenInReverseStays()
    {
        QVERIFY(m_rig.open(QStringLiteral("vehicle")));
        m_rig.send(sensors("true"));
        QTRY_COMPARE_WITH_TIMEOUT(m_rig.page(), QStringLiteral("parking"), kLongestWaitMs);
        QVERIFY(m_rig.open(QStringLiteral("climate")));
        m_rig.send(sensors("false"));
        QTRY_VERIFY_WITH_TIMEOUT(!m_rig.find("reverseSign")->isVisible(), kLongestWaitMs);
        QCOMPARE(m_rig.page(), QStringLiteral("climate"));
    }

    void onlyWhatTheBoxSupportsIsOffered()
    {
        QVERIFY(m_rig.open(QStringLiteral("menu")));
        m_rig.send(QStringLiteral("screens.supported.5=no screens.supported.2=no"));
        QTRY_VERIFY_WITH_TIMEOUT(!m_rig.find("menuTab")->isVisible(), kLongestWaitMs);
        QVERIFY(!m_rig.find("parkingTab")->isVisible());
        QVERIFY(m_rig.find("gaugesTab")->isVisible());
        QCOMPARE(m_rig.page(), QStringLiteral("climate"));
        QTest::keyClick(&m_rig.window, Qt::Key_5);
        QCOMPARE(m_rig.page(), QStringLiteral("climate"));
        m_rig.send(sensors("true"));
        QTRY_VERIFY_WITH_TIMEOUT(m_rig.find("reverseSign")->isVisible(), kLongestWaitMs);
        QCOMPARE(m_rig.page(), QStringLiteral("climate"));
        m_rig.send(sensors("false") + " screens.supported.5=yes screens.supported.2=yes");
        QTRY_VERIFY_WITH_TIMEOUT(m_rig.find("menuTab")->isVisible(), kLongestWaitMs);
    }

    void nightIsOneTouchAway()
    {
        const auto colour = [this] {
            return m_rig.screen()->childItems().constFirst()->property("color").value<QColor>();
        };
        const int day = colour().lightness();
        m_rig.click(QStringLiteral("night"));
        QVERIFY(m_rig.screen()->property("night").toBool());
        QVERIFY(colour().lightness() < day / 4);
        QTest::keyClick(&m_rig.window, Qt::Key_N);
        QCOMPARE(colour().lightness(), day);
    }

    void reverseHasAKey()
    {
        QVERIFY(m_rig.open(QStringLiteral("vehicle")));
        QTest::keyClick(&m_rig.window, Qt::Key_R);
        QVERIFY(m_rig.find("reverseSign")->isVisible());
        QCOMPARE(m_rig.page(), QStringLiteral("parking"));
        QTest::keyClick(&m_rig.window, Qt::Key_R);
        QVERIFY(!m_rig.find("reverseSign")->isVisible());
        QCOMPARE(m_rig.page(), QStringLiteral("vehicle"));
    }

    void aSensorThatIsOffMarksNothingAsNear()
    {
        QVERIFY(m_rig.open(QStringLiteral("parking")));
        const QQuickItem *const rear = m_rig.find("side1");
        QCOMPARE(rear->property("text").toString(), QStringLiteral("45"));
        QVERIFY(!rear->property("isNear").toBool());
        m_rig.send(QStringLiteral("parking.sensor.2=true"));
        QTRY_VERIFY_WITH_TIMEOUT(rear->property("isNear").toBool(), kLongestWaitMs);
        m_rig.send(QStringLiteral("parking.sensor.2=false"));
        QTRY_VERIFY_WITH_TIMEOUT(!rear->property("isNear").toBool(), kLongestWaitMs);
    }

    void theLinkPageShowsEveryFigure()
    {
        QVERIFY(m_rig.open(QStringLiteral("link")));
        QStringList shown;
        const QVariantList rows = m_rig.pageItem()->property("rows").value<QJSValue>().toVariant().toList();
        for (const QVariant &row : rows)
            shown += row.toList().value(1).toString();
        const QMetaObject &figures = canbus::LinkFigures::staticMetaObject;
        for (int index = 0; index < figures.propertyCount(); ++index) {
            const QMetaProperty figure = figures.property(index);
            if (figure.type() != QVariant::Map)
                QVERIFY2(shown.removeOne(QString::fromLatin1(figure.name())), figure.name());
        }
        QCOMPARE(shown, QStringList());
    }

    void theLinkPageShowsFiguresAndFrames()
    {
        QVERIFY(m_rig.open(QStringLiteral("link")));
        const auto figure = [this] {
            return m_rig.pageItem()
                ->property("figures")
                .toMap()
                .value(QStringLiteral("receivedFrames"))
                .toInt();
        };
        QTRY_VERIFY_WITH_TIMEOUT(figure() > 10, kLongestWaitMs);
        QVERIFY(m_rig.find("frames")->property("count").toInt() > 5);
        const int before = figure();
        m_rig.send(QStringLiteral("vehicle.hood=open"));
        QTRY_VERIFY_WITH_TIMEOUT(figure() > before, kLongestWaitMs);
    }

    void valuesAreNotLiveWhileTheBoxIsSilent_data()
    {
        QTest::addColumn<QString>("control");
        QTest::newRow("climate") << "acBtn";
        QTest::newRow("gauges") << "customControl1";
        QTest::newRow("vehicle") << "checkEngine";
        QTest::newRow("parking") << "customControl1";
        QTest::newRow("menu") << "line0";
    }

    void valuesAreNotLiveWhileTheBoxIsSilent()
    {
        QFETCH(QString, control);
        QVERIFY(m_rig.open(QTest::currentDataTag()));
        QTRY_VERIFY_WITH_TIMEOUT(!isNotLive(), kLongestWaitMs);
        m_rig.send(QStringLiteral("fault.silence=true"));
        m_rig.click(control); // the loss is noticed by the next command that is not answered
        QTRY_VERIFY_WITH_TIMEOUT(isNotLive(), kLongestWaitMs);
        QCOMPARE(m_rig.find("linkText")->property("text").toString(), QStringLiteral("No link"));
        QVERIFY(!m_rig.find(control)->isEnabled());
        if (const auto *const side = m_rig.find("side1"))
            QCOMPARE(side->property("text").toString(), QStringLiteral("--"));
        m_rig.send(QStringLiteral("fault.silence=false"));
        QTRY_VERIFY_WITH_TIMEOUT(!isNotLive(), kLongestWaitMs);
        QCOMPARE(m_rig.find("linkText")->property("text").toString(), QStringLiteral("Connected"));
        QVERIFY(m_rig.find(control)->isEnabled());
    }
};

QTEST_MAIN(HeadUnitPages)

#include "tst_headunit_pages.moc"
