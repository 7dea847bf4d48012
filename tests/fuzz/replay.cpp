// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "fuzztarget.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace {
/// The file's name is printed first: a breach ends the process, and the last name is the input that caused it.
bool replay(const QString &path)
{
    std::printf("%s\n", qPrintable(path));
    std::fflush(stdout);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s: %s\n", qPrintable(path), qPrintable(file.errorString()));
        return false;
    }
    const QByteArray input = file.readAll();
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(input.constData()),
                           static_cast<std::size_t>(input.size()));
    return true;
}
} // namespace

/// Stands in for libFuzzer where there is none: runs every file of the corpus folder through the target.
int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s CORPUS-FOLDER\n", argv[0]);
        return 2;
    }
    const QDir corpus(QFile::decodeName(argv[1]));
    const QStringList names = corpus.entryList(QDir::Files, QDir::Name);
    if (names.isEmpty()) {
        std::fprintf(stderr, "there is nothing to replay in %s\n", argv[1]);
        return 1;
    }
    LLVMFuzzerInitialize(&argc, &argv);
    for (const QString &name : names) {
        if (!replay(corpus.filePath(name)))
            return 1;
    }
    std::printf("%d inputs replayed\n", names.size());
    return 0;
}
