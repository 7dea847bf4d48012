// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "control/state.h"

#include "scenario/steprunner.h"
#include "terminal.h"
#include "view/view.h"

#include <QJsonArray>

namespace kiosk {
namespace {
QJsonObject purchaseOf(const Purchase &purchase)
{
    return {{QStringLiteral("due"), purchase.due().toString()},
            {QStringLiteral("cash"), purchase.cash().toString()},
            {QStringLiteral("change"), purchase.change().toString()},
            {QStringLiteral("remainder"), purchase.remainder().toString()}};
}

QJsonObject paymentOf(const LedgerEntry &payment)
{
    if (payment.uid == 0)
        return {};
    return {{QStringLiteral("uid"), QString::number(payment.uid)},
            {QStringLiteral("created"), payment.created.toString(Qt::ISODate)},
            {QStringLiteral("due"), payment.due.toString()},
            {QStringLiteral("cash"), payment.cash.toString()},
            {QStringLiteral("summ"), payment.summ.toString()},
            {QStringLiteral("comission"), payment.comission.toString()},
            {QStringLiteral("total"), payment.total.toString()},
            {QStringLiteral("change"), payment.change.toString()},
            {QStringLiteral("remainder"), payment.remainder.toString()},
            {QStringLiteral("outcome"), toText(payment.outcome)}};
}
} // namespace

QJsonObject stateOf(const Stage &stage)
{
    const Terminal &terminal = stage.terminal;
    const View view(terminal, stage.window);
    QJsonObject parameters;
    const auto all = terminal.parameters();
    for (const ProviderParameter &parameter : all)
        parameters.insert(parameter.name(), parameter.value());
    return {{QStringLiteral("screen"), view.screen()},
            {QStringLiteral("text"), view.text()},
            {QStringLiteral("buttons"), QJsonArray::fromStringList(view.buttons())},
            {QStringLiteral("committing"), terminal.isCommitting()},
            {QStringLiteral("parameters"), parameters},
            {QStringLiteral("purchase"), purchaseOf(terminal.purchase())},
            {QStringLiteral("payment"), paymentOf(terminal.receipt().payment)}};
}
} // namespace kiosk
