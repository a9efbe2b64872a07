#include "options.h"

#include "boxsim/fields/benchstate.h"

#include "commandline/arguments.h"

#include <QtCore/QCommandLineParser>

#include <limits>

namespace boxsim {

namespace {

using canbus::option;

struct Switches {
    QCommandLineOption pty = option("pty", "Make a pseudo-terminal and link LINK to it.", "LINK");
    QCommandLineOption port = option("port", "Use the serial device DEVICE.", "DEVICE");
    QCommandLineOption baud = option("baud", "Baud rate of DEVICE (57600).", "N");
    QCommandLineOption scenario = option("scenario", "Follow the scenario in FILE.", "FILE");
    QCommandLineOption replay = option("replay", "Play the box's side of the recording FILE.", "FILE");
    QCommandLineOption speed =
        option("speed", "Let the time of drive, scenario or recording run X times as fast.", "X");
    QCommandLineOption loop = option("loop", "Play the recording again and again.");
    QCommandLineOption check = option("check", "Check the scenario, say whether it is correct, and exit.");
    QCommandLineOption schema = option("print-schema", "Print the JSON schema of scenarios and exit.");
    QCommandLineOption seed = option("seed", "Draw all chance from N: the same N, the same faults.", "N");
    QCommandLineOption dropAnswers =
        option("drop-answers", "Leave out a share P of the answers, 0 to 1.", "P");
    QCommandLineOption corrupt = option("corrupt", "Turn a bit over in a share P of the bytes, 0 to 1.", "P");
    QCommandLineOption split = option("split", "Write every block byte by byte.");
    QCommandLineOption noise = option("noise", "Send N foreign bytes a second between the frames.", "N");
    QCommandLineOption silentAfter =
        option("silent-after", "Neither answer nor send any more after MS milliseconds.", "MS");
    QCommandLineOption restartAfter =
        option("restart-after", "Switch the box off and on after MS milliseconds.", "MS");
    QCommandLineOption hangUpAfter =
        option("hang-up-after", "Take the line away after MS milliseconds, for a second.", "MS");
    QCommandLineOption hangUpFor =
        option("hang-up-for", "Take the line away for MS milliseconds instead.", "MS");
    QCommandLineOption notReady =
        option("not-ready", "Answer the first N connect requests with \"not ready\".", "N");
    QCommandLineOption fault =
        option("fault", "Set a fault, as NAME=VALUE on standard input does; repeatable.", "NAME=VALUE");
    QCommandLineOption json = option("json", "Print a JSON object a line.");
    QCommandLineOption help = option("help", "Show this text and exit.");
    QCommandLineOption version = option("version", "Show the version and exit.");

    QList<QCommandLineOption> all() const
    {
        return {pty,          port,        baud,      scenario,    replay,  speed, loop,   check,
                schema,       seed,        fault,     dropAnswers, corrupt, split, noise,  silentAfter,
                restartAfter, hangUpAfter, hangUpFor, notReady,    json,    help,  version};
    }
};

QString nameOf(const QCommandLineOption &option)
{
    return QStringLiteral("--") + option.names().constFirst();
}

/// Reads the command line step by step, up to the first mistake.
class Reading {
public:
    Reading(const QCommandLineParser &parser, Options *options, QString *error)
        : m_parser(parser)
        , m_options(options)
        , m_error(error)
    {
    }

    bool readAll();

private:
    bool refuse(const QString &error);
    bool isSet(const QCommandLineOption &option) const { return m_parser.isSet(option); }
    bool checkTask();
    bool checkLine();
    bool checkScript();
    bool readNumber(const QCommandLineOption &option, qint64 most, qint64 *number);
    bool readNumbers();
    bool readTimes();
    bool readHangUpFor();
    bool readSpeed();
    bool readFaults();
    bool readFault(const QString &name, const QString &text, const QString &where);
    bool readNamedFaults();

