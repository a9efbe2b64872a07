#pragma once

#include "recording/recording.h"

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

/// The parts of the pcapng format that recordings use.
///
/// Source of every number here: "PCAP Next Generation (pcapng) Capture File Format", IETF
/// draft-ietf-opsawg-pcapng. The numbers are written in the byte order of the machine that writes; ours are
/// little endian everywhere.
namespace canbus::recording::pcapng {

// Block types.
constexpr quint32 kSectionHeader = 0x0a0d0d0a; // the same in either byte order
constexpr quint32 kInterfaceDescription = 1;
constexpr quint32 kPacket = 2; // obsolete, but still found
constexpr quint32 kSimplePacket = 3;
constexpr quint32 kEnhancedPacket = 6;

// The shortest length of each, its two length fields included.
constexpr int kShortestBlock = 12;
constexpr int kShortestSectionHeader = 28;
constexpr int kShortestInterfaceDescription = 20;
constexpr int kShortestSimplePacket = 16;
constexpr int kShortestEnhancedPacket = 32; // and of the obsolete one

constexpr quint32 kByteOrderMagic = 0x1a2b3c4d;
constexpr quint16 kMajorVersion = 1;
constexpr quint16 kMinorVersion = 0;

/// LINKTYPE_USER0: free for private use.
constexpr quint16 kLinkType = 147;

// Option codes.
constexpr quint16 kEndOfOptions = 0;
constexpr quint16 kComment = 1;
constexpr quint16 kUserApplication = 4; // of a section
constexpr quint16 kInterfaceName = 2;   // of an interface, like the next ones
constexpr quint16 kTimeResolution = 9;
constexpr quint16 kTimeOffset = 14;
constexpr quint16 kFlags = 2; // of a packet

/// The resolution of our times: 10^-6 s. It is also what a file without this option has.
constexpr quint8 kMicroseconds = 6;

// The lowest two bits of a packet's flags.
constexpr quint32 kDirectionMask = 3;
constexpr quint32 kInbound = 1;
constexpr quint32 kOutbound = 2;

/// The head of a recording: the section and its one interface.
QByteArray head(const Head &about);

/// One packet.
QByteArray packet(Direction direction, qint64 timeUs, const QByteArray &bytes);

/// A size with what fills it up to the next multiple of four.
constexpr qint64 padded(qint64 size)
{
    return (size + 3) / 4 * 4;
}

} // namespace canbus::recording::pcapng
