#include "errors.h"

#include "commandline/complaint.h"
#include "commandline/exitstatus.h"

#include <QtCore/QLoggingCategory>
#include <QtCore/QMap>
#include <QtCore/QRegularExpression>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlError>

#include <cstdlib>

#include <unistd.h>

namespace canbus::headunit {

namespace {

bool isAboutThePlatform(const QMessageLogContext &context)
{
    return QByteArray(context.category).startsWith("qt.qpa");
}

void takeMessage(QtMsgType level, const QMessageLogContext &context, const QString &message)
{
    const bool isStarting = !QGuiApplication::primaryScreen();
    if (level == QtFatalMsg) {
        complain(isStarting ? noDisplayText() : message);
        ::_exit(kFailure);
    }
    const bool isAboutTheSession = message.startsWith(QLatin1String("QStandardPaths"));
    const bool isForNobody = level == QtDebugMsg || level == QtInfoMsg || isStarting;
    if (isForNobody || isAboutThePlatform(context) || isAboutTheSession)
        return;
    complain(message);
}

/// What brings a QML module.
QString bringerOf(const QString &module)
{
    static const QMap<QString, QString> packages {
        {QStringLiteral("QtQuick"), QStringLiteral("qml-module-qtquick2")},
        {QStringLiteral("QtQuick.Window"), QStringLiteral("qml-module-qtquick-window2")},
        {QStringLiteral("QtQuick.Shapes"), QStringLiteral("qml-module-qtquick-shapes")},
    };
    if (module == QLatin1String("CanBus"))
        return QStringLiteral("install the library's QML module, or name the folder above it in "
                              "QML2_IMPORT_PATH");
    return QStringLiteral("install ") + packages.value(module, QStringLiteral("the package that brings it"));
}

} // namespace

void complain(const QString &text)
{
    canbus::complain("canbus-headunit", text);
}

void takeMessages()
{
    qInstallMessageHandler(takeMessage);
    QLoggingCategory::setFilterRules(QStringLiteral("default.critical=false\ndefault.debug=false"));
}

bool hasDisplay()
{
    const char *const names[] = {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"};
    for (const char *name : names) {
        if (!qEnvironmentVariableIsEmpty(name))
            return true;
    }
    return false;
}

QString noDisplayText()
{
    const QString tried = qEnvironmentVariable("QT_QPA_PLATFORM", qEnvironmentVariable("DISPLAY"));
    const QString what = tried.isEmpty() ? QStringLiteral("no display")
                                         : QStringLiteral("the display %1 cannot be opened").arg(tried);
    return what
        + QStringLiteral(": start it from a desktop, set DISPLAY or QT_QPA_PLATFORM (eglfs, linuxfb), run it "
                         "under xvfb-run, or take pictures with --screenshot DIR");
}

QString loadError(const QList<QQmlError> &errors)
{
    static const QRegularExpression missing(
        QStringLiteral("module \"([^\"]+)\"( version \\S+)? is not installed"));
    static const QRegularExpression plugin(
        QStringLiteral("plugin cannot be loaded for module \"([^\"]+)\": (.*)"));
    for (const QQmlError &error : errors) {
        const QRegularExpressionMatch match = missing.match(error.description());
        if (match.hasMatch())
            return QStringLiteral("the QML module %1 is missing: %2")
                .arg(match.captured(1), bringerOf(match.captured(1)));
        const QRegularExpressionMatch broken = plugin.match(error.description());
        if (broken.hasMatch())
            return QStringLiteral("the QML module %1 does not load (%2): %3")
                .arg(broken.captured(1), broken.captured(2), bringerOf(broken.captured(1)));
    }
    return errors.isEmpty() ? QStringLiteral("the screens do not load") : errors.constFirst().toString();
}

} // namespace canbus::headunit
