// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "kiosk/looks/lookchecks.h"

#include <QString>
#include <QVector>
#include <QWidget>

#include <memory>

/// Everything that a terminal shows, each on a widget of its own, made of the terminal's own parts: what a plugin would
/// show is shown through the GUI client library, as a plugin does it.
namespace Scene {
struct Row
{
    /// In lower case with dashes: of test rows and golden pictures.
    QString name;
    std::unique_ptr<QWidget> (*make)();
    /// Its text is longer than any screen.
    LookChecks::Scrolling scrolling = LookChecks::Scrolling::AFault;
};

[[nodiscard]] const QVector<Row> &all();
} // namespace Scene
