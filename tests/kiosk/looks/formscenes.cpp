// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/formscenes.h"

#include "kiosk/looks/kioskscene.h"

namespace FormScenes {
namespace {
using Window = std::unique_ptr<KioskScene>;

Window started(const kiosk::TerminalOptions &options = {})
{
    auto window = std::make_unique<KioskScene>(options);
    window->touch("startButton");
    return window;
}

Window detailsOf(const char *sumDue, const char *note = nullptr, const kiosk::TerminalOptions &options = {})
{
    Window window = started(options);
    window->showDetails(QLatin1String(sumDue));
    if (note != nullptr)
        window->putIn(note);
    return window;
}

Window failed(Window window, const char *text)
{
    window->fail(QString::fromUtf8(text));
    return window;
}

Window begun()
{
    Window window = detailsOf("150.00", "150.00");
    window->beginCommit();
    return window;
}
} // namespace

std::unique_ptr<QWidget> waiting()
{
    Window window = started();
    window->takeMessageOff();
    return window;
}

std::unique_ptr<QWidget> waitCard()
{
    return started();
}

std::unique_ptr<QWidget> checking()
{
    Window window = started();
    window->readCard();
    return window;
}

std::unique_ptr<QWidget> error()
{
    return failed(started(), "Парковка уже оплачена");
}

std::unique_ptr<QWidget> errorOfTheNetwork()
{
    return failed(started(), "Error transferring http://cash.example.org:13006/api/ParkingCheck - server replied: "
                             "Service Unavailable");
}

std::unique_ptr<QWidget> cancelQuestion()
{
    Window window = detailsOf("150.00");
    window->touch("cancelButton");
    return window;
}

std::unique_ptr<QWidget> cardNumber()
{
    Window window = started();
    window->touch("okButton");
    window->type(QStringLiteral("000123456"));
    return window;
}

std::unique_ptr<QWidget> cardUid()
{
    Window window = started();
    window->touch("okButton");
    window->type(QStringLiteral("000123456"));
    window->touch("nextButton");
    window->type(QStringLiteral("12345678"));
    return window;
}

std::unique_ptr<QWidget> details()
{
    return detailsOf("150.00");
}

std::unique_ptr<QWidget> detailsPart()
{
    return detailsOf("150.00", "100.00");
}

std::unique_ptr<QWidget> detailsPaid()
{
    return detailsOf("150.00", "150.00");
}

std::unique_ptr<QWidget> detailsChange()
{
    return detailsOf("150.00", "200.00");
}

std::unique_ptr<QWidget> detailsNothingDue()
{
    return detailsOf("0.00");
}

std::unique_ptr<QWidget> detailsToReturn()
{
    Window window = detailsOf("150.00", "100.00");
    window->showDetails(QStringLiteral("0.00"));
    return window;
}

std::unique_ptr<QWidget> detailsComission()
{
    kiosk::TerminalOptions options;
    options.comission = FixNumber(100, QStringLiteral("5.00"));
    return detailsOf("150.00", "100.00", options);
}

std::unique_ptr<QWidget> checkingWithMoney()
{
    Window window = detailsOf("150.00", "100.00");
    window->readCard();
    return window;
}

std::unique_ptr<QWidget> errorWithMoney()
{
    return failed(detailsOf("150.00", "100.00"), "Сервис временно недоступен");
}

std::unique_ptr<QWidget> questionWithMoney()
{
    Window window = detailsOf("150.00");
    window->touch("cancelButton");
    window->putIn("100.00");
    return window;
}

std::unique_ptr<QWidget> committing()
{
    return begun();
}

std::unique_ptr<QWidget> committingError()
{
    return failed(begun(), "Платёж уже зарегистрирован с другой суммой");
}

std::unique_ptr<QWidget> committingWithoutAMessage()
{
    Window window = begun();
    window->takeMessageOff();
    return window;
}
} // namespace FormScenes
