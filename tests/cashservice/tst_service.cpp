// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "requests.h"
#include "runningservice.h"
#include "support/testcase.h"
#include "support/zone.h"

namespace {
cash::CarPark parkWith(cash::CardState demoCard)
{
    cash::CarPark park = cash::seededCarPark(NOW);
    park.cards.at(0x12345678).state = demoCard;
    return park;
}

/// A service without HTTP before it, which notes how long it would wait instead of waiting.
class DirectService
{
public:
    explicit DirectService(cash::Ledger &ledger, const cash::CarPark &park = cash::seededCarPark(NOW),
                           cash::Moment now = NOW)
        : m_service(park, ledger, cash::stoppedClock(now))
    {}

    void setFault(const std::string &rule) { m_service.faults().add(cash::faultFromRule(rule)); }
    QByteArray ask(const Requests::Values &values = {})
    {
        return answer(cash::Operation::ParkingCheck, Requests::parkingCheck(values));
    }
    QByteArray pay(const Requests::Values &values = {})
    {
        return answer(cash::Operation::ParkInfoPay, Requests::parkInfoPay(values));
    }
    QByteArray answer(cash::Operation operation, const QByteArray &body,
                      const std::string &contentType = cash::CONTENT_TYPE)
    {
        const auto wait = [this](std::chrono::milliseconds time) { m_waits.append(static_cast<int>(time.count())); };
        return QByteArray::fromStdString(m_service.answer({operation, contentType, body.toStdString()}, wait).body);
    }
    /// In milliseconds, of all answers so far.
    [[nodiscard]] QList<int> waits() const { return m_waits; }

private:
    cash::Service m_service;
    QList<int> m_waits;
};

Requests::Values forUid(std::uint32_t uid)
{
    return Requests::forCard(QByteArray::fromStdString(cash::wireUid(uid)));
}
} // namespace

/// How the service comes to its answer, with neither HTTP nor time in between.
class ServiceTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

    static void addStates()
    {
        using cash::CardState;
        QTest::addColumn<int>("state");
        for (const CardState state : {CardState::Paid, CardState::Blocked, CardState::Maintenance, CardState::Unknown,
                                      CardState::Malformed, CardState::Conflict})
            QTest::newRow(cash::stateName(state).c_str()) << static_cast<int>(state);
    }

    static DirectService withDemoCard(cash::Ledger &ledger, int state)
    {
        return DirectService(ledger, parkWith(static_cast<cash::CardState>(state)), NOW + cash::DAY);
    }

