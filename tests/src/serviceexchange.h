// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "clientprobe.h"
#include "freshjournal.h"
#include "parkinfopayrequest.h"
#include "parkingcheckrequest.h"
#include "support/cashservice.h"
#include "wireexchange.h"

// What the tests of the client and the cash service's program have in common.

// As the card reader gives them, by the UID in decimal.
inline const QString DEMO_CARD = QStringLiteral("305419896");
inline const QString BLOCKED_CARD = QStringLiteral("268435460");
inline const QString MAINTENANCE_CARD = QStringLiteral("268435461");

inline ParkomatCardData cardOf(const QString &uid)
{
    return ParkomatCardData(QVariant(QVariantMap{{QStringLiteral("id"), uid},
                                                 {QStringLiteral("cardId"), QStringLiteral("0000123456")},
                                                 {QStringLiteral("pdata"), QString(32, QLatin1Char('0'))}}));
}

inline ParkingCheckRequest checkOf(const QString &uid)
{
    return ParkingCheckRequest(cardOf(uid));
}

inline ParkInfoPayRequest paymentOf(const QString &uid, qint64 hundredths = 15'000)
{
    Payment pay(70001, QDateTime::currentDateTime(), 18156);
    pay.setSumm(FixNumber(100, hundredths));
    return ParkInfoPayRequest(cardOf(uid), pay, FixNumber(100, qint64(15'000)));
}

/// Without the session's identifier, which nobody can know beforehand.
inline QString withoutSession(const QString &seen)
{
    const QStringList words = seen.split(QLatin1Char(' '));
    if (words.constFirst() == QLatin1String("pay"))
        return words.constLast().isEmpty() ? QStringLiteral("pay, no session") : words.constFirst();
    return words.constFirst() == QLatin1String("check") ? words.constFirst() + QLatin1Char(' ') + words.constLast()
                                                        : seen;
}

/// The seeded car park's answer of each kind: whatever happens to it on its way is tried with each.
struct ServiceKind
{
    const char *name;
    QString card;
    bool isPayment;
    QString seen;
    /// What is seen of an answer that breaks off in the first child's start tag.
    QString seenIfCut;

    [[nodiscard]] QString operation() const
    {
        return isPayment ? QStringLiteral("ParkInfoPay") : QStringLiteral("ParkingCheck");
    }
    /// Whether the service keeps it, whatever the client hears of it.
    [[nodiscard]] bool isRegistered() const { return seen == QLatin1String("pay"); }
};
inline const ServiceKind CHECK_KIND = {"check", DEMO_CARD, false, QStringLiteral("check 150.00"),
                                       QStringLiteral("check 0.00")};
inline const ServiceKind PAY_KIND = {"pay", DEMO_CARD, true, QStringLiteral("pay"), QStringLiteral("pay, no session")};
inline const QList<ServiceKind> SERVICE_KINDS = {CHECK_KIND,
                                                 PAY_KIND,
                                                 {"refused", MAINTENANCE_CARD, true,
                                                  QStringLiteral("error 5 Сервис временно недоступен"),
                                                  QStringLiteral("error 5")}};

/// One exchange of a client with the service, or what stands in its place: it must end with one signal, after which
/// nothing of it is left, and the journal has advanced if it was a registered payment.
class ServiceExchange
{
public:
    explicit ServiceExchange(const ServiceKind &kind) : m_probe(m_client)
    {
        FreshJournal::make();
        if (kind.isPayment)
            m_client.postData(paymentOf(kind.card));
        else
            m_client.postData(checkOf(kind.card));
    }

    /// @param expected what is seen, without the session's identifier, or how it begins.
    void verify(const QString &expected)
    {
        // Half a minute is little for a large answer on a machine that has other things to do as well.
        constexpr int limitMs = 240'000;
        waitUntil([this] { return !m_probe.seen().isEmpty() && repliesOf(m_client) == 0; }, limitMs);
        QCOMPARE(m_probe.seen().size(), 1);
        const QString seen = withoutSession(m_probe.seen().constFirst());
        QVERIFY2(seen == expected || seen.startsWith(expected + QLatin1Char(' ')), qPrintable(seen));
        verifyJournal(seen);
        MessageLog::drop();
    }

private:
    ParkomatAccessManager m_client;
    ClientProbe m_probe;
};

Q_DECLARE_METATYPE(ServiceKind)
