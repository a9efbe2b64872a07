#include "canbusdatamap.h"
#include "plainqueue.h"
#include "plainreader.h"
#include "target.h"
#include "velcanbusprotocol.h"

#include <QtCore/QCoreApplication>

#include <cstdlib>
#include <vector>

/// The real protocol object, driven on this thread: what arrives in chunks with a pass behind each, the send
/// timer's expiry, commands, connect requests and connection checks. All that it emits, and the records that
/// it stores, are compared with what a plain reader and a plain queue make of the same; a report and a record
/// are kept, as a host may do, and must not change.
///
/// The input: instructions of one byte and what they carry; see operate().

using namespace canbus;

namespace {

/// Something that the protocol emitted.
struct Event {
    enum Kind { Write, Status, Report };

    Kind kind = Write;
    QByteArray bytes; ///< written, or the report's payload
    QByteArray mod;   ///< of a report
    int detail = 0;   ///< of a status: whether the link is up; of a report: its TP
};

bool operator==(const Event &a, const Event &b)
{
    return a.kind == b.kind && a.bytes == b.bytes && a.mod == b.mod && a.detail == b.detail;
}

/// The one protocol of the process, with the receive buffer's mutex held, so that its own thread stays out.
class Bench {
public:
    Bench()
    {
        buffer()->mutex.lock();
        m_protocol = new VelCanBusProtocol;
        // The thread is waited for at exit, and must get its mutex there.
        std::atexit([] { buffer()->mutex.unlock(); });
        listen();
    }

    static CanBusReadBuff *buffer() { return CanBusReadBuff::instance(); }

    VelCanBusProtocol *operator->() const { return m_protocol; }

    /// What it has emitted since the last forget(), in order.
    const std::vector<Event> &events() const { return m_events; }
    void forget() { m_events.clear(); }

    /// Back to one state, whatever the last input has left: connected, nothing cached, nothing received.
    void reset()
    {
        static const QByteArray ready("\x9f\x02\x40\x01\x00\x00\x01\x40\x9f\x03", 10);
        QCoreApplication::removePostedEvents(nullptr, QEvent::MetaCall);
        // Now each has been read by somebody.
        static constexpr quint8 kCategories[] = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x11};
        for (const quint8 category : kCategories)
            CanBusDataMap::instance()->getData(category);
        buffer()->data = ready;
        m_protocol->onParseDataTmrout();
        forget();
        // Each frame that is cached goes out, and is acknowledged by the id that it has.
        m_protocol->restartSendTmr();
        while (!m_events.empty()) {
            const QByteArray frame = m_events.back().bytes;
            forget();
            m_protocol->removeSendCmdData(frame.size() > 2 ? frame.at(2) : '\0');
        }
    }

private:
    void listen()
    {
        using Protocol = CanbusProtocol;
        QObject::connect(m_protocol, &Protocol::notifyCanbusStatus, [this](bool up) {
            m_events.push_back({Event::Status, {}, {}, up ? 1 : 0});
        });
        QObject::connect(m_protocol, &Protocol::onWritPortData, [this](const QByteArray &bytes) {
            m_events.push_back({Event::Write, bytes, {}, 0});
        });
        report(0x02, &Protocol::notifyScreensInfo);
        report(0x03, &Protocol::notifyClimateInfo);
        report(0x04, &Protocol::notifyGaugesInfo);
        report(0x05, &Protocol::notifyVehicleInfo);
        report(0x06, &Protocol::notifyParingAssistInfo);
        report(0x07, &Protocol::notifyScreensTransition);
        report(0x11, &Protocol::notifyTextScreen);
    }

    void report(int tp, void (CanbusProtocol::*signal)(QByteArray))
    {
        QObject::connect(m_protocol, signal, [this, tp](const QByteArray &data) {
            m_events.push_back({Event::Report, data, {}, tp});
        });
    }

    void report(int tp, void (CanbusProtocol::*signal)(QByteArray, QByteArray))
    {
        QObject::connect(m_protocol, signal, [this, tp](const QByteArray &mod, const QByteArray &data) {
            m_events.push_back({Event::Report, data, mod, tp});
        });
    }

    VelCanBusProtocol *m_protocol = nullptr; // left to the end of the process, as a host may do
    std::vector<Event> m_events;
};

