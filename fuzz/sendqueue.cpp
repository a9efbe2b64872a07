#include "sendqueue.h"
#include "plainqueue.h"
#include "target.h"
/// The send queue, through any order of its operations.
///
/// The input: a byte for each operation. Its lowest three bits say which, the others carry its argument: an
/// id, or which of some frames. After each one the effects are compared with a plain queue's, and the rules
/// that hold of every history are checked.

using namespace canbus;

namespace {

/// What must be true of the effects whatever the operations were.
class Rules {
public:
    void before(const SendQueue &queue) { m_cachedBefore = queue.cachedFrames(); }

    void restarted() { m_isRestart = true; }

    void after(const SendQueue &queue, const LinkEffects &effects, bool isCommand)
    {
        for (const LinkEffect &effect : effects)
            follow(effect);
        const int cached = queue.cachedFrames();
        fuzz::check(!isCommand || cached <= SendQueue::kCacheBound || cached == m_cachedBefore,
                    "commands grow the cache to its bound and no further");
        fuzz::check(cached <= 1024 + kConnectFrames, "nothing grows it without end");
        fuzz::check(cached == 0 || m_sent <= SendQueue::kMaxTransmissions || m_wasRestarted,
                    "a frame goes out three times, unless sending was restarted");
        fuzz::check(queue.transmissions() == m_sent, "transmissions are counted");
        m_isRestart = false;
    }

private:
    void follow(const LinkEffect &effect)
    {
        if (effect.kind == LinkEffect::Write) {
            fuzz::check(m_sent == 0 || effect.frame == m_onTheWire, "one frame is under way at a time");
            fuzz::check(effect.transmissions == m_sent + 1, "each transmission counts as one");
            m_wasRestarted = m_wasRestarted || (m_sent > 0 && m_isRestart);
            m_onTheWire = effect.frame;
            ++m_sent;
        } else if (effect.kind == LinkEffect::Ended && effect.fate != LinkHealth::Fate::NotAccepted) {
            fuzz::check(m_sent == 0 || effect.frame == m_onTheWire, "the frame under way ends, and no other");
            fuzz::check(effect.fate != LinkHealth::Fate::GivenUp || m_sent >= SendQueue::kMaxTransmissions,
                        "none is given up before its third transmission");
            fuzz::check(effect.microseconds >= 0, "no frame ends before it was sent");
            m_sent = 0;
            m_wasRestarted = false;
        }
    }

    static constexpr int kConnectFrames = 9; // the connect request and a check for each id

    QByteArray m_onTheWire;
    int m_cachedBefore = 0;
    int m_sent = 0;
    bool m_isRestart = false;    // by the operation under way
    bool m_wasRestarted = false; // since the frame under way was first sent
};

/// Both queues, and what an operation does to them.
class Queues {
public:
    void operate(quint8 instruction)
    {
        const quint8 argument = instruction >> 3;
        const auto operation = Operation(instruction & 0x07);
        m_nowUs += argument;
        m_queue.setNow(m_nowUs);
        m_plain.setNow(m_nowUs);
        m_rules.before(m_queue);
        if (operation != Resend && operation != Answer)
            m_rules.restarted();
        carryOut(operation, argument);
        m_rules.after(m_queue, m_effects, operation == Enqueue);
        compareEffects();
        compareStates();
        m_effects.clear();
    }

private:
    enum Operation { Enqueue, Restart, Resend, Answer, Request, Ready, NotReady, Check };

    void carryOut(Operation operation, quint8 argument)
    {
        switch (operation) {
        case Enqueue:
            fuzz::check(m_queue.enqueue(frameOf(argument), m_effects) == m_plain.enqueue(frameOf(argument)),
                        "a command is accepted while less than 65 frames are cached");
            break;
        case Restart:
            m_queue.restart(m_effects);
            m_plain.restart();
            break;
        case Resend:
            fuzz::check(m_queue.resend(m_effects) == m_plain.resend(),
                        "the send timer ends when nothing is cached");
            break;
        case Answer:
            answer(argument);
            break;
        default:
            connection(operation, argument);
        }
    }

