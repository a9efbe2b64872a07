#include "simulatedbox.h"

#include "boxsim/bench/report.h"
#include "boxsim/bench/session.h"
#include "boxsim/line/line.h"
#include "boxsim/scenario/scenarioplayer.h"
#include "boxsim/steering.h"

#include <QtCore/QFile>

#include <algorithm>

namespace canbus::headunit {

namespace {

bool readParkedCar(boxsim::Scenario *scenario, QString *error)
{
    QFile file(QStringLiteral(":/headunit/parked.json"));
    return file.open(QIODevice::ReadOnly)
        && boxsim::readScenario(file.readAll(), file.fileName(), scenario, error);
}

bool isReversing(const boxsim::BenchState &state)
{
    const auto &sensors = state.car.parking.sensors;
    return std::any_of(sensors.begin(), sensors.end(), [](bool measures) { return measures; });
}

} // namespace

/// What lives on the box's thread.
class SimulatedBox::Worker : public QObject {
public:
    Worker(SimulatedBox *box, boxsim::Line *line, boxsim::Setup setup)
        : m_box(box)
        , m_session(line, setup.bench, std::move(setup.script))
    {
        connect(&m_session, &boxsim::Session::happened, this, [this](const boxsim::Event &event) {
            Q_EMIT m_box->reported(boxsim::toJson(event));
            followGear();
        });
    }

    void take(const QString &text)
    {
        const boxsim::Steered steered = boxsim::steer(text, m_session.state());
        if (!steered.error.isEmpty())
            Q_EMIT m_box->complained(steered.error);
        if (steered.instruction)
            m_session.carryOut(*steered.instruction);
        followGear();
    }

private:
    void followGear()
    {
        const bool reverses = isReversing(m_session.state());
        if (m_reverses == reverses)
            return;
        m_reverses = reverses;
        Q_EMIT m_box->reverseChanged(reverses);
    }

    SimulatedBox *m_box;
    boxsim::Session m_session;
    bool m_reverses = false;
};

SimulatedBox::SimulatedBox(QObject *parent)
    : QThread(parent)
{
}

SimulatedBox::~SimulatedBox()
{
    quit();
    wait();
}

QString SimulatedBox::port() const
{
    return m_folder.filePath(QStringLiteral("box"));
}

bool SimulatedBox::begin(Car car, const QString &scenario, QString *error)
{
    if (!m_folder.isValid()) {
        *error = QStringLiteral("cannot make a folder for the simulated box: ") + m_folder.errorString();
        return false;
    }
    if (!setUpCar(car, scenario, error))
        return false;
    start();
    m_started.acquire();
    *error = m_error;
    return m_error.isEmpty();
}

bool SimulatedBox::setUpCar(Car car, const QString &scenario, QString *error)
{
    if (car == Car::Drives || !scenario.isEmpty()) {
        boxsim::Options options;
        options.scenario = scenario;
        return boxsim::setUp(options, &m_setup, error);
    }
    boxsim::Scenario parked;
    if (!readParkedCar(&parked, error))
        return false;
    m_setup.script = std::make_unique<boxsim::ScenarioPlayer>(std::move(parked));
    return true;
}

void SimulatedBox::run()
{
    const std::unique_ptr<boxsim::Line> line = boxsim::openPty(port(), &m_error);
    if (!line) {
        m_started.release();
        return;
    }
    m_worker = std::make_unique<Worker>(this, line.get(), std::move(m_setup));
    m_started.release();
    exec();
    m_worker.reset();
}

void SimulatedBox::send(const QString &line)
{
    if (!isRunning())
        return;
    Worker *const worker = m_worker.get();
    QMetaObject::invokeMethod(
        worker, [worker, line] { worker->take(line); }, Qt::QueuedConnection);
}

} // namespace canbus::headunit
