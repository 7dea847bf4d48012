// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/provider.h"
#include "core/sessionmanager.h"
#include "guiclient/messagewidgetcontroller.h"
#include "guiclient/pluginbaseformviewer.h"
#include "guiclient/pluginproviderparameterinputcontroller.h"

#include <QFile>

/// What the tests of this folder fill views with.
namespace Views {
inline ProviderParameter parameter(const char *name, const QString &label, const QString &value)
{
    ProviderParameter made;
    made.setName(QLatin1String(name));
    made.setLabel(label);
    made.setValue(value);
    return made;
}

inline ProviderParameter cardNumber()
{
    ProviderParameter made = parameter("id", QStringLiteral("Введите номер карты"), {});
    made.setKeyboardType(QStringLiteral("number"));
    return made;
}

inline ProviderParameter cardUid()
{
    ProviderParameter made = parameter("uid", QStringLiteral("Введите UID карты"), {});
    made.setKeyboardType(QStringLiteral("full"));
    made.setKeyboardLanguage(QStringLiteral("en"));
    return made;
}

inline QList<ProviderParameter> filledParameters()
{
    return {parameter("card_num", QStringLiteral("Номер карты"), QStringLiteral("0412 7781 2203")),
            parameter("SummToPay", QStringLiteral("К оплате"), QStringLiteral("150.00")),
            parameter("TermNo", QStringLiteral("Терминал"), QStringLiteral("15")),
            parameter("ParkNumber", QStringLiteral("Парковка"), QStringLiteral("7")),
            parameter("StartDate", QStringLiteral("Дата въезда"), QStringLiteral("2024-03-07")),
            parameter("StartTime", QStringLiteral("Время въезда"), QStringLiteral("11:35:09")),
            parameter("UIN", QStringLiteral("Номер операции"), QStringLiteral("8a0f2c77-15"))};
}

/// A message view's file without the children named in @a missing.
inline QByteArray messageUi(const QList<QByteArray> &missing = {})
{
    QByteArray ui = "<ui version=\"4.0\"><class>M</class><widget class=\"QWidget\" name=\"M\">"
                    "<layout class=\"QVBoxLayout\" name=\"l\">";
    for (const QByteArray name : {"messageText", "countdown", "okButton", "cancelButton", "yesButton", "noButton"}) {
        if (missing.contains(name))
            continue;
        const QByteArray type = name.endsWith("Button") ? "QPushButton" : "QLabel";
        ui += "<item><widget class=\"" + type + "\" name=\"" + name + "\"/></item>";
    }
    return ui + "</layout></widget></ui>";
}
} // namespace Views
