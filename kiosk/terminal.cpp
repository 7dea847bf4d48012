// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "terminal.h"

#include "kiosklog.h"
#include "ledger/ledger.h"
#include "payee.h"
#include "payment/commit.h"
#include "payment/paymentsession.h"
#include "plugin/pluginhost.h"
#include "plugininterface/ipaybyprovider.h"
#include "pluginsettings.h"
#include "terminalinfo.h"

#include <QMetaEnum>

namespace kiosk {
Terminal::Terminal(PluginHost &plugin, Ledger &ledger, const TerminalOptions &options, QObject *parent)
    : QObject(parent), m_plugin(plugin), m_ledger(ledger), m_backlog(ledger), m_options(options),
      m_till(ledger, options.comission)
{
    connect(&m_inactivity, &Inactivity::expired, this, &Terminal::leaveAlone);
    connect(&m_plugin, &PluginHost::renewed, this, &Terminal::takeRenewedPlugin);
    try {
        m_unseen = m_ledger.unseen();
    } catch (const LedgerError &error) {
        qCCritical(KIOSK_LOG).noquote() << error.text();
    }
    showNext();
}

Terminal::~Terminal()
{
    if (m_session != nullptr && m_plugin.plugin() != nullptr)
        m_plugin.plugin()->stop();
}

// What windows show

bool Terminal::isPaying() const
{
    return m_screen == Screen::Form || m_screen == Screen::Details;
}

bool Terminal::canPay() const
{
    // Under a message the plugin is at something whose end would be taken for the confirmation's. Where nothing is due
    // any more it is the way out, with all the money owed to the customer.
    return m_screen == Screen::Details && !m_isCommitting && purchase().hasCash() && m_session->isDetailsUp();
}

bool Terminal::canCancel() const
{
    return isPaying() && !m_isCommitting && !purchase().hasCash();
}

bool Terminal::acceptsCash() const
{
    // No change is given: a note may be more than what is left to pay in, but none comes behind the whole of it.
    return m_screen == Screen::Details && !m_isCommitting && !m_isQuitting && purchase().toPayIn() > FixNumber();
}

int Terminal::secondsToCommit() const
{
    return m_screen == Screen::Details && !m_isCommitting && purchase().hasCash() ? m_inactivity.secondsLeft() : 0;
}

QWidget *Terminal::formWidget() const
{
    return m_session != nullptr ? m_session->form() : nullptr;
}

QList<ProviderParameter> Terminal::parameters() const
{
    return m_session != nullptr ? m_session->parameters() : QList<ProviderParameter>();
}

TrelmInfo Terminal::info() const
{
    return terminalInfo();
}

PluginIdentity Terminal::pluginIdentity() const
{
    return m_plugin.identity();
}

QString Terminal::brokenReason() const
{
    return m_plugin.brokenReason();
}

QVector<LedgerEntry> Terminal::entries(int most) const
{
    try {
        return m_ledger.latest(most);
    } catch (const LedgerError &error) {
        qCCritical(KIOSK_LOG).noquote() << error.text();
        return {};
    }
}

QString Terminal::ledgerFault() const
{
    try {
        Q_UNUSED(m_ledger.latest(1));
        return m_backlog.fault();
    } catch (const LedgerError &error) {
        return error.text();
    }
}

// Verbs

QString Terminal::start()
{
    if (isDeferred(&Terminal::start))
        return {};
    if (m_screen == Screen::Receipt)
        closeReceipt();
    // The next receipt that nobody has seen is for somebody to see.
    if (m_screen == Screen::Receipt)
        return refuse("start");
    // Closing the receipt may have begun to renew the plugin.
    if (isDeferred(&Terminal::start))
        return {};
    if (m_screen != Screen::Idle || m_isQuitting)
        return refuse("start");
    if (m_plugin.root() == nullptr)
        m_plugin.renew();
    return isDeferred(&Terminal::start) ? QString() : beginPayment();
}

QString Terminal::stop()
{
    if (isDeferred(&Terminal::stop))
        return {};
    if (m_screen == Screen::Receipt)
        return closeReceipt();
    if (!isPaying())
        return refuse("stop");
    if (!purchase().hasCash()) {
        endPayment();
        return {};
    }
    return beginCommit();
}

QString Terminal::cancel()
{
    if (isDeferred(&Terminal::cancel))
        return {};
    if (!canCancel())
        return refuse("cancel");
    if (!QMetaObject::invokeMethod(m_plugin.root(), "permitCancel"))
        giveUp("the customer cancelled, and the plugin has no question to ask");
    return {};
}

QString Terminal::pay()
{
    if (isDeferred(&Terminal::pay))
        return {};
    return canPay() ? beginCommit() : refuse("pay");
}

QString Terminal::takeCash(const FixNumber &note)
{
    if (!acceptsCash() || note <= FixNumber())
        return refuse("cash");
    try {
        m_till.take(note, Payee::valueOf(parameters(), Payee::CARD_NUMBER),
                    Payee::valueOf(parameters(), Payee::PARKING_SESSION));
    } catch (const LedgerError &error) {
        qCCritical(KIOSK_LOG).noquote() << error.text();
        return refuse("cash");
    }
    m_inactivity.restart();
    m_session->showPaidIn(purchase().cash());
    Q_EMIT purchaseChanged();
    return {};
}

QString Terminal::readCard(const QVariantMap &card)
{
    if (!isPaying())
        return refuse("card");
    m_inactivity.restart();
    m_session->readCard(card);
    return {};
}

QString Terminal::leaveSessionCard(const QVariantMap &card)
{
    m_sessionCard = card;
    return {};
}

QString Terminal::closeReceipt()
{
    if (m_screen != Screen::Receipt)
        return refuse("close the receipt");
    m_backlog.write([uid = m_receipt.payment.uid](Ledger &ledger) { ledger.closeReceipt(uid); });
    if (m_session != nullptr)
        endPayment();
    else
        showNext();
    return {};
}

QString Terminal::openService()
{
    if (isDeferred(&Terminal::openService))
        return {};
    if (m_screen != Screen::Idle && m_screen != Screen::Broken)
        return refuse("open the service menu");
    m_backlog.retry();
    m_service.open(m_plugin.plugin());
    m_inactivity.start(m_options.serviceSeconds);
    setScreen(Screen::Service);
    return {};
}

QString Terminal::saveService()
{
    if (m_screen != Screen::Service)
        return refuse("save");
    const QString mistake = m_service.save();
    if (mistake.isEmpty())
        Q_EMIT settingsSaved();
    return mistake;
}

QString Terminal::closeService()
{
    if (m_screen != Screen::Service)
        return refuse("close the service menu");
    m_inactivity.stop();
    m_service.close();
    showNext();
    return {};
}

QString Terminal::writeSettings(const QVariantMap &settings)
{
    for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting) {
        const QString mistake = PluginSettings::mistake(setting.key(), setting.value().toString());
        if (!mistake.isEmpty())
            return mistake;
    }
    return PluginSettings::write(settings);
}

