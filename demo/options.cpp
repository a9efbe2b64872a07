#include "options.h"

#include "commandline/arguments.h"
#include "commandline/similarnames.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QRegularExpression>

namespace canbus::headunit {

namespace {

constexpr QSize kSmallest {640, 384};
constexpr QSize kLargest {3840, 2160};

QList<QCommandLineOption> allOptions()
{
    return {
        option("port", "Serial device of the box (default /dev/ttyS3).", "DEVICE"),
        option("baud", "Bits per second (default 57600).", "N"),
        option("simulate", "Start a simulated box, in the place of a port."),
        option("scenario", "Let the simulated box play this scenario (default: the built-in drive).", "FILE"),
        option("panel", "Open a second window that plays the simulated car."),
        option("page", "Begin with a page: climate, gauges, vehicle, parking, menu or link.", "NAME"),
        option("night", "Begin with the colours of the night."),
        option("size", "Size of the window (default 1024x600).", "WIDTHxHEIGHT"),
        option("screenshot", "Draw every page by day and by night into PNG files in this folder, and end.",
               "DIR"),
        option("help", "Print this and end."),
        option("version", "Print the version and end."),
    };
}

void setUp(QCommandLineParser &parser)
{
    parser.setApplicationDescription(QStringLiteral(
        "A head unit to look at: climate, gauges, vehicle, parking and menu screens, fed by the CAN-bus "
        "service library.\n\n"
        "Keys: 1 to 6 for the pages, arrows and tab to move, Enter to press, + and - for values, N for day "
        "and night, R for the reverse gear."));
    parser.addOptions(allOptions());
}

QString quoted(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

/// Reads the values of the options, up to the first mistake.
class Reading {
public:
    Reading(const QCommandLineParser &parser, Options *options, QString *error)
        : m_parser(parser)
        , m_options(options)
        , m_error(error)
    {
    }

    bool readAll()
    {
        takePlain();
        return readBaud() && readPage() && readSize() && checkTogether();
    }

private:
    bool isSet(const char *name) const { return m_parser.isSet(QString::fromLatin1(name)); }
    QString value(const char *name) const { return m_parser.value(QString::fromLatin1(name)); }

    bool refuse(const QString &error)
    {
        *m_error = error;
        return false;
    }

    void takePlain()
    {
        if (isSet("port"))
            m_options->port = value("port");
        m_options->simulates = isSet("simulate");
        m_options->hasPanel = isSet("panel");
        m_options->scenario = value("scenario");
        m_options->isNight = isSet("night");
        m_options->screenshots = value("screenshot");
        m_options->parks = m_options->hasPanel || isSet("screenshot");
        m_options->wantsHelp = isSet("help");
        m_options->wantsVersion = isSet("version");
    }

    bool readBaud()
    {
        if (!isSet("baud"))
            return true;
        bool ok = false;
        m_options->baudRate = value("baud").toInt(&ok);
        return (ok && m_options->baudRate > 0)
            || refuse(QStringLiteral("--baud %1: write a whole number above 0, for example 57600")
                          .arg(quoted(value("baud"))));
    }

    bool readPage()
    {
        if (!isSet("page"))
            return true;
        m_options->page = value("page");
        return pageNames().contains(m_options->page)
            || refuse(QStringLiteral("--page %1: %2")
                          .arg(quoted(m_options->page),
                               didYouMean(m_options->page, pageNames(),
                                          QStringLiteral("write ") + pageNames().join(QLatin1String(", ")))));
    }

    bool readSize()
    {
        if (!isSet("size"))
            return true;
        static const QRegularExpression form(QStringLiteral("^([0-9]{1,4})x([0-9]{1,4})$"));
        const QRegularExpressionMatch match = form.match(value("size"));
        const QSize size {match.captured(1).toInt(), match.captured(2).toInt()};
        m_options->size = size;
        const bool fits =
            size.expandedTo(kSmallest) == size && size.boundedTo(kLargest) == size && match.hasMatch();
        return fits
            || refuse(QStringLiteral("--size %1: write width and height from 640x384 to 3840x2160, for "
                                     "example 800x480")
                          .arg(quoted(value("size"))));
    }

    bool checkTogether()
    {
        if (!m_parser.positionalArguments().isEmpty())
            return refuse(QStringLiteral("%1 is no option: see canbus-headunit --help")
                              .arg(quoted(m_parser.positionalArguments().constFirst())));
        for (const char *name : {"port", "scenario", "screenshot"}) {
            if (isSet(name) && value(name).isEmpty())
                return refuse(QStringLiteral("--%1 is empty: write a name").arg(QLatin1String(name)));
        }
        for (const char *name : {"port", "baud"}) {
            if (isSet(name) && m_options->simulates)
                return refuse(QStringLiteral("--%1 and --simulate: the simulated box has a line of its own, "
                                             "leave one out")
                                  .arg(QLatin1String(name)));
        }
        for (const char *name : {"panel", "scenario"}) {
            if (isSet(name) && !m_options->simulates)
                return refuse(QStringLiteral("--%1 is for a simulated box: write --simulate too")
                                  .arg(QLatin1String(name)));
        }
        if (m_options->hasPanel && !m_options->screenshots.isEmpty())
            return refuse(
                QStringLiteral("--panel and --screenshot: nobody plays on a picture, leave one out"));
        return true;
    }

    const QCommandLineParser &m_parser;
    Options *m_options;
    QString *m_error;
};

QStringList optionNames()
{
    QStringList names;
    const QList<QCommandLineOption> options = allOptions();
    for (const QCommandLineOption &each : options)
        names += each.names();
    return names;
}

} // namespace

QStringList pageNames()
{
    return {QStringLiteral("climate"), QStringLiteral("gauges"), QStringLiteral("vehicle"),
            QStringLiteral("parking"), QStringLiteral("menu"),   QStringLiteral("link")};
}

bool parseOptions(const QStringList &arguments, Options *options, QString *error)
{
    QCommandLineParser parser;
    setUp(parser);
    if (!parser.parse(arguments)) {
        const QStringList unknown = parser.unknownOptionNames();
        const QString help = QStringLiteral("see canbus-headunit --help");
        const QString hint = unknown.isEmpty()
            ? help
            : didYouMean(unknown.constFirst(), optionNames(), help, QStringLiteral("--"));
        *error = mistakeOf(parser) + QStringLiteral(": ") + hint;
        return false;
    }
    Reading reading(parser, options, error);
    if (parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("version"))) {
        options->wantsHelp = parser.isSet(QStringLiteral("help"));
        options->wantsVersion = !options->wantsHelp;
        return true;
    }
    return reading.readAll();
}

QString helpText()
{
    QCommandLineParser parser;
    setUp(parser);
    return parser.helpText();
}

} // namespace canbus::headunit
