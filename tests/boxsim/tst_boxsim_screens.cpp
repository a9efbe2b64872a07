#include "boxsim/car/screens.h"
#include "boxsim/car/textscreen.h"

#include "hexbytes.h"

#include <QtTest/QTest>

using boxsim::Screens;
using boxsim::TextScreen;

namespace {

using Flags = std::array<bool, 5>;

TextScreen lights()
{
    TextScreen screen;
    screen.menu = {1, 2, 0x9F, 255};
    screen.minus = true;
    screen.texts = QStringList {"A", "", QStringLiteral("ü")};
    return screen;
}

} // namespace

class TestBoxsimScreens : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void supportsEachScreenUnlessToldOtherwise();
    void writesEachScreenToItsBit_data();
    void writesEachScreenToItsBit();
    void writesEachTransition();
    void takesOverTheScreensThatChanged();
    void writesATextScreen();
    void takesOverTheTextsThatChanged();
};

void TestBoxsimScreens::supportsEachScreenUnlessToldOtherwise()
{
    QCOMPARE(boxsim::screensPayload(Screens()), bytes("1f"));
}

void TestBoxsimScreens::writesEachScreenToItsBit_data()
{
    QTest::addColumn<int>("screen");
    QTest::addColumn<QByteArray>("payload");

    QTest::newRow("screen 0") << 0 << bytes("01");
    QTest::newRow("screen 1") << 1 << bytes("02");
    QTest::newRow("screen 2") << 2 << bytes("04");
    QTest::newRow("screen 3") << 3 << bytes("08");
    QTest::newRow("screen 4") << 4 << bytes("10");
}

void TestBoxsimScreens::writesEachScreenToItsBit()
{
    QFETCH(int, screen);
    QFETCH(QByteArray, payload);

    Screens screens {Flags {}};
    QCOMPARE(boxsim::screensPayload(screens), bytes("00"));
    screens.supported[std::size_t(screen)] = true;
    QCOMPARE(boxsim::screensPayload(screens), payload);
}

void TestBoxsimScreens::writesEachTransition()
{
    QCOMPARE(boxsim::transitionPayload(0), bytes("00"));
    QCOMPARE(boxsim::transitionPayload(4), bytes("04"));
    QCOMPARE(boxsim::transitionPayload(0x9F), bytes("9f"));
}

void TestBoxsimScreens::takesOverTheScreensThatChanged()
{
    Screens screens {Flags {false, false, true, false, true}};

    boxsim::applyChanges(screens, Screens(), Screens {Flags {true, true, true, true, false}});

    QVERIFY((screens == Screens {Flags {false, false, true, false, false}}));
    QVERIFY(!(screens == Screens()));
}

void TestBoxsimScreens::writesATextScreen()
{
    QCOMPARE(boxsim::textScreenPayload(TextScreen()), bytes("00 00 00 00 00"));
    QCOMPARE(boxsim::textScreenPayload(lights()), bytes("01 02 9f ff 01 41 00 00 c3bc 00"));

    TextScreen plus;
    plus.plus = true;
    QCOMPARE(boxsim::textScreenPayload(plus), bytes("00 00 00 00 02"));
}

void TestBoxsimScreens::takesOverTheTextsThatChanged()
{
    TextScreen screen = lights();
    TextScreen after;
    after.menu[1] = 7;
    after.plus = true;

    boxsim::applyChanges(screen, TextScreen(), after);

    QCOMPARE(boxsim::textScreenPayload(screen), bytes("01 07 9f ff 03 41 00 00 c3bc 00"));
    QVERIFY(!(screen == lights()));
    boxsim::applyChanges(screen, TextScreen(), lights());
    screen.plus = false;
    QVERIFY(screen == lights());
}

QTEST_GUILESS_MAIN(TestBoxsimScreens)
#include "tst_boxsim_screens.moc"
