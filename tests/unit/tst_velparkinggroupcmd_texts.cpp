#include "grouptextstest.h"

#include "velparkinggroupcmd.h"

using namespace canbus;

class VelParkingGroupCmdTextsTest : public GroupTextsTest {
    Q_OBJECT

public:
    VelParkingGroupCmdTextsTest()
        : GroupTextsTest(&VelParkingGroupCmd::onParkTopText, "updateParkTopText",
                         &VelParkingGroupCmd::onParkCustomLabel, "updateParkComText")
    {
    }
};

QTEST_GUILESS_MAIN(VelParkingGroupCmdTextsTest)
#include "moc_grouptextstest.cpp"
#include "tst_velparkinggroupcmd_texts.moc"
