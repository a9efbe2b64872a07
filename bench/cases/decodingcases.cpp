#include "benchbytes.h"
#include "benchcase.h"
#include "groups/velclimategroupcmd.h"
#include "groups/velgaugesgroupcmd.h"
#include "groups/velparkinggroupcmd.h"
#include "groups/velvehiclegroupcmd.h"

#include <memory>

namespace bench {

namespace {

/// A decoder fed with one payload, and with two in turn that have nothing in common.
template <class Group>
void add(std::vector<Case> &cases, const std::string &name, void (Group::*decode)(QByteArray),
         const QByteArray &payload, const QByteArray &other)
{
    const auto feed = [decode](const QByteArray &data) { (Group::instance()->*decode)(data); };
    cases.push_back({"decode " + name + "/nothing new", [] {}, [=] { feed(payload); }});
    const auto next = std::make_shared<QByteArray>(payload);
    cases.push_back({"decode " + name + "/all new", [=] { *next = *next == payload ? other : payload; },
                     [=] { feed(*next); }});
}

} // namespace

std::vector<Case> decodingCases()
{
    using namespace canbus;
    const QByteArray texts = QByteArray("12 mph\0"
                                        "2.3 bar\0"
                                        "90 C\0",
                                        20);
    const QByteArray otherTexts = QByteArray("57 mph\0"
                                             "1.8 bar\0"
                                             "85 C\0",
                                             20);
    const QByteArray gauges = bytes("00 10 2a 04 00 20 00 30 00 40 00 50 2e");
    const QByteArray otherGauges = bytes("01 11 55 09 01 21 01 31 01 41 01 51 2e");
    const QByteArray vehicle = bytes("05 1b 14");
    const QByteArray otherVehicle = bytes("3a e4 e1");
    std::vector<Case> cases;
    add(cases, "climate", &VelClimateGroupCmd::onClimateData,
        bytes("00 d7 00 dc 55 55 11 11 40 55 15 55 55 05 16"),
        bytes("01 2c 01 2d aa aa 22 22 80 aa 2a aa aa 3a 17"));
    add(cases, "gauges", &VelGaugesGroupCmd::handleGaugeStateValue, gauges, otherGauges);
    add(cases, "gauges with texts", &VelGaugesGroupCmd::handleGaugeStateValue, gauges.left(12) + texts,
        otherGauges.left(12) + otherTexts);
    add(cases, "vehicle", &VelVehicleGroupCmd::onVehicleData, vehicle, otherVehicle);
    add(cases, "vehicle with texts", &VelVehicleGroupCmd::onVehicleData, vehicle + texts,
        otherVehicle + otherTexts);
    add(cases, "parking", &VelParkingGroupCmd::onParkData, bytes("01020304 05060708 090a0b0c 0d0e0f10 55"),
        bytes("11121314 15161718 191a1b1c 1d1e1f20 aa"));
    return cases;
}

} // namespace bench
