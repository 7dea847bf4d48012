// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/scene.h"

#include "kiosk/looks/formscenes.h"
#include "kiosk/looks/kioskscene.h"
#include "kiosk/looks/rarescenes.h"
#include "kiosk/looks/samples.h"
#include "kiosk/looks/servicescenes.h"
#include "window/receiptscreen.h"
#include "window/screens.h"
#include "window/startwindow.h"

namespace Scene {
namespace {
using kiosk::Outcome;
using kiosk::Screens;

std::unique_ptr<Screens> screens()
{
    return std::make_unique<Screens>(Samples::terminal());
}

std::unique_ptr<QWidget> starting()
{
    return std::make_unique<kiosk::StartWindow>(Samples::terminal());
}

std::unique_ptr<QWidget> idle()
{
    return std::make_unique<KioskScene>();
}

std::unique_ptr<QWidget> idleRefused()
{
    auto window = std::make_unique<KioskScene>(QStringLiteral(FAKE_PLUGIN_FILE));
    window->plan("form", QStringLiteral("none"));
    window->touch("startButton");
    return window;
}

std::unique_ptr<QWidget> receiptOf(const kiosk::LedgerEntry &payment, bool isRecovered = false,
                                   const QString &phone = Samples::terminal().phone)
{
    auto window = screens();
    window->receipt().setReceipt({payment, isRecovered, Samples::terminal().address, phone}, {});
    window->showScreen(window->receipt());
    return window;
}

std::unique_ptr<QWidget> receiptConfirmed()
{
    return receiptOf(Samples::payment(Outcome::Confirmed, "150.00", "150.00"));
}

std::unique_ptr<QWidget> receiptChange()
{
    return receiptOf(Samples::payment(Outcome::Confirmed, "150.00", "200.00"));
}

std::unique_ptr<QWidget> receiptPart()
{
    return receiptOf(Samples::payment(Outcome::Confirmed, "150.00", "100.00"));
}

std::unique_ptr<QWidget> receiptUnconfirmed()
{
    return receiptOf(Samples::payment(Outcome::Unconfirmed, "150.00", "150.00"));
}

std::unique_ptr<QWidget> receiptUnconfirmedPart()
{
    return receiptOf(Samples::payment(Outcome::Unconfirmed, "150.00", "100.00"));
}

std::unique_ptr<QWidget> receiptWithoutAPhone()
{
    return receiptOf(Samples::payment(Outcome::Unconfirmed, "150.00", "150.00"), false, QString());
}

std::unique_ptr<QWidget> receiptComission()
{
    return receiptOf(Samples::payment(Outcome::Confirmed, "150.00", "200.00", "5.00"));
}

std::unique_ptr<QWidget> receiptToReturn()
{
    return receiptOf(Samples::payment(Outcome::Confirmed, "0.00", "100.00"));
}

std::unique_ptr<QWidget> receiptRecovered()
{
    return receiptOf(Samples::payment(Outcome::Unconfirmed, "150.00", "200.00"), true);
}

std::unique_ptr<QWidget> receiptRecoveredConfirmed()
{
    return receiptOf(Samples::payment(Outcome::Confirmed, "150.00", "150.00"), true);
}

std::unique_ptr<QWidget> receiptInterrupted()
{
    return receiptOf(Samples::payment(Outcome::Interrupted, "150.00", "100.00"), true);
}

} // namespace

const QVector<Row> &all()
{
    static const QVector<Row> rows = {
        {QStringLiteral("starting"), starting},
        {QStringLiteral("idle"), idle},
        {QStringLiteral("idle-refused"), idleRefused},
        {QStringLiteral("form-wait-card"), FormScenes::waitCard},
        {QStringLiteral("form-checking"), FormScenes::checking},
        {QStringLiteral("form-error"), FormScenes::error},
        {QStringLiteral("form-error-of-the-network"), FormScenes::errorOfTheNetwork},
        {QStringLiteral("form-error-without-a-text"), RareScenes::errorWithoutAText},
        {QStringLiteral("form-error-that-scrolls"), RareScenes::errorThatScrolls, LookChecks::Scrolling::Meant},
        {QStringLiteral("form-cancel-question"), FormScenes::cancelQuestion},
        {QStringLiteral("form-card-number"), FormScenes::cardNumber},
        {QStringLiteral("form-card-uid"), FormScenes::cardUid},
        {QStringLiteral("form-waiting"), FormScenes::waiting},
        {QStringLiteral("details"), FormScenes::details},
        {QStringLiteral("details-part"), FormScenes::detailsPart},
        {QStringLiteral("details-paid"), FormScenes::detailsPaid},
        {QStringLiteral("details-change"), FormScenes::detailsChange},
        {QStringLiteral("details-nothing-due"), FormScenes::detailsNothingDue},
        {QStringLiteral("details-less-than-nothing-due"), RareScenes::detailsLessThanNothingDue},
        {QStringLiteral("details-to-return"), FormScenes::detailsToReturn},
        {QStringLiteral("details-comission"), FormScenes::detailsComission},
        {QStringLiteral("checking-with-money"), FormScenes::checkingWithMoney},
        {QStringLiteral("error-with-money"), FormScenes::errorWithMoney},
        {QStringLiteral("question-with-money"), FormScenes::questionWithMoney},
        {QStringLiteral("committing"), FormScenes::committing},
        {QStringLiteral("committing-error"), FormScenes::committingError},
        {QStringLiteral("committing-without-a-message"), FormScenes::committingWithoutAMessage},
        {QStringLiteral("receipt-confirmed"), receiptConfirmed},
        {QStringLiteral("receipt-change"), receiptChange},
        {QStringLiteral("receipt-part"), receiptPart},
        {QStringLiteral("receipt-unconfirmed"), receiptUnconfirmed},
        {QStringLiteral("receipt-unconfirmed-part"), receiptUnconfirmedPart},
        {QStringLiteral("receipt-without-a-phone"), receiptWithoutAPhone},
        {QStringLiteral("receipt-comission"), receiptComission},
        {QStringLiteral("receipt-to-return"), receiptToReturn},
        {QStringLiteral("receipt-recovered"), receiptRecovered},
        {QStringLiteral("receipt-recovered-confirmed"), receiptRecoveredConfirmed},
        {QStringLiteral("receipt-interrupted"), receiptInterrupted},
        {QStringLiteral("service-settings"), ServiceScenes::settings},
        {QStringLiteral("service-settings-none"), ServiceScenes::settingsNone},
        {QStringLiteral("service-settings-not-saved"), ServiceScenes::settingsNotSaved},
        {QStringLiteral("service-payments"), ServiceScenes::payments},
        {QStringLiteral("service-payments-none"), ServiceScenes::paymentsNone},
        {QStringLiteral("service-ledger-fault"), ServiceScenes::ledgerFault},
        {QStringLiteral("service-plugin"), ServiceScenes::plugin},
        {QStringLiteral("broken"), ServiceScenes::broken},
        {QStringLiteral("broken-library"), ServiceScenes::brokenLibrary},
        {QStringLiteral("broken-ledger"), ServiceScenes::brokenLedger},
    };
    return rows;
}
} // namespace Scene
