// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/bench/benchsteps.h"

#include "window/amounttext.h"

namespace kiosk::BenchSteps {
namespace {
Step step(const QString &caption, Verb verb, const QString &text = {})
{
    Step made;
    made.caption = caption;
    made.verb = verb;
    made.text = text;
    return made;
}

Step press(const QString &caption, const char *button)
{
    return step(caption, Verb::Press, QLatin1String(button));
}

Step fault(const QString &caption, const QString &rule)
{
    return step(caption, Verb::SetFault, rule);
}
} // namespace

Step card(const ParkedCard &card)
{
    Step made = step(QStringLiteral("%1 · %2\n%3").arg(card.uid, amountText(card.owed, {}), card.note), Verb::Card);
    made.values = card.read();
    return made;
}

QVector<Step> notes()
{
    QVector<Step> steps;
    for (const int value : {50, 100, 200, 500, 1000}) {
        Step made = step(QString::number(value), Verb::Cash);
        made.amount = FixNumber(1, value);
        steps.append(made);
    }
    return steps;
}

QVector<Step> touches()
{
    return {step(QStringLiteral("Начать"), Verb::Start),
            press(QStringLiteral("ОК"), "ok"),
            press(QStringLiteral("Отмена"), "cancel"),
            press(QStringLiteral("Да"), "yes"),
            press(QStringLiteral("Нет"), "no"),
            press(QStringLiteral("Назад"), "back"),
            press(QStringLiteral("Далее"), "next"),
            press(QStringLiteral("Оплатить"), "pay"),
            step(QStringLiteral("Прервать"), Verb::Stop),
            step(QStringLiteral("Сервис"), Verb::OpenService),
            step(QStringLiteral("Сохранить"), Verb::Save),
            step(QStringLiteral("Закрыть"), Verb::Close)};
}

QVector<Step> faults()
{
    return {fault(QStringLiteral("Проверка: ответ через 10 с"), QStringLiteral("ParkingCheck:delay=10s")),
            fault(QStringLiteral("Проверка: HTTP 503"), QStringLiteral("ParkingCheck:status=503")),
            fault(QStringLiteral("Проверка: обслуживание"),
                  QStringLiteral("ParkingCheck:result=5,Сервис временно недоступен")),
            fault(QStringLiteral("Проверка: вместо суммы текст"), QStringLiteral("ParkingCheck:malformed=TotalCharge")),
            fault(QStringLiteral("Оплата: записана, ответа нет"), QStringLiteral("ParkInfoPay:delay=10m")),
            fault(QStringLiteral("Оплата: записана, ответ пуст"), QStringLiteral("ParkInfoPay@after:empty")),
            fault(QStringLiteral("Оплата: не записана, ответ пуст"), QStringLiteral("ParkInfoPay@before:empty")),
            fault(QStringLiteral("Всё: в windows-1251"), QStringLiteral("any:encoding=windows-1251")),
            step(QStringLiteral("Исправить сервис"), Verb::ClearFaults)};
}

Step quit()
{
    return step(QStringLiteral("Выключить"), Verb::Quit);
}

Step typed(Verb verb, const QString &text)
{
    return step(text, verb, text);
}
} // namespace kiosk::BenchSteps
