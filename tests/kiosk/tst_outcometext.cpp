// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/outcometext.h"

#include "kiosk/looks/samples.h"
#include "support/testcase.h"
#include "window/amounttext.h"

namespace OutcomeText = kiosk::OutcomeText;
using kiosk::Outcome;

/// A payment's end in words: what is known, what is not, and what the customer is to do.
class OutcomeTextTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void texts_ofAnOutcome_sayWhatIsKnown_data()
    {
        QTest::addColumn<Outcome>("outcome");
        QTest::addColumn<QString>("cash");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("explanation");
        QTest::addColumn<QString>("advice");
        QTest::addColumn<bool>("isSettled");
        const QString unknown =
            QStringLiteral("Подтверждение не получено: деньги приняты, но записала ли парковка оплату — неизвестно.");
        const QString writeDown = QStringLiteral("Не платите второй раз. Запишите номер платежа и позвоните: 112");
        const QString partUnknown =
            QStringLiteral("Подтверждение не получено: принята часть суммы, но записала ли её парковка — неизвестно.");
        const QString payNoMore = QStringLiteral("Пока больше не платите: остаток вам назовут. Запишите номер платежа "
                                                 "и позвоните: 112");
        QTest::newRow("confirmed") << Outcome::Confirmed << "150.00"
                                   << "Парковка оплачена"
                                   << ""
                                   << "Можно выезжать. Счастливого пути!" << true;
        QTest::newRow("confirmed, with change")
            << Outcome::Confirmed << "200.00"
            << "Парковка оплачена"
            << ""
            << "Терминал сдачу не выдаёт. Её вернут: запишите номер платежа и позвоните: 112" << true;
        QTest::newRow("confirmed in part") << Outcome::Confirmed << "100.00"
                                           << "Оплачено частично"
                                           << "Оплата записана, но внесена не вся сумма."
                                           << "Доплатите остаток до выезда: начните оплату ещё раз." << false;
        QTest::newRow("unconfirmed") << Outcome::Unconfirmed << "150.00"
                                     << "Оплата не подтверждена" << unknown << writeDown << false;
        QTest::newRow("unconfirmed in part") << Outcome::Unconfirmed << "100.00"
                                             << "Оплата не подтверждена" << partUnknown << payNoMore << false;
        QTest::newRow("interrupted") << Outcome::Interrupted << "100.00"
                                     << "Платёж прерван"
                                     << "Терминал остановился, когда принимал деньги. Парковке они не переведены."
                                     << "Внесённые деньги вернут: запишите номер платежа и позвоните: 112" << false;
        QTest::newRow("committing") << Outcome::Committing << "150.00"
                                    << "Подтверждается"
                                    << ""
                                    << "" << false;
        QTest::newRow("open") << Outcome::Open << "150.00"
                              << "Принимаются деньги"
                              << ""
                              << "" << false;
    }

    void texts_ofAnOutcome_sayWhatIsKnown()
    {
        QFETCH(const Outcome, outcome);
        QFETCH(const QString, cash);
        const kiosk::LedgerEntry payment = Samples::payment(outcome, QStringLiteral("150.00"), cash);
        QTEST(OutcomeText::title(payment), "title");
        QTEST(OutcomeText::explanation(payment), "explanation");
        QTEST(OutcomeText::advice(payment, QStringLiteral("112")), "advice");
        QTEST(OutcomeText::isSettled(payment), "isSettled");
    }

    void texts_whereNothingWasDue_tellOfTheMoneyAlone()
    {
        const kiosk::LedgerEntry payment =
            Samples::payment(Outcome::Confirmed, QStringLiteral("0.00"), QStringLiteral("100.00"));
        QCOMPARE(OutcomeText::title(payment), QStringLiteral("Оплачивать нечего"));
        QCOMPARE(OutcomeText::advice(payment, QStringLiteral("112")),
                 QStringLiteral("Внесённые деньги вернут: запишите номер платежа и позвоните: 112"));
        QCOMPARE(OutcomeText::changeCaption(payment), QStringLiteral("К возврату"));
    }

    void changeCaption_ofMoneyThatWasNeverSent_isToBeGivenBack()
    {
        kiosk::LedgerEntry payment;
        payment.outcome = Outcome::Confirmed;
        payment.total = FixNumber(100, 15000);
        QCOMPARE(OutcomeText::changeCaption(payment), QStringLiteral("Сдача"));
        payment.outcome = Outcome::Interrupted;
        QCOMPARE(OutcomeText::changeCaption(payment), QStringLiteral("К возврату"));
    }

    void remainderCaption_whereThePayeeMayHaveNothing_tellsOfThePaidInAlone_data()
    {
        QTest::addColumn<Outcome>("outcome");
        QTest::addColumn<QString>("caption");
        QTest::newRow("confirmed") << Outcome::Confirmed << "Осталось";
        QTest::newRow("committing") << Outcome::Committing << "Не внесено";
        QTest::newRow("unconfirmed") << Outcome::Unconfirmed << "Не внесено";
    }

    void remainderCaption_whereThePayeeMayHaveNothing_tellsOfThePaidInAlone()
    {
        QFETCH(const Outcome, outcome);
        kiosk::LedgerEntry payment;
        payment.outcome = outcome;
        QTEST(OutcomeText::remainderCaption(payment), "caption");
    }

    void call_withAndWithoutANumber_saysWhomToAsk()
    {
        QCOMPARE(OutcomeText::call({}), QStringLiteral("обратитесь к сотруднику парковки"));
        // It does not break into two lines.
        QCOMPARE(OutcomeText::call(QStringLiteral("8 800 000-42")),
                 QStringLiteral("позвоните: 8\u00A0800\u00A0000-\u206042"));
    }

    void amountText_isTheAmountAsTheDetailsShowIt()
    {
        QCOMPARE(kiosk::amountText(FixNumber(100, 15000), {}), QStringLiteral("150.00\u00A0руб."));
    }
};

TEST_MAIN(OutcomeTextTest)

#include "tst_outcometext.moc"
