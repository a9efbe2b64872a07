#include "options.h"

#include "commandline/arguments.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QMap>

#include <cmath>
#include <limits>

namespace canbus::monitor {

namespace {

QList<QCommandLineOption> allOptions()
{
    return {
        option("port", "Serial device of the box (default /dev/ttyS3).", "DEVICE"),
        option("baud", "Bits per second (default 57600).", "N"),
        option("json", "Print one JSON object a line."),
        option("for", "End after this time (default: run until told to end).", "SECONDS"),
        option("screen",
               "Show this screen once the link is up: gauges, vehicle, climate, parking or "
               "other.",
               "NAME"),
        option("call", "Call a control once the link is up; may be given several times.",
               "GROUP.CONTROL[=ARG,...]"),
        option("record", "Record what is received and sent, as pcapng; the file must be new or empty.",
               "FILE"),
        option("read", "Read a recording in the place of a port, and print what it holds.", "FILE"),
        option("stats",
               "Print the link's figures every 10 seconds and at the end, and each command's "
               "fate."),
        option("verbose", "Write the library's debug lines to standard error."),
        option("help", "Print this and end."),
        option("version", "Print the version and end."),
    };
}

void setUp(QCommandLineParser &parser)
{
    parser.setApplicationDescription(QStringLiteral(
        "A small head unit in the terminal: prints every signal of the CAN-bus service library and "
        "calls its controls.\n\n"
        "Standard input takes calls, a line at a time: climate.acBtn, climate.manualTemp=21, "
        "host.display=75; help lists them, stats prints the link's figures, quit ends."));
    parser.addOptions(allOptions());
}

Outcome<int> parseBaudRate(const QString &text)
{
    bool ok = false;
    const int baudRate = text.toInt(&ok);
    if (!ok || baudRate <= 0)
        return Failure {
            QStringLiteral("--baud %1: write a whole number above 0, for example 57600").arg(quoted(text))};
    return baudRate;
}

Outcome<int> parseDuration(const QString &text)
{
    constexpr double kMostMs = std::numeric_limits<int>::max();
    bool ok = false;
    const double ms = std::ceil(text.toDouble(&ok) * 1000);
    if (!ok || !(ms > 0 && ms <= kMostMs)) {
        return Failure {
            QStringLiteral("--for %1: write a number of seconds above 0 and up to %2, for example 2.5")
                .arg(quoted(text), QString::number(int(kMostMs) / 1000))};
    }
    return int(ms);
}

/// The call that shows a screen.
Outcome<QString> parseScreen(const QString &name)
{
    static const QMap<QString, int> displays {
        {QStringLiteral("gauges"), 73},  {QStringLiteral("vehicle"), 74}, {QStringLiteral("climate"), 75},
        {QStringLiteral("parking"), 76}, {QStringLiteral("other"), 0},
    };
    if (!displays.contains(name)) {
        return Failure {QStringLiteral("--screen %1: write gauges, vehicle, climate, parking or other")
                            .arg(quoted(name))};
    }
    return QStringLiteral("host.display=%1").arg(displays.value(name));
}

/// The options whose values need no checking.
Options plainOptions(const QCommandLineParser &parser)
{
    Options options;
    if (parser.isSet(QStringLiteral("port")))
        options.port = parser.value(QStringLiteral("port"));
    if (parser.isSet(QStringLiteral("json")))
        options.form = Form::Json;
    options.calls = parser.values(QStringLiteral("call"));
    options.recordFile = parser.value(QStringLiteral("record"));
    options.readFile = parser.value(QStringLiteral("read"));
    options.wantsStats = parser.isSet(QStringLiteral("stats"));
    options.isVerbose = parser.isSet(QStringLiteral("verbose"));
    options.wantsHelp = parser.isSet(QStringLiteral("help"));
    options.wantsVersion = parser.isSet(QStringLiteral("version"));
    return options;
}

Failure seeHelp(const QString &wrong)
{
    return {wrong + QStringLiteral(": see canbus-monitor --help")};
}

/// What is wrong with the files' options, or an empty text.
QString wrongFiles(const QCommandLineParser &parser)
{
    for (const auto &name : {QStringLiteral("record"), QStringLiteral("read")}) {
        if (parser.isSet(name) && parser.value(name).isEmpty())
            return QStringLiteral("--%1 is empty: write a file, for example drive.pcapng").arg(name);
    }
    if (!parser.isSet(QStringLiteral("read")))
        return {};
    for (const auto &name : {QStringLiteral("port"), QStringLiteral("baud"), QStringLiteral("record"),
                             QStringLiteral("call"), QStringLiteral("screen")}) {
        if (parser.isSet(name))
            return QStringLiteral("--%1 and --read: a recording is read without a port, leave one out")
                .arg(name);
    }
    return {};
}

Outcome<Options> checkedOptions(const QCommandLineParser &parser)
{
    Options options = plainOptions(parser);
    if (!parser.positionalArguments().isEmpty())
        return seeHelp(
            QStringLiteral("%1 is no option").arg(quoted(parser.positionalArguments().constFirst())));
    const QString wrong = wrongFiles(parser);
    if (!wrong.isEmpty())
        return Failure {wrong};
    if (options.port.isEmpty())
        return Failure {QStringLiteral("--port is empty: write a device, for example /dev/ttyS3")};
    if (parser.isSet(QStringLiteral("baud"))) {
        const Outcome<int> baudRate = parseBaudRate(parser.value(QStringLiteral("baud")));
        if (!baudRate)
            return baudRate.failure();
        options.baudRate = *baudRate;
    }
    if (parser.isSet(QStringLiteral("for"))) {
        const Outcome<int> duration = parseDuration(parser.value(QStringLiteral("for")));
        if (!duration)
            return duration.failure();
        options.durationMs = *duration;
    }
    if (parser.isSet(QStringLiteral("screen"))) {
        const Outcome<QString> screen = parseScreen(parser.value(QStringLiteral("screen")));
        if (!screen)
            return screen.failure();
        options.calls.prepend(*screen);
    }
    return options;
}

} // namespace

Outcome<Options> parseOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    setUp(parser);
    if (!parser.parse(arguments))
        return seeHelp(mistakeOf(parser));
    if (parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("version")))
        return plainOptions(parser);
    return checkedOptions(parser);
}

QString helpText()
{
    QCommandLineParser parser;
    setUp(parser);
    return parser.helpText();
}

} // namespace canbus::monitor
