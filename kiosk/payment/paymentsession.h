// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/provider.h"
#include "core/sessionmanager.h"
#include "core/trelminfo.h"
#include "extension/currency.h"

#include <QPointer>
#include <QVariantMap>
#include <QWidget>

class FormProject;
class FixNumber;
class IPayByProvider;

namespace kiosk {
/// One customer's objects: session, payee and the plugin's form, with what the form has to say. New for each payment;
/// what was said to it dies with it.
class PaymentSession : public QObject
{
    Q_OBJECT

public:
    /// @param project where the session's views come from; not owned, may be null.
    explicit PaymentSession(FormProject *project, QObject *parent = nullptr);

    /// Leaves the card where the plugin looks for one when it starts.
    void leaveCard(const QVariantMap &card);
    /// Starts the plugin's payment. @return whether it has a form.
    [[nodiscard]] bool start(IPayByProvider &plugin, const Currency &currency);

    [[nodiscard]] QWidget *form() const { return m_form; }
    [[nodiscard]] SessionManager &session() { return m_session; }
    [[nodiscard]] QList<ProviderParameter> parameters() const { return m_provider->parameters(); }

    /// The card reader's message.
    void readCard(const QVariantMap &card);
    /// Puts the form's details up.
    void showDetails(const FixNumber &paidIn);
    void showPaidIn(const FixNumber &paidIn);
    /// Whether the form's details are what the customer sees: no message in their place, no question over them.
    [[nodiscard]] bool isDetailsUp() const;
    /// Whether the form has the customer wait: a message without a button is up, and the plugin is at something.
    [[nodiscard]] bool isWaiting() const;

Q_SIGNALS:
    /// The payment is over. Comes from the event loop: whoever asked for it has returned.
    void cancelNeeded();
    /// The customer is still there.
    void ticked();
    /// It is known what is owed.
    void detailsNeeded();

private:
    SessionManager m_session;
    Provider *m_provider;
    QPointer<QWidget> m_form;
};
} // namespace kiosk
