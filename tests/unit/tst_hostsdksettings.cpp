#include <settingsutil.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <memory>

namespace {

const QString kCameraFile = QStringLiteral("/media/flash/nvm/powerdown/acc_keeped.ini");
const QString kTimeFile = QStringLiteral("/media/flash/nvm/factory/settings.ini");

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QFile::WriteOnly)
        && file.write(content) == content.size();
}

mem::SettingsUtil *settings()
{
    return mem::SettingsUtil::instance();
}

} // namespace

/// The host's ini files, below a folder of the test's own.
class TestHostSdkSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isOneObjectWithOneSaver();
    void readsTheCameraSetting_data();
    void readsTheCameraSetting();
    void takesTheCallersDefaultForAMissingCameraSetting();
    void readsTheTimeFormat_data();
    void readsTheTimeFormat();
    void takesOneForAMissingTimeFormat();
    void readsAKeyOfASection();
    void takesTheDefaultForAKeyThatTheFileLacks();
    void takesThePathAsItIsWithoutARoot();
    void followsARootThatChanges();
    void readsTheFileAtTheTimeOfTheCall();
    void createsNoFileByReading();

private:
    QString inRoot(const QString &file) const { return m_root->path() + file; }

    std::unique_ptr<QTemporaryDir> m_root;
};

void TestHostSdkSettings::init()
{
    m_root = std::make_unique<QTemporaryDir>();
    QVERIFY(m_root->isValid());
    qputenv("CANBUS_HOST_ROOT", QFile::encodeName(m_root->path()));
}

void TestHostSdkSettings::cleanup()
{
    qunsetenv("CANBUS_HOST_ROOT");
    m_root.reset();
}

void TestHostSdkSettings::isOneObjectWithOneSaver()
{
    QVERIFY(settings());
    QCOMPARE(mem::SettingsUtil::instance(), mem::SettingsUtil::instance());
    QVERIFY(settings()->getSaver());
    QCOMPARE(settings()->getSaver(), settings()->getSaver());
}

void TestHostSdkSettings::readsTheCameraSetting_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("value");
    QTest::newRow("true, without a section") << QByteArray("CameraComposite=true\n") << true;
    QTest::newRow("true, in the general section") << QByteArray("[General]\nCameraComposite=true\n") << true;
    QTest::newRow("1") << QByteArray("CameraComposite=1\n") << true;
    QTest::newRow("false") << QByteArray("CameraComposite=false\n") << false;
    QTest::newRow("0") << QByteArray("CameraComposite=0\n") << false;
}

void TestHostSdkSettings::readsTheCameraSetting()
{
    QFETCH(const QByteArray, content);
    QFETCH(const bool, value);
    QVERIFY(writeFile(inRoot(kCameraFile), content));
    // The default is the opposite, so that it cannot be mistaken for the file's value.
    QCOMPARE(settings()->getCameraComposite(!value), value);
}

void TestHostSdkSettings::takesTheCallersDefaultForAMissingCameraSetting()
{
    QCOMPARE(settings()->getCameraComposite(false), false);
    QCOMPARE(settings()->getCameraComposite(true), true);
}

void TestHostSdkSettings::readsTheTimeFormat_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("value");
    QTest::newRow("0") << QByteArray("TimeFormat=0\n") << 0;
    QTest::newRow("2, in the general section") << QByteArray("[General]\nTimeFormat=2\n") << 2;
    QTest::newRow("a text reads as 0") << QByteArray("TimeFormat=long\n") << 0;
}

void TestHostSdkSettings::readsTheTimeFormat()
{
    QFETCH(const QByteArray, content);
    QVERIFY(writeFile(inRoot(kTimeFile), content));
    QTEST(settings()->getTimeFormat(), "value");
}

void TestHostSdkSettings::takesOneForAMissingTimeFormat()
{
    QCOMPARE(settings()->getTimeFormat(), 1);
}

void TestHostSdkSettings::readsAKeyOfASection()
{
    QVERIFY(writeFile(inRoot("/etc/host.ini"), "[Screen]\nBrightness=40\n"));
    QCOMPARE(settings()->getSaver()->getValue("Screen/Brightness", "/etc/host.ini", 7).toInt(), 40);
}

void TestHostSdkSettings::takesTheDefaultForAKeyThatTheFileLacks()
{
    QVERIFY(writeFile(inRoot("/etc/host.ini"), "Other=40\n"));
    QCOMPARE(settings()->getSaver()->getValue("Brightness", "/etc/host.ini", 7), QVariant(7));
}

void TestHostSdkSettings::takesThePathAsItIsWithoutARoot()
{
    qunsetenv("CANBUS_HOST_ROOT");
    QVERIFY(writeFile(inRoot("/plain.ini"), "Brightness=40\n"));
    QCOMPARE(settings()->getSaver()->getValue("Brightness", inRoot("/plain.ini"), 7).toInt(), 40);
}

void TestHostSdkSettings::followsARootThatChanges()
{
    QVERIFY(writeFile(inRoot(kTimeFile), "TimeFormat=2\n"));
    QVERIFY(writeFile(inRoot("/second") + kTimeFile, "TimeFormat=3\n"));
    QCOMPARE(settings()->getTimeFormat(), 2);
    qputenv("CANBUS_HOST_ROOT", QFile::encodeName(inRoot("/second")));
    QCOMPARE(settings()->getTimeFormat(), 3);
}

void TestHostSdkSettings::readsTheFileAtTheTimeOfTheCall()
{
    QVERIFY(writeFile(inRoot(kCameraFile), "CameraComposite=true\n"));
    QCOMPARE(settings()->getCameraComposite(false), true);
    QVERIFY(writeFile(inRoot(kCameraFile), "CameraComposite=false\n"));
    QCOMPARE(settings()->getCameraComposite(true), false);
    QVERIFY(QFile::remove(inRoot(kCameraFile)));
    QCOMPARE(settings()->getCameraComposite(true), true);
}

void TestHostSdkSettings::createsNoFileByReading()
{
    settings()->getCameraComposite(false);
    settings()->getTimeFormat();
    QVERIFY(QDir(m_root->path()).isEmpty());
}

QTEST_GUILESS_MAIN(TestHostSdkSettings)
#include "tst_hostsdksettings.moc"
