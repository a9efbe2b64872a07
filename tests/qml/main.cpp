#include "car.h"

#include <QtQml/QQmlContext>
#include <QtQml/QQmlEngine>
#include <QtQuickTest/quicktest.h>

#include <memory>

/// Gives each test file the simulated car, as `car`.
class Setup : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine *engine)
    {
        m_car = std::make_unique<Car>();
        engine->rootContext()->setContextProperty(QStringLiteral("car"), m_car.get());
    }

    void cleanupTestCase() { m_car.reset(); }

private:
    std::unique_ptr<Car> m_car;
};

QUICK_TEST_MAIN_WITH_SETUP(CanBusModule, Setup)

#include "main.moc"
