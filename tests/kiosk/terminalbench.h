// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "guiclient/pluginbaseformviewer.h"
#include "ledger/ledger.h"
#include "plugin/pluginhost.h"
#include "scenario/steprunner.h"
#include "terminal.h"
#include "view/view.h"

#include "support/messagelog.h"
#include "support/waiting.h"
#include "support/workdirectory.h"

#include <QWidget>

#include <memory>

/// A terminal with the fake plugin, a window of one widget, and a ledger in the work directory. The test's target needs
/// FAKE_PLUGIN_FILE.
class TerminalBench
{
public:
    using Screen = kiosk::Terminal::Screen;

    explicit TerminalBench(const kiosk::TerminalOptions &options = {},
                           const QString &plugin = QStringLiteral(FAKE_PLUGIN_FILE))
        : m_host(plugin), m_ledger(ledgerPath())
    {
        m_host.load();
        Q_UNUSED(takeCalls());
        QMetaObject::invokeMethod(m_host.root(), "forgetPlans");
        m_terminal = std::make_unique<kiosk::Terminal>(m_host, m_ledger, options);
        QObject::connect(m_terminal.get(), &kiosk::Terminal::screenChanged, &m_window, [this] { embedForm(); });
        m_window.resize(800, 600);
        m_window.show();
    }
    ~TerminalBench()
    {
        m_terminal.reset();
        deleteReleased();
    }
    TerminalBench(const TerminalBench &) = delete;
    TerminalBench &operator=(const TerminalBench &) = delete;

    [[nodiscard]] static QString ledgerPath() { return WorkDirectory::path() + QStringLiteral("/ledger.db"); }
    /// Options of a terminal whose customer seems to have gone after so many seconds.
    [[nodiscard]] static kiosk::TerminalOptions inactivity(int seconds)
    {
        kiosk::TerminalOptions options;
        options.inactivitySeconds = seconds;
        return options;
    }
    /// The texts of the lines of that level in the log so far; the others are forgotten.
    [[nodiscard]] static QStringList takeLines(QtMsgType level)
    {
        QStringList texts;
        const QList<LogLine> lines = MessageLog::take();
        for (const LogLine &line : lines) {
            if (line.level == level)
                texts.append(line.text);
        }
        return texts;
    }

    kiosk::Terminal *operator->() const { return m_terminal.get(); }
    [[nodiscard]] kiosk::Terminal &terminal() const { return *m_terminal; }
    [[nodiscard]] kiosk::PluginHost &host() { return m_host; }
    [[nodiscard]] QWidget &window() { return m_window; }
    [[nodiscard]] kiosk::Stage stage() { return {*m_terminal, m_window}; }
    [[nodiscard]] kiosk::View view() { return {*m_terminal, m_window}; }
    [[nodiscard]] PluginBaseFormViewer *form() const
    {
        return qobject_cast<PluginBaseFormViewer *>(m_terminal->formWidget());
    }

    void plan(const char *what, const QVariant &value)
    {
        QMetaObject::invokeMethod(m_host.root(), "plan", Q_ARG(QString, QLatin1String(what)), Q_ARG(QVariant, value));
    }
    /// Calls a slot of the plugin's root object.
    void tellPlugin(const char *slot) { QMetaObject::invokeMethod(m_host.root(), slot); }
    [[nodiscard]] QStringList takeCalls()
    {
        QStringList calls;
        QMetaObject::invokeMethod(m_host.root(), "takeCalls", Q_RETURN_ARG(QStringList, calls));
        return calls;
    }
    [[nodiscard]] QVariantMap sessionData()
    {
        QVariantMap data;
        QMetaObject::invokeMethod(m_host.root(), "sessionData", Q_RETURN_ARG(QVariantMap, data));
        return data;
    }
    void fill(const char *parameter, const QString &value)
    {
        QMetaObject::invokeMethod(m_host.root(), "fill", Q_ARG(QString, QLatin1String(parameter)),
                                  Q_ARG(QString, value));
    }
    /// The form says something.
    void signal(const char *name) const { QMetaObject::invokeMethod(m_terminal->formWidget(), name); }

    /// A customer who has the details before him.
    void showDetails(const QString &sumDue = QStringLiteral("150.00"))
    {
        m_terminal->start();
        fill("card_num", QStringLiteral("000123456"));
        fill("UIN", QStringLiteral("77"));
        fill("SummToPay", sumDue);
        signal("needShowPayDetail");
    }
    /// A commit of that much cash out of 150.00 due, in the plugin's confirmation as soon as events are handled, until
    /// the plugin is told to letGo().
    void beginHeldCommit(const char *amount = "150")
    {
        plan("confirmation", QStringLiteral("held"));
        showDetails();
        takeCash(amount);
        m_terminal->pay();
    }
    QString takeCash(const char *amount) const
    {
        return m_terminal->takeCash(FixNumber(100, QString::fromLatin1(amount)));
    }
    [[nodiscard]] kiosk::Outcome outcome() const { return m_terminal->receipt().payment.outcome; }
    [[nodiscard]] kiosk::LedgerEntry latest() const { return m_terminal->entries(1).value(0); }

private:
    void embedForm()
    {
        QWidget *const form = m_terminal->formWidget();
        if (form == nullptr)
            return;
        form->setParent(&m_window);
        form->resize(m_window.size());
        form->show();
    }

    kiosk::PluginHost m_host;
    kiosk::Ledger m_ledger;
    QWidget m_window;
    std::unique_ptr<kiosk::Terminal> m_terminal;
};
