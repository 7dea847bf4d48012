// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "guiclient/formproject.h"
#include "ledger/ledger.h"
#include "plugin/pluginhost.h"
#include "support/testclock.h"
#include "terminal.h"
#include "window/kioskwindow.h"

#include <QTcpServer>

/// A terminal at work: the plugin, and the ledger in the work directory. One at a time.
class KioskAtWork
{
protected:
    KioskAtWork(const QString &pluginFile, const kiosk::TerminalOptions &options);
    ~KioskAtWork();

    [[nodiscard]] kiosk::Terminal &terminal() { return *m_terminal; }
    [[nodiscard]] QObject *plugin() const { return m_host.root(); }

private:
    FormProject m_project;
    kiosk::PluginHost m_host;
    kiosk::Ledger m_ledger;
    std::unique_ptr<kiosk::Terminal> m_terminal;
    /// The seconds to the commit are shown.
    StillTimers m_still;
};

/// The terminal's window at a moment that is brought about as at a terminal: by touches, cards, notes, and what the
/// plugin does. Nothing on it is set by hand.
class KioskScene : private KioskAtWork, public kiosk::KioskWindow
{
public:
    /// Of the parking plugin.
    explicit KioskScene(const kiosk::TerminalOptions &options = {});
    explicit KioskScene(const QString &pluginFile, const kiosk::TerminalOptions &options = {});

    using KioskAtWork::terminal;

    /// What the fake plugin does, see there, in place of all that was planned before.
    void plan(const char *what, const QVariant &value);

    /// Touches the button of that name.
    void touch(const char *name);
    void type(const QString &text);
    /// What is owed for it is asked of a cash service that never answers.
    void readCard();
    void putIn(const char *note);

    /// The answer to a parking check, and the details behind it.
    void showDetails(const QString &sumDue);
    /// The cash service's client has failed.
    void fail(const QString &text);
    /// As far as the plugin's confirmation, with a message of the plugin's. There is no event loop that would run it.
    void beginCommit();
    /// The plugin's message has gone: the answer is there, or its time is over.
    void takeMessageOff();

private:
    QTcpServer m_service;
};
