// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "plugininterface/ipaybyprovidersettingswidget.h"

#include <QWidget>

namespace Ui {
class ParkomatPluginSettingsWidget;
}

/// The plugin's page in the host's service menu: the six settings, as they are stored.
///
/// Nothing is checked and nothing is trimmed; discarding edits is the host's business, which then never saves.
class ParkomatPluginSettingsWidget : public QWidget, public IPayByProviderSettingsWidget
{
    Q_OBJECT

public:
    explicit ParkomatPluginSettingsWidget(QWidget *parent = nullptr);
    ~ParkomatPluginSettingsWidget() override;
    ParkomatPluginSettingsWidget(const ParkomatPluginSettingsWidget &) = delete;
    ParkomatPluginSettingsWidget &operator=(const ParkomatPluginSettingsWidget &) = delete;

    /// Shows what is stored. Edits are lost.
    void reload();
    /// Stores all six values, changed or not: a default that was shown is stored as well.
    void saveSettings() override;

private:
    Ui::ParkomatPluginSettingsWidget *m_ui;
};
