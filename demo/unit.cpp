#include "unit.h"

#include "dialface.h"
#include "errors.h"

#include "commandline/facade/facadeport.h"

#include <QtCore/QDir>
#include <QtGui/QFontDatabase>
#include <QtGui/QGuiApplication>
#include <QtGui/QSurfaceFormat>
#include <QtQml/QQmlComponent>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <velcanbusprotocol.h>

// The macro declares a function, which has to be a global one.
static void registerScreens()
{
    Q_INIT_RESOURCE(headunit);
}

namespace canbus::headunit {

namespace {

constexpr char kModule[] = "CanBus.HeadUnit";

QUrl urlOf(const QString &file)
{
    return QUrl(QStringLiteral("qrc:/headunit/qml/") + file);
}

/// The library's module, in a build folder or below an own prefix, is found from where the program lies.
void addOwnModules(QQmlEngine *engine)
{
    for (const char *place : {"../qml", CANBUS_QML_FROM_COMMANDS}) {
        const QDir folder(QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(place));
        if (folder.exists(QStringLiteral("CanBus")))
            engine->addImportPath(folder.canonicalPath());
    }
}

} // namespace

Unit::Unit(const Options &options)
    : m_options(options)
{
    registerScreens();
}

Unit::~Unit() = default;

bool Unit::startBox(QString *error)
{
    m_box = std::make_unique<SimulatedBox>();
    QObject::connect(m_box.get(), &SimulatedBox::reverseChanged, &m_host, &Host::setReverse);
    m_options.port = m_box->port();
    return m_box->begin(m_options.parks ? SimulatedBox::Car::Parks : SimulatedBox::Car::Drives,
                        m_options.scenario, error);
}

bool Unit::start(QString *error)
{
    if (m_options.simulates && !startBox(error))
        return false;
    m_protocol = std::make_unique<VelCanBusProtocol>();
    if (!openFacadePort(m_options.port, m_options.baudRate, m_protocol.get())) {
        *error = facadePortError(m_options.port, m_options.baudRate,
                                 QStringLiteral("name the box's device with --port, or take --simulate"));
        return false;
    }
    if (!m_options.screenshots.isEmpty())
        m_host.setFollowsBox(false);
    qmlRegisterSingletonInstance(kModule, 1, 0, "Host", &m_host);
    if (m_box)
        qmlRegisterSingletonInstance(kModule, 1, 0, "Box", m_box.get());
    qmlRegisterType<DialFace>(kModule, 1, 0, "DialFace");
    m_engine = std::make_unique<QQmlEngine>();
    addOwnModules(m_engine.get());
    const QVariantMap properties {{QStringLiteral("page"), m_options.page},
                                  {QStringLiteral("night"), m_options.isNight}};
    m_screen.reset(qobject_cast<QQuickItem *>(load(QStringLiteral("HeadUnit.qml"), properties, error)));
    return m_screen != nullptr;
}

QObject *Unit::load(const QString &file, const QVariantMap &properties, QString *error)
{
    QQmlComponent component(m_engine.get(), urlOf(file));
    // What is not ready is not to be created: that ends in a crash.
    QObject *const object = component.isReady() ? component.createWithInitialProperties(properties) : nullptr;
    if (!object)
        *error = loadError(component.errors());
    return object;
}

void Unit::showIn(QQuickWindow *window)
{
    m_screen->setParentItem(window->contentItem());
    const auto fill = [this, window] { m_screen->setSize(window->size()); };
    QObject::connect(window, &QWindow::widthChanged, m_screen.get(), fill);
    QObject::connect(window, &QWindow::heightChanged, m_screen.get(), fill);
    fill();
    m_screen->forceActiveFocus();
}

void prepareDrawing()
{
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setSamples(4);
    QSurfaceFormat::setDefaultFormat(format);
    const QStringList families = QFontDatabase().families();
    for (const char *name : {"Inter", "DejaVu Sans"}) {
        const QString family = QString::fromLatin1(name);
        if (families.contains(family)) {
            QGuiApplication::setFont(QFont(family));
            return;
        }
    }
}

} // namespace canbus::headunit
