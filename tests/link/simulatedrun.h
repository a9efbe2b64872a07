#pragma once

#include "boxside.h"
#include "carchanges.h"
#include "chance.h"
#include "controls.h"
#include "linefaults.h"
#include "memorysample.h"
#include "statemirror.h"
#include "wholelink.h"

/// One run of the whole link: a minute of virtual time or a little more, all of it drawn from a seed.
///
/// First everything happens at once: faults that change every few seconds, presses, changes of the car.
/// Then the faults end, and what is left has to come in order. At last the box starts anew, and both sides
/// have to be of one mind.
class SimulatedRun {
public:
    SimulatedRun(ParkedHeadUnit &headUnit, quint32 seed, Trace &trace);

    /// @return the first rule that was broken, or nothing
    QString runMinute();

    /// The same with hours of trouble, all kinds of it, a quiet moment in each, and in every second one a box
    /// that says not ready until the cache is overfull.
    /// @param samples  gets the memory at each of these moments
    QString runHours(int hours, QList<MemorySample> &samples);

    const WireCounts &counts() const { return m_link.counts; }

private:
    enum Happening {
        FaultsChange,
        Press,
        Burst,
        HostPlays,
        AskForAll,
        CarChange,
        Garbage,
        Restart,
        kHappenings
    };

    void drawKinds();
    void drawPaces();
    void drawTimes();
    void happen(Happening happening);
    void press();
    void changeFaults();
    void interrupt();
    void sayNotReady();
    void flood();
    void tick();
    void runUntil(qint64 nowMs);
    template <class Condition>
    bool runUntil(Condition &&condition, qint64 latestMs);

    void makeTrouble(qint64 endMs);
    void letDrain();
    void comeUpAgain();
    void stayUp(qint64 endMs);
    void startBoxAnew();
    void compareStates();
    bool isConnected() const;

    Chance m_chance;
    Trace &m_trace;
    WholeLink m_link;
    BoxSide m_box;
    Controls m_controls;
    CarChanges m_car;
    StateMirror m_mirror;
    FaultKinds m_kinds;
    bool m_floods = false;
    qint64 m_nowMs = 0;
    qint64 m_nextTickMs = 0;
    std::array<double, kHappenings> m_paceMs; ///< on average; 0: never
    std::array<qint64, kHappenings> m_nextMs;
    qint64 m_floodEndMs = 0;
    bool m_reactsToLink = false; ///< the user interface: uses a control as soon as the link is up
    bool m_isInTrouble = false;
};
