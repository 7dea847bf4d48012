// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/currency.h"
#include "ledger/ledgerentry.h"
#include "plugin/pluginidentity.h"
#include "window/parts.h"

#include <QPointer>
#include <QVector>
#include <QWidget>

class QButtonGroup;
class QHBoxLayout;
class QStackedWidget;
class TouchScrollArea;

namespace kiosk {
class Facts;
class LedgerList;

/// The service engineer's menu: the plugin's settings page with Save, the latest payments, the plugin's identity.
class ServiceScreen : public QWidget
{
    Q_OBJECT

public:
    enum class Section
    {
        Settings,
        Payments,
        Plugin
    };

    explicit ServiceScreen(QWidget *parent = nullptr);
    /// Lets go of the settings page, which is the plugin's.
    ~ServiceScreen() override;

    /// Opens the menu at the settings. @param page the plugin's page, which stays the plugin's; null: it has none.
    void open(QWidget *page, const PluginIdentity &plugin, const QVector<LedgerEntry> &entries,
              const Currency &currency);
    /// Says that the list of payments is not all there is. @param reason empty: it is.
    void setLedgerFault(const QString &reason);
    /// Lets go of the page.
    void leave();
    void showSection(Section section);
    /// Says that the settings are stored.
    void setSaved();
    /// Says that they are not: the plugin has taken its page away, or they cannot be written.
    void setNotSaved();

Q_SIGNALS:
    void saveWanted();
    void closeWanted();

private:
    void addSection(const QString &caption, const char *name, QWidget *page);
    void setStatus(const QString &text, const char *role);
    void showSave();
    void setIdentity(const PluginIdentity &plugin);

    QButtonGroup *m_tabs;
    QHBoxLayout *m_tabLayout;
    QStackedWidget *m_sections;
    TouchScrollArea *m_settings;
    LedgerList *m_payments;
    Facts *m_plugin;
    QLabel *m_status;
    QLabel *m_ledgerFault;
    QPushButton *m_save;
    QPointer<QWidget> m_page;
};
} // namespace kiosk
