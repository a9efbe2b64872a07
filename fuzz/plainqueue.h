#pragma once

#include "linkhealth.h"
#include "sendqueue.h"

#include <QtCore/QByteArray>

#include <algorithm>
#include <deque>
#include <vector>

/// The sending side as docs/protocol.md tells it: what the library's own is compared with.
namespace fuzz {

class PlainQueue {
public:
    using Effect = canbus::LinkEffect;
    using Fate = canbus::LinkHealth::Fate;
    using Timer = canbus::LinkTimer;

    /// What the operations since the last forget() asked for, in order.
    const std::vector<Effect> &effects() const { return m_effects; }
    void forget() { m_effects.clear(); }

    bool enqueue(const QByteArray &frame)
    {
        if (m_cache.size() > 64) {
            m_effects.push_back({Effect::Ended, frame, {}, 0, Fate::NotAccepted, 0});
            return false;
        }
        append(frame);
        return true;
    }

    void restart()
    {
        if (m_cache.empty())
            return;
        send();
        m_effects.push_back({Effect::StartTimer, {}, Timer::Send});
    }

    bool resend()
    {
        if (m_cache.empty())
            return true;
        if (m_sent < 3) {
            send();
            return false;
        }
        end(Fate::GivenUp);
        if (!m_handshaking) {
            m_effects.push_back({Effect::StopTimer, {}, Timer::CheckConnect});
            m_effects.push_back({Effect::StartTimer, {}, Timer::RequestConnect});
            m_effects.push_back({Effect::LinkDown});
        }
        return m_cache.empty();
    }

    void answered(quint8 id, Fate fate)
    {
        if (id != currentId())
            return;
        if (!m_cache.empty())
            end(fate);
        if (m_cache.empty())
            m_effects.push_back({Effect::StopTimer, {}, Timer::Send});
        else
            restart();
    }

    void confirm(quint8 id)
    {
        if (id == m_connectionId)
            m_effects.push_back({Effect::LinkUp});
    }

    void request()
    {
        static const QByteArray frame("\x9f\x02\x21\x01\x00\x00\x00\x20\x9f\x03", 10);
        m_handshaking = true;
        appendOnce(frame);
    }

    void ready(quint8 id)
    {
        m_handshaking = false;
        m_connectionId = id;
        m_effects.push_back({Effect::StopTimer, {}, Timer::RequestConnect});
        m_effects.push_back({Effect::StartTimer, {}, Timer::CheckConnect});
    }

    void notReady() { m_effects.push_back({Effect::StopTimer, {}, Timer::CheckConnect}); }

    void checkConnection()
    {
        QByteArray frame(m_connectionId == 0x9F ? "\x9f\x02--\x01\x00\x00\x01--\x9f\x03"
                                                : "\x9f\x02-\x01\x00\x00\x01-\x9f\x03",
                         m_connectionId == 0x9F ? 12 : 10);
        std::replace(frame.begin(), frame.end(), '-', char(m_connectionId));
        appendOnce(frame);
    }

    int size() const { return int(m_cache.size()); }
    int sent() const { return m_sent; }
    bool isHandshaking() const { return m_handshaking; }
    quint8 connectionId() const { return m_connectionId; }

    /// That of the first frame; 0 where there is none, or no third byte.
    quint8 currentId() const
    {
        return !m_cache.empty() && m_cache.front().size() > 2 ? quint8(m_cache.front().at(2)) : quint8(0);
    }

    /// The time of what follows, in microseconds.
    void setNow(qint64 nowUs) { m_nowUs = nowUs; }

private:
    void append(const QByteArray &frame)
    {
        m_cache.push_back(frame);
        restart();
    }

    /// As append(), but with 1024 frames cached a frame that is among them is not cached again.
    void appendOnce(const QByteArray &frame)
    {
        if (m_cache.size() >= 1024 && std::find(m_cache.begin(), m_cache.end(), frame) != m_cache.end())
            restart();
        else
            append(frame);
    }

    void send()
    {
        if (m_sent == 0)
            m_firstSentUs = m_nowUs;
        ++m_sent;
        m_effects.push_back({Effect::Write, m_cache.front(), {}, m_sent});
    }

    void end(Fate fate)
    {
        const qint64 took = m_sent > 0 ? m_nowUs - m_firstSentUs : 0;
        m_effects.push_back({Effect::Ended, m_cache.front(), {}, m_sent, fate, took});
        m_cache.pop_front();
        m_sent = 0;
    }

    std::deque<QByteArray> m_cache;
    std::vector<Effect> m_effects;
    qint64 m_nowUs = 0;
    qint64 m_firstSentUs = 0;
    int m_sent = 0;
    quint8 m_connectionId = 0;
    bool m_handshaking = true;
};

} // namespace fuzz