    const QCommandLineParser &m_parser;
    const Switches m_switches;
    BenchState m_state;
    Options *m_options;
    QString *m_error;
};

bool Reading::readAll()
{
    if (!checkTask())
        return false;
    if (m_options->task == Options::Task::Run && !checkLine())
        return false;
    if (!checkScript() || !readNumbers() || !readTimes() || !readSpeed() || !readFaults()
        || !readNamedFaults())
        return false;
    m_options->faults = m_state.faults;
    m_options->ptyLink = m_parser.value(m_switches.pty);
    m_options->port = m_parser.value(m_switches.port);
    m_options->scenario = m_parser.value(m_switches.scenario);
    m_options->replay = m_parser.value(m_switches.replay);
    m_options->loop = isSet(m_switches.loop);
    m_options->json = isSet(m_switches.json);
    return true;
}

bool Reading::refuse(const QString &error)
{
    *m_error = error;
    return false;
}

bool Reading::checkTask()
{
    const QStringList words = m_parser.positionalArguments();
    if (!words.isEmpty())
        return refuse(QStringLiteral("\"%1\" belongs to no option; see --help").arg(words.constFirst()));
    const bool isCheck = isSet(m_switches.check);
    const bool isSchema = isSet(m_switches.schema);
    const bool hasLine = isSet(m_switches.pty) || isSet(m_switches.port);
    if (isCheck && !isSet(m_switches.scenario))
        return refuse(QStringLiteral("--check goes with --scenario FILE: there is nothing else to check"));
    if (isSchema && isSet(m_switches.scenario))
        return refuse(QStringLiteral("--print-schema takes no --scenario: use --check to check one"));
    if ((isCheck || isSchema) && hasLine)
        return refuse(QStringLiteral("--check and --print-schema open no line: leave --pty and --port out"));
    if (isCheck)
        m_options->task = Options::Task::Check;
    if (isSchema)
        m_options->task = Options::Task::PrintSchema;
    return true;
}

bool Reading::checkLine()
{
    if (isSet(m_switches.pty) == isSet(m_switches.port))
        return refuse(QStringLiteral("give either --pty LINK or --port DEVICE, and one of them"));
    if (m_parser.value(m_switches.pty).isEmpty() && m_parser.value(m_switches.port).isEmpty())
        return refuse(QStringLiteral("--pty and --port take a path, not nothing"));
    if (isSet(m_switches.pty) && isSet(m_switches.baud))
        return refuse(QStringLiteral("--baud goes with --port DEVICE: a pseudo-terminal has no baud rate"));
    return true;
}

bool Reading::checkScript()
{
    const bool hasScenario = isSet(m_switches.scenario);
    const bool hasReplay = isSet(m_switches.replay);
    if (hasScenario && hasReplay)
        return refuse(QStringLiteral("give either --scenario FILE or --replay FILE, and not both"));
    for (const QCommandLineOption &file : {m_switches.scenario, m_switches.replay}) {
        if (isSet(file) && m_parser.value(file).isEmpty())
            return refuse(nameOf(file) + QStringLiteral(" takes a path, not nothing"));
    }
    if (isSet(m_switches.loop) && !hasReplay)
        return refuse(QStringLiteral("--loop goes with --replay FILE; a scenario says itself whether it "
                                     "begins again"));
    return true;
}

/// Reads the number that an option carries, if it is given.
bool Reading::readNumber(const QCommandLineOption &option, qint64 most, qint64 *number)
{
    if (!isSet(option))
        return true;
    const qint64 least = *number;
    const QString text = m_parser.value(option);
    bool isNumber = false;
    const qint64 value = text.toLongLong(&isNumber);
    if (!isNumber || value < least || value > most)
        return refuse(QStringLiteral("%1 takes a whole number from %2 to %3, not \"%4\"")
                          .arg(nameOf(option), QString::number(least), QString::number(most), text));
    *number = value;
    return true;
}

bool Reading::readNumbers()
{
    constexpr qint64 kMost = std::numeric_limits<int>::max();
    qint64 baud = 1;
    qint64 seed = 0;
    if (!readNumber(m_switches.baud, kMost, &baud)
        || !readNumber(m_switches.seed, std::numeric_limits<quint32>::max(), &seed))
        return false;
    if (isSet(m_switches.baud))
        m_options->baudRate = int(baud);
    if (isSet(m_switches.seed))
        m_options->seed = quint32(seed);
    return true;
}

/// Reads what happens once some time has passed.
bool Reading::readTimes()
{
    struct Row {
        const QCommandLineOption &option;
        qint64 *afterMs;
    };
    const Row rows[] = {
        {m_switches.silentAfter, &m_options->silentAfterMs},
        {m_switches.restartAfter, &m_options->restartAfterMs},
        {m_switches.hangUpAfter, &m_options->hangUpAfterMs},
    };
    for (const Row &row : rows) {
        qint64 afterMs = 0;
        if (!readNumber(row.option, std::numeric_limits<int>::max(), &afterMs))
            return false;
        if (isSet(row.option))
            *row.afterMs = afterMs;
    }
    return readHangUpFor();
}

bool Reading::readHangUpFor()
{
    if (!isSet(m_switches.hangUpFor))
        return true;
    if (!isSet(m_switches.hangUpAfter))
        return refuse(QStringLiteral("--hang-up-for goes with --hang-up-after MS, which says when"));
    qint64 ms = kShortestHangUpMs;
    if (!readNumber(m_switches.hangUpFor, kLongestHangUpMs, &ms))
        return false;
    m_options->hangUpForMs = int(ms);
    return true;
}

bool Reading::readSpeed()
{
    constexpr double kSlowest = 0.001;
    constexpr double kFastest = 1000;
    if (!isSet(m_switches.speed))
        return true;
    const QString text = m_parser.value(m_switches.speed);
    bool isNumber = false;
    const double speed = text.toDouble(&isNumber);
    if (!isNumber || !(speed >= kSlowest && speed <= kFastest))
        return refuse(QStringLiteral("--speed takes a number from 0.001 to 1000, not \"%1\"").arg(text));
    m_options->speed = speed;
    return true;
}

bool Reading::readFaults()
{
    struct Row {
        const QCommandLineOption &option;
        const char *name;
    };
    const Row rows[] = {
        {m_switches.dropAnswers, "dropAnswers"},
        {m_switches.corrupt, "flipBytes"},
        {m_switches.split, "split"},
        {m_switches.noise, "noise"},
        {m_switches.notReady, "notReadyReplies"},
    };
    for (const Row &row : rows) {
        const bool isFlag = row.option.valueName().isEmpty();
        const QString text = isFlag ? QStringLiteral("true") : m_parser.value(row.option);
        if (isSet(row.option) && !readFault(QString::fromLatin1(row.name), text, nameOf(row.option)))
            return false;
    }
    return true;
}

bool Reading::readFault(const QString &name, const QString &text, const QString &where)
{
    const QString object = QStringLiteral("fault.");
    Assignment assignment;
    QString error;
    if (!assignText(name.startsWith(object) ? name : object + name, text, &assignment, &error))
        return refuse(where + QStringLiteral(": ") + error);
    apply(m_state, assignment);
    return true;
}

bool Reading::readNamedFaults()
{
    const QString where = nameOf(m_switches.fault);
    const QStringList all = m_parser.values(m_switches.fault);
    for (const QString &text : all) {
        const int equals = text.indexOf(QLatin1Char('='));
        if (equals <= 0)
            return refuse(where + QStringLiteral(" takes NAME=VALUE, not \"%1\"").arg(text));
        if (!readFault(text.left(equals), text.mid(equals + 1), where))
            return false;
    }
    return true;
}

void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(QStringLiteral(
        "The CAN-bus interface box, simulated. It answers a head unit and prints every frame that it\n"
        "receives. What it reports comes from a drive of a minute with everything a car reports, in a\n"
        "loop, from a scenario or from a recording; lines on standard input change it, see \"help\"\n"
        "there. Give --pty or --port."));
}

} // namespace

bool parseOptions(const QStringList &arguments, Options *options, QString *error)
{
    const Switches switches;
    QCommandLineParser parser;
    describe(parser);
    parser.addOptions(switches.all());
    if (!parser.parse(arguments)) {
        *error = canbus::mistakeOf(parser) + QStringLiteral("; see --help");
        return false;
    }
    options->helpText = parser.helpText();
    if (parser.isSet(switches.help) || parser.isSet(switches.version)) {
        options->task = parser.isSet(switches.help) ? Options::Task::ShowHelp : Options::Task::ShowVersion;
        return true;
    }
    return Reading(parser, options, error).readAll();
}

} // namespace boxsim
