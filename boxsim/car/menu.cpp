#include "menu.h"

#include <QtCore/QVector>
#include <QtCore/QtGlobal>

namespace boxsim {

namespace {

constexpr quint8 kChoose = 0;
constexpr quint8 kMinus = 1;
constexpr quint8 kPlus = 2;

/// Title and lines of a page.
const QStringList &textsOf(int page)
{
    static const QVector<QStringList> pages {
        {QStringLiteral("Car"), QStringLiteral("Lights"), QStringLiteral("Doors"), QStringLiteral("Sound")},
        {QStringLiteral("Lights"), QStringLiteral("Ambient light"), QStringLiteral("Coming home")},
        {QStringLiteral("Doors"), QStringLiteral("Lock when driving"), QStringLiteral("Fold mirrors")},
        {QStringLiteral("Sound"), QStringLiteral("Parking signal"), QStringLiteral("Indicator")},
    };
    return pages.at(page);
}

int linesOf(int page)
{
    return textsOf(page).size() - 1;
}

void choose(TextScreen &screen, int page, int item, int value)
{
    const bool isLine = item < linesOf(page);
    if (page == 0 && isLine)
        screen = menuScreen(item + 1);
    if (page != 0)
        screen = isLine ? menuScreen(page, item, value) : menuScreen(0);
}

void changeValue(TextScreen &screen, int by)
{
    const int page = screen.menu[0];
    if (page != 0)
        screen = menuScreen(page, screen.menu[1], qBound(0, screen.menu[3] + by, kHighestMenuValue));
}

} // namespace

TextScreen menuScreen(int page, int line, int value)
{
    TextScreen screen;
    screen.texts = textsOf(page);
    screen.menu = {quint8(page), quint8(line), quint8(linesOf(page)), 0};
    if (page == 0)
        return screen;
    screen.menu[3] = quint8(value);
    screen.minus = value > 0;
    screen.plus = value < kHighestMenuValue;
    screen.texts.append(QString::number(value));
    return screen;
}

void pressMenu(TextScreen &screen, quint8 menu, quint8 item, quint8 action)
{
    if (menu >= kMenuPages)
        return;
    if (menu != screen.menu[0] || screen.texts.isEmpty())
        screen = menuScreen(menu);
    else if (action == kChoose)
        choose(screen, menu, item, screen.menu[3]);
    else if (action == kMinus)
        changeValue(screen, -1);
    else if (action == kPlus)
        changeValue(screen, 1);
}

} // namespace boxsim
