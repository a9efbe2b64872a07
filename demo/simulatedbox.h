#pragma once

#include "boxsim/setup.h"

#include <QtCore/QSemaphore>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>

#include <memory>

namespace canbus::headunit {

/// A simulated box on a pseudo-terminal of its own, on a thread of its own. The object itself lives on the
/// thread that made it.
class SimulatedBox : public QThread {
    Q_OBJECT

public:
    enum class Car {
        Drives, ///< the built-in drive, or the scenario that is named
        Parks,  ///< stands still, for the panel and for pictures
    };

    explicit SimulatedBox(QObject *parent = nullptr);
    ~SimulatedBox() override;

    /// Starts the box, and waits until a head unit may open its line.
    /// @param scenario  a file, or empty
    /// @param error  set to one line
    /// @return whether it runs
    bool begin(Car car, const QString &scenario, QString *error);

    /// The line to open.
    QString port() const;

    /// Gives the box a line as canbus-boxsim reads them, for example "vehicle.door.1=open". After begin() and
    /// before the end of the object.
    Q_INVOKABLE void send(const QString &line);

Q_SIGNALS:
    /// The box reports something, as a JSON object.
    void reported(const QByteArray &json);

    /// A line of send() made no sense.
    void complained(const QString &error);

    /// The simulated car is put into reverse gear, or out of it: its sensors measure while it is in.
    void reverseChanged(bool engaged);

protected:
    void run() override;

private:
    class Worker;

    bool setUpCar(Car car, const QString &scenario, QString *error);

    QTemporaryDir m_folder;
    boxsim::Setup m_setup;
    QSemaphore m_started;
    QString m_error;
    std::unique_ptr<Worker> m_worker; // made, used and ended on the box's thread
};

} // namespace canbus::headunit
