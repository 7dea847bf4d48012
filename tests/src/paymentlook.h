// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "parkomatsettings.h"
#include "support/handlerbench.h"

#include <QJsonDocument>
#include <QMap>

/// What a check of the cash service was answered with, and what the plugin makes of it.
struct CheckAnswer
{
    const char *name;
    QByteArray body;
    QString totalCharge;
    QString startDate;
    QString startTime;
    QString uin;

    /// This payment's.
    [[nodiscard]] static CheckAnswer own()
    {
        return {"own",
                "<Response Operation=\"ParkingCheckResponse\" ResultCode=\"1\"><SessionId>uin-own</SessionId>"
                "<StartTime>2024-03-07T11:35:09</StartTime><TotalCharge>15000</TotalCharge></Response>",
                QStringLiteral("150.00"),
                QStringLiteral("2024-03-07"),
                QStringLiteral("11:35:09"),
                QStringLiteral("uin-own")};
    }
    /// That of the payment before.
    [[nodiscard]] static CheckAnswer late()
    {
        return {"late",
                "<Response Operation=\"ParkingCheckResponse\" ResultCode=\"1\"><SessionId>uin-late</SessionId>"
                "<StartTime>2024-03-06T08:00:00</StartTime><TotalCharge>9900</TotalCharge></Response>",
                QStringLiteral("99.00"),
                QStringLiteral("2024-03-06"),
                QStringLiteral("08:00:00"),
                QStringLiteral("uin-late")};
    }
};

/// A card of the matrix: how its rows name it, and what is on it.
struct NamedCard
{
    const char *name;
    QString uid;
    QString number;

    [[nodiscard]] static QList<NamedCard> all()
    {
        return {{"A", QStringLiteral("305419896"), QStringLiteral("0000000001")},
                {"B", QStringLiteral("268435463"), QStringLiteral("0000000002")},
                // The UID is the one of the card that was read before.
                {"777", QStringLiteral("305419896"), QStringLiteral("777")}};
    }
    [[nodiscard]] QVariantMap data() const { return HandlerBench::card(uid, number); }
};

/// What is seen of a payment, in the words of data/handler-matrix.txt.
namespace PaymentLook {
[[nodiscard]] inline QString viewOf(const FormViewer &viewer)
{
    static const QMap<QString, QString> names = {
        {QStringLiteral("Приложите парковочную карту"), QStringLiteral("prompt")},
        {QStringLiteral("Введите номер карты"), QStringLiteral("card number")},
        {QStringLiteral("Введите UID карты"), QStringLiteral("card UID")},
        {QStringLiteral("Проверка информации, подождите..."), QStringLiteral("checking")},
        {QStringLiteral("Выполняется подтверждение операции..."), QStringLiteral("confirming")},
        {QStringLiteral("Все данные будут потеряны. Продолжить отмену платежа?"), QStringLiteral("question")}};
    const QString view = viewer.currentView();
    if (view.isEmpty())
        return QStringLiteral("waiting page");
    if (view == QLatin1String(PluginBaseFormViewer::PAY_DETAIL_VIEW))
        return QStringLiteral("details");
    const bool isInput = view == QLatin1String("inputView");
    const auto *text =
        viewer.getUi(view)->findChild<QLabel *>(isInput ? QStringLiteral("inputLabel") : QStringLiteral("messageText"));
    return text != nullptr ? names.value(text->text(), text->text()) : QStringLiteral("a view without a text");
}

[[nodiscard]] inline QString screen(const HandlerBench &bench)
{
    if (!bench.hasForm())
        return QStringLiteral("none");
    const QString form = viewOf(*bench.form());
    return bench.topViewer() == bench.form() ? form : viewOf(*bench.topViewer()) + QStringLiteral(" over ") + form;
}

/// "A own"; empty for a session without data; all of it where it is none of the plugin's.
[[nodiscard]] inline QString heldBy(const SessionManager &session)
{
    const QVariantMap data = session.pluginsData();
    for (const NamedCard &card : NamedCard::all()) {
        for (const CheckAnswer &answer : {CheckAnswer::own(), CheckAnswer::late()}) {
            const QVariantMap parcomatData = {{QStringLiteral("cardData"), card.data()},
                                              {QStringLiteral("totalCharge"), answer.totalCharge}};
            if (data == QVariantMap{{QStringLiteral("parcomatData"), parcomatData}})
                return QLatin1String(card.name) + QLatin1Char(' ') + QLatin1String(answer.name);
        }
    }
    return data.isEmpty() ? QString() : QString::fromUtf8(QJsonDocument::fromVariant(data).toJson());
}

/// The same for the provider's parameters, of which all must tell the same.
[[nodiscard]] inline QString heldBy(const Provider &provider)
{
    QStringList values;
    for (const ProviderParameter &parameter : provider.parameters())
        values.append(parameter.value());
    const ParkomatSettings settings;
    for (const NamedCard &card : NamedCard::all()) {
        for (const CheckAnswer &answer : {CheckAnswer::own(), CheckAnswer::late()}) {
            if (values == QStringList{card.number, answer.totalCharge, settings.termId(), settings.parkingId(),
                                      answer.startDate, answer.startTime, answer.uin})
                return QLatin1String(card.name) + QLatin1Char(' ') + QLatin1String(answer.name);
        }
    }
    return values.join(QString()).isEmpty() ? QString() : values.join(QLatin1Char(','));
}

/// Either may be null.
[[nodiscard]] inline QString held(const SessionManager *session, const Provider *provider)
{
    const QString bySession = session != nullptr ? heldBy(*session) : QString();
    const QString byProvider = provider != nullptr ? heldBy(*provider) : QString();
    if (bySession == byProvider)
        return bySession;
    QStringList all;
    if (!bySession.isEmpty())
        all.append(QStringLiteral("session ") + bySession);
    if (!byProvider.isEmpty())
        all.append(QStringLiteral("provider ") + byProvider);
    return all.join(QStringLiteral(", "));
}

/// "check A": a request to the cash service, and the card it is about.
[[nodiscard]] inline QString sent(const RawRequest &request)
{
    QString all = request.line().contains("/ParkInfoPay ") ? QStringLiteral("pay") : QStringLiteral("check");
    for (const NamedCard &card : NamedCard::all()) {
        if (request.body.contains("<CardId>" + card.number.toUtf8() + '<'))
            all.append(QLatin1Char(' ') + QLatin1String(card.name));
    }
    return all;
}
} // namespace PaymentLook
