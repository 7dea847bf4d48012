// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/trelminfo.h"
#include "plugin/pluginidentity.h"
#include "window/parts.h"

#include <QWidget>

namespace kiosk {
class Facts;

/// There is no plugin, so nothing can be paid: tells the customer whom to call, and the engineer what happened.
class BrokenScreen : public QWidget
{
    Q_OBJECT

public:
    explicit BrokenScreen(QWidget *parent = nullptr);

    /// @param reason for people, as the terminal has it.
    void setFailure(const QString &reason, const PluginIdentity &plugin, const TrelmInfo &terminal);

private:
    QLabel *m_advice;
    Facts *m_facts;
};
} // namespace kiosk
