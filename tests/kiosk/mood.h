// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/// How the fake plugin's library behaves while this lives, see there.
struct Mood
{
    explicit Mood(const QByteArray &mood) { qputenv("FAKE_PLUGIN", mood); }
    ~Mood() { qunsetenv("FAKE_PLUGIN"); }
    Mood(const Mood &) = delete;
    Mood &operator=(const Mood &) = delete;
};