    void answer(quint8 argument)
    {
        const quint8 id = idOf(argument & 0x0F);
        const bool isAck = (argument & 0x10) == 0;
        const auto fate = isAck ? LinkHealth::Fate::Acknowledged : LinkHealth::Fate::Refused;
        m_queue.answered(id, fate, m_effects);
        m_plain.answered(id, fate);
        if (!isAck)
            return;
        m_queue.confirmLink(id, m_effects);
        m_plain.confirm(id);
    }

    void connection(Operation operation, quint8 argument)
    {
        if (operation == Ready) {
            m_queue.boxReady(readyId(argument), m_effects);
            m_plain.ready(readyId(argument).isEmpty() ? quint8(0) : idOf(argument));
        } else if (operation == NotReady) {
            m_queue.boxNotReady(m_effects);
            m_plain.notReady();
        } else if (operation == Request) {
            m_queue.requestConnect(m_effects);
            m_plain.request();
        } else {
            m_queue.checkConnect(m_effects);
            m_plain.checkConnection();
        }
    }

    void compareEffects()
    {
        const std::vector<LinkEffect> &plain = m_plain.effects();
        fuzz::check(m_effects.size() == plain.size(), "an operation has the effects that it has by the book");
        for (std::size_t i = 0; i < plain.size(); ++i)
            fuzz::check(isSame(m_effects[i], plain[i]), "each effect is the one by the book");
        m_plain.forget();
    }

    static bool isSame(const LinkEffect &a, const LinkEffect &b)
    {
        return a.kind == b.kind && a.frame == b.frame && a.timer == b.timer
            && a.transmissions == b.transmissions && a.fate == b.fate && a.microseconds == b.microseconds;
    }

    void compareStates() const
    {
        fuzz::check(m_queue.cachedFrames() == m_plain.size(), "the cache holds what it holds by the book");
        fuzz::check(m_queue.transmissions() == m_plain.sent(), "and counts its transmissions");
        fuzz::check(m_queue.currentId() == m_plain.currentId(), "the first frame's id is the one awaited");
        fuzz::check(m_queue.connectionId() == m_plain.connectionId(), "the ready reply's id is kept");
        fuzz::check(m_queue.isHandshaking() == m_plain.isHandshaking(), "the handshake is on or over");
    }

    /// Ids that frames have and ids that none has; 9F, 00 and 21 among them.
    static quint8 idOf(quint8 argument)
    {
        static constexpr quint8 kIds[] = {0x00, 0x9F, 0x21, 0x02, 0x03, 0x40, 0x50, 0xFF};
        return kIds[argument & 0x07];
    }

    static QByteArray readyId(quint8 argument)
    {
        return (argument & 0x08) != 0 ? QByteArray() : QByteArray(1, char(idOf(argument)));
    }

    /// Few enough that equal ones are cached together, and some too short to have an id.
    static QByteArray frameOf(quint8 argument)
    {
        static const std::vector<QByteArray> frames = [] {
            std::vector<QByteArray> all;
            for (int each = 0; each < 0x20; ++each)
                all.push_back(makeFrame(quint8(each)));
            return all;
        }();
        return frames[argument];
    }

    static QByteArray makeFrame(quint8 argument)
    {
        QByteArray frame("\x9f\x02", 2);
        if (argument >= 0x1C)
            return frame.left(argument - 0x1C);
        frame += QByteArray(idOf(argument) == 0x9F ? 2 : 1, char(idOf(argument)));
        return frame + char(argument) + QByteArray("\x9f\x03", 2);
    }

    SendQueue m_queue;
    LinkEffects m_effects;
    fuzz::PlainQueue m_plain;
    Rules m_rules;
    qint64 m_nowUs = 0;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Program program(data, size);
    Queues queues;
    while (!program.atEnd())
        queues.operate(program.byte());
    return 0;
}
