// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "packing.h"
#include "support/testcase.h"
#include "wireexchange.h"

#include <QTextCodec>

#include <functional>

// When an answer that ends with the connection was there before Qt's thread had looked for it, Qt 5.15 takes its end
// for a break too: besides reporting it, it connects once more and writes the head of the same request, which is as far
// as it comes before the reply is gone. If the answer was packed, the state of its unpacking is lost. What zlib
// allocates in this process it allocates for Qt.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:inflateInit2_\n";
}

namespace {
using WireExchange::addColumns;
using WireExchange::addRow;
using WireExchange::Kind;
using WireExchange::KINDS;

QByteArray encoded(const char *codec, const QString &text)
{
    return QTextCodec::codecForName(codec)->fromUnicode(text);
}
} // namespace

/// The client and whole answers of every kind: states, framings, bodies.
class ParkomatAccessManagerAnswersTest : public TestCase
{
    Q_OBJECT

private:
    static void addStatus(const QByteArray &status, const QString &seenOfNothing,
                          const std::function<QString(const Kind &)> &seen)
    {
        const QByteArray name = status.left(3);
        for (const Kind &kind : KINDS) {
            kind.addAnswer(name + " with a body", RawAnswer::http(status, kind.body), seen(kind));
            kind.addAnswer(name + " with a body and a location",
                           RawAnswer::http(status, kind.body, {"Location: /api/ParkingCheck"}), seen(kind));
        }
        addRow(name + " with a location", {RawAnswer::http(status, {}, {"Location: /other"})}, seenOfNothing);
    }

    static void addError(const QByteArray &status, const QList<QByteArray> &headers, const QString &seen)
    {
        for (const Kind &kind : KINDS)
            kind.addAnswer(status.left(4) + headers.value(0), RawAnswer::http(status, kind.body, headers), seen);
    }

    static void addLengths(const Kind &kind)
    {
        const QByteArray right = "Content-Length: " + QByteArray::number(kind.body.size());
        const QByteArray cut = "Content-Length: " + QByteArray::number(kind.cut().size());
        const QByteArray large = "Content-Length: 1000";
        const QByteArray chunks = "Transfer-Encoding: chunked";
        const auto bytes = [](const QList<QByteArray> &headers, const QByteArray &body) {
            return "HTTP/1.1 200 OK\r\n" + headers.join("\r\n") + "\r\n\r\n" + body;
        };
        const auto row = [&](const char *name, const QList<QByteArray> &headers, const QString &seen) {
            kind.addRow(name, {bytes(headers, kind.body), Then::Close}, seen);
        };
        // Cut behind the root's start tag, an answer is one; cut before, it is none.
        kind.addAnswer("length too short", bytes({cut}, kind.body), kind.seenIfCut);
        kind.addAnswer("length much too short", bytes({"Content-Length: 20"}, kind.body), UNKNOWN);
        row("length too long", {large}, CLOSED);
        row("length negative", {"Content-Length: -5"}, kind.seen);
        row("length no number", {"Content-Length: abc"}, kind.seen);
        row("length beyond 64 bits", {"Content-Length: 99999999999999999999"}, kind.seen);
        // Of two lengths the first one counts, and chunks count more than any.
        row("two lengths, the first one right", {right, cut}, kind.seen);
        row("two lengths, the first one too short", {cut, right}, kind.seenIfCut);
        row("two lengths, the first one too long", {large, right}, CLOSED);
        const QByteArray inChunks = chunked(kind.body, 7);
        for (const QByteArray &length : {cut, large}) {
            kind.addAnswer(length + ", then chunks", bytes({length, chunks}, inChunks), kind.seen);
            kind.addAnswer("chunks, then " + length, bytes({chunks, length}, inChunks), kind.seen);
        }
    }

    static void addChunks(const Kind &kind)
    {
        const QByteArray &body = kind.body;
        kind.addAnswer("chunks", CHUNKED_HEAD + chunked(body, 7), kind.seen);
        kind.addAnswer("one chunk", CHUNKED_HEAD + chunked(body, 4096), kind.seen);
        kind.addAnswer("chunks with a trailer", CHUNKED_HEAD + chunked(body, 7).chopped(2) + "A: b\r\n\r\n", kind.seen);
        kind.addRow("chunks in pieces", {CHUNKED_HEAD + chunked(body, 50), Then::StayOpen, When::RequestRead, 1},
                    kind.seen);
        kind.addAnswer("garbage for a chunk", CHUNKED_HEAD + "xyz\r\n" + body, UNKNOWN);
    }

