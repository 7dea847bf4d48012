// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "checkrun.h"
#include "checkserviceprocess.h"
#include "checksituations.h"
#include "support/testcase.h"
#include "support/zone.h"

#include <map>

namespace {
/// What the check says of each breach behind "in:", by the rule that it breaks.
std::map<QString, QStringList> situationsByRule(const Outcome &outcome)
{
    const QString rule = QStringLiteral("breaks  ");
    const QString situation = QStringLiteral("        in:       ");
    std::map<QString, QStringList> situations;
    QString current;
    for (const QString &line : outcome.lines) {
        if (line.startsWith(rule))
            current = line.mid(rule.size());
        else if (line.startsWith(situation))
            situations[current].append(line.mid(situation.size()));
    }
    for (auto &[name, texts] : situations)
        texts.sort();
    return situations;
}
} // namespace

/// The check of other services notices each wrong request that a service takes, if it is the only one.
class CheckSituationsTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

private Q_SLOTS:
    void situation_thatIsTaken_isNoticedByItself_data()
    {
        QTest::addColumn<int>("index");
        const std::vector<Situations::Situation> situations = Situations::all();
        for (std::size_t i = 0; i < situations.size(); ++i)
            QTest::newRow((situations[i].rule + ": " + situations[i].text).c_str()) << static_cast<int>(i);
    }

    void situation_thatIsTaken_isNoticedByItself()
    {
        QFETCH(const int, index);
        const Situations::Situation situation = Situations::all().at(static_cast<std::size_t>(index));
        QStringList expected = {QString::fromStdString(situation.rule)};
        for (const std::string &rule : situation.alsoBroken)
            expected.append(QString::fromStdString(rule));
        expected.sort();

        const ServiceProcess real;
        const BrokenService service(real.origin(), ServiceBreaks::takes(situation.isIt));
        const Outcome outcome = check(optionsFor(service.url()));
        QCOMPARE(broken(outcome), expected);
        QCOMPARE(situationsByRule(outcome)[QString::fromStdString(situation.rule)],
                 QStringList(QString::fromStdString(situation.text)));
        QCOMPARE(outcome.status, 1);
    }

    /// A service that takes everything breaks all of them: none is tried that is not in the table.
    void situations_thatAreTried_areTheOnesOfTheTable()
    {
        std::map<QString, QStringList> expected;
        for (const Situations::Situation &situation : Situations::all())
            expected[QString::fromStdString(situation.rule)].append(QString::fromStdString(situation.text));
        const ServiceProcess real;
        const BrokenService service(real.origin(),
                                    [](const BrokenService::Post &post, const BrokenService::Forward &forward) {
                                        const BrokenService::Reply reply = forward(post);
                                        return ServiceBreaks::isSuccess(reply) ? reply : ServiceBreaks::success(post);
                                    });
        const std::map<QString, QStringList> found = situationsByRule(check(optionsFor(service.url())));
        for (auto &[rule, texts] : expected) {
            texts.sort();
            QCOMPARE(found.count(rule), std::size_t(1));
            QCOMPARE(found.at(rule).join(QLatin1Char('\n')), texts.join(QLatin1Char('\n')));
        }
    }
};

TEST_MAIN(CheckSituationsTest)
#include "tst_checksituations.moc"
