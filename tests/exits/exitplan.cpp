#include "exitplan.h"

#include <algorithm>

namespace {

constexpr int kLatestMs = 150;            // in the middle of the traffic
constexpr int kFirstRequestMs = 2000;     // when the protocol asks for the link by itself
constexpr int kExitsToFirstRequest = 12;  // one in so many waits for that
constexpr int kAroundFirstRequestMs = 60; // and leaves no later than this after

/// Without a line that is open there is no link, and the head unit makes up its traffic by itself.
bool hasLine(const ExitPlan &plan)
{
    return QStringList {"once", "again", "other"}.contains(plan["init"]);
}

/// By which call, and on which thread. An exit on a thread of the library's leaves the main thread running on
/// what is destroyed: a race of such a host's own, which is not planned where races are looked for.
QStringList ends()
{
    QStringList ends {"return", "quit", "loop", "exit", "slot"};
#ifdef __has_feature
    constexpr bool areRacesLookedFor = __has_feature(thread_sanitizer);
#else
    constexpr bool areRacesLookedFor = false;
#endif
    if (!areRacesLookedFor)
        ends += {"parser", "port"};
    return ends;
}

bool isOnAnotherThread(const QString &end)
{
    return end == QLatin1String("parser") || end == QLatin1String("port");
}

/// A protocol that goes by the exit goes on its own thread, which then is the one that has to leave.
bool isDestroyed(const QString &protocol)
{
    return protocol == QLatin1String("deleted") || protocol == QLatin1String("static");
}

} // namespace

QStringList argumentsOf(const ExitPlan &plan)
{
    QStringList arguments;
    for (auto it = plan.begin(); it != plan.end(); ++it)
        arguments += it.key() + QLatin1Char('=') + it.value();
    return arguments;
}

ExitPlans::ExitPlans(quint32 seed)
    : m_chance(seed)
{
}

const QMap<QString, QStringList> &ExitPlans::choices()
{
    static const QMap<QString, QStringList> all {
        {"application", {"stack", "leaked"}},
        {"protocol", {"deleted", "leaked", "stack", "child", "static"}},
        {"init", {"once", "never", "once", "missing", "again", "once", "other", "null"}},
        {"when", {"up", "start", "up", "handshake", "hungup"}},
        {"end", ends()},
        {"commands", {"0", "1"}},
        {"renew", {"0", "0", "1"}},
        {"log", {"0", "0", "0", "1"}},
        {"status", {"0", "3"}},
    };
    return all;
}

ExitPlan ExitPlans::next()
{
    ExitPlan plan;
    const QStringList names = choices().keys();
    for (const QString &name : names)
        plan[name] = draw(name);
    if (!hasLine(plan)) {
        plan["feed"] = QStringLiteral("1");
        if (plan["when"] != QLatin1String("start"))
            plan["when"] = QStringLiteral("handshake");
    }
    if (isOnAnotherThread(plan["end"]) && isDestroyed(plan["protocol"]))
        plan["protocol"] = QStringLiteral("leaked");
    if (plan["end"] == QLatin1String("quit"))
        plan["status"] = QStringLiteral("0");
    int after = below(kLatestMs);
    if (plan["when"] == QLatin1String("handshake") && below(kExitsToFirstRequest) == 0)
        after = kFirstRequestMs + below(2 * kAroundFirstRequestMs) - kAroundFirstRequestMs;
    plan["after"] = QString::number(after);
    return plan;
}

QString ExitPlans::draw(const QString &name)
{
    QStringList &deck = m_decks[name];
    if (deck.isEmpty()) {
        deck = choices()[name];
        for (int i = deck.size() - 1; i > 0; --i)
            deck.swapItemsAt(i, below(i + 1));
    }
    return deck.takeLast();
}

int ExitPlans::below(int end)
{
    return int(m_chance() % quint32(end)); // the same everywhere, unlike a distribution
}
