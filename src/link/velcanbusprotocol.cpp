#include "velcanbusprotocol.h"

#include "framedecoder.h"
#include "frameformat.h"
#include "player/canbusdatamap.h"
#include "player/canbusplayer.h"
#include "receivepath.h"
#include "support/bytes.h"
#include "support/threadsatexit.h"
#include "velcanbusprotocol_p.h"

#include <algorithm>

namespace canbus {

void FrameDataFormat::clear()
{
    id.clear();
    TP.clear();
    MOD.clear();
    if (DATA.isDetached())
        DATA.resize(0);
    else
        DATA.clear();
    CS = 0;
}

VelCanBusProtocol::VelCanBusProtocol(QObject *parent)
    : CanbusProtocol(parent)
    , d(std::make_unique<VelCanBusProtocolPrivate>(this))
{
    d->checkConnectTimer.setInterval(SendQueue::kCheckConnectIntervalMs);
    connect(&d->checkConnectTimer, &QTimer::timeout, this, &VelCanBusProtocol::onCheckConnectTmrout);
    d->requestConnectTimer.setInterval(SendQueue::kRequestConnectIntervalMs);
    d->requestConnectTimer.start();
    connect(&d->requestConnectTimer, &QTimer::timeout, this, &VelCanBusProtocol::onRequestConnect);
    d->sendTimer.setInterval(SendQueue::kResendIntervalMs);
    connect(&d->sendTimer, &QTimer::timeout, this, &VelCanBusProtocol::onSendTmrout);

    connect(CanBusPlayer::instance(), &CanBusPlayer::sendCmdData, this,
            &VelCanBusProtocol::onSaveSendCmdData);

    // The parser thread uses these: they must be there before it is registered for the exit.
    d->countReceivedBytes();
    CanBusDataMap::instance();
    auto *tickThread = new CanbusTickThread(nullptr, this);
    d->tickThread = tickThread;
    tickThread->start();
    // It posts what is to be written to the port's thread.
    threadsAtExit::add(
        tickThread, [tickThread] { tickThread->stop(); }, threadsAtExit::Order::First);
}

VelCanBusProtocol::~VelCanBusProtocol()
{
    d->tickThread->stop();
    d->tickThread->wait();
    threadsAtExit::remove(d->tickThread);
    delete d->tickThread; // GCOVR_EXCL_BR_LINE: it is never null
}

void VelCanBusProtocol::analyseData(QByteArray data)
{
    d->addTestBytes(data);
    TestSerialPort();
}

LinkHealth *VelCanBusProtocol::linkHealth() const
{
    return &d->health;
}

void VelCanBusProtocol::TestSerialPort()
{
    static const QByteArray question("121314151617");
    const QByteArray heard = d->takeTestBytes();

    const int compared = std::min(heard.size(), question.size());
    const auto differing = std::mismatch(heard.begin(), heard.begin() + compared, question.begin());
    const int matched = int(differing.first - heard.begin());
    const bool tooLong = matched == question.size() && heard.size() > question.size();
    // Lenient on purpose: one matching byte is enough, whatever follows it.
    if (matched > 0 && !tooLong)
        d->writeThrough(QByteArrayLiteral("716151413121"));
}

void VelCanBusProtocol::onParseDataTmrout()
{
    // A slot that is connected directly may come back here while the frame is still in the buffer.
    if (d->inPass)
        return;
    d->inPass = true;
    QByteArray &buffer = CanBusReadBuff::instance()->data;
    if (!buffer.isEmpty()) {
        d->counters().bufferHighWater.raiseTo(quint64(buffer.size()));
        d->counters().countPass(receive::runPass(buffer, *this));
    }
    d->carryOutTheRest();
    d->inPass = false;
}

int VelCanBusProtocol::onSearchDLE()
{
    const receive::Start start = receive::findStart(CanBusReadBuff::instance()->data);
    d->markers = start.markers;
    return start.index;
}

int VelCanBusProtocol::onSearchDLE_ETX(int start)
{
    const receive::End end = receive::findEnd(CanBusReadBuff::instance()->data, start);
    // On every pass until the missing byte has come, as the box expects it.
    if (end.escapeIsLast && d->markers.stx) {
        d->counters().awaitingNacks.add();
        receiveModuleNAck();
    }
    return end.index;
}

void VelCanBusProtocol::onRemoveEscapeFrameHeaders(int start, int end)
{
    receive::unescape(CanBusReadBuff::instance()->data, start, end);
}

bool VelCanBusProtocol::checkXOR(int start, int end)
{
    // Not emptied but let go of: whoever was given the payload may be reading it on another thread.
    d->decoded.DATA.clear();
    d->decoded.clear();
    const receive::Check check = receive::checkFrame(CanBusReadBuff::instance()->data, start, end);
    d->decoded.CS = check.computed;
    return check.holds;
}

void VelCanBusProtocol::onProcessingFrameData(int start, int end)
{
    if (end == -1)
        return;
    // Of any two indices, those that are in the buffer.
    const QByteArray &buffer = CanBusReadBuff::instance()->data;
    const int from = std::clamp(start, 0, buffer.size());
    d->frameBytes.resize(0);
    d->frameBytes.append(buffer.constData() + from, std::clamp(end, from, buffer.size()) - from);
}

void VelCanBusProtocol::onCategoryDataProcessing()
{
    if (d->markers.nack) {
        CANBUS_DEBUG() << "is DLE NACK";
        onReceiveSaveNACKData();
    } else if (d->markers.ack) {
        CANBUS_DEBUG() << "is DLE ACK";
        onReceiveSaveACKData();
    } else if (d->markers.stx) {
        CANBUS_DEBUG() << "is DLE STX";
        onReceiveSaveData();
    } else {
        CANBUS_ERROR() << "Error parsing data";
        d->frameBytes.clear();
    }
}

void VelCanBusProtocol::onReceiveSaveData()
{
    QByteArray &rest = d->frameBytes;
    if (rest.isEmpty())
        return;
    const int missing = receive::kFieldBytes - rest.size();
    receive::decode(rest, d->decoded);
    for (int i = 0; i < missing; ++i)
        removeData1Bit(rest);
    d->counters().countReceivedFrame(firstByte(d->decoded.TP), d->decoded.DATA.size());
    d->decoded.LogFrameData();
    onAllocateData();
    receiveModuleAck();
}

void VelCanBusProtocol::removeData1Bit(QByteArray &data)
{
    if (data.isEmpty())
        CANBUS_DEBUG() << "Insufficient data length, removal failed.";
    else
        data.remove(0, 1);
}

void VelCanBusProtocol::receiveModuleAck()
{
    d->writeThrough(frame::buildAnswer(frame::kAck, d->decoded.id));
}

void VelCanBusProtocol::receiveModuleNAck()
{
    d->writeThrough(frame::buildAnswer(frame::kNack, d->decoded.id));
}

void VelCanBusProtocol::onReceiveSaveACKData()
{
    if (d->frameBytes.isEmpty())
        return;
    d->counters().receivedAcks.add();
    const quint8 id = firstByte(d->frameBytes);
    CANBUS_DEBUG() << "ack id---" << logging::hex(id) << logging::hex(d->look(&SendQueue::currentId));
    removeSendCmdData(char(id));
    d->act([id](SendQueue &queue, LinkEffects &effects) { queue.confirmLink(id, effects); });
}

void VelCanBusProtocol::onReceiveSaveNACKData()
{
    if (d->frameBytes.isEmpty())
        return;
    d->counters().receivedNacks.add();
    const quint8 id = firstByte(d->frameBytes);
    CANBUS_DEBUG() << "nack id---" << logging::hex(id) << logging::hex(d->look(&SendQueue::currentId));
    d->answered(id, LinkHealth::Fate::Refused);
}

void VelCanBusProtocol::restartSendTmr()
{
    d->act([](SendQueue &queue, LinkEffects &effects) { queue.restart(effects); });
}

void VelCanBusProtocol::removeSendCmdData(char id)
{
    d->answered(quint8(id), LinkHealth::Fate::Acknowledged);
}

void VelCanBusProtocol::onCheckConnectTmrout()
{
    if (logging::isDebugEnabled()) {
        const quint8 id = d->look(&SendQueue::connectionId);
        CANBUS_DEBUG() << logging::hex(id) << SendQueue::connectionCheck(id);
    }
    d->addConnectFrame(CANBUS_HERE, &SendQueue::checkConnect, d->counters().connectionChecks);
}

void VelCanBusProtocol::onRequestConnect()
{
    d->addConnectFrame(CANBUS_HERE, &SendQueue::requestConnect, d->counters().connectRequests);
}

void VelCanBusProtocol::onSendTmrout()
{
    if (logging::isDebugEnabled()) {
        const SendQueue before = d->look([](const SendQueue &queue) { return queue; });
        const int cached = before.cachedFrames();
        if (!before.isHandshaking())
            CANBUS_DEBUG() << before.transmissions() << (cached == 0) << cached;
    }
    d->act([this](SendQueue &queue, LinkEffects &effects) {
        if (!queue.resend(effects))
            return;
        // Directly, unlike all other starts and stops, since this is the timer's own thread; but a slot of
        // the parser thread may call this too.
        if (QThread::currentThread() == thread())
            d->sendTimer.stop();
        else
            effects.push_back({LinkEffect::StopTimer, {}, LinkTimer::Send});
    });
}

void VelCanBusProtocol::onSaveSendCmdData(QByteArray data)
{
    bool accepted = false;
    d->act([&](SendQueue &queue, LinkEffects &effects) { accepted = queue.enqueue(data, effects); });
    if (!accepted)
        CANBUS_ERROR() << "canbus sendCacheBuffer is full !!!";
}

} // namespace canbus
