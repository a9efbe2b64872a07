#include "recording/bytes.h"
#include "recording/packettime.h"
#include "recording/pcapng.h"

#include "commandline/oneline.h"
#include "commandline/regularfile.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <limits>

namespace canbus::recording {

namespace {

constexpr quint32 kLongestBlock = 0x1000000;
constexpr qint64 kLargestFile = std::numeric_limits<qint32>::max() / 2;

struct Interface {
    Clock clock;
    quint32 mostCaptured = 0; // bytes of a packet; 0: any number
};

/// Goes through a file, block by block.
class Parser {
public:
    Parser(const QByteArray &file, Recording *recording)
        : m_file(file)
        , m_recording(recording)
    {
    }

    /// @return the fault, or an empty text
    QString run()
    {
        QString fault = wrongStart();
        while (fault.isEmpty() && m_at < m_file.size())
            fault = takeBlock();
        return fault;
    }

private:
    QString wrongStart() const;
    QString takeBlock();
    QString takeByteOrder();
    QString measure(quint32 type, quint32 *length) const;
    QString takeBody(quint32 type, const Bytes &block);
    QString takeSection(const Bytes &body);
    QString takeInterface(const Bytes &body);
    QString takePacket(const Bytes &body, quint32 interface);
    QString takeSimplePacket(const Bytes &body);
    void add(Direction direction, const Bytes &bytes);

    Bytes rest() const { return {m_file.constData() + m_at, m_file.size() - m_at, m_isBigEndian}; }
    QString here(const QString &what) const
    {
        return QStringLiteral("the block at byte %1 %2").arg(m_at).arg(what);
    }
    QString cut() const { return QStringLiteral("cut in the middle of the block at byte %1").arg(m_at); }

