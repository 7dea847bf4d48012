// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "benchmarkcase.h"
#include "parkomatcarddata.h"
#include "terminal.h"

#include <QLoggingCategory>

#include <stdexcept>

namespace {
BenchmarkCase::Operation decode()
{
    const QVariantMap map = Terminal::cardMap();
    ParkomatCardData card;
    if (!card.parseMap(map) || !card.cardDt().isValid() || !card.discount() || card.cardData().size() != 32)
        throw std::runtime_error("the card was not decoded");
    return [map] {
        ParkomatCardData decoded;
        decoded.parseMap(map);
    };
}

BenchmarkCase::Operation decodeInSilence()
{
    QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
    return decode();
}
} // namespace

BenchmarkCases cardCases()
{
    return {{"card", "decode-card-without-log", 12'000, decodeInSilence},
            {"card", "decode-card", std::nullopt, decode}};
}
