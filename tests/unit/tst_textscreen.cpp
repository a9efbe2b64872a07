#include "canbusplayerprobe.h"
#include "hexbytes.h"
#include "logrecorder.h"
#include "player/canbusdatamap.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>

using namespace canbus;

namespace {

constexpr quint8 kTextScreenCategory = 0x11;

/// Two texts, "A" and "B", with plus and minus.
const QByteArray kTwoTexts = bytes("01 02 03 04 03 41 00 42 00");

/// The arguments of updateMenuInfo() as one text: "1,2,3,4 minus plus A|B".
QString described(const QList<QVariant> &arguments)
{
    QStringList menu;
    for (const int identifier : arguments.at(0).value<QList<int>>())
        menu += QString::number(identifier);
    QString all = menu.join(',');
    all += arguments.at(1).toBool() ? " minus" : " -";
    all += arguments.at(2).toBool() ? " plus" : " -";
    return all + ' ' + arguments.at(3).toStringList().join('|');
}

/// A player of its own, with what it announces and sends.
struct TextScreen {
    CanBusPlayer player;
    QSignalSpy announced {&player, &CanBusPlayer::updateMenuInfo};
    QSignalSpy sent {&player, &CanBusPlayer::sendCmdData};

    QStringList announcements() const
    {
        QStringList all;
        for (const QList<QVariant> &arguments : announced)
            all += described(arguments);
        return all;
    }
};

void setTextScreenId(const QByteArray &id)
{
    CanBusDataMap::instance()->setData(kTextScreenCategory, {id, kTwoTexts});
}

} // namespace

/// The box's menu and text screen, and the presses on it.
class TestTextScreen : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<LogRecorder>(); }
    void cleanup() { m_log.reset(); }

    // First: a record, once stored, stays.
    void pressesWithIdZeroBeforeTheFirstTextScreen();
    void pressesWithIdZeroWhenTheRecordHasNoId_data();
    void pressesWithIdZeroWhenTheRecordHasNoId();
    void pressesWithTheIdOfTheLastTextScreen();
    void sendsAPress_data();
    void sendsAPress();
    void logsAPress();

    void announcesATextScreen_data();
    void announcesATextScreen();
    void announcesTheSameScreenOnce();
    void announcesEveryChange_data();
    void announcesEveryChange();
    void ignoresWhatTheScreenDoesNotShow_data();
    void ignoresWhatTheScreenDoesNotShow();
    void announcesAScreenThatComesBack();
    void keepsTheFirstFourBytes();
    void knowsTheScreenWhileItAnnouncesIt();
    void logsTheSizeAndThePayload();

    void announcesAgainOnlyMoreThanOneText_data();
    void announcesAgainOnlyMoreThanOneText();
    void announcesNothingAgainBeforeTheFirstScreen();
    void announcesNothingAgainWithoutAWholeMenu();
    void announcesAgainTheLastScreen();

private:
    std::unique_ptr<LogRecorder> m_log;
};

void TestTextScreen::pressesWithIdZeroBeforeTheFirstTextScreen()
{
    QVERIFY(!CanBusDataMap::instance()->isHasData(kTextScreenCategory));
    TextScreen screen;
    screen.player.onMenuPress(1, 2, 4);
    QCOMPARE(screen.sent.count(), 1);
    QCOMPARE(screen.sent.at(0).at(0).toByteArray(), bytes("9f 02 00 91 00 01 02 04 96 9f 03"));
}

void TestTextScreen::pressesWithIdZeroWhenTheRecordHasNoId_data()
{
    QTest::addColumn<QVariantList>("record");
    QTest::newRow("an empty record") << QVariantList();
    QTest::newRow("an empty id") << QVariantList {QByteArray(), bytes("41")};
}

void TestTextScreen::pressesWithIdZeroWhenTheRecordHasNoId()
{
    QFETCH(const QVariantList, record);
    CanBusDataMap::instance()->setData(kTextScreenCategory, record);
    TextScreen screen;
    screen.player.onMenuPress(1, 2, 4);
    QCOMPARE(screen.sent.at(0).at(0).toByteArray(), bytes("9f 02 00 91 00 01 02 04 96 9f 03"));
}

