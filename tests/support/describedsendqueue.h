#pragma once

#include "hexbytes.h"
#include "sendqueue.h"

#include <QtCore/QStringList>

/// A send queue whose operations return the effects that they had, in words: "write 9f..", "start send",
/// "stop request", "up", "down".
struct DescribedSendQueue {
    canbus::SendQueue queue;
    bool accepted = false;      ///< what the last enqueue() returned
    bool sendTimerEnds = false; ///< what the last resend() returned

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

    QStringList restart() { return effectsOf(&canbus::SendQueue::restart); }
    QStringList request() { return effectsOf(&canbus::SendQueue::requestConnect); }
    QStringList check() { return effectsOf(&canbus::SendQueue::checkConnect); }

    QStringList answer(int id)
    {
        queue.answered(quint8(id), effects);
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
    QStringList effectsOf(void (canbus::SendQueue::*operation)(canbus::LinkEffects &))
    {
        (queue.*operation)(effects);
        return takeEffects();
    }

    QStringList takeEffects()
    {
        QStringList found;
        for (const canbus::LinkEffect &effect : effects)
            found += describe(effect);
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
        }
        return "?";
    }

    canbus::LinkEffects effects;
};
