// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/fixnumber.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

namespace kiosk {
/// What is done to a terminal, in scenarios, by kioskctl and on the bench panel.
enum class Verb
{
    Start,
    Stop,
    Card,        ///< values: the card
    SessionCard, ///< values: the card
    Press,       ///< text: which button
    Type,        ///< text
    Cash,        ///< amount
    OpenService,
    Save,
    Close,
    Settings, ///< values: the settings by their keys
    SetFault, ///< text: the rule
    ClearFaults,
    Expect,     ///< expectation
    Screenshot, ///< text: its name
    Wait,       ///< milliseconds
    Quit
};

/// What must be there, sooner or later. What is empty is not looked at.
struct Expectation
{
    static constexpr int WITHIN = 5000;

    /// "idle", "message", "input", "details", "receipt" or "service".
    QString screen;
    /// A part of what can be read on the topmost view.
    QString text;
    /// Each button that can be touched, in any order; an empty list: there is nothing to touch.
    std::optional<QStringList> buttons;
    /// Values of the payee's fields, by their names: an empty one is expected too.
    QMap<QString, QString> parameters;
    /// Of the latest payment: "uid", "summ", "total", "change", "outcome".
    QMap<QString, QString> payment;
    /// Milliseconds.
    int within = WITHIN;
};

/// One step, with what its verb needs.
struct Step
{
    Verb verb = Verb::Start;
    QString text;
    QVariantMap values;
    FixNumber amount;
    int milliseconds = 0;
    Expectation expectation;

    /// For people: "press: ok", and the line of the file, from 1.
    QString caption;
    int line = 1;
};
} // namespace kiosk
