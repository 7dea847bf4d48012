// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/expectations.h"

#include "terminal.h"
#include "view/view.h"

#include <algorithm>

namespace kiosk {
namespace {
QString mismatch(const QString &what, const QString &expected, const QString &found)
{
    return QStringLiteral("expected %1 \"%2\"; there was \"%3\"").arg(what, expected, found);
}

QString paymentField(const LedgerEntry &payment, const QString &name)
{
    if (name == QLatin1String("uid"))
        return QString::number(payment.uid);
    if (name == QLatin1String("summ"))
        return payment.summ.toString();
    if (name == QLatin1String("total"))
        return payment.total.toString();
    if (name == QLatin1String("change"))
        return payment.change.toString();
    return toText(payment.outcome);
}

/// "150" is "150.00".
bool isSameField(const QString &name, const QString &expected, const QString &found)
{
    if (name == QLatin1String("outcome"))
        return expected == found;
    return FixNumber(100, expected) == FixNumber(100, found);
}

QStringList paymentMismatches(const QMap<QString, QString> &expected, const LedgerEntry &payment)
{
    QStringList mismatches;
    if (!expected.isEmpty() && payment.uid == 0)
        return {QStringLiteral("expected a payment; there was none")};
    for (auto field = expected.cbegin(); field != expected.cend(); ++field) {
        const QString found = paymentField(payment, field.key());
        if (!isSameField(field.key(), field.value(), found))
            mismatches.append(mismatch(QStringLiteral("payment ") + field.key(), field.value(), found));
    }
    return mismatches;
}

QStringList parameterMismatches(const QMap<QString, QString> &expected, const QList<ProviderParameter> &parameters)
{
    QMap<QString, QString> found;
    for (const ProviderParameter &parameter : parameters)
        found.insert(parameter.name(), parameter.value());
    const QString names = found.isEmpty() ? QStringLiteral("none") : found.keys().join(QStringLiteral(", "));
    QStringList mismatches;
    for (auto parameter = expected.cbegin(); parameter != expected.cend(); ++parameter) {
        const QString &name = parameter.key();
        // Where an empty value is expected, a misspelt name must not do.
        if (!found.contains(name))
            mismatches.append(QStringLiteral("there is no parameter \"%1\"; there are %2").arg(name, names));
        else if (found.value(name) != parameter.value())
            mismatches.append(mismatch(QStringLiteral("parameter ") + name, parameter.value(), found.value(name)));
    }
    return mismatches;
}

QStringList buttonMismatches(const std::optional<QStringList> &expected, const QStringList &found)
{
    if (!expected || std::is_permutation(expected->cbegin(), expected->cend(), found.cbegin(), found.cend()))
        return {};
    const QString comma = QStringLiteral(", ");
    return {mismatch(QStringLiteral("buttons"), expected->join(comma), found.join(comma))};
}
} // namespace

QString difference(const Expectation &expected, const Terminal &terminal, QWidget &window)
{
    const View view(terminal, window);
    QStringList mismatches;
    if (!expected.screen.isEmpty() && view.screen() != expected.screen)
        mismatches.append(mismatch(QStringLiteral("screen"), expected.screen, view.screen()));
    const QString text = view.text();
    if (!text.contains(expected.text))
        mismatches.append(mismatch(QStringLiteral("text"), expected.text, text));
    mismatches += buttonMismatches(expected.buttons, view.buttons());
    mismatches += parameterMismatches(expected.parameters, terminal.parameters());
    mismatches += paymentMismatches(expected.payment, terminal.receipt().payment);
    if (!mismatches.isEmpty() && text.contains(expected.text))
        mismatches.append(QStringLiteral("the screen reads \"%1\"").arg(text));
    return mismatches.join(QStringLiteral("; ")).replace(QLatin1Char('\n'), QStringLiteral(" | "));
}
} // namespace kiosk
