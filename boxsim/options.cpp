#include "options.h"

#include <QtCore/QCommandLineParser>

namespace boxsim {

namespace {

struct Switches {
    QCommandLineOption pty {QStringLiteral("pty"),
                            QStringLiteral("Make a pseudo-terminal and link LINK to it."),
                            QStringLiteral("LINK")};
    QCommandLineOption port {QStringLiteral("port"), QStringLiteral("Use the serial device DEVICE."),
                             QStringLiteral("DEVICE")};
    QCommandLineOption baud {QStringLiteral("baud"), QStringLiteral("Baud rate of DEVICE (57600)."),
                             QStringLiteral("N")};
    QCommandLineOption split {QStringLiteral("split"), QStringLiteral("Write every block byte by byte.")};
    QCommandLineOption silentAfter {QStringLiteral("silent-after"),
                                    QStringLiteral("Neither answer nor send any more after MS milliseconds."),
                                    QStringLiteral("MS")};
    QCommandLineOption notReady {QStringLiteral("not-ready"),
                                 QStringLiteral("Answer the first N connect requests with \"not ready\"."),
                                 QStringLiteral("N")};
    QCommandLineOption json {QStringLiteral("json"), QStringLiteral("Print a JSON object a line.")};
    QCommandLineOption help {QStringLiteral("help"), QStringLiteral("Show this text and exit.")};
    QCommandLineOption version {QStringLiteral("version"), QStringLiteral("Show the version and exit.")};

    QList<QCommandLineOption> all() const
    {
        return {pty, port, baud, split, silentAfter, notReady, json, help, version};
    }
};

/// Reads the number that an option carries, if it is given. @return false if it is none within the bounds
bool readNumber(const QCommandLineParser &parser, const QCommandLineOption &option, int least, int *number,
                QString *error)
{
    if (!parser.isSet(option))
        return true;
    const QString text = parser.value(option);
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    if (isNumber && value >= least) {
        *number = value;
        return true;
    }
    *error = QStringLiteral("--%1 takes a whole number from %2, not \"%3\"")
                 .arg(option.names().constFirst(), QString::number(least), text);
    return false;
}

bool readNumbers(const QCommandLineParser &parser, const Switches &switches, Options *options, QString *error)
{
    int silentAfter = int(kNever);
    if (!readNumber(parser, switches.baud, 1, &options->baudRate, error)
        || !readNumber(parser, switches.silentAfter, 0, &silentAfter, error)
        || !readNumber(parser, switches.notReady, 0, &options->faults.notReadyReplies, error))
        return false;
    options->silentAfterMs = silentAfter;
    return true;
}

/// What is wrong with the combination, or nothing.
QString contradiction(const QCommandLineParser &parser, const Switches &switches)
{
    if (!parser.positionalArguments().isEmpty())
        return QStringLiteral("\"%1\" belongs to no option; see --help")
            .arg(parser.positionalArguments().constFirst());
    if (parser.isSet(switches.pty) == parser.isSet(switches.port))
        return QStringLiteral("give either --pty LINK or --port DEVICE, and one of them");
    if (parser.value(switches.pty).isEmpty() && parser.value(switches.port).isEmpty())
        return QStringLiteral("--pty and --port take a path, not nothing");
    if (parser.isSet(switches.pty) && parser.isSet(switches.baud))
        return QStringLiteral("--baud goes with --port DEVICE: a pseudo-terminal has no baud rate");
    return {};
}

/// The first line of the parser's text, without its full stop.
QString firstLine(const QString &text)
{
    const QString line = text.section(QLatin1Char('\n'), 0, 0);
    return line.endsWith(QLatin1Char('.')) ? line.chopped(1) : line;
}

void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(QStringLiteral(
        "The CAN-bus interface box, simulated. It answers a head unit, plays a drive of a minute with\n"
        "everything a car reports in a loop, and prints every frame that it receives. Give --pty or "
        "--port."));
}

} // namespace

bool parseOptions(const QStringList &arguments, Options *options, QString *error)
{
    const Switches switches;
    QCommandLineParser parser;
    describe(parser);
    parser.addOptions(switches.all());
    if (!parser.parse(arguments)) {
        *error = firstLine(parser.errorText()) + QStringLiteral("; see --help");
        return false;
    }
    options->helpText = parser.helpText();
    if (parser.isSet(switches.help) || parser.isSet(switches.version)) {
        options->task = parser.isSet(switches.help) ? Options::Task::ShowHelp : Options::Task::ShowVersion;
        return true;
    }
    *error = contradiction(parser, switches);
    if (!error->isEmpty() || !readNumbers(parser, switches, options, error))
        return false;
    options->ptyLink = parser.value(switches.pty);
    options->port = parser.value(switches.port);
    options->split = parser.isSet(switches.split);
    options->json = parser.isSet(switches.json);
    return true;
}

} // namespace boxsim
