// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "benchmarkcase.h"
#include "peerparsers.h"

#include <QFile>
#include <QXmlStreamReader>

#include <memory>
#include <stdexcept>

namespace {
using Read = std::function<std::unique_ptr<BaseParkomatResponse>(const QByteArray &)>;

std::unique_ptr<BaseParkomatResponse> readAndLog(const QByteArray &body)
{
    return std::unique_ptr<BaseParkomatResponse>(BaseParkomatResponse::parse(body));
}

std::unique_ptr<BaseParkomatResponse> readAlone(const QByteArray &body)
{
    QXmlStreamReader reader(body);
    return std::unique_ptr<BaseParkomatResponse>(BaseParkomatResponse::parse(&reader));
}

QByteArray answer()
{
    QFile file(QStringLiteral(BENCHMARK_DATA "/parkingcheck-answer.xml"));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("the answer's file cannot be read");
    return file.readAll();
}

/// What the answer's file says, so that a way that leaves a field out cannot pass for a fast one.
ParkingCheckResponse expectedResponse()
{
    const auto time = [](const char *text) { return QDateTime::fromString(QLatin1String(text), Qt::ISODate); };
    ParkingCheckResponse expected;
    expected.setResultCode(1);
    expected.setSessionId(QStringLiteral("004224140509067001"));
    expected.setExternalSessionId(QStringLiteral("5f0c7a31-2be4-4d4e-9d0a-8f6c1f3b7e92"));
    expected.setParkingId(QStringLiteral("12"));
    expected.setStartTime(time("2024-03-07T11:35:09"));
    expected.setAnticipatedStopTime(time("2024-03-07T14:35:09"));
    expected.setLastChangeTime(time("2024-03-07T11:35:09"));
    expected.setTotalCharge(FixNumber(100, qint64(15000)));
    expected.setAmountSum(FixNumber(100, qint64(5000)));
    expected.setCanExtend(true);
    expected.setResponseTime(time("2024-03-07T14:05:11"));
    return expected;
}

BenchmarkCase parsingCase(const std::string &name, std::optional<int> bound, const Read &read)
{
    const auto prepare = [read]() -> BenchmarkCase::Operation {
        const QByteArray body = answer();
        const auto response = read(body);
        const auto *check = dynamic_cast<ParkingCheckResponse *>(response.get());
        if (check == nullptr || *check != expectedResponse() || !check->errorInfo().isEmpty())
            throw std::runtime_error("the answer was not read into the fields that it has");
        return [read, body] { (void)read(body); };
    };
    return {"parsing", name, bound, prepare};
}
} // namespace

BenchmarkCases parsingCases()
{
    return {parsingCase("parse-answer", 190'000, readAndLog),
            parsingCase("parse-answer-without-log", std::nullopt, readAlone),
            parsingCase("parse-answer-expat", std::nullopt, PeerParsers::readWithExpat),
            parsingCase("parse-answer-libxml2", std::nullopt, PeerParsers::readWithLibxml2),
            parsingCase("parse-answer-pugixml", std::nullopt, PeerParsers::readWithPugixml)};
}
