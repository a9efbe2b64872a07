#include "barereader.h"
#include "benchbytes.h"
#include "benchcase.h"
#include "receivecore.h"

#include <memory>

namespace bench {

namespace {

constexpr int kFullBuffer = canbus::receive::kMaxBufferedBytes;
constexpr int kEscapesInAFullFrame = 1019; // each doubled, and 8 bytes around them: 2,046

/// Frames back to back, as many as a pass does not throw away.
QByteArray fullOf(const QByteArray &frame)
{
    return frame.repeated(kFullBuffer / frame.size());
}

QByteArray withoutEscapes(QByteArray bytes)
{
    return bytes.replace(char(0x9F), char(0x20));
}

/// The frames in `received` through the core and through the bare reader.
void addBoth(std::vector<Case> &cases, const std::string &name, const QByteArray &received, int frames)
{
    const auto core = std::make_shared<ReceiveCore>();
    const auto arrive = [core, received] { core->buffer.append(received); };
    cases.push_back({"receive/" + name, arrive,
                     [core, frames] {
                         for (int i = 0; i < frames; ++i) {
                             if (core->pass().end != canbus::receive::Pass::Taken)
                                 giveUp("the receive core has not taken a frame");
                         }
                     },
                     frames});
    const auto bare = std::make_shared<BareReader>();
    cases.push_back({"receive/" + name + "/bare", [] {},
                     [bare, received, frames] {
                         const int before = bare->frames();
                         bare->take(received);
                         if (bare->frames() != before + frames)
                             giveUp("the bare reader has not taken all frames");
                     },
                     frames});
}

/// A pass over a buffer in which there is nothing to be taken.
Case waiting(const std::string &name, const QByteArray &received)
{
    const auto core = std::make_shared<ReceiveCore>();
    core->buffer = received;
    return {name, [] {},
            [core] {
                if (core->pass().end != canbus::receive::Pass::Waits)
                    giveUp("the receive core has taken a frame out of noise");
            }};
}

} // namespace

std::vector<Case> receiveCases()
{
    const QByteArray usual = frameAround(plainBytes(15));
    const QByteArray back = fullOf(usual);
    std::vector<Case> cases;
    addBoth(cases, "10-byte frame", bytes("9f 02 21 01 00 00 00 20 9f 03"), 1);
    addBoth(cases, "15 bytes of payload", usual, 1);
    addBoth(cases, "60 bytes of payload", frameAround(plainBytes(60)), 1);
    addBoth(cases, "200 bytes, all 9F", frameAround(QByteArray(200, char(0x9F))), 1);
    addBoth(cases, "2 KB back to back", back, back.size() / usual.size());
    addBoth(cases, "2,046 bytes of doubled escapes",
            frameAround(QByteArray(kEscapesInAFullFrame, char(0x9F))), 1);
    addBoth(cases, "2,046 bytes of 03", frameAround(QByteArray(2 * kEscapesInAFullFrame, char(0x03))), 1);
    cases.push_back(waiting("receive/2 KB of noise", noise(kFullBuffer)));
    cases.push_back(waiting("receive/2 KB of noise without an escape", withoutEscapes(noise(kFullBuffer))));
    return cases;
}

std::vector<Case> scalingCases()
{
    std::vector<Case> cases;
    for (int payload = 0; payload <= 2000; payload += 250) {
        const auto core = std::make_shared<ReceiveCore>();
        const QByteArray frame = frameAround(plainBytes(payload));
        cases.push_back({"frame length/" + std::to_string(frame.size()),
                         [core, frame] { core->buffer.append(frame); }, [core] { core->pass(); }});
    }
    for (int size = 256; size <= kFullBuffer; size += 256)
        cases.push_back(waiting("buffer length/" + std::to_string(size), withoutEscapes(noise(size))));
    return cases;
}

} // namespace bench
