#include "velcanbusprotocol.h"

#include "player/canbusdatamap.h"
#include "support/bytes.h"
#include "velcanbusprotocol_p.h"
#include "wireconstants.h"

#include <initializer_list>

namespace canbus {

namespace {

void store(Category category, std::initializer_list<QByteArray> record)
{
    CanBusDataMap::instance()->setRecord(quint8(category), record);
}

} // namespace

VelCanBusProtocol::ParseOperation VelCanBusProtocol::parseOperationFor(quint8 tp)
{
    struct Entry {
        Category category;
        ParseOperation parse;
    };
    static constexpr Entry table[] = {
        {Category::Version, &VelCanBusProtocol::parse_GetVersion},
        {Category::ScreensInfo, &VelCanBusProtocol::parse_ScreensInfo},
        {Category::Climate, &VelCanBusProtocol::parse_ClimateInfo},
        {Category::Gauges, &VelCanBusProtocol::parse_GaugesInfo},
        {Category::Vehicle, &VelCanBusProtocol::parse_VehicleInfo},
        {Category::ParkingAssist, &VelCanBusProtocol::parse_ParingAssistInfo},
        {Category::ScreensTransition, &VelCanBusProtocol::parse_ScreensTransition},
        {Category::TextScreen, &VelCanBusProtocol::parse_TextScreen},
    };
    for (const Entry &entry : table) {
        if (quint8(entry.category) == tp)
            return entry.parse;
    }
    return nullptr;
}

void VelCanBusProtocol::onAllocateData()
{
    if (const ParseOperation parse = parseOperationFor(firstByte(d->decoded.TP)))
        (this->*parse)(&d->decoded); // GCOVR_EXCL_BR_LINE: none of them is virtual
}

void VelCanBusProtocol::parse_GetVersion(FrameDataFormat *frame)
{
    CANBUS_DEBUG() << frame->DATA;
    store(Category::Version, {frame->id, frame->DATA});
    switch (byteAt(frame->DATA, 1)) {
    case kBoxReady:
        d->act([frame](SendQueue &queue, LinkEffects &effects) { queue.boxReady(frame->id, effects); });
        onCheckConnectTmrout();
        break;
    case kBoxNotReady:
        onRequestConnect();
        d->act([](SendQueue &queue, LinkEffects &effects) { queue.boxNotReady(effects); });
        break;
    default:
        break;
    }
}

void VelCanBusProtocol::parse_ScreensInfo(FrameDataFormat *frame)
{
    CANBUS_DEBUG() << "parse_ScreensInfo";
    store(Category::ScreensInfo, {frame->id, frame->DATA});
    Q_EMIT notifyScreensInfo(frame->DATA);
}

void VelCanBusProtocol::parse_ClimateInfo(FrameDataFormat *frame)
{
    CANBUS_DEBUG() << "parse_ClimateInfo";
    store(Category::Climate, {frame->id, frame->MOD, frame->DATA});
    Q_EMIT notifyClimateInfo(frame->MOD, frame->DATA);
}

void VelCanBusProtocol::parse_GaugesInfo(FrameDataFormat *frame)
{
    CANBUS_DEBUG() << "parse_GaugesInfo";
    store(Category::Gauges, {frame->id, frame->MOD, frame->DATA});
    Q_EMIT notifyGaugesInfo(frame->MOD, frame->DATA);
}

void VelCanBusProtocol::parse_VehicleInfo(FrameDataFormat *frame)
{
    CANBUS_DEBUG() << "parse_VehicleInfo";
    store(Category::Vehicle, {frame->id, frame->MOD, frame->DATA});
    Q_EMIT notifyVehicleInfo(frame->MOD, frame->DATA);
}

void VelCanBusProtocol::parse_ParingAssistInfo(FrameDataFormat *frame)
{
    CANBUS_DEBUG() << "parse_ParingAssistInfo";
    store(Category::ParkingAssist, {frame->id, frame->MOD, frame->DATA});
    Q_EMIT notifyParingAssistInfo(frame->MOD, frame->DATA);
}

void VelCanBusProtocol::parse_ScreensTransition(FrameDataFormat *frame)
{
    CANBUS_DEBUG() << "parse_ScreensTransition";
    store(Category::ScreensTransition, {frame->id, frame->DATA});
    Q_EMIT notifyScreensTransition(frame->DATA);
}

void VelCanBusProtocol::parse_TextScreen(FrameDataFormat *frame)
{
    CANBUS_DEBUG() << "parse_TextScreen";
    store(Category::TextScreen, {frame->id, frame->DATA});
    Q_EMIT notifyTextScreen(frame->DATA);
}

} // namespace canbus
