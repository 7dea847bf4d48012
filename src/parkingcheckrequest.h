// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "parkomatcarddata.h"

#include <QString>

/// The request that asks the cash service what is owed for a parking card. Rendered and posted by the HTTP client.
class ParkingCheckRequest
{
public:
    explicit ParkingCheckRequest(const ParkomatCardData &card) : m_card(card) {}

    [[nodiscard]] ParkomatCardData card() const { return m_card; }
    void setCard(const ParkomatCardData &card) { m_card = card; }

    /// The whole document. Settings, session identifier and time are drawn afresh, so no two renderings are alike.
    [[nodiscard]] QString toXml() const;

    friend bool operator==(const ParkingCheckRequest &left, const ParkingCheckRequest &right)
    {
        return left.m_card == right.m_card;
    }
    friend bool operator!=(const ParkingCheckRequest &left, const ParkingCheckRequest &right)
    {
        return !(left == right);
    }

private:
    ParkomatCardData m_card;
};
