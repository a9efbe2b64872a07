#include "randomstates.h"
#include "statemirror.h"

#include "canbusplayer.h"
#include "link/frameformat.h"
#include "velcanbusprotocol.h"
#include "virtualtime.h"

#include <QtTest>

#include <memory>

// A random state, encoded by the simulated box, sent through the library, comes back as the same values in
// the library's signals. The seed is printed; CANBUS_STATE_SEED=N runs that one instead.

namespace {

constexpr int kRounds = 5000;
constexpr int kThrottleMs = 300; // after which delayed items are announced

/// The receiving half of the library, driven by hand: from a frame in the receive buffer to the signals.
class Receiver {
public:
    Receiver()
    {
        buffer()->mutex.lock(); // the parser thread stays out
        m_protocol = std::make_unique<canbus::VelCanBusProtocol>();
        joinPlayer();
    }

    ~Receiver() { buffer()->mutex.unlock(); }

    /// @return whether the frame was one that the link can carry
    bool send(quint8 category, quint8 subType, const QByteArray &payload)
    {
        const QByteArray frame = canbus::frame::build(0x40, category, subType, payload);
        // A doubled escape followed by 03 ends a frame early: such a payload cannot be sent.
        if (frame.indexOf(QByteArray("\x9f\x03", 2)) != frame.size() - 2)
            return false;
        buffer()->data = frame;
        m_protocol->onParseDataTmrout();
        return true;
    }

private:
    static canbus::CanBusReadBuff *buffer() { return canbus::CanBusReadBuff::instance(); }

    void joinPlayer()
    {
        using canbus::CanBusPlayer;
        using canbus::CanbusProtocol;
        CanBusPlayer *const player = CanBusPlayer::instance();
        const auto join = [&](auto signal, auto slot) {
            QObject::connect(m_protocol.get(), signal, player, slot);
        };
        join(&CanbusProtocol::notifyClimateInfo, &CanBusPlayer::onClimateInfo);
        join(&CanbusProtocol::notifyGaugesInfo, &CanBusPlayer::onGaugesInfo);
        join(&CanbusProtocol::notifyVehicleInfo, &CanBusPlayer::onVehicleInfo);
        join(&CanbusProtocol::notifyParingAssistInfo, &CanBusPlayer::onParingAssistInfo);
        join(&CanbusProtocol::notifyScreensInfo, &CanBusPlayer::suppScreen);
        join(&CanbusProtocol::notifyTextScreen, &CanBusPlayer::onTextScreen);
    }

    std::unique_ptr<canbus::VelCanBusProtocol> m_protocol;
};

} // namespace

class RandomStatesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        const quint32 seed = qEnvironmentVariableIsSet("CANBUS_STATE_SEED")
            ? quint32(qEnvironmentVariableIntValue("CANBUS_STATE_SEED"))
            : quint32(QRandomGenerator::global()->generate() >> 1);
        qInfo("seed %u", seed);
        m_states = std::make_unique<RandomStates>(seed);
    }

    void climate()
    {
        roundTrip(
            &StateMirror::climate, [this] { return m_states->climate(); },
            [this](const boxsim::ClimateState &state) {
                return m_receiver.send(3, 0, climateTypePayload(state))
                    && m_receiver.send(3, 1, climateLabelsPayload(state))
                    && m_receiver.send(3, 2, climateDataPayload(state));
            });
    }

    void gauges()
    {
        roundTrip(
            &StateMirror::gauges, [this] { return m_states->gauges(); },
            [this](const boxsim::GaugesState &state) {
                return m_receiver.send(4, 0, gaugesTypePayload(state))
                    && m_receiver.send(4, 1, gaugesLabelsPayload(state))
                    && m_receiver.send(4, 2, gaugesScalePayload(state))
                    && m_receiver.send(4, 3, gaugesTopTextsPayload(state))
                    && m_receiver.send(4, 4, gaugesBottomTextsPayload(state))
                    && m_receiver.send(4, 5, gaugesDataPayload(state));
            });
    }

    void vehicle()
    {
        roundTrip(
            &StateMirror::vehicle, [this] { return m_states->vehicle(); },
            [this](const boxsim::VehicleState &state) {
                return m_receiver.send(5, 0, vehicleTitlePayload(state))
                    && m_receiver.send(5, 1, vehicleLabelsPayload(state))
                    && m_receiver.send(5, 2, vehicleDataPayload(state));
            });
    }

    void parking()
    {
        roundTrip(
            &StateMirror::parking, [this] { return m_states->parking(); },
            [this](const boxsim::ParkingState &state) {
                return m_receiver.send(6, 0, parkingTitlePayload(state))
                    && m_receiver.send(6, 1, parkingLabelsPayload(state))
                    && m_receiver.send(6, 2, parkingDataPayload(state));
            });
    }

    void textScreen()
    {
        roundTrip(
            &StateMirror::textScreen, [this] { return m_states->textScreen(); },
            [this](const boxsim::TextScreen &screen) {
                return m_receiver.send(0x11, 0, textScreenPayload(screen));
            });
    }

    void screens()
    {
        roundTrip(
            &StateMirror::screens, [this] { return m_states->screens(); },
            [this](const boxsim::Screens &screens) {
                return m_receiver.send(2, 0, screensPayload(screens));
            });
    }

private:
    template <class State, class Make, class Send>
    void roundTrip(State StateMirror::*mirrored, Make &&make, Send &&send)
    {
        int carried = 0;
        for (int round = 0; round < kRounds; ++round) {
            const State state = make();
            if (!send(state))
                continue;
            ++carried;
            VirtualTime::advance(kThrottleMs);
            QVERIFY2(m_mirror.*mirrored == state, QByteArray("round ") + QByteArray::number(round));
        }
        QVERIFY(carried > kRounds * 9 / 10);
    }

    std::unique_ptr<RandomStates> m_states;
    StateMirror m_mirror;
    Receiver m_receiver;
};

VIRTUAL_TIME_TEST_MAIN(RandomStatesTest)
#include "tst_randomstates.moc"