private Q_SLOTS:
    void payment_repeatedForACardThatIsRefusedByNow_isAnsweredTheSame_data() { addStates(); }

    void payment_repeatedForACardThatIsRefusedByNow_isAnsweredTheSame()
    {
        QFETCH(const int, state);
        cash::Ledger ledger(":memory:");
        const QByteArray first = DirectService(ledger).pay();
        QCOMPARE(resultCode(first), QByteArray("1"));
        DirectService later = withDemoCard(ledger, state);
        QCOMPARE(later.pay(), first);
        Requests::Values another;
        another.uin = "1188";
        QVERIFY(resultCode(later.pay(another)) != "1");
        QCOMPARE(ledger.payments().size(), std::size_t(1));
        QVERIFY(ledger.conflicts().empty());
    }

    void payment_ofAnotherAmountForACardThatIsRefusedByNow_isAConflict_data() { addStates(); }

    void payment_ofAnotherAmountForACardThatIsRefusedByNow_isAConflict()
    {
        QFETCH(const int, state);
        cash::Ledger ledger(":memory:");
        (void)DirectService(ledger).pay();
        Requests::Values values;
        values.amount = "14000";
        const QByteArray refused = withDemoCard(ledger, state).pay(values);
        QCOMPARE(resultCode(refused), QByteArray("6"));
        QCOMPARE(elementText(refused, "ErrorInfo"), QByteArray("Платёж уже зарегистрирован с другой суммой"));
        QCOMPARE(ledger.conflicts().size(), std::size_t(2));
        QCOMPARE(ledger.conflicts().back().outcome, std::string("other amount"));
    }

    void payment_thatDiffersUnderAKnownKey_saysInWhat_data()
    {
        QTest::addColumn<QByteArray>("cardUid");
        QTest::addColumn<QByteArray>("amount");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("outcome");
        const auto row = [](const char *name, const QByteArray &cardUid, const char *amount, const char *text,
                            const char *outcome) {
            QTest::newRow(name) << cardUid << QByteArray(amount) << QByteArray(text) << QByteArray(outcome);
        };
        const char otherCard[] = "Платёж уже зарегистрирован за другую карту";
        const char otherBoth[] = "Платёж уже зарегистрирован за другую карту и с другой суммой";
        row("amount", Requests::DEMO_CARD, "14000", "Платёж уже зарегистрирован с другой суммой", "other amount");
        row("card", "07000010", "15000", otherCard, "other card");
        row("card and amount", "07000010", "14000", otherBoth, "other card and amount");
        row("blocked card", "04000010", "15000", otherCard, "other card");
        row("unknown card", "EFBEADDE", "14000", otherBoth, "other card and amount");
        row("no card", "", "15000", otherCard, "other card");
    }

    void payment_thatDiffersUnderAKnownKey_saysInWhat()
    {
        QFETCH(const QByteArray, cardUid);
        QFETCH(const QByteArray, amount);
        QFETCH(const QByteArray, text);
        QFETCH(const QByteArray, outcome);
        cash::Ledger ledger(":memory:");
        DirectService service(ledger);
        const QByteArray first = service.pay();
        Requests::Values values = Requests::forCard(cardUid);
        values.amount = amount;
        const QByteArray refused = service.pay(values);
        QCOMPARE(resultCode(refused), QByteArray("6"));
        QCOMPARE(elementText(refused, "ErrorInfo"), text);
        QCOMPARE(ledger.payments().size(), std::size_t(1));
        QCOMPARE(ledger.conflicts().size(), std::size_t(2));
        QCOMPARE(QByteArray::fromStdString(ledger.conflicts().back().outcome), outcome);
        QCOMPARE(service.pay(), first);
    }

    void card_ofTheSeededPark_isWaitedForIfItIsTheSlowOne()
    {
        cash::Ledger ledger(":memory:");
        for (const auto &[uid, card] : cash::seededCarPark(NOW).cards) {
            DirectService service(ledger);
            (void)service.ask(forUid(uid));
            (void)service.pay(forUid(uid));
            QCOMPARE(service.waits(), uid == 0x10000008 ? QList<int>({5'000, 5'000}) : QList<int>());
        }
    }

    void fault_ofTheCard_takesTheOthersTime_data()
    {
        QTest::addColumn<QByteArray>("rule");
        QTest::addColumn<quint32>("asked");
        QTest::addColumn<QList<int>>("waits");
        QTest::newRow("the slow one's") << QByteArray("any:card=10000008") << quint32(0x12345678) << QList<int>{5'000};
        QTest::newRow("not the slow one's") << QByteArray("any:card=12345678") << quint32(0x10000008) << QList<int>();
    }

    void fault_ofTheCard_takesTheOthersTime()
    {
        QFETCH(const QByteArray, rule);
        QFETCH(const quint32, asked);
        QFETCH(const QList<int>, waits);
        cash::Ledger ledger(":memory:");
        DirectService service(ledger);
        service.setFault(rule.toStdString());
        (void)service.ask(forUid(asked));
        QCOMPARE(service.waits(), waits);
    }

    void fault_ofDelay_isWaitedForInItsStage()
    {
        cash::Ledger ledger(":memory:");
        DirectService service(ledger);
        service.setFault("any@after:delay=2s");
        service.setFault("any@before:delay=1s");
        (void)service.ask(forUid(0x10000008));
        QCOMPARE(service.waits(), QList<int>({1'000, 5'000, 2'000}));
    }

    void fault_ofTheCard_leavesABreachAlone_data()
    {
        QTest::addColumn<int>("operation");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("contentType");
        QTest::addColumn<QByteArray>("text");
        for (const cash::Operation operation : cash::OPERATIONS) {
            const std::string name = cash::operationName(operation);
            QTest::addRow("%s, garbage", name.c_str())
                << static_cast<int>(operation) << QByteArray("garbage") << QByteArray(cash::CONTENT_TYPE)
                << QByteArray("Неверный запрос: XML");
            QTest::addRow("%s, another type", name.c_str())
                << static_cast<int>(operation) << Requests::parkingCheck() << QByteArray("text/xml")
                << QByteArray("Неверный запрос: Content-Type");
        }
    }

    void fault_ofTheCard_leavesABreachAlone()
    {
        QFETCH(const int, operation);
        QFETCH(const QByteArray, body);
        QFETCH(const QByteArray, contentType);
        QFETCH(const QByteArray, text);
        const auto asked = static_cast<cash::Operation>(operation);
        cash::Ledger ledger(":memory:");
        DirectService service(ledger);
        service.setFault("any:card=10000009");
        const QByteArray answer = service.answer(asked, body, contentType.toStdString());
        QVERIFY(answer.contains("Operation=\"" + QByteArray::fromStdString(cash::operationName(asked)) + "Response\""));
        QCOMPARE(resultCode(answer), QByteArray("0"));
        QVERIFY(elementText(answer, "ErrorInfo").startsWith(text));
    }
};

TEST_MAIN(ServiceTest)
#include "tst_service.moc"
