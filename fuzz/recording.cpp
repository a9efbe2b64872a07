#include "recording/recording.h"

#include "recording/pcapng.h"

#include "plainpcapng.h"
#include "target.h"

/// The reader of recordings. What it reads is compared with what a plain reader makes of the same file; it is
/// written and read again; a file that is cut holds the first of what the whole one holds.
///
/// The input: one byte that says where to cut, then the file.

using namespace canbus::recording;

namespace {

bool isSame(const Block &a, const Block &b)
{
    return a.direction == b.direction && a.timeUs == b.timeUs && a.bytes == b.bytes;
}

void checkSound(const QByteArray &file, const Recording &recording, bool isWhole, const QString &error)
{
    fuzz::check(isWhole == error.isEmpty(), "a fault has words, and nothing else has");
    fuzz::check(!error.contains(QLatin1Char('\n')), "in one line");
    qint64 size = 0;
    for (const Block &block : recording.blocks) {
        size += block.bytes.size();
        fuzz::check(block.timeUs >= 0, "no time is before 1970");
    }
    fuzz::check(size <= file.size(), "no more bytes come out than are in the file");
}

void checkRead(const QByteArray &file, const Recording &recording, bool isWhole)
{
    const fuzz::PlainPcapng plain(file);
    fuzz::check(isWhole == plain.isWhole, "a file is faulty that is so by the format");
    fuzz::check(recording.comment == plain.read.comment, "the comment is the first one of a section");
    fuzz::check(recording.blocks.size() == plain.read.blocks.size(), "each packet before the fault is read");
    for (int i = 0; i < recording.blocks.size(); ++i)
        fuzz::check(isSame(recording.blocks.at(i), plain.read.blocks.at(i)), "as what it is");
}

void checkCut(const QByteArray &file, const Recording &whole, int size)
{
    Recording cut;
    QString error;
    parse(QByteArray::fromRawData(file.constData(), size), &cut, &error);
    fuzz::check(cut.blocks.size() <= whole.blocks.size(), "a cut file holds no more than the whole one");
    for (int i = 0; i < cut.blocks.size(); ++i)
        fuzz::check(isSame(cut.blocks.at(i), whole.blocks.at(i)), "and the same");
}

void checkAgain(const Recording &recording)
{
    QByteArray file = pcapng::head({recording.comment, QStringLiteral("again"), QString()});
    for (const Block &block : recording.blocks)
        file += pcapng::packet(block.direction, block.timeUs, block.bytes);
    Recording again;
    QString error;
    fuzz::check(parse(file, &again, &error), "what is written is read");
    fuzz::check(again.blocks.size() == recording.blocks.size(), "with as many blocks");
    for (int i = 0; i < again.blocks.size(); ++i)
        fuzz::check(isSame(again.blocks.at(i), recording.blocks.at(i)), "each the same");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Program program(data, size);
    const int cut = program.byte();
    const QByteArray file = program.rest();
    Recording recording;
    QString error;
    const bool isWhole = parse(file, &recording, &error);
    checkSound(file, recording, isWhole, error);
    checkRead(file, recording, isWhole);
    checkCut(file, recording, int(qint64(file.size()) * cut / 256));
    checkAgain(recording);
    return 0;
}