void TestTextScreen::pressesWithTheIdOfTheLastTextScreen()
{
    CanBusDataMap::instance()->setData(0x01, {bytes("77")});
    setTextScreenId(bytes("55"));
    setTextScreenId(bytes("21"));
    TextScreen screen;
    screen.player.onMenuPress(1, 2, 4);
    QCOMPARE(screen.sent.at(0).at(0).toByteArray(), bytes("9f 02 21 91 00 01 02 04 b7 9f 03"));
}

void TestTextScreen::sendsAPress_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::addColumn<int>("menu");
    QTest::addColumn<int>("item");
    QTest::addColumn<int>("action");
    QTest::addColumn<QByteArray>("frame");
    const QByteArray id = bytes("21");
    QTest::newRow("three bytes as they are") << id << 1 << 2 << 4 << bytes("9f02 21 91 00 01 02 04 b7 9f03");
    QTest::newRow("a menu of 9F is doubled")
        << id << 0x9f << 0 << 0 << bytes("9f02 21 91 00 9f9f 00 00 2f 9f03");
    QTest::newRow("an item of 9F is doubled")
        << id << 0 << 0x9f << 0 << bytes("9f02 21 91 00 00 9f9f 00 2f 9f03");
    QTest::newRow("an action of 9F is doubled")
        << id << 0 << 0 << 0x9f << bytes("9f02 21 91 00 00 00 9f9f 2f 9f03");
    QTest::newRow("three of 9F count three times in the check byte")
        << id << 0x9f << 0x9f << 0x9f << bytes("9f02 21 91 00 9f9f 9f9f 9f9f 2f 9f03");
    QTest::newRow("a check byte of 9F is doubled")
        << id << 0x2f << 0 << 0 << bytes("9f02 21 91 00 2f 00 00 9f9f 9f03");
    QTest::newRow("an id of 9F is doubled")
        << bytes("9f") << 1 << 2 << 4 << bytes("9f02 9f9f 91 00 01 02 04 09 9f03");
    QTest::newRow("an id of two bytes counts by its first")
        << bytes("21 55") << 1 << 2 << 4 << bytes("9f02 21 91 00 01 02 04 b7 9f03");
    QTest::newRow("high bytes") << bytes("ff") << 0x80 << 0x7f << 0xff
                                << bytes("9f02 ff 91 00 80 7f ff 6e 9f03");
    QTest::newRow("low bytes of greater numbers")
        << id << 256 << 257 << 0x1ff << bytes("9f02 21 91 00 00 01 ff 4e 9f03");
    QTest::newRow("low bytes of negative numbers")
        << id << -1 << -97 << -256 << bytes("9f02 21 91 00 ff 9f9f 00 d0 9f03");
}

void TestTextScreen::sendsAPress()
{
    QFETCH(const QByteArray, id);
    QFETCH(const int, menu);
    QFETCH(const int, item);
    QFETCH(const int, action);
    setTextScreenId(id);
    TextScreen screen;

    screen.player.onMenuPress(menu, item, action);

    QCOMPARE(screen.sent.count(), 1);
    QTEST(screen.sent.at(0).at(0).toByteArray(), "frame");
}

void TestTextScreen::logsAPress()
{
    setTextScreenId(bytes("21"));
    CanBusPlayer player;
    player.onMenuPress(1, 2, 0x9f);
    // 2C is 21 ^ 91 ^ 01 ^ 02 ^ 9F: the doubled byte counts once.
    QCOMPARE(m_log->messages("[DBG]"), (QStringList {"21", "2c", "9f0221910001029f9f2c9f03"}));
}

void TestTextScreen::announcesATextScreen_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("announced");
    QTest::newRow("menu, flags and two texts") << kTwoTexts << "1,2,3,4 minus plus A|B";
    QTest::newRow("bytes are unsigned") << bytes("ff 80 7f 9f 00 41 00") << "255,128,127,159 - - A";
    QTest::newRow("bit 0 is minus") << bytes("00 00 00 00 01 41 00") << "0,0,0,0 minus - A";
    QTest::newRow("bit 1 is plus") << bytes("00 00 00 00 02 41 00") << "0,0,0,0 - plus A";
    QTest::newRow("other flags are ignored") << bytes("00 00 00 00 fc 41 00") << "0,0,0,0 - - A";
    QTest::newRow("a text in UTF-8") << bytes("00 00 00 00 00 c3 a4 c2 b0 00")
                                     << QStringLiteral("0,0,0,0 - - ä°");
    QTest::newRow("a text that is no UTF-8 is cleaned")
        << bytes("00 00 00 00 00 41 ff 42 00") << "0,0,0,0 - - AB";
    QTest::newRow("empty texts") << bytes("00 00 00 00 00 00 41 00 00") << "0,0,0,0 - - |A|";
    QTest::newRow("a text without its end is dropped") << bytes("00 00 00 00 00 41 00 42") << "0,0,0,0 - - A";
    QTest::newRow("no texts") << bytes("01 02 03 04 03") << "1,2,3,4 minus plus ";
    QTest::newRow("no flags") << bytes("01 02 03 04") << "1,2,3,4 - - ";
    QTest::newRow("three bytes") << bytes("01 02 03") << "1,2,3,0 - - ";
    QTest::newRow("one byte") << bytes("07") << "7,0,0,0 - - ";
    QTest::newRow("no bytes") << bytes("") << "0,0,0,0 - - ";
}

