// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/rarescenes.h"

#include "kiosk/looks/kioskscene.h"

namespace RareScenes {
namespace {
std::unique_ptr<KioskScene> failed(const QString &text)
{
    auto window = std::make_unique<KioskScene>();
    window->touch("startButton");
    window->fail(text);
    return window;
}
} // namespace

std::unique_ptr<QWidget> errorWithoutAText()
{
    return failed({});
}

std::unique_ptr<QWidget> errorThatScrolls()
{
    return failed(QStringLiteral("Сервис оплаты парковки не может проверить карту: база данных недоступна, повторите "
                                 "запрос позже. ")
                      .repeated(25));
}

std::unique_ptr<QWidget> detailsLessThanNothingDue()
{
    auto window = std::make_unique<KioskScene>();
    window->touch("startButton");
    window->showDetails(QStringLiteral("-150.00"));
    return window;
}
} // namespace RareScenes
