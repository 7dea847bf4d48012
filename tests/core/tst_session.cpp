// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/paypack.h"
#include "core/provider.h"
#include "core/sessionmanager.h"
#include "core/trelminfo.h"
#include "support/testcase.h"

#include <QPointer>
#include <QSignalSpy>

#include <functional>

namespace {
using Setter = std::function<void(ProviderParameter &, const QString &)>;

/// All of a parameter's fields, in the order of its getters.
QStringList fields(const ProviderParameter &parameter)
{
    return {parameter.name(),  parameter.label(),        parameter.checkLabel(),
            parameter.value(), parameter.keyboardType(), parameter.keyboardLanguage()};
}

ProviderParameter named(const QString &name, const QString &value = {})
{
    ProviderParameter parameter;
    parameter.setName(name);
    parameter.setValue(value);
    return parameter;
}
} // namespace

Q_DECLARE_METATYPE(Setter)

/// What a terminal hands to plugins for one payment: the session, the payee, the pack, itself.
class SessionTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    // SessionManager

    void session_new_hasNoProjectAndNoData()
    {
        const SessionManager session;
        QVERIFY(session.activeProject() == nullptr);
        QVERIFY(session.pluginsData().isEmpty());
        QVERIFY(session.parent() == nullptr);
        QObject owner;
        QCOMPARE((new SessionManager(&owner))->parent(), &owner);
        QCOMPARE((new SessionManager(nullptr, &owner))->parent(), &owner);
    }

    void activeProject_set_isKeptAsItIs()
    {
        // It is handed on, never looked at.
        int place = 0;
        auto *project = reinterpret_cast<FormProject *>(&place);
        SessionManager session(project);
        QCOMPARE(session.activeProject(), project);
        session.setActiveProject(nullptr);
        QVERIFY(session.activeProject() == nullptr);
        session.setActiveProject(project);
        QCOMPARE(session.activeProject(), project);
    }

    void pluginsData_set_replacesAll()
    {
        SessionManager session;
        const QVariantMap inner{{QStringLiteral("cardData"), QVariantMap{{QStringLiteral("id"), QStringLiteral("1")}}}};
        session.setPluginsData({{QStringLiteral("18156"), inner}});
        QVariantMap data = session.pluginsData();
        QCOMPARE(data.value(QStringLiteral("18156")).toMap(), inner);
        // A copy: what is not written back does not count.
        data.clear();
        QCOMPARE(session.pluginsData().size(), 1);
        session.setPluginsData({{QStringLiteral("other"), 1}});
        QCOMPARE(session.pluginsData().keys(), QStringList(QStringLiteral("other")));
        session.setPluginsData({});
        QVERIFY(session.pluginsData().isEmpty());
    }

    void cardCommand_isHeardByName()
    {
        SessionManager session;
        const QSignalSpy commands(&session, SIGNAL(newParcomatCardDataCommand(QString, QVariantMap)));
        QVERIFY(commands.isValid());
        const QVariantMap card{{QStringLiteral("id"), QStringLiteral("305419896")}};
        Q_EMIT session.newParcomatCardDataCommand(QStringLiteral("c"), card);
        QCOMPARE(commands.size(), 1);
        QCOMPARE(commands.at(0).at(0).toString(), QStringLiteral("c"));
        QCOMPARE(commands.at(0).at(1).toMap(), card);
    }

    void hostObjects_deleted_leaveGuardsNull()
    {
        auto session = std::make_unique<SessionManager>();
        auto provider = std::make_unique<Provider>(1, QString());
        const QPointer<SessionManager> sessionGuard(session.get());
        const QPointer<Provider> providerGuard(provider.get());
        session.reset();
        provider.reset();
        QVERIFY(sessionGuard.isNull());
        QVERIFY(providerGuard.isNull());
    }

    // Provider

    void provider_new_isWhatItWasMadeWith()
    {
        QObject owner;
        const auto *provider = new Provider(9'007'199'254'740'993, QStringLiteral("Парковка"), &owner);
        QCOMPARE(provider->id(), 9'007'199'254'740'993);
        QCOMPARE(provider->name(), QStringLiteral("Парковка"));
        QVERIFY(provider->parameters().isEmpty());
        QCOMPARE(provider->parent(), &owner);
    }

    void parameters_set_replaceAllInOrderAndAreTold()
    {
        Provider provider(18156, QString());
        const QSignalSpy changes(&provider, &Provider::parametersChanged);
        provider.setParameters({named(QStringLiteral("b"), QStringLiteral("1")), named(QStringLiteral("a")),
                                named(QStringLiteral("b"), QStringLiteral("2"))});
        QList<ProviderParameter> parameters = provider.parameters();
        QCOMPARE(parameters.size(), 3);
        QCOMPARE(parameters.at(0).value() + parameters.at(2).value(), QStringLiteral("12"));
        QCOMPARE(parameters.at(1).name(), QStringLiteral("a"));
        // A copy, here too.
        parameters[0].setValue(QStringLiteral("x"));
        QCOMPARE(provider.parameters().at(0).value(), QStringLiteral("1"));
        provider.setParameters({});
        QVERIFY(provider.parameters().isEmpty());
        QCOMPARE(changes.size(), 2);
    }

    // ProviderParameter

    void parameter_new_isEmpty() { QCOMPARE(fields(ProviderParameter()).join(QString()), QString()); }

    void parameterField_set_changesThatOneAlone_data()
    {
        QTest::addColumn<Setter>("set");
        QTest::addColumn<int>("field");
        int field = 0;
        const auto row = [&](const char *name, const Setter &set) { QTest::newRow(name) << set << field++; };
        row("name", [](ProviderParameter &p, const QString &text) { p.setName(text); });
        row("label", [](ProviderParameter &p, const QString &text) { p.setLabel(text); });
        row("check label", [](ProviderParameter &p, const QString &text) { p.setCheckLabel(text); });
        row("value", [](ProviderParameter &p, const QString &text) { p.setValue(text); });
        row("keyboard type", [](ProviderParameter &p, const QString &text) { p.setKeyboardType(text); });
        row("keyboard language", [](ProviderParameter &p, const QString &text) { p.setKeyboardLanguage(text); });
    }

    void parameterField_set_changesThatOneAlone()
    {
        QFETCH(Setter, set);
        QFETCH(int, field);
        ProviderParameter parameter;
        set(parameter, QStringLiteral(" Знак\n"));
        QStringList expected{{}, {}, {}, {}, {}, {}};
        expected[field] = QStringLiteral(" Знак\n");
        QCOMPARE(fields(parameter), expected);
        const auto carried = QVariant::fromValue(parameter).value<ProviderParameter>();
        QCOMPARE(fields(carried), expected);
    }

    // PayPack

    void payPack_payments_standInTheOrderAdded()
    {
        PayPack pack;
        QVERIFY(pack.payments().isEmpty());
        for (const qint64 uid : {3, 1, 2, 1})
            pack.addPayment(Payment(uid, QDateTime(), 18156));
        QList<qint64> uids;
        const QList<Payment> payments = pack.payments();
        for (const Payment &payment : payments)
            uids.append(payment.uid());
        QCOMPARE(uids, QList<qint64>({3, 1, 2, 1}));
    }

    // TrelmInfo

    void trelmInfo_byDefault_isOfNoTerminal()
    {
        const TrelmInfo info;
        QCOMPARE(info.id, 0);
        QCOMPARE(info.name + info.address + info.phone, QString());
    }

    void trelmInfo_travelsInAVariant()
    {
        const TrelmInfo info{15, QStringLiteral("n"), QStringLiteral("a"), QStringLiteral("p")};
        const auto carried = QVariant::fromValue(info).value<TrelmInfo>();
        QCOMPARE(carried.id, 15);
        QCOMPARE(carried.name + carried.address + carried.phone, QStringLiteral("nap"));
    }
};

TEST_MAIN(SessionTest)
#include "tst_session.moc"
