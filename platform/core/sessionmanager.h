// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVariantMap>

class FormProject;

/// One customer's session: what the host and the plugins share from the first touch to the receipt. The host makes a
/// new one for each payment.
class SessionManager : public QObject
{
    Q_OBJECT

public:
    explicit SessionManager(QObject *parent = nullptr);
    /// @param project whose views the session's forms load; not owned, may be null.
    explicit SessionManager(FormProject *project, QObject *parent = nullptr);

    /// Null where the session has none.
    [[nodiscard]] FormProject *activeProject() const;
    void setActiveProject(FormProject *project);

    /// What plugins leave for each other and for their own later stages, by keys of their own.
    [[nodiscard]] QVariantMap pluginsData() const;
    void setPluginsData(const QVariantMap &data);

Q_SIGNALS:
    /// A parking card was read. Emitted by the host for the reader's message on the terminal's bus.
    /// @param data the texts "id" (UID in decimal), "cardId" (card number) and, where the card has one, "pdata".
    void newParcomatCardDataCommand(QString command, QVariantMap data);

private:
    FormProject *m_activeProject = nullptr;
    QVariantMap m_pluginsData;
};
