#include "linkhints.h"

#include <QtTest/QTest>

using canbus::LinkFigures;
using canbus::monitor::hintsFor;

class tst_monitor_linkhints : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsNothingWrongWithASoundLine_data();
    void findsNothingWrongWithASoundLine();
    void knowsAWrongBaudRateAndASilentLine_data();
    void knowsAWrongBaudRateAndASilentLine();
    void knowsALineThatDamagesBytes_data();
    void knowsALineThatDamagesBytes();
    void knowsABoxThatDoesNotAnswer_data();
    void knowsABoxThatDoesNotAnswer();
    void knowsWhatIsTooMuch_data();
    void knowsWhatIsTooMuch();
    void knowsABoxThatIsNeverReady_data();
    void knowsABoxThatIsNeverReady();
    void knowsErrorsOfThePort_data();
    void knowsErrorsOfThePort();
};

namespace {

/// A sound minute: the link came up, and the box reported.
LinkFigures soundMinute()
{
    LinkFigures figures;
    figures.receivedBytes = 16000;
    figures.receivedFrames = 400;
    figures.receivedAcks = 12;
    figures.sentFrames = 12;
    figures.answers = 12;
    figures.connectRequests = 1;
    figures.connectionChecks = 4;
    return figures;
}

template <class Change>
LinkFigures soundExcept(Change change)
{
    LinkFigures figures = soundMinute();
    change(figures);
    return figures;
}

template <class Change>
LinkFigures emptyExcept(Change change)
{
    LinkFigures figures;
    change(figures);
    return figures;
}

void columns()
{
    QTest::addColumn<LinkFigures>("figures");
    QTest::addColumn<QStringList>("hints");
}

void row(const char *name, const LinkFigures &figures, const QStringList &hints = {})
{
    QTest::newRow(name) << figures << hints;
}

void compareHints()
{
    QFETCH(LinkFigures, figures);
    QTEST(hintsFor(figures), "hints");
}

} // namespace

void tst_monitor_linkhints::findsNothingWrongWithASoundLine_data()
{
    using Figures = LinkFigures &;
    columns();

    row("a sound minute", soundMinute());
    row("an end before anything was sent", LinkFigures());
    row("an end right after the first connect request",
        emptyExcept([](Figures f) { f.sentFrames = f.connectRequests = 1; }));
    row("an end in the middle of the first answer", emptyExcept([](Figures f) {
            f.sentFrames = f.connectRequests = 1;
            f.receivedBytes = 4;
        }));
    row("an end right after the box was ready", emptyExcept([](Figures f) {
            f.sentFrames = 2;
            f.connectRequests = f.connectionChecks = f.receivedFrames = f.receivedAcks = 1;
            f.receivedBytes = 15;
        }));
}

void tst_monitor_linkhints::findsNothingWrongWithASoundLine()
{
    compareHints();
}

void tst_monitor_linkhints::knowsAWrongBaudRateAndASilentLine_data()
{
    using Figures = LinkFigures &;
    columns();
    const QString baud = QStringLiteral("bytes but no frames: check the baud rate");
    const QString silence =
        QStringLiteral("nothing was received: check the cable, the port and the power of the box");

    row("bytes alone", emptyExcept([](Figures f) { f.receivedBytes = 16; }), {baud});
    row("too few bytes to tell", emptyExcept([](Figures f) { f.receivedBytes = 15; }));
    row("bytes and bad checks alone", emptyExcept([](Figures f) {
            f.receivedBytes = 900;
            f.badChecks = 40;
            f.discardedBuffers = 1;
        }),
        {baud});
    row("bytes with an ACK", emptyExcept([](Figures f) {
            f.receivedBytes = 16;
            f.receivedAcks = 1;
        }));

    row("silence when asked twice", emptyExcept([](Figures f) { f.sentFrames = 2; }), {silence});
}

void tst_monitor_linkhints::knowsAWrongBaudRateAndASilentLine()
{
    compareHints();
}

void tst_monitor_linkhints::knowsALineThatDamagesBytes_data()
{
    using Figures = LinkFigures &;
    columns();
    const QString noise =
        QStringLiteral(" frames had bad check bytes: noise on the line, check its cable and ground");

    row("three bad checks of 150", soundExcept([](Figures f) {
            f.receivedFrames = 147;
            f.badChecks = 3;
        }),
        {"3 of 150" + noise});
    row("three bad checks of 151", soundExcept([](Figures f) {
            f.receivedFrames = 148;
            f.badChecks = 3;
        }));
    row("two bad checks", soundExcept([](Figures f) {
            f.receivedFrames = 2;
            f.badChecks = 2;
        }));
}

