// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "bareexchange.h"
#include "benchmarkcase.h"
#include "clientexchange.h"
#include "clientresponder.h"
#include "parkingcheckrequest.h"
#include "terminal.h"

#include <curl/curl.h>

#include <memory>
#include <stdexcept>

namespace {
using Operation = BenchmarkCase::Operation;

const std::string BARE = "exchange-bare";

ParkingCheckRequest request()
{
    return ParkingCheckRequest(ParkomatCardData(QVariant(Terminal::cardMap())));
}

/// A responder that the terminal's settings name.
std::shared_ptr<ClientResponder> configuredResponder()
{
    auto responder = std::make_shared<ClientResponder>();
    responder->configure();
    return responder;
}

[[noreturn]] void fail(const QString &what)
{
    throw std::runtime_error("the exchange failed: " + what.toStdString());
}

Operation fromText()
{
    return [responder = configuredResponder(), text = request().toXml()] {
        ParkomatAccessManager client;
        ClientExchange::run(client, text);
    };
}

Operation fromRequest()
{
    return [responder = configuredResponder(), request = request()] {
        ParkomatAccessManager client;
        ClientExchange::run(client, request);
    };
}

/// The same client again and again, as for the second request of a payment.
Operation nextFromText()
{
    const auto client = std::make_shared<ParkomatAccessManager>();
    const Operation operation = [responder = configuredResponder(), text = request().toXml(), client] {
        ClientExchange::run(*client, text);
    };
    operation();
    return operation;
}

Operation bare()
{
    const auto responder = configuredResponder();
    const BareExchange exchange(responder->port(), QStringLiteral("ParkingCheck"), request().toXml());
    return [responder, exchange] { exchange.run(); };
}

size_t append(const char *data, size_t size, size_t count, void *answer)
{
    static_cast<QByteArray *>(answer)->append(data, static_cast<int>(size * count));
    return size * count;
}

Operation curl()
{
    const auto responder = configuredResponder();
    const QByteArray url = "http://127.0.0.1:" + QByteArray::number(responder->port()) + "/api/ParkingCheck";
    const QByteArray body = request().toXml().toUtf8();
    const std::shared_ptr<curl_slist> headers(curl_slist_append(nullptr, "Content-Type: application/soap+xml"),
                                              curl_slist_free_all);
    return [responder, url, body, headers] {
        const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle(curl_easy_init(), curl_easy_cleanup);
        QByteArray answer;
        curl_easy_setopt(handle.get(), CURLOPT_URL, url.constData());
        curl_easy_setopt(handle.get(), CURLOPT_HTTPHEADER, headers.get());
        curl_easy_setopt(handle.get(), CURLOPT_POSTFIELDS, body.constData());
        curl_easy_setopt(handle.get(), CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
        curl_easy_setopt(handle.get(), CURLOPT_WRITEFUNCTION, append);
        curl_easy_setopt(handle.get(), CURLOPT_WRITEDATA, &answer);
        const CURLcode code = curl_easy_perform(handle.get());
        if (code != CURLE_OK || !answer.contains("ParkingCheckResponse"))
            fail(QString::fromUtf8(curl_easy_strerror(code)));
    };
}
} // namespace

BenchmarkCases clientCases()
{
    return {{"exchange", "exchange-from-text", std::nullopt, fromText, RatioBound{BARE, 1.6}},
            {"exchange", "exchange-from-request", std::nullopt, fromRequest, RatioBound{BARE, 1.9}},
            {"exchange", "exchange-next-from-text", std::nullopt, nextFromText, RatioBound{BARE, 1.6}},
            {"exchange", BARE, std::nullopt, bare, {}},
            {"exchange", "exchange-curl", std::nullopt, curl, {}}};
}