void TestTextScreen::announcesATextScreen()
{
    QFETCH(const QByteArray, payload);
    QFETCH(const QString, announced);
    TextScreen screen;
    screen.player.onTextScreen(payload);
    QCOMPARE(screen.announcements(), QStringList {announced});
    QCOMPARE(m_log->messages("[ERR]"), QStringList());
}

void TestTextScreen::announcesTheSameScreenOnce()
{
    TextScreen screen;
    screen.player.onTextScreen(kTwoTexts);
    screen.player.onTextScreen(kTwoTexts);
    QCOMPARE(screen.announced.count(), 1);

    TextScreen empty;
    empty.player.onTextScreen(QByteArray());
    empty.player.onTextScreen(QByteArray());
    QCOMPARE(empty.announced.count(), 1);
}

void TestTextScreen::announcesEveryChange_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("announced");
    QTest::newRow("menu identifier 0") << bytes("09 02 03 04 03 41 00 42 00") << "9,2,3,4 minus plus A|B";
    QTest::newRow("menu identifier 1") << bytes("01 09 03 04 03 41 00 42 00") << "1,9,3,4 minus plus A|B";
    QTest::newRow("menu identifier 2") << bytes("01 02 09 04 03 41 00 42 00") << "1,2,9,4 minus plus A|B";
    QTest::newRow("menu identifier 3") << bytes("01 02 03 09 03 41 00 42 00") << "1,2,3,9 minus plus A|B";
    QTest::newRow("minus") << bytes("01 02 03 04 02 41 00 42 00") << "1,2,3,4 - plus A|B";
    QTest::newRow("plus") << bytes("01 02 03 04 01 41 00 42 00") << "1,2,3,4 minus - A|B";
    QTest::newRow("a text") << bytes("01 02 03 04 03 41 00 43 00") << "1,2,3,4 minus plus A|C";
    QTest::newRow("the order of the texts")
        << bytes("01 02 03 04 03 42 00 41 00") << "1,2,3,4 minus plus B|A";
    QTest::newRow("one text more") << bytes("01 02 03 04 03 41 00 42 00 00") << "1,2,3,4 minus plus A|B|";
    QTest::newRow("one text less") << bytes("01 02 03 04 03 41 00") << "1,2,3,4 minus plus A";
    QTest::newRow("no texts") << bytes("01 02 03 04 03") << "1,2,3,4 minus plus ";
}

void TestTextScreen::announcesEveryChange()
{
    QFETCH(const QByteArray, payload);
    QFETCH(const QString, announced);
    TextScreen screen;
    screen.player.onTextScreen(kTwoTexts);
    screen.player.onTextScreen(payload);
    screen.player.onTextScreen(payload);
    QCOMPARE(screen.announcements(), (QStringList {"1,2,3,4 minus plus A|B", announced}));
}

void TestTextScreen::ignoresWhatTheScreenDoesNotShow_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("flag bits 2 to 7") << bytes("01 02 03 04 ff 41 00 42 00");
    QTest::newRow("a text without its end") << bytes("01 02 03 04 03 41 00 42 00 43 44");
    QTest::newRow("bytes of a text that are no UTF-8") << bytes("01 02 03 04 03 41 ff 00 42 00");
}

void TestTextScreen::ignoresWhatTheScreenDoesNotShow()
{
    QFETCH(const QByteArray, payload);
    TextScreen screen;
    screen.player.onTextScreen(kTwoTexts);
    screen.player.onTextScreen(payload);
    QCOMPARE(screen.announced.count(), 1);
}

