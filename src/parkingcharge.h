// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/fixnumber.h"
#include "parkingcheckresponse.h"
#include "parkomatcarddata.h"

#include <QString>
#include <QVariantMap>

#include <optional>

/// What a parking check found out: the card and the answer about it, as the host's form and session are told.
class ParkingCharge
{
public:
    /// What is left in the session for the confirmation. Keys that are missing there are an empty card and no amount.
    struct Kept
    {
        QVariantMap card;
        FixNumber total;
    };

    /// Both outlive this.
    ParkingCharge(const ParkomatCardData &card, const ParkingCheckResponse &response)
        : m_card(card), m_response(response)
    {}

    /// The value of the provider's parameter of that name, exact and case-sensitive; none where it has nothing to say.
    [[nodiscard]] std::optional<QString> parameterValue(const QString &name) const;

    /// Puts it into a session's data, in place of what an earlier check left there.
    void keepIn(QVariantMap &pluginsData) const;
    [[nodiscard]] static Kept keptIn(const QVariantMap &pluginsData);

private:
    const ParkomatCardData &m_card;
    const ParkingCheckResponse &m_response;
};
