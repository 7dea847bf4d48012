// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What a message view shows: one message of a MessageWidgetController.
struct Message
{
    QString text;
    /// One of MessageWidgetController::Kind.
    int kind = 0;
    /// Of the button OK; may have several lines.
    QString okCaption;
    /// Seconds until it closes; 0 or less: there is no count-down.
    int secondsLeft = 0;
};
