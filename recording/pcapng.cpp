#include "recording/pcapng.h"

#include <QtCore/QtEndian>

namespace canbus::recording::pcapng {

namespace {

constexpr int kLongestOption = 0xffff;

template <class Number>
QByteArray number(Number value)
{
    QByteArray bytes(int(sizeof value), '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

QByteArray filledUp(const QByteArray &bytes)
{
    return bytes + QByteArray(int(padded(bytes.size())) - bytes.size(), '\0');
}

/// An option of a packet, an interface or a section; none where it says nothing.
QByteArray option(quint16 code, const QByteArray &value)
{
    if (value.isEmpty())
        return {};
    const QByteArray kept = value.left(kLongestOption);
    return number(code) + number(quint16(kept.size())) + filledUp(kept);
}

QByteArray ended(const QByteArray &options)
{
    return options.isEmpty() ? options : options + number(kEndOfOptions) + number(quint16(0));
}

QByteArray block(quint32 type, const QByteArray &body)
{
    const QByteArray length = number(quint32(kShortestBlock + body.size()));
    return number(type) + length + body + length;
}

QByteArray sectionHeader(const Head &about)
{
    const QByteArray unknownLength = number(qint64(-1));
    return block(kSectionHeader,
                 number(kByteOrderMagic) + number(kMajorVersion) + number(kMinorVersion) + unknownLength
                     + ended(option(kComment, about.comment.toUtf8())
                             + option(kUserApplication, about.application.toUtf8())));
}

QByteArray interfaceDescription(const QString &name)
{
    const QByteArray anyLength = number(quint32(0));
    return block(
        kInterfaceDescription,
        number(kLinkType) + number(quint16(0)) + anyLength
            + ended(option(kInterfaceName, name.toUtf8()) + option(kTimeResolution, number(kMicroseconds))));
}

} // namespace

QByteArray head(const Head &about)
{
    return sectionHeader(about) + interfaceDescription(about.interfaceName);
}

QByteArray packet(Direction direction, qint64 timeUs, const QByteArray &bytes)
{
    const quint32 flags = direction == Direction::Received ? kInbound : kOutbound;
    const QByteArray size = number(quint32(bytes.size()));
    const auto time = quint64(timeUs);
    return block(kEnhancedPacket,
                 number(quint32(0)) + number(quint32(time >> 32)) + number(quint32(time)) + size + size
                     + filledUp(bytes) + ended(option(kFlags, number(flags))));
}

} // namespace canbus::recording::pcapng
