#pragma once

#include "hexbytes.h"
#include "sendqueue.h"

#include <QtCore/QStringList>

/// A send queue whose operations return the effects that they had, in words: "write 9f..", "start send",
/// "stop request", "up", "down", and if that is wanted "ended 9f.. acknowledged after 2 in 300 us".
struct DescribedSendQueue {
    canbus::SendQueue queue;
    canbus::SendQueue::Appending appending = {}; ///< what the last request() or check() returned
    bool accepted = false;                       ///< what the last enqueue() returned
    bool sendTimerEnds = false;                  ///< what the last resend() returned
    bool tellsEnds = false;

    QStringList enqueue(const QByteArray &frame)
    {
        accepted = queue.enqueue(frame, effects);
        return takeEffects();
    }

    QStringList resend()
    {
        sendTimerEnds = queue.resend(effects);
        return takeEffects();
    }

    QStringList restart()
    {
        queue.restart(effects);
        return takeEffects();
    }

    QStringList request()
    {
        appending = queue.requestConnect(effects);
        return takeEffects();
    }

    QStringList check()
    {
        appending = queue.checkConnect(effects);
        return takeEffects();
    }

    QStringList answer(int id, canbus::LinkHealth::Fate fate = canbus::LinkHealth::Fate::Acknowledged)
    {
        queue.answered(quint8(id), fate, effects);
        return takeEffects();
    }

    QStringList confirm(int id)
    {
        queue.confirmLink(quint8(id), effects);
        return takeEffects();
    }

    QStringList ready(const char *id)
    {
        queue.boxReady(bytes(id), effects);
        return takeEffects();
    }

    QStringList notReady()
    {
        queue.boxNotReady(effects);
        return takeEffects();
    }

private:
    QStringList takeEffects()
    {
        QStringList found;
        for (const canbus::LinkEffect &effect : effects) {
            if (effect.kind != canbus::LinkEffect::Ended || tellsEnds)
                found += describe(effect);
        }
        effects.clear();
        return found;
    }

    static QString nameOf(canbus::LinkTimer timer)
    {
        switch (timer) {
        case canbus::LinkTimer::Send:
            return "send";
        case canbus::LinkTimer::RequestConnect:
            return "request";
        case canbus::LinkTimer::CheckConnect:
            return "check";
        }
        return "?";
    }

    static QString nameOf(canbus::LinkHealth::Fate fate)
    {
        switch (fate) {
        case canbus::LinkHealth::Fate::Acknowledged:
            return "acknowledged";
        case canbus::LinkHealth::Fate::Refused:
            return "refused";
        case canbus::LinkHealth::Fate::GivenUp:
            return "given up";
        case canbus::LinkHealth::Fate::NotAccepted:
            return "not accepted";
        }
        return "?";
    }

    static QString describe(const canbus::LinkEffect &effect)
    {
        switch (effect.kind) {
        case canbus::LinkEffect::Write:
            return "write " + QString::fromLatin1(effect.frame.toHex());
        case canbus::LinkEffect::StartTimer:
            return "start " + nameOf(effect.timer);
        case canbus::LinkEffect::StopTimer:
            return "stop " + nameOf(effect.timer);
        case canbus::LinkEffect::LinkUp:
            return "up";
        case canbus::LinkEffect::LinkDown:
            return "down";
        case canbus::LinkEffect::Ended:
            return QStringLiteral("ended %1 %2 after %3 in %4 us")
                .arg(QString::fromLatin1(effect.frame.toHex()), nameOf(effect.fate))
                .arg(effect.transmissions)
                .arg(effect.microseconds);
        }
        return "?";
    }

    canbus::LinkEffects effects;
};
