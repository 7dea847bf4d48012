// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "benchmarkcase.h"
#include "parkinfopayrequest.h"
#include "parkingcheckrequest.h"
#include "plainrequests.h"
#include "terminal.h"

#include <QRegularExpression>
#include <QTimeZone>

#include <stdexcept>

namespace {
using Render = std::function<QString()>;
/// Draws what a rendering needs, and returns the rendering.
using MakeRender = std::function<Render()>;

constexpr int RENDERING_BOUND = 180'000;

ParkomatCardData card()
{
    return ParkomatCardData(QVariant(Terminal::cardMap()));
}

Payment payment()
{
    Payment pay(70001, QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9)), 18156);
    pay.setSumm(FixNumber(100, qint64(15000)));
    return pay;
}

FixNumber totalCharge()
{
    return FixNumber(100, qint64(15000));
}

Render parkingCheck()
{
    return [request = ParkingCheckRequest(card())] { return request.toXml(); };
}

Render plainParkingCheck()
{
    return [card = card()] { return PlainRequests::parkingCheck(PlainRequests::drawHeader(card)); };
}

Render readyParkingCheck()
{
    return [header = PlainRequests::drawHeader(card())] { return PlainRequests::parkingCheck(header); };
}

Render parkInfoPay()
{
    return [request = ParkInfoPayRequest(card(), payment(), totalCharge())] { return request.toXml(); };
}

Render plainParkInfoPay()
{
    return [card = card(), payment = payment(), charge = totalCharge()] {
        return PlainRequests::parkInfoPay(PlainRequests::drawHeader(card), PlainRequests::drawPayment(payment, charge));
    };
}

Render readyParkInfoPay()
{
    return [header = PlainRequests::drawHeader(card()), texts = PlainRequests::drawPayment(payment(), totalCharge())] {
        return PlainRequests::parkInfoPay(header, texts);
    };
}

/// A text without its moment: two renderings may lie on two sides of a second.
QString timeless(QString text)
{
    const QRegularExpression moment(QStringLiteral("<SessionId>[0-9]+</SessionId>|<RequestTime>[-0-9]{10}T[:0-9]{8}"));
    return text.replace(moment, QString());
}

/// @param reference makes the text that this case's must be equal to.
BenchmarkCase renderingCase(const char *group, const char *name, std::optional<int> bound, const MakeRender &makeRender,
                            const MakeRender &reference)
{
    const auto prepare = [makeRender, reference]() -> BenchmarkCase::Operation {
        const Render render = makeRender();
        if (timeless(render()) != timeless(reference()()))
            throw std::runtime_error("two ways of rendering a request differ");
        return [render] { (void)render(); };
    };
    return {group, name, bound, prepare};
}

/// What the offset's text costs when it is not remembered: in the first request of each quarter of an hour.
BenchmarkCase::Operation askForOffset()
{
    return [] { (void)QTimeZone::systemTimeZone().displayName(QTimeZone::StandardTime, QTimeZone::OffsetName); };
}
} // namespace

BenchmarkCases renderingCases()
{
    return {
        renderingCase("ParkingCheck", "render-parkingcheck", RENDERING_BOUND, parkingCheck, plainParkingCheck),
        renderingCase("ParkingCheck", "render-parkingcheck-plain", std::nullopt, plainParkingCheck, parkingCheck),
        renderingCase("ParkingCheck", "render-parkingcheck-plain-ready", std::nullopt, readyParkingCheck, parkingCheck),
        renderingCase("ParkInfoPay", "render-parkinfopay", RENDERING_BOUND, parkInfoPay, plainParkInfoPay),
        renderingCase("ParkInfoPay", "render-parkinfopay-plain", std::nullopt, plainParkInfoPay, parkInfoPay),
        renderingCase("ParkInfoPay", "render-parkinfopay-plain-ready", std::nullopt, readyParkInfoPay, parkInfoPay),
        {"zone", "zone-offset-not-remembered", std::nullopt, askForOffset}};
}
