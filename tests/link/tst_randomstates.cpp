#include "randomstates.h"
#include "statemirror.h"

#include "canbusplayer.h"
#include "link/frameformat.h"
#include "velcanbusprotocol.h"
#include "virtualtime.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLoggingCategory>
#include <QtCore/QRandomGenerator>
#include <QtTest/QTest>

#include <eventhandler.h>
#include <srcdsplctrl.h>
#include <touchevent.h>

#include <memory>
#include <utility>

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
        join(&CanbusProtocol::notifyScreensTransition, &CanBusPlayer::onChangeDsp);
    }

    std::unique_ptr<canbus::VelCanBusProtocol> m_protocol;
};

/// The last touch that the application object was given.
class TouchRecorder : public QObject {
public:
    TouchRecorder() { QCoreApplication::instance()->installEventFilter(this); }

    int takeTouch() { return std::exchange(m_touch, 0); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == 1008)
            m_touch = static_cast<TouchEvent *>(event)->touch;
        return QObject::eventFilter(watched, event);
    }

private:
    int m_touch = 0;
};

} // namespace

class RandomStatesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        m_seed = qEnvironmentVariableIsSet("CANBUS_STATE_SEED")
            ? quint32(qEnvironmentVariableIntValue("CANBUS_STATE_SEED"))
            : quint32(QRandomGenerator::global()->generate() >> 1);
        qInfo("seed %u", m_seed);
    }

    // For each function anew, so that one of them alone gives the same states as all of them.
    void init() { m_states = std::make_unique<RandomStates>(m_seed); }

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

    void screensTransition()
    {
        // No signal of the library's: a touch, delivered to the application object.
        TouchRecorder recorder;
        const QVector<int> touches {15, 83, 81, 82, 84};
        EventHandler::instance()->srcDsplCtrl()->setCurrentDspl(C::DSPLState(73));
        for (int round = 0; round < kRounds; ++round) {
            const int code = m_states->below(touches.size());
            QVERIFY(m_receiver.send(7, 0, boxsim::transitionPayload(quint8(code))));
            QCoreApplication::sendPostedEvents();
            QCOMPARE(recorder.takeTouch(), touches.at(code));
        }
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
            const QByteArray place =
                "seed " + QByteArray::number(m_seed) + ", round " + QByteArray::number(round);
            QVERIFY2(m_mirror.*mirrored == state, place.constData());
        }
        QVERIFY(carried > kRounds * 9 / 10);
    }

    quint32 m_seed = 0;
    std::unique_ptr<RandomStates> m_states;
    StateMirror m_mirror;
    Receiver m_receiver;
};

VIRTUAL_TIME_TEST_MAIN(RandomStatesTest)
#include "tst_randomstates.moc"
