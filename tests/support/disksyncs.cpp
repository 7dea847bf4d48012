// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/disksyncs.h"

#include <atomic>

#include <sys/syscall.h>
#include <unistd.h>

namespace {
std::atomic<int> syncs = 0;
}

extern "C" int fsync(int descriptor)
{
    ++syncs;
    return static_cast<int>(::syscall(SYS_fsync, descriptor));
}

extern "C" int fdatasync(int descriptor)
{
    ++syncs;
    return static_cast<int>(::syscall(SYS_fdatasync, descriptor));
}

int DiskSyncs::count()
{
    return syncs;
}