/// The protocol by the book.
class PlainProtocol {
public:
    PlainProtocol()
    {
        m_queue.ready(0x40);
        m_queue.forget();
        m_decodedId = QByteArray(1, '\x40');
    }

    void arrive(const QByteArray &bytes) { fuzz::append(m_buffer, bytes); }

    void pass()
    {
        const fuzz::PlainPass pass = fuzz::plainPass(m_buffer);
        if (pass.awaitsEnd)
            answer(0x15);
        if (pass.checked)
            m_decodedId.clear();
        if (pass.pass.end != receive::Pass::Taken || pass.frame.empty())
            return;
        if (pass.mark == 0x02)
            decode(fuzz::plainFrame(pass.frame, pass.check));
        else
            answered(pass.frame.front(), pass.mark == 0x06);
    }

    void sendTimer()
    {
        m_queue.resend();
        carryOut();
    }

    void command(const QByteArray &frame)
    {
        m_queue.enqueue(frame);
        carryOut();
    }

    void request()
    {
        m_queue.request();
        carryOut();
    }

    void check()
    {
        m_queue.checkConnection();
        carryOut();
    }

    const fuzz::Buffer &buffer() const { return m_buffer; }

    std::size_t buffered() const { return m_buffer.size(); }

    /// What is to be emitted since the last forget(), in order.
    const std::vector<Event> &events() const { return m_events; }
    /// What is to be stored since then; empty where nothing is.
    const QList<QVariant> &record() const { return m_record; }
    quint8 category() const { return m_category; }

    void forget()
    {
        m_events.clear();
        m_record.clear();
    }

private:
    void answer(quint8 kind)
    {
        QByteArray bytes;
        bytes.reserve(6);
        bytes.append('\x9f').append(char(kind)).append(m_decodedId).append(m_decodedId);
        m_events.push_back({Event::Write, bytes.append("\x9f\x03"), {}, 0});
    }

    void answered(quint8 id, bool isAck)
    {
        m_queue.answered(id, isAck ? LinkHealth::Fate::Acknowledged : LinkHealth::Fate::Refused);
        if (isAck)
            m_queue.confirm(id);
        carryOut();
    }

    void decode(const fuzz::PlainFrame &frame)
    {
        m_decodedId = frame.id;
        m_category = frame.tp.isEmpty() ? quint8(0) : quint8(frame.tp.at(0));
        if (m_category >= 0x03 && m_category <= 0x06) {
            m_record = {frame.id, frame.mod, frame.data};
            m_events.push_back({Event::Report, frame.data, frame.mod, m_category});
        } else if ((m_category >= 0x01 && m_category <= 0x07) || m_category == 0x11) {
            m_record = {frame.id, frame.data};
            if (m_category == 0x01)
                version(frame);
            else
                m_events.push_back({Event::Report, frame.data, {}, m_category});
        }
        answer(0x06);
    }

    void version(const fuzz::PlainFrame &frame)
    {
        const int state = frame.data.size() > 1 ? quint8(frame.data.at(1)) : 0;
        if (state == 1) {
            m_queue.ready(quint8(frame.id.at(0)));
            m_queue.checkConnection();
        } else if (state == 0) {
            m_queue.request();
            m_queue.notReady();
        }
        carryOut();
    }

    void carryOut()
    {
        for (const LinkEffect &effect : m_queue.effects()) {
            if (effect.kind == LinkEffect::Write)
                m_events.push_back({Event::Write, effect.frame, {}, 0});
            else if (effect.kind == LinkEffect::LinkUp || effect.kind == LinkEffect::LinkDown)
                m_events.push_back({Event::Status, {}, {}, effect.kind == LinkEffect::LinkUp ? 1 : 0});
        }
        m_queue.forget();
    }

    fuzz::Buffer m_buffer;
    fuzz::PlainQueue m_queue;
    QByteArray m_decodedId;
    std::vector<Event> m_events;
    QList<QVariant> m_record;
    quint8 m_category = 0;
};

/// What is kept of the library's own, and what it must stay like.
template <class Kept>
class Keeper {
public:
    void keep(const Kept &real, const Kept &plain)
    {
        m_real = real;
        m_plain = plain;
    }

    bool isUnchanged() const { return m_real == m_plain; }

private:
    Kept m_real;
    Kept m_plain;
};

