#pragma once

#include "exitplan.h"

#include <boxsim/bench/bench.h>
#include <pseudoterminal.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>

#include <random>

/// What every exit is held to.
struct ExitLimits {
    int endMs = 1000;    ///< from the moment of exit to the end of the process
    int exitMs = 20000;  ///< from the start to the moment of exit, on a busy machine
    QStringList wrapper; ///< a command, with its arguments, that runs the head unit
};

/// One head unit that leaves by its plan, and the box at the other end of its line. Judges how it has left.
class ExitRun : public QObject {
    Q_OBJECT

public:
    ExitRun(const ExitPlan &plan, const ExitLimits &limits, quint32 seed);

    /// What is wrong with the exit: nothing if it is as it should be.
    const QStringList &complaints() const { return m_complaints; }

    /// From the moment of exit to the end.
    int endMs() const { return m_endMs; }

Q_SIGNALS:
    void ended();

private:
    bool isPlanned(const char *name, const char *value) const;
    void start();
    void readLines();
    void onLine(const QByteArray &line);
    void tick();
    void flood();
    void carryOut(const boxsim::BenchOutput &output);
    void restartBox();
    void hangUp();
    QString link() const { return m_folder.filePath(QStringLiteral("line")); }
    void giveUpWaiting();
    void onFinished(QProcess::ExitStatus how);
    void judgeEnd(QProcess::ExitStatus how);
    void judgeMessages();
    bool isExpected(const QByteArray &message);
    int chance(int end) { return int(m_chance() % quint32(end)); }

    const ExitPlan m_plan;
    const ExitLimits m_limits;
    std::mt19937 m_chance;
    PseudoTerminal m_line;
    QTemporaryDir m_folder; ///< of the line's link: a name that no other line gets when this one is gone
    int m_readFromLine = 0;
    boxsim::Bench m_box;
    QProcess m_process;
    QElapsedTimer m_clock;
    QTimer m_tickTimer;
    QTimer m_restartTimer;
    QTimer m_hangUpTimer;
    QTimer m_watch;
    QByteArray m_said;
    bool m_isUp = false;
    qint64 m_exitMs = -1;
    int m_endMs = -1;
    int m_lossLines = 0;
    QStringList m_complaints;
};
