#include "boxsim/car/menu.h"

#include "hexbytes.h"

#include <QtTest/QTest>

using boxsim::TextScreen;

namespace {

void row(const char *name, const TextScreen &screen, int menu, int item, int action, const char *identifiers)
{
    QTest::newRow(name) << screen << menu << item << action << bytes(identifiers);
}

} // namespace

Q_DECLARE_METATYPE(boxsim::TextScreen)

class TestBoxsimMenu : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsAPage();
    void offersMinusAndPlusWhileTheyAreOfUse();
    void movesWithAPress_data();
    void movesWithAPress();
    void changesTextsAndButtonsWithThePage();
};

void TestBoxsimMenu::showsAPage()
{
    QCOMPARE(boxsim::textScreenPayload(boxsim::menuScreen(0)),
             bytes("00 00 03 00 00") + QByteArray("Car\0Lights\0Doors\0Sound\0", 23));
    QCOMPARE(boxsim::textScreenPayload(boxsim::menuScreen(1, 1, 7)),
             bytes("01 01 02 07 03")
                 + QByteArray("Lights\0Ambient light\0Coming home\0"
                              "7\0",
                              35));
}

void TestBoxsimMenu::offersMinusAndPlusWhileTheyAreOfUse()
{
    QVERIFY(!boxsim::menuScreen(2, 0, 0).minus);
    QVERIFY(boxsim::menuScreen(2, 0, 0).plus);
    QVERIFY(boxsim::menuScreen(2, 0, 10).minus);
    QVERIFY(!boxsim::menuScreen(2, 0, 10).plus);
    QVERIFY(!boxsim::menuScreen(0).minus && !boxsim::menuScreen(0).plus);
}

void TestBoxsimMenu::movesWithAPress_data()
{
    QTest::addColumn<TextScreen>("screen");
    QTest::addColumn<int>("menu");
    QTest::addColumn<int>("item");
    QTest::addColumn<int>("action");
    QTest::addColumn<QByteArray>("identifiers");

    const TextScreen car = boxsim::menuScreen(0);
    const TextScreen doors = boxsim::menuScreen(2, 1, 7);
    row("an item of the first page opens its page", car, 0, 2, 0, "03 00 02 05");
    row("an item behind the last of the first page", car, 0, 3, 0, "00 00 03 00");
    row("minus on the first page", car, 0, 0, 1, "00 00 03 00");
    row("plus on the first page", car, 0, 0, 2, "00 00 03 00");
    row("an item of another page is chosen", doors, 2, 0, 0, "02 00 02 07");
    row("an item behind the last leads back", doors, 2, 2, 0, "00 00 03 00");
    row("minus", doors, 2, 1, 1, "02 01 02 06");
    row("plus", doors, 2, 1, 2, "02 01 02 08");
    row("minus at the end", boxsim::menuScreen(2, 1, 0), 2, 1, 1, "02 01 02 00");
    row("plus at the end", boxsim::menuScreen(2, 1, 10), 2, 1, 2, "02 01 02 0a");
    row("an action that is none", doors, 2, 0, 3, "02 01 02 07");
    row("a menu that is not shown", doors, 1, 1, 2, "01 00 02 05");
    row("a menu that does not exist", doors, 4, 0, 0, "02 01 02 07");
    row("a text screen that shows nothing yet", TextScreen(), 0, 1, 0, "00 00 03 00");
}

void TestBoxsimMenu::movesWithAPress()
{
    QFETCH(TextScreen, screen);
    QFETCH(int, menu);
    QFETCH(int, item);
    QFETCH(int, action);
    QFETCH(QByteArray, identifiers);

    boxsim::pressMenu(screen, quint8(menu), quint8(item), quint8(action));

    QCOMPARE(boxsim::textScreenPayload(screen).left(4).toHex(' '), identifiers.toHex(' '));
}

void TestBoxsimMenu::changesTextsAndButtonsWithThePage()
{
    TextScreen screen = boxsim::menuScreen(0);

    boxsim::pressMenu(screen, 0, 1, 0);
    QCOMPARE(screen.texts, QStringList({"Doors", "Lock when driving", "Fold mirrors", "5"}));
    QVERIFY(screen.minus && screen.plus);
    boxsim::pressMenu(screen, 2, 0, 2);
    QCOMPARE(screen.texts.last(), QStringLiteral("6"));
}

QTEST_GUILESS_MAIN(TestBoxsimMenu)
#include "tst_boxsim_menu.moc"
