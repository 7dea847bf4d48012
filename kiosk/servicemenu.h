// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>

class IPayByProvider;
class IPayByProviderSettingsWidget;

namespace kiosk {
/// Holds the plugin's settings page while the service menu is open.
class ServiceMenu
{
public:
    ~ServiceMenu();
    ServiceMenu() = default;
    ServiceMenu(const ServiceMenu &) = delete;
    ServiceMenu &operator=(const ServiceMenu &) = delete;

    /// @param plugin may be null: then there is no page.
    void open(IPayByProvider *plugin);
    /// What the page shows is stored. @return why it is not; empty: it is.
    QString save();
    /// Destroys the page, with what was changed in it and not saved.
    void close();

    [[nodiscard]] QWidget *page() const { return m_page; }

private:
    /// The same object as m_page; valid while that is.
    IPayByProviderSettingsWidget *m_settings = nullptr;
    QPointer<QWidget> m_page;
};
} // namespace kiosk
