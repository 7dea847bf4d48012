// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/workdirectory.h"

#include <QDir>
#include <QFile>

#include <cstdlib>
#include <string>

#include <stdlib.h>
#include <unistd.h>

namespace {
// Names the owner of the directory, so that a child knows it for its parent's, and a shell's setting is not touched.
const char OWNER[] = "PARKOMAT_TEST_WORK_DIR_OWNER";
bool isOwner = false;

__attribute__((constructor)) void makeWorkDirectory()
{
    if (::getenv(OWNER) != nullptr)
        return;
    const char *temporary = ::getenv("TMPDIR");
    std::string path = std::string(temporary != nullptr ? temporary : "/tmp") + "/parkomat-test-XXXXXX";
    if (::mkdtemp(path.data()) == nullptr)
        std::abort();
    ::setenv("TERMINAL_WORK_DIR", path.c_str(), 1);
    ::setenv(OWNER, std::to_string(::getpid()).c_str(), 1);
    isOwner = true;
}

__attribute__((destructor)) void removeWorkDirectory()
{
    if (isOwner)
        QDir(WorkDirectory::path()).removeRecursively();
}
} // namespace

QString WorkDirectory::path()
{
    return qEnvironmentVariable("TERMINAL_WORK_DIR");
}

void WorkDirectory::clear()
{
    const QFileInfoList entries =
        QDir(path()).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (entry.isDir() && !entry.isSymLink())
            QDir(entry.filePath()).removeRecursively();
        else
            QFile::remove(entry.filePath());
    }
}
