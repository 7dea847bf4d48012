// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "fuzztarget.h"
#include "parkinfopayresponse.h"
#include "parkingcheckresponse.h"

#include <QXmlStreamReader>

#include <memory>
#include <utility>

namespace {
using Answer = std::unique_ptr<BaseParkomatResponse>;

/// An answer of the other kind, or a body that is no answer, leaves a typed object as it was made.
template <typename Response>
void requireSame(const BaseParkomatResponse *parsed, const Response &typed)
{
    const auto *expected = dynamic_cast<const Response *>(parsed);
    FUZZ_REQUIRE(typed == (expected != nullptr ? *expected : Response()));
    FUZZ_REQUIRE(typed.errorInfo() == (expected != nullptr ? expected->errorInfo() : QString()));
}

/// parse() gives what the typed classes read by themselves, and says success exactly when they do.
template <typename Response, typename Document>
void requireTypedAgree(const BaseParkomatResponse *parsed, const Document &document)
{
    const Response typed(document);
    requireSame(parsed, typed);
    QXmlStreamReader reader(document);
    Response read;
    const bool isSuccess = read.parseXml(&reader);
    FUZZ_REQUIRE(read == typed);
    FUZZ_REQUIRE(isSuccess == (dynamic_cast<const Response *>(parsed) != nullptr && parsed->resultCode() == 1));
}

template <typename Response>
void requireValue(const Response &response)
{
    Response copy(response);
    FUZZ_REQUIRE(copy == response);
    const Response moved(std::move(copy));
    FUZZ_REQUIRE(moved == response && moved.errorInfo() == response.errorInfo());
    Response assigned;
    assigned = Response(response);
    FUZZ_REQUIRE(assigned == response && !(assigned != response));
}

void requireSound(const BaseParkomatResponse *parsed)
{
    if (const auto *check = dynamic_cast<const ParkingCheckResponse *>(parsed)) {
        requireValue(*check);
        FUZZ_REQUIRE(check->totalCharge().scale() == 100 && check->amountSum().scale() == 100);
    } else if (const auto *pay = dynamic_cast<const ParkInfoPayResponse *>(parsed)) {
        requireValue(*pay);
    } else {
        FUZZ_REQUIRE(parsed == nullptr);
    }
}

template <typename Document>
void requireReadsSoundly(const Document &document)
{
    const Answer parsed(BaseParkomatResponse::parse(document));
    requireSound(parsed.get());
    requireTypedAgree<ParkingCheckResponse>(parsed.get(), document);
    requireTypedAgree<ParkInfoPayResponse>(parsed.get(), document);
}
} // namespace

/// A body of an answer, once as the bytes that came and once as text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray body = FuzzTarget::bytes(data, size);
    requireReadsSoundly(body);
    requireReadsSoundly(QString::fromUtf8(body));
    return 0;
}