QString Terminal::quit()
{
    Q_EMIT quitWanted();
    if (isDeferred(&Terminal::quit))
        return {};
    // What cannot be committed is in the ledger all the same, and is shown at the next start.
    if (isPaying() && purchase().hasCash() && beginCommit().isEmpty())
        return quit();
    m_backlog.retry();
    m_isQuitting = true;
    Q_EMIT quitReady();
    return {};
}

bool Terminal::isDeferred(Verb verb)
{
    if (!m_isCommitting && !m_plugin.isRenewing())
        return false;
    m_deferred.append(verb);
    return true;
}

void Terminal::carryOutDeferred()
{
    // Each may begin what the ones behind it have to wait for.
    const QVector<Verb> verbs = qExchange(m_deferred, {});
    for (const Verb verb : verbs) {
        // The receipt of what has ended meanwhile is the customer's to close, and the next payment waits for that.
        if (m_screen == Screen::Receipt && verb == &Terminal::stop)
            m_deferred.clear();
        else if (m_screen == Screen::Receipt && verb == &Terminal::start)
            m_deferred.append(verb);
        else
            (this->*verb)();
    }
}

QString Terminal::refuse(const char *verb) const
{
    QString reason =
        QStringLiteral("%1: not now (the screen is %2, paid in is %3)")
            .arg(QLatin1String(verb), QLatin1String(QMetaEnum::fromType<Screen>().valueToKey(int(m_screen))),
                 purchase().cash().toString());
    qCInfo(KIOSK_LOG).noquote() << reason;
    return reason;
}

// The flow

void Terminal::setScreen(Screen screen)
{
    m_screen = screen;
    qCInfo(KIOSK_LOG) << "screen" << screen;
    Q_EMIT screenChanged();
}

void Terminal::showNext()
{
    if (!m_unseen.isEmpty()) {
        showReceipt(m_unseen.takeFirst(), true);
        return;
    }
    setScreen(m_plugin.brokenReason().isEmpty() ? Screen::Idle : Screen::Broken);
    if (!m_plugin.isRenewing())
        carryOutDeferred();
}

