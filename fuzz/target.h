#pragma once

#include <QtCore/QByteArray>

#include <algorithm>
#include <cstddef>
#include <cstdint>

/// What every fuzz target is made of: one function that takes any bytes, and checks beside those that the
/// sanitizers make.
///
/// A target keeps nothing from one input to the next that changes what an input does: so each finding can be
/// run again alone.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// Called once, before the first input: makes the application object and switches logging off.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);

namespace fuzz {

/// Ends the process, which makes the input a finding, unless `holds`.
/// @param rule  what should have been true
void check(bool holds, const char *rule);

/// The input's own bytes, not a copy: what reads beyond them is found.
inline QByteArray bytesOf(const std::uint8_t *data, std::size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
}

/// An input that is read as instructions and what they carry.
class Program {
public:
    Program(const std::uint8_t *data, std::size_t size)
        : m_next(data)
        , m_end(data + size)
    {
    }

    bool atEnd() const { return m_next == m_end; }

    /// The next byte; 0 at the end.
    quint8 byte() { return atEnd() ? quint8(0) : *m_next++; }

    /// The next bytes, fewer at the end. Not a copy.
    QByteArray bytes(std::size_t most)
    {
        const std::size_t size = std::min(most, std::size_t(m_end - m_next));
        const QByteArray bytes = bytesOf(m_next, size);
        m_next += size;
        return bytes;
    }

    QByteArray rest() { return bytes(std::size_t(m_end - m_next)); }

private:
    const std::uint8_t *m_next;
    const std::uint8_t *m_end;
};

} // namespace fuzz
