// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "plugin/pluginidentity.h"

#include <QObject>
#include <QPluginLoader>
#include <QPointer>

class IPayByProvider;

namespace kiosk {
struct PluginProbe;

/// Holds the payment plugin: loads its file, and makes its root object anew for each customer.
class PluginHost : public QObject
{
    Q_OBJECT

public:
    /// @param path the plugin's file; empty where none was found.
    explicit PluginHost(const QString &path, QObject *parent = nullptr);
    /// Deletes the root object; the library stays loaded until the program ends.
    ~PluginHost() override;

    /// Loads the plugin, once; with a probe only after a process of its own has done so. brokenReason() tells whether
    /// it worked.
    void load();
    void load(const PluginProbe &probe);

    /// Why there is no plugin, for people; empty while there is one.
    [[nodiscard]] QString brokenReason() const { return m_brokenReason; }
    [[nodiscard]] PluginIdentity identity() const { return m_identity; }

    /// Between renew() and renewed(): there is no root object then.
    [[nodiscard]] bool isRenewing() const { return m_isRenewing; }
    /// The root object; null while there is none.
    [[nodiscard]] QObject *root() const { return m_root; }
    /// The same as the plugin's interface.
    [[nodiscard]] IPayByProvider *plugin() const;

    /// The root object was asked something (to register a payment, say), and the answer is not known to have come: it
    /// may still come, and would look like the answer to a later payment. Until there is another root object.
    void setAwaitingLateAnswer() { m_isAwaitingLateAnswer = true; }
    [[nodiscard]] bool isAwaitingLateAnswer() const { return m_isAwaitingLateAnswer; }

    /// Deletes the root object, waits until it is gone, and makes another: a plugin may keep a customer's card for as
    /// long as its root object lives. One that has died on its own is replaced likewise.
    void renew();

Q_SIGNALS:
    /// There is a fresh root object, or brokenReason() says why there is none.
    void renewed();

private:
    void takeInstance();
    /// @param reason empty: there is a plugin.
    void setBrokenReason(const QString &reason);

    QPluginLoader m_loader;
    PluginIdentity m_identity;
    QString m_brokenReason;
    QPointer<QObject> m_root;
    bool m_isRenewing = false;
    bool m_isAwaitingLateAnswer = false;
};
} // namespace kiosk
