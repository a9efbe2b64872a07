#include "heardannouncements.h"
#include "itemtable.h"
#include "target.h"

#include <bitset>
#include <iterator>

/// Payloads of all categories, through the facade's slots into the groups. What is announced, and in the end
/// what is stored, is compared with the table of items.
///
/// The input, again and again: one byte, whose lowest three bits are the category and the next three its
/// sub-type, a length, and the payload.

using namespace canbus;

namespace {

constexpr int kCategories[] = {0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x11};

QByteArray subType(int selector)
{
    if (selector == 7)
        return {};
    return selector == 6 ? QByteArray("\xff\x01", 2) : QByteArray(1, char(selector));
}

/// The first byte; that of none reads as 0.
int modOf(const QByteArray &TPMOD)
{
    return TPMOD.isEmpty() ? 0 : quint8(TPMOD.at(0));
}

void handOver(int category, const QByteArray &TPMOD, const QByteArray &payload)
{
    CanBusPlayer *const player = CanBusPlayer::instance();
    switch (category) {
    case 0x02:
        return player->suppScreen(payload);
    case 0x03:
        return player->onClimateInfo(TPMOD, payload);
    case 0x04:
        return player->onGaugesInfo(TPMOD, payload);
    case 0x05:
        return player->onVehicleInfo(TPMOD, payload);
    case 0x06:
        return player->onParingAssistInfo(TPMOD, payload);
    case 0x07:
        return player->onChangeDsp(payload);
    default:
        return player->onTextScreen(payload);
    }
}

/// The touches that a transition brings while the head unit shows none of the box's screens.
QList<int> touchesOf(const QByteArray &payload)
{
    switch (payload.isEmpty() ? 0 : quint8(payload.at(0))) {
    case 1:
        return {83};
    case 2:
        return {81};
    case 3:
        return {82};
    case 4:
        return {84};
    default:
        return {};
    }
}

/// All that have items; those of the screens and of the menu do not look at their sub-type.
constexpr struct {
    int category;
    int mod;
} kSubTypes[] = {{2, 0}, {3, 0}, {3, 1}, {3, 2}, {4, 0}, {4, 1}, {4, 2}, {4, 3}, {4, 4},
                 {4, 5}, {5, 0}, {5, 1}, {5, 2}, {6, 0}, {6, 1}, {6, 2}, {17, 0}};

using SubTypes = std::bitset<std::size(kSubTypes)>;

/// Those whose items a payload may set.
SubTypes subTypesOf(int category, int mod)
{
    SubTypes meant;
    for (std::size_t i = 0; i < meant.size(); ++i)
        meant[i] =
            kSubTypes[i].category == category && (kSubTypes[i].mod == mod || category == 2 || category == 17);
    return meant;
}

/// Hands over payloads that set every item of these.
void fill(const SubTypes &which, char byte, itemtable::Items *items)
{
    const QByteArray payload(40, byte);
    for (std::size_t i = 0; i < which.size(); ++i) {
        if (!which[i])
            continue;
        handOver(kSubTypes[i].category, QByteArray(1, char(kSubTypes[i].mod)), payload);
        if (items != nullptr)
            items->receive(kSubTypes[i].category, kSubTypes[i].mod, payload);
    }
}

/// Whatever the last input has left in these is gone, and the throttle is on. @return what the items are then
const itemtable::Items &reset(const SubTypes &changed)
{
    static const itemtable::Items afterwards = [] {
        itemtable::Items items;
        fill(SubTypes().set(), '\x01', &items);
        fill(SubTypes().set(), '\x02', &items);
        return items;
    }();
    fill(changed, '\x02', nullptr);
    return afterwards;
}

class Run {
public:
    Run(HeardAnnouncements &heard, const itemtable::Items &items)
        : m_heard(heard)
        , m_items(items)
    {
        m_heard.take();
    }

    /// Those that have had a payload.
    const SubTypes &changed() const { return m_changed; }

    void operate(fuzz::Program &program)
    {
        const quint8 selectors = program.byte();
        if (std::size_t(selectors & 0x07) == std::size(kCategories)) {
            letTimersExpire();
            return;
        }
        const int category = kCategories[selectors & 0x07];
        const QByteArray TPMOD = subType((selectors >> 3) & 0x07);
        const QByteArray payload = program.bytes(program.byte());
        m_changed |= subTypesOf(category, modOf(TPMOD));
        handOver(category, TPMOD, payload);
        fuzz::check(m_heard.take() == m_items.receive(category, modOf(TPMOD), payload),
                    "a payload makes the announcements that the table gives");
        if (category == 0x07)
            fuzz::check(m_heard.takeTouches() == touchesOf(payload), "a transition is a touch of the host");
    }

    /// Everything that is stored, as a UI that binds late gets it.
    void compareStored()
    {
        VelClimateGroupCmd::instance()->getClimateInfo();
        VelGaugesGroupCmd::instance()->getGaugesInfo();
        VelVehicleGroupCmd::instance()->getVehicleInfo();
        VelParkingGroupCmd::instance()->getParkInfo();
        const itemtable::Announcements stored = m_heard.take();
        fuzz::check(stored.size() == 47, "each item of the groups is announced once");
        for (const itemtable::Announcement &each : stored)
            fuzz::check(each.value == m_items.stored(each.row), "with the value that the table gives");
    }

private:
    void letTimersExpire()
    {
        VelGaugesGroupCmd::instance()->onTimerOut();
        fuzz::check(m_heard.take() == m_items.throttled(), "the throttle announces its three items");
        VelVehicleGroupCmd::instance()->onTimerOut();
        fuzz::check(m_heard.take() == m_items.delayed(), "the delay announces the tires' texts");
    }

    HeardAnnouncements &m_heard;
    itemtable::Items m_items;
    SubTypes m_changed;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static auto *const heard = new HeardAnnouncements;
    static SubTypes changed = SubTypes().set();
    fuzz::Program program(data, size);
    Run run(*heard, reset(changed));
    while (!program.atEnd())
        run.operate(program);
    run.compareStored();
    changed = run.changed();
    return 0;
}
