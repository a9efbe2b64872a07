#include "announcementrules.h"

#include <hexbytes.h>

#include <QtTest/QTest>

#include <functional>

// Each rule of what the library announces is broken here, and has to be the one that is named.

class AnnouncementRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wrongAnnouncementsAreNamed();
    void repeatedConnectStatusIsNamed();
};

void AnnouncementRulesTest::wrongAnnouncementsAreNamed()
{
    using Climate = canbus::VelClimateGroupCmd;
    using Gauges = canbus::VelGaugesGroupCmd;
    const QByteArray gauges = bytes("01 02 03 04 05 06 07 08 09 0a 0b 0c 00 00");
    const QVector<QPair<const char *, std::function<void(AnnouncementRules &)>>> wrong {
        {"an item is announced when it changes", [](auto &rules) { rules.frameTaken(3, 0, bytes("05 41")); }},
        {"an item is announced when it changes",
         [](auto &rules) {
             Q_EMIT Climate::instance()->updateClimateTopText("A");
             rules.frameTaken(3, 7, bytes("05 41"));
         }},
        {"between frames nothing is announced",
         [](auto &rules) {
             Q_EMIT Climate::instance()->updateClimateType(5);
             rules.timePassed();
         }},
        {"a screens transition becomes one touch", [](auto &rules) { rules.frameTaken(7, 0, bytes("01")); }},
        {"at once and 300 ms later",
         [&](auto &rules) {
             Q_EMIT Gauges::instance()->updateGaugeShift(true);
             rules.frameTaken(4, 7, gauges);
         }},
    };
    for (const auto &each : wrong) {
        Findings findings;
        WireCounts counts;
        AnnouncementRules rules(findings, counts);
        each.second(rules);
        QVERIFY2(findings.text().contains(each.first), qPrintable(findings.text()));
    }
}

void AnnouncementRulesTest::repeatedConnectStatusIsNamed()
{
    const QVector<std::function<void(AnnouncementRules &)>> wrong {
        [](AnnouncementRules &rules) { rules.connectStatusHeard(false); },
        [](AnnouncementRules &rules) {
            rules.statusTold(true);
            rules.settled();
        },
    };
    for (const auto &breaks : wrong) {
        Findings findings;
        WireCounts counts;
        AnnouncementRules rules(findings, counts);
        breaks(rules);
        QVERIFY2(findings.text().contains("canbusConnectStatus"), qPrintable(findings.text()));
    }
}

QTEST_GUILESS_MAIN(AnnouncementRulesTest)
#include "tst_announcementrules.moc"