class Run {
public:
    explicit Run(Bench &bench)
        : m_bench(bench)
    {
    }

    /// 00 to 7F: so many bytes arrive; then a pass. 80 to BF: so many times 64 bytes of noise arrive; then a
    /// pass. C0 to CF: the send timer expires. D0 to DF: a command of so many bytes. E0 to EF: a connect
    /// request. F0 to FF: a connection check.
    void operate(fuzz::Program &program)
    {
        const quint8 instruction = program.byte();
        if (instruction < 0x80)
            arrive(program.bytes(instruction));
        else if (instruction < 0xC0)
            arrive(QByteArray(64 * (instruction & 0x3F), 'U'));
        else
            send(instruction, program);
        compare();
    }

    void drain()
    {
        std::size_t before = 0;
        do {
            before = m_plain.buffered();
            pass();
            compare();
        } while (m_plain.buffered() < before);
    }

    /// The first clean frame may be taken for the end of what the noise has begun; the next one is decoded.
    void expectRecovery()
    {
        arrive(fuzz::cleanFrame());
        compare();
        drain();
        arrive(fuzz::cleanFrame());
        const std::vector<Event> &events = m_bench.events();
        static const Event report {Event::Report, QByteArray("\x1f"), {}, 0x02};
        static const Event ack {Event::Write, QByteArray("\x9f\x06\x44\x44\x9f\x03"), {}, 0};
        fuzz::check(events.size() == 2 && events[0] == report && events[1] == ack,
                    "a clean frame after noise is decoded once and acknowledged once");
        fuzz::check(Bench::buffer()->data.isEmpty(), "nothing of it stays");
    }

private:
    void arrive(const QByteArray &bytes)
    {
        Bench::buffer()->data += bytes;
        m_plain.arrive(bytes);
        pass();
    }

    void pass()
    {
        m_bench->onParseDataTmrout();
        m_plain.pass();
    }

    void send(quint8 instruction, fuzz::Program &program)
    {
        if (instruction < 0xD0) {
            m_bench->onSendTmrout();
            m_plain.sendTimer();
        } else if (instruction < 0xE0) {
            const QByteArray bytes = program.bytes(instruction & 0x0F);
            const QByteArray frame(bytes.constData(), bytes.size()); // which stays longer than the input
            m_bench->onSaveSendCmdData(frame);
            m_plain.command(frame);
        } else if (instruction < 0xF0) {
            m_bench->onRequestConnect();
            m_plain.request();
        } else {
            m_bench->onCheckConnectTmrout();
            m_plain.check();
        }
    }

    void compare()
    {
        fuzz::check(m_bench.events() == m_plain.events(), "the protocol emits what the book says");
        fuzz::check(m_report.isUnchanged() && m_record.isUnchanged(), "what a host keeps stays what it was");
        for (std::size_t i = 0; i < m_plain.events().size(); ++i) {
            if (m_plain.events()[i].kind == Event::Report)
                m_report.keep(m_bench.events()[i], m_plain.events()[i]);
        }
        if (!m_plain.record().isEmpty())
            compareRecord(m_plain.category(), m_plain.record());
        m_bench.forget();
        m_plain.forget();
        fuzz::check(fuzz::isSame(m_plain.buffer(), Bench::buffer()->data), "and leaves the same bytes");
    }

    /// Some records are read whole and kept, others are not read: what comes next may take their place.
    void compareRecord(quint8 category, const QList<QVariant> &plain)
    {
        CanBusDataMap *const map = CanBusDataMap::instance();
        const QByteArray id = plain.constFirst().toByteArray();
        fuzz::check(map->getId(category) == id, "the category's last id is stored");
        if (quint8(id.at(0)) % 2 == 0)
            return;
        const QList<QVariant> record = map->getData(category);
        fuzz::check(record == plain, "and its whole record");
        m_record.keep(record, plain);
    }

    Bench &m_bench;
    PlainProtocol m_plain;
    Keeper<Event> m_report;
    Keeper<QList<QVariant>> m_record;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Bench *const bench = new Bench;
    bench->reset();
    fuzz::Program program(data, size);
    Run run(*bench);
    while (!program.atEnd())
        run.operate(program);
    run.drain();
    run.expectRecovery();
    return 0;
}