void TestTextScreen::announcesAScreenThatComesBack()
{
    TextScreen screen;
    screen.player.onTextScreen(kTwoTexts);
    screen.player.onTextScreen(bytes("05"));
    screen.player.onTextScreen(kTwoTexts);
    QCOMPARE(screen.announcements(),
             (QStringList {"1,2,3,4 minus plus A|B", "5,0,0,0 - - ", "1,2,3,4 minus plus A|B"}));
}

void TestTextScreen::keepsTheFirstFourBytes()
{
    CanBusPlayer player;
    const CanBusPlayerPrivate &data = CanBusPlayerProbe::data(player);
    player.onTextScreen(bytes("01 9f 80 ff 03 41 00"));
    QCOMPARE(data.menuByte0, 1);
    QCOMPARE(data.menuByte1, 159);
    QCOMPARE(data.menuByte2, 128);
    QCOMPARE(data.menuByte3, 255);
    QCOMPARE(data.menuSpare, 0);
}

void TestTextScreen::knowsTheScreenWhileItAnnouncesIt()
{
    TextScreen screen;
    bool again = false;
    connect(&screen.player, &CanBusPlayer::updateMenuInfo, this, [&] {
        if (!again) {
            again = true;
            screen.player.getTextScreenInfo();
        }
    });
    screen.player.onTextScreen(kTwoTexts);
    QCOMPARE(screen.announcements(), (QStringList {"1,2,3,4 minus plus A|B", "1,2,3,4 minus plus A|B"}));
}

void TestTextScreen::logsTheSizeAndThePayload()
{
    CanBusPlayer player;
    player.onTextScreen(bytes("01 02 9f 04 03 41 00"));
    player.onTextScreen(QByteArray());
    QCOMPARE(m_log->messages("[DBG]"), (QStringList {"7 01029f04034100", "0 "}));
}

void TestTextScreen::announcesAgainOnlyMoreThanOneText_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QStringList>("again");
    QTest::newRow("no text") << bytes("01 02 03 04 03") << QStringList();
    QTest::newRow("a single text") << bytes("01 02 03 04 03 41 00") << QStringList();
    QTest::newRow("a single text and one without its end")
        << bytes("01 02 03 04 03 41 00 42") << QStringList();
    QTest::newRow("two texts") << kTwoTexts << QStringList {"1,2,3,4 minus plus A|B"};
    QTest::newRow("two empty texts") << bytes("01 02 03 04 00 00 00") << QStringList {"1,2,3,4 - - |"};
    QTest::newRow("three texts") << bytes("ff 02 03 04 02 41 00 42 00 43 00")
                                 << QStringList {"255,2,3,4 - plus A|B|C"};
}

void TestTextScreen::announcesAgainOnlyMoreThanOneText()
{
    QFETCH(const QByteArray, payload);
    TextScreen screen;
    screen.player.onTextScreen(payload);
    screen.announced.clear();
    screen.player.getTextScreenInfo();
    QTEST(screen.announcements(), "again");
}

void TestTextScreen::announcesNothingAgainBeforeTheFirstScreen()
{
    TextScreen screen;
    screen.player.getTextScreenInfo();
    QCOMPARE(screen.announced.count(), 0);
}

void TestTextScreen::announcesNothingAgainWithoutAWholeMenu()
{
    TextScreen screen;
    CanBusPlayerProbe::data(screen.player).menuTexts = QStringList {"A", "B"};
    CanBusPlayerProbe::data(screen.player).menuList = QList<int> {1, 2, 3};
    screen.player.getTextScreenInfo();
    QCOMPARE(screen.announced.count(), 0);

    CanBusPlayerProbe::data(screen.player).menuList = QList<int> {1, 2, 3, 4};
    screen.player.getTextScreenInfo();
    QCOMPARE(screen.announcements(), QStringList {"1,2,3,4 - - A|B"});
}

void TestTextScreen::announcesAgainTheLastScreen()
{
    TextScreen screen;
    screen.player.onTextScreen(bytes("09 09 09 09 00 58 00 59 00"));
    screen.player.onTextScreen(kTwoTexts);
    screen.announced.clear();
    screen.player.getTextScreenInfo();
    screen.player.getTextScreenInfo();
    QCOMPARE(screen.announcements(), (QStringList {"1,2,3,4 minus plus A|B", "1,2,3,4 minus plus A|B"}));
}

QTEST_GUILESS_MAIN(TestTextScreen)
#include "tst_textscreen.moc"
