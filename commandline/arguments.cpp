#include "arguments.h"

#include <QtCore/QCommandLineParser>

namespace canbus {

QStringList argumentsOf(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    return arguments;
}

QCommandLineOption option(const char *name, const char *about, const char *value)
{
    return {QString::fromLatin1(name), QString::fromLatin1(about), QString::fromLatin1(value)};
}

QString mistakeOf(const QCommandLineParser &parser)
{
    QString sentence = parser.errorText();
    if (sentence.endsWith(QLatin1Char('.')))
        sentence.chop(1);
    return sentence;
}

} // namespace canbus
