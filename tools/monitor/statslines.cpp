#include "statslines.h"

#include "reportlines.h"

#include <QtCore/QMetaProperty>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace canbus::monitor {

namespace {

struct Figure {
    QString name;
    QVariant value;
};

QVector<Figure> figuresOf(const LinkFigures &figures)
{
    QVector<Figure> all;
    const QMetaObject &meta = LinkFigures::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        all << Figure {QString::fromLatin1(property.name()), property.readOnGadget(&figures)};
    }
    return all;
}

/// How a figure is shown to people. One that is not here is shown by its name, among the others.
struct Row {
    const char *figure;
    const char *group;
    const char *label;
    const char *unit;
};

constexpr const char *kOthers = "others";

constexpr Row kRows[] {
    {"receivedBytes", "received", "bytes", ""},
    {"receivedFrames", "received", "frames", ""},
    {"receivedAcks", "received", "ACKs", ""},
    {"receivedNacks", "received", "NACKs", ""},
    {"badChecks", "received", "bad checks", ""},
    {"skippedBytes", "received", "skipped", "bytes"},
    {"discardedBuffers", "buffer", "thrown away", "times"},
    {"discardedBytes", "buffer", "lost so", "bytes"},
    {"bufferHighWater", "buffer", "most waiting", "bytes"},
    {"sentBytes", "sent", "bytes", ""},
    {"sentFrames", "sent", "frames", ""},
    {"sentAcks", "sent", "ACKs", ""},
    {"sentNacks", "sent", "NACKs", ""},
    {"awaitingNacks", "sent", "NACKs while waiting", ""},
    {"retransmissions", "commands", "sent again", "times"},
    {"answers", "commands", "answered", ""},
    {"givenUp", "commands", "given up", ""},
    {"refusedFull", "commands", "refused", ""},
    {"cacheHighWater", "commands", "most waiting", ""},
    {"lastAnswerUs", "answers", "last after", "us"},
    {"meanAnswerUs", "answers", "mean", "us"},
    {"maxAnswerUs", "answers", "slowest", "us"},
    {"connectRequests", "link", "connect requests", ""},
    {"connectionChecks", "link", "connection checks", ""},
    {"linkLosses", "link", "losses", ""},
    {"portErrors", "link", "port errors", ""},
    {"receivedByCategory", "received by category", "", ""},
    {"sentByCommand", "sent by command", "", ""},
};

Row rowOf(const QByteArray &figure)
{
    for (const Row &row : kRows) {
        if (figure == row.figure)
            return row;
    }
    return {figure.constData(), kOthers, figure.constData(), ""};
}

QString aligned(const QString &label, const QString &value, const char *unit)
{
    constexpr int kLabelWidth = 24;
    constexpr int kValueWidth = 12;
    return QStringLiteral("    %1%2 %3")
        .arg(label, -kLabelWidth)
        .arg(value, kValueWidth)
        .arg(QLatin1String(unit))
        .trimmed()
        .prepend(QStringLiteral("    "));
}

/// Climate 12 frames 180 bytes; only what has come at all.
QStringList trafficLines(const QVariantMap &traffic)
{
    QStringList lines;
    for (auto it = traffic.cbegin(); it != traffic.cend(); ++it) {
        const QVariantMap numbers = it.value().toMap();
        if (numbers.value(QStringLiteral("frames")).toULongLong() == 0)
            continue;
        lines << aligned(it.key(), numbers.value(QStringLiteral("frames")).toString(), "frames")
                + QStringLiteral(" %1 bytes").arg(numbers.value(QStringLiteral("bytes")).toString(), 10);
    }
    return lines;
}

QStringList linesOf(const Figure &figure, const Row &row)
{
    if (figure.value.userType() == QMetaType::QVariantMap)
        return trafficLines(figure.value.toMap());
    return {aligned(QString::fromLatin1(row.label), valueText(figure.value, Form::Text), row.unit)};
}

QString text(qint64 ms, const QVector<Figure> &figures)
{
    QStringList groups;
    QVector<QStringList> lines;
    for (const Figure &figure : figures) {
        const QByteArray name = figure.name.toLatin1();
        const Row row = rowOf(name);
        const QString group = QString::fromLatin1(row.group);
        if (!groups.contains(group)) {
            groups << group;
            lines << QStringList();
        }
        lines[groups.indexOf(group)] << linesOf(figure, row);
    }
    QStringList all {QStringLiteral("link after %1 s").arg(secondsText(ms))};
    for (int i = 0; i < groups.size(); ++i) {
        if (!lines[i].isEmpty())
            all << QStringLiteral("  ") + groups[i] << lines[i];
    }
    return all.join(QLatin1Char('\n'));
}

QString json(qint64 ms, const QVector<Figure> &figures)
{
    QStringList members;
    for (const Figure &figure : figures)
        members << quoted(figure.name) + QLatin1Char(':') + valueText(figure.value, Form::Json);
    return QStringLiteral("{\"t\":%1,\"stats\":{%2}}").arg(secondsText(ms), members.join(QLatin1Char(',')));
}

} // namespace

QString statsText(Form form, qint64 ms, const LinkFigures &figures)
{
    const QVector<Figure> all = figuresOf(figures);
    return form == Form::Json ? json(ms, all) : text(ms, all);
}

} // namespace canbus::monitor
