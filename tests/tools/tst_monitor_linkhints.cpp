#include "linkhints.h"

#include <QtTest/QtTest>

using canbus::LinkFigures;
using canbus::monitor::hintsFor;

class tst_monitor_linkhints : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void knowsTheUsualCauses_data();
    void knowsTheUsualCauses();
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

} // namespace

void tst_monitor_linkhints::knowsTheUsualCauses_data()
{
    using Figures = LinkFigures &;
    QTest::addColumn<LinkFigures>("figures");
    QTest::addColumn<QStringList>("hints");
    const auto row = [](const char *name, const LinkFigures &figures, const QStringList &hints = {}) {
        QTest::newRow(name) << figures << hints;
    };
    const QString baud = QStringLiteral("bytes but no frames: check the baud rate");
    const QString silence =
        QStringLiteral("nothing was received: check the cable, the port and the power of the box");
    const QString noise =
        QStringLiteral(" frames had bad check bytes: noise on the line, check its cable and "
                       "ground");
    const QString deaf = QStringLiteral(": frames arrive, but the box does not answer, check the line to it");
    const QString flood = QStringLiteral(" thrown away unread: the box sends faster than one frame in 10 ms");
    const QString full = QStringLiteral(" refused: too many at once, send the next when one is answered");
    const QString notReady = QStringLiteral("frames but no link: the box has not reported itself ready");

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

    row("a buffer thrown away", soundExcept([](Figures f) {
            f.discardedBuffers = 1;
            f.discardedBytes = 2050;
        }),
        {"2050 bytes" + flood});

    row("one command refused", soundExcept([](Figures f) { f.refusedFull = 1; }), {"1 command" + full});
    row("commands refused", soundExcept([](Figures f) { f.refusedFull = 7; }), {"7 commands" + full});

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

    row("a port error", soundExcept([](Figures f) { f.portErrors = 1; }),
        {"1 error of the port: was the device pulled out?"});
    row("several causes", soundExcept([](Figures f) {
            f.refusedFull = 2;
            f.portErrors = 3;
        }),
        {"2 commands" + full, "3 errors of the port: was the device pulled out?"});
}

void tst_monitor_linkhints::knowsTheUsualCauses()
{
    QFETCH(LinkFigures, figures);
    QTEST(hintsFor(figures), "hints");
}

QTEST_GUILESS_MAIN(tst_monitor_linkhints)
#include "tst_monitor_linkhints.moc"
