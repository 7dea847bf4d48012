// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "packing.h"
#include "relayedexchange.h"
#include "support/testcase.h"

// See the other tests of packed answers: what zlib allocates in this process it allocates for Qt.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:inflateInit2_\n";
}

namespace {
using RelayedExchange::Parts;
using RelayedExchange::Row;
using Bytes = QByteArray;

const Bytes CHUNKS = QByteArrayLiteral("Transfer-Encoding: chunked");
} // namespace

/// The client and the cash service's own answers, which come in other statuses, framings and packings.
class ParkomatAccessManagerServiceAnswersTest : public TestCase
{
    Q_OBJECT

private:
    /// @param change the service's answer in its parts, to the bytes that the client gets.
    template <typename Change>
    static void add(const char *name, const ServiceKind &kind, const Change &change, const QString &seen,
                    Then then = Then::StayOpen, int pieceSize = 0)
    {
        const auto whole = [change, then, pieceSize](const Bytes &answer) {
            return RawAnswer{change(Parts(answer)), then, When::RequestRead, pieceSize};
        };
        QTest::addRow("%s: %s", kind.name, name) << Row{kind, whole, seen};
    }

    static void addStatuses(const ServiceKind &kind)
    {
        const auto row = [&kind](const Bytes &status, const QString &seen, const QList<Bytes> &headers = {}) {
            add(
                status, kind,
                [status, headers](const Parts &real) {
                    return real.as(status, real.body, headers + QList<Bytes>{Parts::lengthOf(real.body)});
                },
                seen);
        };
        row("201 Created", kind.seen);
        row("204 No Content", UNKNOWN);
        row("301 Moved Permanently", kind.seen, {"Location: /other"});
        row("302 Found", kind.seen, {"Location: /other"});
        row("401 Unauthorized", QStringLiteral("error 204"), {"WWW-Authenticate: Basic realm=\"r\""});
        row("404 Not Found", QStringLiteral("error 203"));
        row("407 Proxy", QStringLiteral("error 105"), {"Proxy-Authenticate: Basic realm=\"r\""});
        row("500 Internal Error", QStringLiteral("error 401"));
        row("502 Bad Gateway", QStringLiteral("error 499"));
        row("503 Unavailable", QStringLiteral("error 403"));
    }

    static void addFramings(const ServiceKind &kind)
    {
        const auto unchanged = [](const Parts &real) { return real.head + "\r\n\r\n" + real.body; };
        add("unchanged", kind, unchanged, kind.seen);
        add("in pieces of one byte", kind, unchanged, kind.seen, Then::StayOpen, 1);
        const auto lengths = [](const QList<Bytes> &all) {
            return [all](const Parts &real) { return real.as("200 OK", real.body, all); };
        };
        const Bytes large = "Content-Length: 100000";
        add(
            "length too short", kind,
            [](const Parts &real) { return real.as("200 OK", real.body, {Parts::lengthOf(real.cut())}); },
            kind.seenIfCut);
        add("length much too short", kind, lengths({"Content-Length: 20"}), UNKNOWN);
        add("length too long", kind, lengths({large}), CLOSED, Then::Close);
        add("length no number", kind, lengths({"Content-Length: abc"}), kind.seen, Then::Close);
        add("no length", kind, lengths({}), kind.seen, Then::Close);
        add(
            "two lengths", kind,
            [large](const Parts &real) {
                return real.as("200 OK", real.body, {Parts::lengthOf(real.body), large});
            },
            kind.seen);
        const auto inChunks = [](const QList<Bytes> &headers) {
            return [headers](const Parts &real) { return real.as("200 OK", chunked(real.body, 50), headers); };
        };
        add("chunks", kind, inChunks({CHUNKS}), kind.seen);
        add("chunks in pieces of one byte", kind, inChunks({CHUNKS}), kind.seen, Then::StayOpen, 1);
        add("chunks and a length", kind, inChunks({CHUNKS, large}), kind.seen);
    }

    static void addBodies(const ServiceKind &kind)
    {
        const Bytes gzip = "Content-Encoding: gzip";
        add(
            "gzip", kind, [gzip](const Parts &real) { return real.with(gzipped(real.body), {gzip}); }, kind.seen);
        add(
            "gzip in pieces of one byte", kind,
            [gzip](const Parts &real) { return real.with(gzipped(real.body), {gzip}); }, kind.seen, Then::StayOpen, 1);
        add(
            "gzip in chunks", kind,
            [gzip](const Parts &real) {
                return real.as("200 OK", chunked(gzipped(real.body), 9), {gzip, CHUNKS});
            },
            kind.seen);
        add(
            "gzip that is none", kind, [gzip](const Parts &real) { return real.with(real.body, {gzip}); },
            QStringLiteral("error 399 Data corrupted"));
        add(
            "deflate", kind,
            [](const Parts &real) { return real.with(deflated(real.body), {"Content-Encoding: deflate"}); }, kind.seen);
        add(
            "empty", kind, [](const Parts &real) { return real.with({}); }, UNKNOWN);
    }

private Q_SLOTS:
    void answer_onItsWay_givesOneSignal_data()
    {
        QTest::addColumn<Row>("row");
        for (const ServiceKind &kind : SERVICE_KINDS) {
            addStatuses(kind);
            addFramings(kind);
            addBodies(kind);
        }
    }

    void answer_onItsWay_givesOneSignal()
    {
        QFETCH(RelayedExchange::Row, row);
        RelayedExchange::verify(row);
    }

    void answer_of64MiB_isReadWhole_data()
    {
        QTest::addColumn<Row>("row");
        const auto inflated = [](const Parts &real) {
            constexpr int size = 64 * 1024 * 1024;
            QByteArray body = real.body;
            // Ahead of what is read: who stops before the end sees less.
            body.insert(body.indexOf("<Response"), QByteArray(size - body.size(), ' '));
            return real.with(body);
        };
        for (const ServiceKind &kind : SERVICE_KINDS)
            add("64 MiB", kind, inflated, kind.seen);
    }

    void answer_of64MiB_isReadWhole()
    {
        QFETCH(RelayedExchange::Row, row);
        RelayedExchange::verify(row);
    }
};

TEST_MAIN(ParkomatAccessManagerServiceAnswersTest)
#include "tst_parkomataccessmanagerserviceanswers.moc"
