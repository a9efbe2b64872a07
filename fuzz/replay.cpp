#include "target.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

/// An input at the size that it has, so that what reads beyond it is found as in a run of the fuzzer.
void run(const QByteArray &input)
{
    const auto size = std::size_t(input.size());
    const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[size]);
    std::copy(input.begin(), input.end(), exact.get());
    LLVMFuzzerTestOneInput(exact.get(), size);
}

int runFolder(const QString &path)
{
    const QDir folder(path);
    const QStringList names = folder.entryList(QDir::Files, QDir::Name);
    for (const QString &name : names) {
        QFile file(folder.filePath(name));
        if (!file.open(QFile::ReadOnly)) {
            std::fprintf(stderr, "%s cannot be read\n", qPrintable(file.fileName()));
            std::exit(2);
        }
        // Told before it runs: a finding ends the process.
        std::printf("%s\n", qPrintable(file.fileName()));
        std::fflush(stdout);
        run(file.readAll());
    }
    return names.size();
}

} // namespace

/// Runs a target over all files of the folders that it is given, without a fuzzer.
int main(int argc, char **argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    int inputs = 0;
    for (int i = 1; i < argc; ++i)
        inputs += runFolder(QFile::decodeName(argv[i]));
    std::printf("%d inputs, no finding\n", inputs);
    return inputs > 0 ? 0 : 2;
}
