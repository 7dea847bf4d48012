// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kiosk {
/// Where the terminal of a work directory can be reached.
///
/// What is said there: a step in one line ("press: ok" or "press ok"), or "state"; the answer is a JSON object
/// in one line with the texts "failure" (why the step failed; empty: it held), "note" (why the terminal did not take
/// it), and for "state" the object "state".
[[nodiscard]] inline QString controlSocket(const QString &workDir)
{
    return workDir + QStringLiteral("/kiosk.sock");
}
} // namespace kiosk