    const QByteArray &m_file;
    Recording *m_recording;
    qint64 m_at = 0; // where the current block begins
    bool m_isBigEndian = false;
    QVector<Interface> m_interfaces; // of the current section
    qint64 m_timeUs = 0;             // of the last packet
};

bool isClassicPcap(const QByteArray &file)
{
    static const QByteArray kMagics[] {
        QByteArrayLiteral("\xa1\xb2\xc3\xd4"), QByteArrayLiteral("\xd4\xc3\xb2\xa1"),
        QByteArrayLiteral("\xa1\xb2\x3c\x4d"), QByteArrayLiteral("\x4d\x3c\xb2\xa1")};
    return std::any_of(std::begin(kMagics), std::end(kMagics),
                       [&file](const QByteArray &magic) { return file.startsWith(magic); });
}

QString Parser::wrongStart() const
{
    static const QByteArray kSectionStart = QByteArrayLiteral("\n\r\r\n");
    if (m_file.isEmpty())
        return QStringLiteral("empty: a recording is a pcapng file");
    if (isClassicPcap(m_file))
        return QStringLiteral("a classic pcap file: convert it with editcap -F pcapng");
    if (!m_file.startsWith(kSectionStart) && !kSectionStart.startsWith(m_file))
        return QStringLiteral("no pcapng file");
    return {};
}

QString Parser::takeBlock()
{
    if (rest().size() < pcapng::kShortestBlock)
        return cut();
    const auto type = rest().number<quint32>(0);
    QString fault = type == pcapng::kSectionHeader ? takeByteOrder() : QString();
    quint32 length = 0;
    if (fault.isEmpty())
        fault = measure(type, &length);
    if (fault.isEmpty())
        fault = takeBody(type, rest().part(0, length));
    m_at += length;
    return fault;
}

QString Parser::takeByteOrder()
{
    const auto magic = rest().number<quint32>(8);
    if (magic == pcapng::kByteOrderMagic)
        return {};
    if (qbswap(magic) != pcapng::kByteOrderMagic)
        return here(QStringLiteral("names no byte order that there is"));
    m_isBigEndian = !m_isBigEndian;
    return {};
}

/// The least length of a block of this type.
int shortestOf(quint32 type)
{
    switch (type) {
    case pcapng::kSectionHeader:
        return pcapng::kShortestSectionHeader;
    case pcapng::kInterfaceDescription:
        return pcapng::kShortestInterfaceDescription;
    case pcapng::kEnhancedPacket:
    case pcapng::kPacket:
        return pcapng::kShortestEnhancedPacket;
    case pcapng::kSimplePacket:
        return pcapng::kShortestSimplePacket;
    default:
        return pcapng::kShortestBlock;
    }
}

/// Finds out how long the block is, and that it is whole.
QString Parser::measure(quint32 type, quint32 *length) const
{
    const auto first = rest().number<quint32>(4);
    if (first < quint32(shortestOf(type)) || first > kLongestBlock || first % 4 != 0)
        return here(QStringLiteral("has an impossible length, %1").arg(first));
    if (first > rest().size())
        return cut();
    const auto second = rest().number<quint32>(first - 4);
    if (first != second)
        return here(QStringLiteral("contradicts itself: %1 bytes at its start, %2 at its end")
                        .arg(first)
                        .arg(second));
    *length = first;
    return {};
}

QString Parser::takeBody(quint32 type, const Bytes &block)
{
    const Bytes body = block.part(8, block.size() - pcapng::kShortestBlock);
    switch (type) {
    case pcapng::kSectionHeader:
        return takeSection(body);
    case pcapng::kInterfaceDescription:
        return takeInterface(body);
    case pcapng::kEnhancedPacket:
        return takePacket(body, body.number<quint32>(0));
    case pcapng::kPacket:
        return takePacket(body, body.number<quint16>(0));
    case pcapng::kSimplePacket:
        return takeSimplePacket(body);
    default:
        return {};
    }
}

QString Parser::takeSection(const Bytes &body)
{
    const auto major = body.number<quint16>(4);
    if (major != pcapng::kMajorVersion)
        return here(QStringLiteral("is of pcapng version %1: only 1 is known").arg(major));
    const Options options(body.from(16));
    if (!options.fit())
        return here(QStringLiteral("has an option that is longer than the block"));
    m_interfaces.clear();
    if (m_recording->comment.isEmpty())
        m_recording->comment = QString::fromUtf8(options.value(pcapng::kComment).copy());
    return {};
}

QString Parser::takeInterface(const Bytes &body)
{
    const auto linkType = body.number<quint16>(0);
    if (linkType != pcapng::kLinkType)
        return here(QStringLiteral("is of link type %1: a recording of this line is of type %2, USER0")
                        .arg(linkType)
                        .arg(pcapng::kLinkType));
    const Options options(body.from(8));
    if (!options.fit())
        return here(QStringLiteral("has an option that is longer than the block"));
    Interface interface;
    interface.mostCaptured = body.number<quint32>(4);
    const Bytes resolution = options.value(pcapng::kTimeResolution);
    if (resolution.size() > 0)
        interface.clock.resolution = resolution.number<quint8>(0);
    interface.clock.offsetSeconds = options.value(pcapng::kTimeOffset).number<qint64>(0);
    m_interfaces << interface;
    return {};
}

QString Parser::takePacket(const Bytes &body, quint32 interface)
{
    if (interface >= quint32(m_interfaces.size()))
        return here(QStringLiteral("names interface %1: there is none").arg(interface));
    const qint64 captured = body.number<quint32>(12);
    if (captured > body.size() - 20)
        return here(QStringLiteral("contradicts itself: %1 bytes of data do not fit into it").arg(captured));
    const Options options(body.from(20 + pcapng::padded(captured)));
    if (!options.fit())
        return here(QStringLiteral("has an option that is longer than the block"));
    const quint64 time = quint64(body.number<quint32>(4)) << 32 | body.number<quint32>(8);
    m_timeUs = microseconds(time, m_interfaces[int(interface)].clock);
    const auto flags = options.value(pcapng::kFlags).number<quint32>(0);
    const bool isSent = (flags & pcapng::kDirectionMask) == pcapng::kOutbound;
    add(isSent ? Direction::Sent : Direction::Received, body.part(20, captured));
    return {};
}

QString Parser::takeSimplePacket(const Bytes &body)
{
    if (m_interfaces.isEmpty())
        return here(QStringLiteral("names interface 0: there is none"));
    const quint32 most = m_interfaces.constFirst().mostCaptured;
    const auto original = body.number<quint32>(0);
    const qint64 captured = most == 0 ? original : std::min(original, most);
    if (captured > body.size() - 4)
        return here(QStringLiteral("contradicts itself: %1 bytes of data do not fit into it").arg(captured));
    add(Direction::Received, body.part(4, captured));
    return {};
}

void Parser::add(Direction direction, const Bytes &bytes)
{
    m_recording->blocks.append({direction, m_timeUs, bytes.copy()});
}

} // namespace

bool parse(const QByteArray &file, Recording *recording, QString *error)
{
    *recording = Recording();
    *error = Parser(file, recording).run();
    return error->isEmpty();
}

bool read(const QString &path, Recording *recording, QString *error)
{
    *recording = Recording();
    const auto fail = [&](const QString &what) {
        *error = onOneLine(QStringLiteral("%1: ").arg(path) + what);
        return false;
    };
    QByteArray bytes;
    QString reason;
    if (!readRegularFile(path, kLargestFile + 1, &bytes, &reason))
        return fail(QStringLiteral("cannot be read: %1").arg(reason));
    if (bytes.size() > kLargestFile)
        return fail(QStringLiteral("larger than %1 MiB: cut it with editcap").arg(kLargestFile >> 20));
    return parse(bytes, recording, error) || fail(*error);
}

} // namespace canbus::recording
