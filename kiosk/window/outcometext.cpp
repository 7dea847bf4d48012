// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/outcometext.h"

namespace kiosk::OutcomeText {
namespace {
bool isAbove(const FixNumber &amount)
{
    return amount > FixNumber();
}

/// Whether all of the money is still the customer's.
bool isNothingPaid(const LedgerEntry &payment)
{
    return payment.outcome == Outcome::Interrupted ||
           (payment.outcome == Outcome::Confirmed && !isAbove(payment.total));
}

/// A number that breaks into two lines is easily dialled wrongly.
QString unbroken(QString phone)
{
    const QChar wordJoiner(0x2060);
    return phone.replace(QLatin1Char(' '), QChar(QChar::Nbsp))
        .replace(QLatin1Char('-'), QLatin1Char('-') + QString(wordJoiner));
}
} // namespace

QString call(const QString &phone)
{
    if (phone.isEmpty())
        return QStringLiteral("обратитесь к сотруднику парковки");
    return QStringLiteral("позвоните: ") + unbroken(phone);
}

QString changeCaption(const LedgerEntry &payment)
{
    return isNothingPaid(payment) ? QStringLiteral("К возврату") : QStringLiteral("Сдача");
}

QString remainderCaption(const LedgerEntry &payment)
{
    return payment.outcome == Outcome::Confirmed ? QStringLiteral("Осталось") : QStringLiteral("Не внесено");
}

QString title(const LedgerEntry &payment)
{
    switch (payment.outcome) {
    case Outcome::Open:
        return QStringLiteral("Принимаются деньги");
    case Outcome::Committing:
        return QStringLiteral("Подтверждается");
    case Outcome::Confirmed:
        if (!isAbove(payment.total))
            return QStringLiteral("Оплачивать нечего");
        return isAbove(payment.remainder) ? QStringLiteral("Оплачено частично") : QStringLiteral("Парковка оплачена");
    case Outcome::Unconfirmed:
        return QStringLiteral("Оплата не подтверждена");
    case Outcome::Interrupted:
        break;
    }
    return QStringLiteral("Платёж прерван");
}

QString explanation(const LedgerEntry &payment)
{
    switch (payment.outcome) {
    case Outcome::Unconfirmed:
        if (isAbove(payment.remainder))
            return QStringLiteral(
                "Подтверждение не получено: принята часть суммы, но записала ли её парковка — неизвестно.");
        return QStringLiteral(
            "Подтверждение не получено: деньги приняты, но записала ли парковка оплату — неизвестно.");
    case Outcome::Interrupted:
        return QStringLiteral("Терминал остановился, когда принимал деньги. Парковке они не переведены.");
    case Outcome::Confirmed:
        if (isAbove(payment.remainder))
            return QStringLiteral("Оплата записана, но внесена не вся сумма.");
        break;
    case Outcome::Open:
    case Outcome::Committing:
        break;
    }
    return {};
}

QString advice(const LedgerEntry &payment, const QString &phone)
{
    if (payment.outcome == Outcome::Unconfirmed && isAbove(payment.remainder))
        return QStringLiteral("Пока больше не платите: остаток вам назовут. Запишите номер платежа и ") + call(phone);
    if (payment.outcome == Outcome::Unconfirmed)
        return QStringLiteral("Не платите второй раз. Запишите номер платежа и ") + call(phone);
    if (isNothingPaid(payment))
        return QStringLiteral("Внесённые деньги вернут: запишите номер платежа и ") + call(phone);
    if (isAbove(payment.remainder))
        return QStringLiteral("Доплатите остаток до выезда: начните оплату ещё раз.");
    if (isAbove(payment.change))
        return QStringLiteral("Терминал сдачу не выдаёт. Её вернут: запишите номер платежа и ") + call(phone);
    return payment.outcome == Outcome::Confirmed ? QStringLiteral("Можно выезжать. Счастливого пути!") : QString();
}

bool isSettled(const LedgerEntry &payment)
{
    return payment.outcome == Outcome::Confirmed && !isAbove(payment.remainder);
}
} // namespace kiosk::OutcomeText
