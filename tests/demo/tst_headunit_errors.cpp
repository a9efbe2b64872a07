#include "errors.h"

#include <QtQml/QQmlError>
#include <QtTest/QTest>

// What is said when the screens do not load, for each module that can be missing.

class HeadUnitErrors : public QObject {
    Q_OBJECT

private:
    static QQmlError errorOf(const QString &description)
    {
        QQmlError error;
        error.setUrl(QUrl(QStringLiteral("qrc:/headunit/qml/HeadUnit.qml")));
        error.setLine(2);
        error.setDescription(description);
        return error;
    }

private Q_SLOTS:
    void aMissingModuleIsNamedWithWhatBringsIt_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("line");
        QTest::newRow("Qt Quick") << "module \"QtQuick\" is not installed"
                                  << "the QML module QtQuick is missing: install qml-module-qtquick2";
        QTest::newRow("with a version")
            << "module \"QtQuick.Window\" version 2.15 is not installed"
            << "the QML module QtQuick.Window is missing: install qml-module-qtquick-window2";
        QTest::newRow("shapes")
            << "module \"QtQuick.Shapes\" is not installed"
            << "the QML module QtQuick.Shapes is missing: install qml-module-qtquick-shapes";
        QTest::newRow("the library's")
            << "module \"CanBus\" is not installed"
            << "the QML module CanBus is missing: install the library's QML module, or "
               "name the folder above it in QML2_IMPORT_PATH";
        QTest::newRow("one that does not load")
            << "plugin cannot be loaded for module \"QtQuick.Shapes\": no such library"
            << "the QML module QtQuick.Shapes does not load (no such library): install "
               "qml-module-qtquick-shapes";
    }

    void aMissingModuleIsNamedWithWhatBringsIt()
    {
        QFETCH(QString, description);
        QFETCH(QString, line);
        QCOMPARE(canbus::headunit::loadError({errorOf("Type Page unavailable"), errorOf(description)}), line);
    }

    void anyOtherErrorIsToldWithItsPlace()
    {
        const QString line = canbus::headunit::loadError({errorOf("Expected token")});
        QVERIFY2(line.contains("HeadUnit.qml:2") && line.contains("Expected token"), qPrintable(line));
    }
};

QTEST_GUILESS_MAIN(HeadUnitErrors)

#include "tst_headunit_errors.moc"
