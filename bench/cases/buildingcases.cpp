#include "benchbytes.h"
#include "benchcase.h"
#include "commandframe.h"
#include "text.h"

#include <memory>

namespace bench {

namespace {

Case splitting()
{
    // Six labels, as a screen of the box has them.
    const QByteArray data("Oil Temp.\0"
                          "Oil Press\0"
                          "Battery V\0"
                          "Fuel Rate\0"
                          "Intake  C\0"
                          "Boost kPa\0",
                          60);
    const auto list = std::make_shared<QStringList>();
    return {"split 60 bytes of text", [list] { list->clear(); },
            [list, data] {
                canbus::splitZeroTerminated(*list, data);
                if (list->size() != 6)
                    giveUp("the texts are not split");
            }};
}

Case building()
{
    const auto frame = std::make_shared<QByteArray>();
    return {"build a 10-byte command", [frame] { frame->clear(); },
            [frame] {
                *frame = canbus::buildCommand(CANBUS_HERE, 0x21, canbus::Command::GaugesButton, {0x02, 0x01});
                if (frame->size() != 10)
                    giveUp("the command is not built");
            }};
}

} // namespace

std::vector<Case> buildingCases()
{
    return {splitting(), building()};
}

} // namespace bench
