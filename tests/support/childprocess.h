// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QStringList>

#include <memory>

/// Runs a function of the test file in a process of its own that shares the work directory.
namespace ChildProcess {
/// Gets the child's arguments, returns its exit status.
using Function = int (*)(const QStringList &arguments);

/// Starts the function that TEST_CHILD registered under @a name. Its output is the child's; QProcess's rules apply.
[[nodiscard]] std::unique_ptr<QProcess>
start(const char *name, const QStringList &arguments = {},
      const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());

/// Waits for the end and returns the exit status, or -1 when it crashed or took longer than four minutes.
[[nodiscard]] int finish(QProcess &process);

/// Kills the process once it has said so many lines. @return all that it said: fewer lines when it ended before, or was
/// silent for four minutes.
[[nodiscard]] QByteArray killAfterLines(QProcess &process, int lines);

// By the application's arguments.
[[nodiscard]] bool isChild();
[[nodiscard]] int runChild();

struct Registration
{
    Registration(const char *name, Function function);
};
} // namespace ChildProcess

/// Defines a child process's function: TEST_CHILD(writer) { … return 0; } with "arguments" in scope.
#define TEST_CHILD(name)                                                                                               \
    static int child_##name(const QStringList &arguments);                                                             \
    static const ChildProcess::Registration registration_##name(#name, child_##name);                                  \
    static int child_##name([[maybe_unused]] const QStringList &arguments)
