// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/providerparameter.h"
#include "core/trelminfo.h"
#include "extension/currency.h"
#include "ledger/ledgerbacklog.h"
#include "messagebus.h"
#include "payment/inactivity.h"
#include "payment/till.h"
#include "plugin/pluginidentity.h"
#include "receipt.h"
#include "servicemenu.h"

#include <QObject>
#include <QVariantMap>
#include <QVector>

#include <optional>

class FormProject;

namespace kiosk {
class Ledger;
class PaymentSession;
class PluginHost;

/// How a terminal is set up. A scenario may change it, see docs.
struct TerminalOptions
{
    /// The handler lives on from one customer to the next, in place of one handler a customer.
    bool keepPlugin = false;
    /// What the terminal takes on top of the sum due.
    FixNumber comission;
    /// How long a customer may do nothing. Longer than the 30 s of the plugin's first message.
    int inactivitySeconds = 45;
    /// How long an engineer may do nothing in the service menu.
    int serviceSeconds = 180;
    /// Where the message views come from; not owned, may be null.
    FormProject *project = nullptr;
};

/// The terminal without its windows: it takes one customer after the other from the first touch to the receipt.
///
/// Windows, scenarios, the control socket and the bench panel call the verbs; windows show what the getters tell when a
/// signal says that it has changed. It drives the plugin through IPayByProvider, the form's signals and the plugin's
/// invocable slots.
///
/// Each verb returns an empty text, or why it does not apply now; the reason is logged too. While a commit runs, start,
/// stop, pay, cancel and quit are taken and carried out, in their order, once the payment's outcome is written. None of
/// them takes the receipt off that comes then: the payment has been stopped by that, and start waits until the receipt
/// is closed.
class Terminal : public QObject
{
    Q_OBJECT

public:
    enum class Screen
    {
        Idle,
        Form,    ///< the plugin's own views: messages, hand input
        Details, ///< the form's details view, and money
        Receipt,
        Service,
        Broken ///< there is no plugin
    };
    Q_ENUM(Screen)

    /// Loads the plugin, and begins with Broken, with the receipts that nobody has seen, or with Idle.
    /// @param plugin, @param ledger outlive the terminal.
    Terminal(PluginHost &plugin, Ledger &ledger, const TerminalOptions &options, QObject *parent = nullptr);
    ~Terminal() override;

    [[nodiscard]] Screen screen() const { return m_screen; }
    [[nodiscard]] bool isCommitting() const { return m_isCommitting; }
    /// Whether the verb would do something now: for the buttons.
    [[nodiscard]] bool canPay() const;
    [[nodiscard]] bool canCancel() const;
    /// When the money that is in is committed unless the customer does something; 0: it is not.
    [[nodiscard]] int secondsToCommit() const;
    /// Whether a note would be taken now.
    [[nodiscard]] bool acceptsCash() const;

    /// The payment form, to be embedded and shown on Form and Details. Null from stop to start; what it was is hidden
    /// then and gone soon.
    [[nodiscard]] QWidget *formWidget() const;
    /// The plugin's page on Service, to be embedded and shown; gone on Close. Null where there is none.
    [[nodiscard]] QWidget *settingsPage() const { return m_service.page(); }

    [[nodiscard]] const Purchase &purchase() const { return m_till.purchase(); }
    /// Of the latest payment that was paid or recovered since the program started, while it is being committed too. Its
    /// uid is 0 before the first.
    [[nodiscard]] const Receipt &receipt() const { return m_receipt; }
    /// The payee's fields of the payment that is going on; else empty.
    [[nodiscard]] QList<ProviderParameter> parameters() const;
    [[nodiscard]] Currency currency() const { return {}; }
    /// The terminal's name, address and telephone number.
    [[nodiscard]] TrelmInfo info() const;

    [[nodiscard]] PluginIdentity pluginIdentity() const;
    /// Why there is no plugin, for people; empty unless the screen is Broken.
    [[nodiscard]] QString brokenReason() const;
    /// The newest payments first, for the service menu.
    [[nodiscard]] QVector<LedgerEntry> entries(int most = 50) const;
    /// Why the ledger does not tell all that has happened, for people; empty: it does.
    [[nodiscard]] QString ledgerFault() const;

public Q_SLOTS:
    /// A customer chose to pay. Closes the receipt that is up; refused where there is another that nobody has seen.
    QString start();
    /// The host ends the payment, or closes the receipt: idle. What was paid in is committed, and its receipt shown.
    QString stop();
    /// The cancel button of the payment screens: asks the plugin (permitCancel). Not with money in.
    QString cancel();
    /// Commits what was paid in, in full or in part. Where nothing is due any more all of it is owed to the customer.
    QString pay();
    /// A note was put in. It is in the ledger before it counts. Refused: it was given back.
    QString takeCash(const FixNumber &note);
    /// The card reader read a card. @param card the texts "id", "cardId" and "pdata", any of them absent.
    QString readCard(const QVariantMap &card);
    /// Leaves the card in the plugin data of the next payment's session.
    QString leaveSessionCard(const QVariantMap &card);
    QString closeReceipt();

    /// The service menu: no payment while it is open. save keeps what the page shows, close destroys the page. It
    /// closes by itself when nobody is there.
    QString openService();
    QString saveService();
    QString closeService();
    /// The plugin's settings, by their keys, written as its page would.
    QString writeSettings(const QVariantMap &settings);

    /// The program is to end: quitReady() comes, once money that was paid in is committed.
    QString quit();

Q_SIGNALS:
    /// screen() is another, or shows something else: the next receipt, a new form.
    void screenChanged();
    void purchaseChanged();
    void committingChanged(bool isCommitting);
    /// The plugin's page has stored its values.
    void settingsSaved();
    /// quit() was called.
    void quitWanted();
    void quitReady();

private:
    using Verb = QString (Terminal::*)();

    /// Takes the verb when its time comes. @return whether it is not now.
    [[nodiscard]] bool isDeferred(Verb verb);
    void carryOutDeferred();
    /// @return why the verb does not apply now, which is logged.
    [[nodiscard]] QString refuse(const char *verb) const;
    /// A customer is there: Form or Details.
    [[nodiscard]] bool isPaying() const;
    void setScreen(Screen screen);

    [[nodiscard]] QString beginPayment();
    void endPayment();
    void showDetails();
    /// Whoever stood there has gone.
    void leaveAlone();
    /// The customer has gone, or the plugin has: with money in the payment is committed, else it is over.
    void giveUp(const char *why);
    [[nodiscard]] QString beginCommit();
    void runCommit();
    void showReceipt(const LedgerEntry &payment, bool isRecovered);
    /// Behind a receipt, or the service menu: the next receipt that nobody has seen, else Idle or Broken.
    void showNext();
    void takeRenewedPlugin();

    PluginHost &m_plugin;
    Ledger &m_ledger;
    LedgerBacklog m_backlog;
    TerminalOptions m_options;
    MessageBus m_bus;
    Inactivity m_inactivity;
    ServiceMenu m_service;
    Screen m_screen = Screen::Idle;
    bool m_isCommitting = false;
    bool m_isQuitting = false;
    QVector<Verb> m_deferred;
    /// Receipts of an earlier run that nobody has seen.
    QVector<LedgerEntry> m_unseen;
    /// What leaveSessionCard() left for the next session; not valid: nothing.
    QVariant m_sessionCard;
    /// From start to stop; deleted from the event loop, since it may be what called.
    PaymentSession *m_session = nullptr;
    Till m_till;
    /// While a commit runs.
    std::optional<Payment> m_payment;
    Receipt m_receipt;
};
} // namespace kiosk