void tst_monitor_linkhints::knowsALineThatDamagesBytes()
{
    compareHints();
}

void tst_monitor_linkhints::knowsABoxThatDoesNotAnswer_data()
{
    using Figures = LinkFigures &;
    columns();
    const QString deaf = QStringLiteral(": frames arrive, but the box does not answer, check the line to it");

    row("a lost link", soundExcept([](Figures f) {
            f.sentFrames = 14;
            f.givenUp = f.linkLosses = 1;
        }),
        {"2 transmissions unanswered and 1 command given up" + deaf});
    row("a box that was switched on six seconds late", soundExcept([](Figures f) {
            f.sentFrames = 18;
            f.givenUp = 3;
        }),
        {"6 transmissions unanswered and 3 commands given up" + deaf});
    row("a box that was switched on four seconds late", soundExcept([](Figures f) {
            f.sentFrames = 18;
            f.receivedAcks = 15;
            f.givenUp = 2;
        }));
    row("a fifth unanswered", soundExcept([](Figures f) { f.sentFrames = 15; }),
        {"3 transmissions unanswered and 0 commands given up" + deaf});
    row("less than a fifth unanswered", soundExcept([](Figures f) {
            f.sentFrames = 16;
            f.receivedAcks = 13;
        }));
    row("refusals are answers", soundExcept([](Figures f) {
            f.sentFrames = 16;
            f.receivedNacks = 4;
        }));
    row("commands behind each other, each transmission answered", soundExcept([](Figures f) {
            f.sentFrames = f.receivedAcks = 80;
            f.retransmissions = 64;
        }));
}

void tst_monitor_linkhints::knowsABoxThatDoesNotAnswer()
{
    compareHints();
}

void tst_monitor_linkhints::knowsWhatIsTooMuch_data()
{
    using Figures = LinkFigures &;
    columns();
    const QString flood = QStringLiteral(" thrown away unread: the box sends faster than one frame in 10 ms");
    const QString full = QStringLiteral(" refused: too many at once, send the next when one is answered");

    row("a buffer thrown away", soundExcept([](Figures f) {
            f.discardedBuffers = 1;
            f.discardedBytes = 2050;
        }),
        {"2050 bytes" + flood});

    row("one command refused", soundExcept([](Figures f) { f.refusedFull = 1; }), {"1 command" + full});
    row("commands refused", soundExcept([](Figures f) { f.refusedFull = 7; }), {"7 commands" + full});
}

void tst_monitor_linkhints::knowsWhatIsTooMuch()
{
    compareHints();
}

void tst_monitor_linkhints::knowsABoxThatIsNeverReady_data()
{
    using Figures = LinkFigures &;
    columns();
    const QString notReady = QStringLiteral("frames but no link: the box has not reported itself ready");

    row("never ready", soundExcept([](Figures f) {
            f.connectRequests = 3;
            f.connectionChecks = 0;
        }),
        {notReady});
    row("not ready yet", soundExcept([](Figures f) {
            f.connectRequests = 2;
            f.connectionChecks = 0;
        }));
    row("not ready at first", soundExcept([](Figures f) { f.connectRequests = 5; }));
    row("a recording that begins on a link that is up",
        soundExcept([](Figures f) { f.connectRequests = f.connectionChecks = 0; }));
}

void tst_monitor_linkhints::knowsABoxThatIsNeverReady()
{
    compareHints();
}

void tst_monitor_linkhints::knowsErrorsOfThePort_data()
{
    using Figures = LinkFigures &;
    columns();
    const QString full = QStringLiteral(" refused: too many at once, send the next when one is answered");
    const QString port = QStringLiteral(" of the port: --verbose shows the library's lines about them");

    row("a port error", soundExcept([](Figures f) { f.portErrors = 1; }), {"1 error" + port});
    row("several causes", soundExcept([](Figures f) {
            f.refusedFull = 2;
            f.portErrors = 3;
        }),
        {"2 commands" + full, "3 errors" + port});
}

void tst_monitor_linkhints::knowsErrorsOfThePort()
{
    compareHints();
}

QTEST_GUILESS_MAIN(tst_monitor_linkhints)
#include "tst_monitor_linkhints.moc"
