// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

/// A plugin's page in the host's service menu. The page is a QWidget too: the host reaches it with
/// dynamic_cast<QWidget *>, embeds it, and deletes it as one.
class IPayByProviderSettingsWidget
{
public:
    /// Called when the engineer presses Save: stores what the page shows.
    virtual void saveSettings() = 0;

protected:
    IPayByProviderSettingsWidget() = default;
    IPayByProviderSettingsWidget(const IPayByProviderSettingsWidget &) = default;
    IPayByProviderSettingsWidget &operator=(const IPayByProviderSettingsWidget &) = default;
    ~IPayByProviderSettingsWidget() = default;
};
