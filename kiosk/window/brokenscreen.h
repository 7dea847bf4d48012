// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/trelminfo.h"
#include "plugin/pluginidentity.h"
#include "window/parts.h"

#include <QWidget>

namespace kiosk {
class Facts;

/// Nothing can be paid: tells the customer whom to call, and the engineer what happened.
class BrokenScreen : public QWidget
{
    Q_OBJECT

public:
    explicit BrokenScreen(QWidget *parent = nullptr);

    /// There is no plugin. @param reason for people, as the terminal has it.
    void setPluginFailure(const QString &reason, const PluginIdentity &plugin, const TrelmInfo &terminal);
    /// There is no ledger. @param reason what it says, @param path its file.
    void setLedgerFailure(const QString &reason, const QString &path, const TrelmInfo &terminal);

private:
    void begin(const TrelmInfo &terminal);

    QLabel *m_advice;
    Facts *m_facts;
};
} // namespace kiosk
