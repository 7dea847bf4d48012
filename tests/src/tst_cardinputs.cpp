// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "cardinputs.h"
#include "support/testcase.h"

#include <QCoreApplication>

namespace {
/// All that a parameter says, in this order: name, label, check label, value, keyboard's type and language.
QStringList fields(const ProviderParameter &parameter)
{
    return {parameter.name(),  parameter.label(),        parameter.checkLabel(),
            parameter.value(), parameter.keyboardType(), parameter.keyboardLanguage()};
}
} // namespace

/// What the customer is asked to type.
class CardInputsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void cardNumber_isTypedInDigits()
    {
        QCOMPARE(fields(CardInputs::cardNumber()),
                 QStringList({QStringLiteral("id"), QStringLiteral("Введите номер карты"), QString(), QString(),
                              QStringLiteral("number"), QString()}));
    }

    void cardUid_isTypedInLatinLettersAndDigits()
    {
        QCOMPARE(fields(CardInputs::cardUid()),
                 QStringList({QStringLiteral("uid"), QStringLiteral("Введите UID карты"), QString(), QString(),
                              QStringLiteral("full"), QStringLiteral("en")}));
    }

    void carNumber_isTypedInDigitsAndNamesTheCard()
    {
        QCOMPARE(fields(CardInputs::carNumber(QStringLiteral("0000123456"))),
                 QStringList({QStringLiteral("car_number"),
                              QStringLiteral("Номер карты: 0000123456. Введите номер автомобиля."), QString(),
                              QString(), QStringLiteral("number"), QString()}));
    }
};

TEST_MAIN(CardInputsTest)
#include "tst_cardinputs.moc"