    static void addFramings(const Kind &kind)
    {
        const QByteArray good = RawAnswer::http("200 OK", kind.body);
        kind.addAnswer("bytes behind the answer", good + "surplus", kind.seen);
        kind.addRow("pieces of one byte", {good, Then::StayOpen, When::RequestRead, 1}, kind.seen);
        kind.addRow("before the request", {good, Then::StayOpen, When::Connected}, kind.seen);
        kind.addAnswer("go on, then the answer", "HTTP/1.1 100 Continue\r\n\r\n" + good, kind.seen);
        kind.addAnswer("an empty line first", "\r\n" + good, kind.seen);
        kind.addAnswer("bare line feeds", QByteArray(good).replace("\r\n", "\n"), kind.seen);
        kind.addAnswer("no reason", RawAnswer::http("200", kind.body), kind.seen);
        kind.addAnswer("a large head", RawAnswer::http("200 OK", kind.body, {"X: " + QByteArray(60'000, 'x')}),
                       kind.seen);
        kind.addRow("another protocol's name", {QByteArray(good).replace("HTTP/1.1", "ICY")}, CLOSED, SENT_AGAIN);
    }

    static void addPackings(const Kind &kind)
    {
        const QList<QByteArray> gzip = {"Content-Encoding: gzip"};
        const QByteArray packed = gzipped(kind.body);
        const QString corrupted = QStringLiteral("error 399 Data corrupted");
        const auto row = [&kind](const char *name, const QByteArray &body, const QString &seen,
                                 const QList<QByteArray> &headers) {
            kind.addAnswer(name, RawAnswer::http("200 OK", body, headers), seen);
        };
        row("gzip", packed, kind.seen, gzip);
        kind.addAnswer("gzip in chunks",
                       QByteArray(CHUNKED_HEAD).replace("\r\n\r\n", "\r\nContent-Encoding: gzip\r\n\r\n") +
                           chunked(packed, 9),
                       kind.seen);
        kind.addRow("gzip in pieces of one byte",
                    {RawAnswer::http("200 OK", packed, gzip), Then::StayOpen, When::RequestRead, 1}, kind.seen);
        kind.addRow("gzip, ends with the connection",
                    {"HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n" + packed, Then::Close}, kind.seen);
        row("gzip that is none", kind.body, corrupted, gzip);
        row("gzip with a wrong checksum", packed.chopped(8) + "12345678", corrupted, gzip);
        row("deflate", deflated(kind.body), kind.seen, {"Content-Encoding: deflate"});
        row("an encoding that is not known", kind.body, kind.seen, {"Content-Encoding: br"});
    }

    static void addBody(const QByteArray &name, const QByteArray &body, const QString &seen,
                        const QList<QByteArray> &headers = {})
    {
        addRow(name, {RawAnswer::http("200 OK", body, headers)}, seen);
    }

    static void addEncodings(const QString &text, const QString &seen)
    {
        const auto row = [&seen](const QByteArray &name, const QByteArray &body, const QString &rowSeen,
                                 const QList<QByteArray> &headers = {}) {
            addBody(name + ": " + seen.toUtf8(), body, rowSeen, headers);
        };
        for (const char *codec : {"UTF-8", "windows-1251", "KOI8-R", "UTF-16"}) {
            const QString declaration = QStringLiteral("<?xml version=\"1.0\" encoding=\"%1\"?>");
            row(codec, encoded(codec, declaration.arg(QLatin1String(codec)) + text), seen);
        }
        row("byte order mark", "\xEF\xBB\xBF" + text.toUtf8(), seen);
        row("UTF-16 without a declaration", encoded("UTF-16", text), seen);
        // The declaration decides; what the head says does not count.
        const QList<QByteArray> charset = {"Content-Type: text/xml; charset=windows-1251"};
        row("charset in the head is another", text.toUtf8(), seen, charset);
        row("charset in the head alone", encoded("windows-1251", text), UNKNOWN, charset);
        row("encoding that nobody knows", "<?xml version=\"1.0\" encoding=\"x-none\"?>" + text.toUtf8(), UNKNOWN);
    }

private Q_SLOTS:
    void status_answer_givesOneSignal_data()
    {
        addColumns();
        // Nothing but the network stack's own judgement: what it calls no error is read.
        for (const char *status :
             {"200 OK", "201 Created", "202 Accepted", "300 Multiple Choices", "301 Moved Permanently", "302 Found",
              "303 See Other", "305 Use Proxy", "307 Temporary Redirect", "308 Permanent Redirect"})
            addStatus(status, UNKNOWN, [](const Kind &kind) { return kind.seen; });
        // These two never have a body.
        for (const char *status : {"204 No Content", "304 Not Modified"})
            addStatus(status, UNKNOWN, [](const Kind &) { return UNKNOWN; });
        const QList<QPair<int, QByteArray>> failures = {{302, "400 Bad Request"},     {299, "402 Payment Required"},
                                                        {201, "403 Forbidden"},       {203, "404 Not Found"},
                                                        {202, "405 Not Allowed"},     {299, "408 Request Timeout"},
                                                        {206, "409 Conflict"},        {207, "410 Gone"},
                                                        {299, "413 Too Large"},       {302, "418 Teapot"},
                                                        {299, "429 Too Many"},        {401, "500 Internal Error"},
                                                        {402, "501 Not Implemented"}, {499, "502 Bad Gateway"},
                                                        {403, "503 Unavailable"},     {499, "504 Gateway Timeout"},
                                                        {499, "599 Whatever"}};
        for (const auto &[code, status] : failures) {
            const QString seen = QStringLiteral("error %1 Error transferring %2 - server replied: %3")
                                     .arg(code)
                                     .arg(QStringLiteral("%1"), QString::fromLatin1(status.mid(4)));
            addStatus(status, seen, [&seen](const Kind &) { return seen; });
        }
        for (const char *challenge :
             {"X: y", "WWW-Authenticate: Basic realm=\"r\"", "WWW-Authenticate: Digest realm=\"r\", nonce=\"n\"",
              "WWW-Authenticate: Unheard-Of"})
            addError("401 Unauthorized", {challenge}, QStringLiteral("error 204 Host requires authentication"));
        for (const char *challenge :
             {"X: y", "Proxy-Authenticate: Basic realm=\"r\"", "Proxy-Authenticate: Digest realm=\"r\", nonce=\"n\"",
              "Proxy-Authenticate: Unheard-Of"})
            addError("407 without a proxy", {challenge}, QStringLiteral("error 105 Proxy requires authentication"));
    }

    void status_answer_givesOneSignal() { WireExchange::verify(); }

    void framing_answer_givesOneSignal_data()
    {
        addColumns();
        for (const Kind &kind : KINDS) {
            addLengths(kind);
            addChunks(kind);
            addFramings(kind);
        }
        addRow("length 0", {RawAnswer::http("200 OK", {})}, UNKNOWN);
        addRow("no chunk", {CHUNKED_HEAD + chunked({}, 1)}, UNKNOWN);
        addRow("a chunk too large for a number", {CHUNKED_HEAD + "ffffffffffffffffff\r\nabc", Then::Close}, UNKNOWN);
    }

    void framing_answer_givesOneSignal() { WireExchange::verify(); }

    void body_answer_givesOneSignal_data()
    {
        addColumns();
        for (const Kind &kind : KINDS) {
            kind.addAnswer("alone", RawAnswer::http("200 OK", kind.body), kind.seen);
            addPackings(kind);
        }
        addBody("a page", "<html><body>It works!</body></html>", UNKNOWN);
        addBody("an envelope around it", "<Envelope><Body>" + Answers::PAY + "</Body></Envelope>", UNKNOWN);
        addBody("no XML", "OK", UNKNOWN);
        addBody("gzip of nothing", {}, UNKNOWN, {"Content-Encoding: gzip"});
        const QString text = QStringLiteral("<Response Operation=\"ParkInfoPayResponse\" ResultCode=\"%1\">"
                                            "<SessionId>счёт</SessionId><ErrorInfo>карта</ErrorInfo></Response>");
        const QList<QPair<QString, QString>> texts = {{text.arg(7), QStringLiteral("error 7 карта")},
                                                      {text.arg(1), QStringLiteral("pay счёт")}};
        for (const auto &[xml, seen] : texts)
            addEncodings(xml, seen);
    }

    void body_answer_givesOneSignal() { WireExchange::verify(); }
};

TEST_MAIN(ParkomatAccessManagerAnswersTest)
#include "tst_parkomataccessmanageranswers.moc"
