// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/startup.h"

#include "kiosklog.h"
#include "ledger/ledger.h"
#include "plugin/pluginhost.h"
#include "plugin/pluginprobe.h"
#include "window/startwindow.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

namespace kiosk {
Startup::Startup(StartWindow &window, QObject *parent) : QObject(parent), m_window(window)
{
    connect(&m_window, &StartWindow::closeWanted, this, &Startup::end);
}

std::unique_ptr<Ledger> Startup::openLedger(const QString &path, std::chrono::milliseconds retryAfter)
{
    while (!m_isEnding) {
        try {
            auto ledger = std::make_unique<Ledger>(path);
            m_window.showStarting();
            return ledger;
        } catch (const LedgerError &error) {
            qCCritical(KIOSK_LOG).noquote() << "no ledger, it is tried again:" << error.text();
            m_window.showLedgerFailure(error.text(), path);
        }
        QEventLoop wait;
        QTimer::singleShot(retryAfter, &wait, &QEventLoop::quit);
        wait.exec();
    }
    return nullptr;
}

bool Startup::load(PluginHost &plugin, const PluginProbe &probe)
{
    qCInfo(KIOSK_LOG).noquote() << "the plugin is tried out:" << plugin.identity().path;
    plugin.load(probe);
    return !m_isEnding;
}

void Startup::end()
{
    m_isEnding = true;
    // Whichever event loop waits.
    QCoreApplication::quit();
}
} // namespace kiosk
