// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/scene.h"

#include "kiosk/looks/formscenes.h"
#include "kiosk/looks/samples.h"
#include "window/brokenscreen.h"
#include "window/idlescreen.h"
#include "window/receiptscreen.h"
#include "window/screens.h"
#include "window/servicescreen.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>

namespace Scene {
namespace {
using kiosk::Outcome;
using kiosk::Screens;
using kiosk::ServiceScreen;

std::unique_ptr<Screens> screens()
{
    return std::make_unique<Screens>(Samples::terminal());
}

std::unique_ptr<QWidget> idle()
{
    auto window = screens();
    window->showScreen(window->idle());
    return window;
}

std::unique_ptr<QWidget> idleRefused()
{
    auto window = screens();
    window->idle().setNotice(QStringLiteral("Сейчас оплатить не получается. Попробуйте ещё раз или позвоните: ") +
                             Samples::terminal().phone);
    window->showScreen(window->idle());
    return window;
}

std::unique_ptr<QWidget> receiptOf(const kiosk::LedgerEntry &payment, bool isRecovered = false)
{
    auto window = screens();
    window->receipt().setReceipt({payment, isRecovered, Samples::terminal().address, Samples::terminal().phone}, {});
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

std::unique_ptr<QWidget> receiptRecovered()
{
    return receiptOf(Samples::payment(Outcome::Unconfirmed, "150.00", "200.00"), true);
}

std::unique_ptr<QWidget> receiptInterrupted()
{
    return receiptOf(Samples::payment(Outcome::Interrupted, "150.00", "100.00"), true);
}

/// As plugins lay them out: labels and editors in a grid.
QWidget *settingsPage()
{
    auto *page = new QWidget;
    auto *grid = new QGridLayout;
    (new QVBoxLayout(page))->addLayout(grid);
    const QStringList captions = {QStringLiteral("ИД партнера"),       QStringLiteral("ИД парковки"),
                                  QStringLiteral("ИД паркомата"),      QStringLiteral("Cash service IP"),
                                  QStringLiteral("Cash service port"), QStringLiteral("Cash service path")};
    const QStringList values = {
        QStringLiteral("dravik"), QStringLiteral("12"), QStringLiteral("0042"), QStringLiteral("localhost"), QString(),
        QStringLiteral("api")};
    for (int i = 0; i < captions.size(); ++i) {
        grid->addWidget(new QLabel(captions.at(i)), i, 0);
        if (values.at(i).isEmpty()) {
            auto *port = new QSpinBox;
            port->setMaximum(65535);
            port->setValue(13006);
            grid->addWidget(port, i, 1);
        } else {
            grid->addWidget(new QLineEdit(values.at(i)), i, 1);
        }
    }
    return page;
}

/// The window, with the page that it only borrows.
class ServiceScene : public Screens
{
public:
    explicit ServiceScene(ServiceScreen::Section section) : Screens(Samples::terminal()), m_page(settingsPage())
    {
        service().open(m_page.get(), Samples::plugin(), Samples::ledger(), {});
        service().showSection(section);
        showScreen(service());
    }
    ~ServiceScene() override { service().leave(); }

private:
    std::unique_ptr<QWidget> m_page;
};

std::unique_ptr<QWidget> serviceSettings()
{
    auto window = std::make_unique<ServiceScene>(ServiceScreen::Section::Settings);
    window->service().setStatus(QStringLiteral("Настройки сохранены."));
    return window;
}

std::unique_ptr<QWidget> servicePayments()
{
    return std::make_unique<ServiceScene>(ServiceScreen::Section::Payments);
}

std::unique_ptr<QWidget> servicePlugin()
{
    return std::make_unique<ServiceScene>(ServiceScreen::Section::Plugin);
}

std::unique_ptr<QWidget> broken()
{
    auto window = screens();
    kiosk::PluginIdentity plugin = Samples::plugin();
    plugin.interfaceId = QStringLiteral("org.example.terminal.plugins.other");
    plugin.qtVersion = QStringLiteral("5.11.3");
    window->broken().setFailure(
        QStringLiteral("Плагин другого интерфейса: установите плагин оплаты для этого терминала."), plugin,
        Samples::terminal());
    window->showScreen(window->broken());
    return window;
}
} // namespace

const QVector<Row> &all()
{
    static const QVector<Row> rows = {
        {QStringLiteral("idle"), idle},
        {QStringLiteral("idle-refused"), idleRefused},
        {QStringLiteral("form-wait-card"), FormScenes::waitCard},
        {QStringLiteral("form-checking"), FormScenes::checking},
        {QStringLiteral("form-error"), FormScenes::error},
        {QStringLiteral("form-cancel-question"), FormScenes::cancelQuestion},
        {QStringLiteral("form-card-number"), FormScenes::cardNumber},
        {QStringLiteral("form-card-uid"), FormScenes::cardUid},
        {QStringLiteral("form-waiting"), FormScenes::waiting},
        {QStringLiteral("details"), FormScenes::details},
        {QStringLiteral("details-part"), FormScenes::detailsPart},
        {QStringLiteral("details-change"), FormScenes::detailsChange},
        {QStringLiteral("details-nothing-due"), FormScenes::detailsNothingDue},
        {QStringLiteral("committing"), FormScenes::committing},
        {QStringLiteral("receipt-confirmed"), receiptConfirmed},
        {QStringLiteral("receipt-change"), receiptChange},
        {QStringLiteral("receipt-part"), receiptPart},
        {QStringLiteral("receipt-unconfirmed"), receiptUnconfirmed},
        {QStringLiteral("receipt-recovered"), receiptRecovered},
        {QStringLiteral("receipt-interrupted"), receiptInterrupted},
        {QStringLiteral("service-settings"), serviceSettings},
        {QStringLiteral("service-payments"), servicePayments},
        {QStringLiteral("service-plugin"), servicePlugin},
        {QStringLiteral("broken"), broken},
    };
    return rows;
}
} // namespace Scene
