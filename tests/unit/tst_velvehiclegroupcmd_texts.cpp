#include "grouptextstest.h"

#include "velvehiclegroupcmd.h"

using namespace canbus;

class VelVehicleGroupCmdTextsTest : public GroupTextsTest {
    Q_OBJECT

public:
    VelVehicleGroupCmdTextsTest()
        : GroupTextsTest(&VelVehicleGroupCmd::onVehicleTopText, "updateVehicleTopText",
                         &VelVehicleGroupCmd::onVehicleCustomLabel, "updateVehicleComText")
    {
    }
};

QTEST_GUILESS_MAIN(VelVehicleGroupCmdTextsTest)
#include "moc_grouptextstest.cpp"
#include "tst_velvehiclegroupcmd_texts.moc"
