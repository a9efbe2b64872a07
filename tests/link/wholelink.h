#pragma once

#include "announcementrules.h"
#include "findings.h"
#include "parkedheadunit.h"
#include "receivingrules.h"
#include "sendingrules.h"
#include "trace.h"
#include "wirecounts.h"

#include <QtCore/QObject>

/// The real library under the eyes of all rules. Time, bytes and presses come from the test.
class WholeLink : public QObject {
public:
    WholeLink(ParkedHeadUnit &headUnit, Trace &trace);

    /// Lets time pass until this moment, with all timers that are due.
    void advanceTo(qint64 nowMs);

    /// A block comes from the line, as the serial port hands it on.
    void arrive(const QByteArray &block);

    /// One pass of the parser, as each 10 ms.
    void pass();

    /// Something was done to the library from outside: it may have announced whatever it holds.
    void toldToAnnounce() { m_announcing.forget(); }

    /// What was written since the last call.
    QList<QByteArray> takeWritten() { return std::exchange(m_written, {}); }

    /// Compares the library's figures with what was counted here.
    void checkFigures();

    /// Called when the facade has told that the link is up or down.
    std::function<void(bool)> whenStatusTold;

    Findings findings;
    WireCounts counts;

    const SendingRules &sending() const { return m_sending; }
    ReceivingRules &receiving() { return m_receiving; }

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    void follow(canbus::CanbusProtocol *protocol);
    void followCategory(quint8 tp, void (canbus::CanbusProtocol::*signal)(QByteArray));
    void followCategory(quint8 tp, void (canbus::CanbusProtocol::*signal)(QByteArray, QByteArray));
    void written(const QByteArray &block);
    void expectSending(const HeadUnitReading::Pass &pass);
    void settled();
    void moveHostClock();
    void note(const char *what, const QByteArray &bytes = {}, qint64 number = 0);

    ParkedHeadUnit &m_headUnit;
    Trace &m_trace;
    SendingRules m_sending {findings, counts};
    ReceivingRules m_receiving {findings, counts};
    AnnouncementRules m_announcing {findings, counts};
    QList<QByteArray> m_written;
};