void Terminal::showReceipt(const LedgerEntry &payment, bool isRecovered)
{
    m_receipt = {payment, isRecovered, info().address, info().phone};
    setScreen(Screen::Receipt);
}

QString Terminal::beginPayment()
{
    m_backlog.retry();
    m_till = Till(m_ledger, m_options.comission);
    m_session = new PaymentSession(m_options.project, this);
    if (m_sessionCard.isValid())
        m_session->leaveCard(qExchange(m_sessionCard, {}).toMap());
    connect(m_session, &PaymentSession::cancelNeeded, this, [this] { giveUp("the plugin ended the payment"); });
    connect(m_session, &PaymentSession::ticked, &m_inactivity, &Inactivity::restart);
    connect(m_session, &PaymentSession::detailsNeeded, this, &Terminal::showDetails);

    // Each handler is a new one.
    IPayByProvider &plugin = *m_plugin.plugin();
    plugin.setMessageReciever(&m_bus, SLOT(take(QString, QVariantMap)));
    plugin.setMessageSender(&m_bus, SIGNAL(arrived(QString, QVariantMap)));
    plugin.setTrelmInfo(info());
    if (!m_session->start(plugin, currency())) {
        qCCritical(KIOSK_LOG) << "the plugin has no form";
        endPayment();
        return refuse("start");
    }
    m_inactivity.start(m_options.inactivitySeconds);
    setScreen(Screen::Form);
    plugin.showInitScreen();
    return {};
}

void Terminal::endPayment()
{
    m_inactivity.stop();
    // The root object may have died on its own.
    IPayByProvider *const plugin = m_plugin.plugin();
    if (plugin != nullptr)
        plugin->stop();
    // It may be what called.
    m_session->disconnect(this);
    m_session->deleteLater();
    m_session = nullptr;
    m_till = Till(m_ledger, m_options.comission);
    if (!m_options.keepPlugin || plugin == nullptr)
        m_plugin.renew();
    showNext();
}

void Terminal::takeRenewedPlugin()
{
    if (m_screen == Screen::Idle && !m_plugin.brokenReason().isEmpty())
        setScreen(Screen::Broken);
    carryOutDeferred();
}

void Terminal::showDetails()
{
    if (!isPaying() || m_isCommitting) {
        qCInfo(KIOSK_LOG) << "the plugin wants the details up, but the payment is past that";
        return;
    }
    m_till.setDue(Payee::valueOf(parameters(), Payee::SUM_DUE));
    m_session->showDetails(purchase().cash());
    setScreen(Screen::Details);
    Q_EMIT purchaseChanged();
}

void Terminal::leaveAlone()
{
    if (m_screen != Screen::Service) {
        giveUp("the customer has gone");
        return;
    }
    qCInfo(KIOSK_LOG) << "the service menu was left alone: what was not saved in it is dropped";
    closeService();
}

void Terminal::giveUp(const char *why)
{
    if (!isPaying() || m_isCommitting) {
        qCInfo(KIOSK_LOG) << why << "too late";
        return;
    }
    qCInfo(KIOSK_LOG) << why;
    if (!purchase().hasCash())
        endPayment();
    else if (!beginCommit().isEmpty())
        // The ledger fails: it is tried again.
        m_inactivity.start(m_options.inactivitySeconds);
}

QString Terminal::beginCommit()
{
    try {
        m_payment = m_till.beginCommit();
        m_receipt.payment = m_till.entry();
        m_receipt.isRecovered = false;
    } catch (const LedgerError &error) {
        qCCritical(KIOSK_LOG).noquote() << error.text();
        return refuse("commit");
    }
    m_inactivity.stop();
    m_isCommitting = true;
    Q_EMIT committingChanged(true);
    // From the event loop: the touch that started it is delivered first.
    QMetaObject::invokeMethod(this, &Terminal::runCommit, Qt::QueuedConnection);
    return {};
}

void Terminal::runCommit()
{
    // Its end may come in the commit, and would look like the commit's.
    if (m_session->isWaiting())
        m_plugin.setAwaitingLateAnswer();
    LedgerEntry entry = m_receipt.payment;
    entry.outcome = commitPayment(m_plugin, m_session->session(), *m_payment);
    // Until it is written the row says "committing", which the next start takes for unconfirmed.
    m_backlog.write([uid = entry.uid, outcome = entry.outcome](Ledger &ledger) { ledger.finishCommit(uid, outcome); });
    m_isCommitting = false;
    Q_EMIT committingChanged(false);
    showReceipt(entry, false);
    carryOutDeferred();
}
} // namespace kiosk
