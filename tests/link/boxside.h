#pragma once

#include "boxsim/bench/bench.h"
#include "boxsim/line/faultyline.h"
#include "linefaults.h"
#include "pacedline.h"
#include "trace.h"

/// The other side of the wire: the bench with its faulty line to the head unit, a second faulty line for the
/// way back, and the pace of 57600 baud for both.
class BoxSide {
public:
    BoxSide(quint32 seed, Trace &trace);

    /// The head unit writes.
    void write(const QByteArray &block, qint64 nowMs);

    /// A tick of 10 ms. @return what arrives at the head unit
    QList<QByteArray> tick(qint64 nowMs);

    void perform(const boxsim::Instruction &instruction, qint64 nowMs);
    void set(const QVector<boxsim::Assignment> &assignments, qint64 nowMs);
    void setFaults(const boxsim::Faults &toHeadUnit, const boxsim::Faults &toBox, qint64 nowMs);

    /// Whether nothing is on its way to the head unit, and nothing will be without a word from it.
    bool isQuiet() const;

    const boxsim::Bench &bench() const { return m_bench; }

private:
    void take(const boxsim::BenchOutput &output);

    Trace &m_trace;
    boxsim::Bench m_bench;
    boxsim::FaultyLine m_faultsToBox;
    PacedLine m_toBox;
    PacedLine m_toHeadUnit;
    qint64 m_nowMs = 0;
};
