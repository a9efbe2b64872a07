#include "commandline/devicename.h"

#include <QtTest/QTest>

/// How an error names a serial device.
class tst_devicename : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void saysWhereANameWithoutAFolderWasLookedFor_data();
    void saysWhereANameWithoutAFolderWasLookedFor();
};

void tst_devicename::saysWhereANameWithoutAFolderWasLookedFor_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("tried");
    QTest::addColumn<QString>("path");

    QTest::newRow("a full path") << "/dev/ttyS3"
                                 << "/dev/ttyS3"
                                 << "/dev/ttyS3";
    QTest::newRow("in this folder") << "./box"
                                    << "./box"
                                    << "./box";
    QTest::newRow("in the folder above") << "../box"
                                         << "../box"
                                         << "../box";
    QTest::newRow("a name") << "ttyS3"
                            << "ttyS3 (tried /dev/ttyS3)"
                            << "/dev/ttyS3";
    QTest::newRow("a folder without ./") << "run/box"
                                         << "run/box (tried /dev/run/box)"
                                         << "/dev/run/box";
}

void tst_devicename::saysWhereANameWithoutAFolderWasLookedFor()
{
    QFETCH(QString, name);
    QTEST(canbus::deviceTried(name), "tried");
    QTEST(canbus::devicePath(name), "path");
}

QTEST_GUILESS_MAIN(tst_devicename)
#include "tst_devicename.moc"
