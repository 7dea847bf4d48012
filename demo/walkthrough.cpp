// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/payment.h"
#include "core/terminalappsettings.h"
#include "exchange.h"
#include "extension/cryptedsettingsstorage.h"
#include "parkinfopayrequest.h"
#include "parkinfopayresponse.h"
#include "parkingcheckrequest.h"
#include "parkingcheckresponse.h"
#include "parkomatcarddata.h"
#include "parkomatdatastorage.h"
#include "parkomatsettings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QTextStream>
#include <QXmlStreamReader>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {
constexpr qint64 PROVIDER = 18156;

/// The journal's files get their names while the program is loaded, so the directory has to be known before that.
[[gnu::constructor(101)]] void workInADirectoryOfItsOwn()
{
    char path[] = "/tmp/walkthrough-XXXXXX";
    if (::mkdtemp(path) == nullptr || ::setenv("TERMINAL_WORK_DIR", path, 1) != 0) {
        std::perror("walkthrough: no work directory");
        std::exit(2);
    }
}

/// Prints what happens and counts what was checked.
class Narrator
{
public:
    Narrator() { m_out.setCodec("UTF-8"); }

    void section(const QString &title) { m_out << "\n== " << title << Qt::endl; }
    void line(const QString &text) { m_out << "   " << text << Qt::endl; }
    void text(const QString &lines)
    {
        for (const QString &one : lines.trimmed().split(QLatin1Char('\n')))
            line(one);
    }

    /// Prints a value and whether it is what it must be.
    void expect(const QString &what, const QString &actual, const QString &expected)
    {
        const bool holds = actual == expected;
        ++(holds ? m_held : m_broken);
        m_out << (holds ? "   ok   " : "   WRONG ") << what << ": " << actual;
        if (!holds)
            m_out << "  (must be " << expected << ')';
        m_out << Qt::endl;
    }
    void expect(const QString &what, bool holds)
    {
        const QString yes = QStringLiteral("yes");
        expect(what, holds ? yes : QStringLiteral("no"), yes);
    }

    /// @return the program's exit status.
    int result()
    {
        m_out << "\nRESULT: " << m_held << " of " << m_held + m_broken << " checks hold" << Qt::endl;
        return m_broken == 0 && m_held > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    }

private:
    QTextStream m_out{stdout, QIODevice::WriteOnly};
    int m_held = 0;
    int m_broken = 0;
};

/// What the system logs stands where it was logged, in the same stream.
void showLogLine(QtMsgType, const QMessageLogContext &context, const QString &message)
{
    QTextStream out(stdout, QIODevice::WriteOnly);
    out.setCodec("UTF-8");
    const QString source = QStringLiteral("   log %1: ").arg(QString::fromLatin1(context.category));
    for (const QString &line : message.trimmed().split(QLatin1Char('\n')))
        out << source << line << '\n';
}

/// A request as its receiver sees it: attributes of the root, and each element's text by its name.
QMap<QString, QString> readBack(const QString &xml)
{
    QMap<QString, QString> fields;
    QXmlStreamReader reader(xml.toUtf8());
    reader.readNextStartElement();
    for (const QXmlStreamAttribute &attribute : reader.attributes())
        fields.insert(QLatin1Char('@') + attribute.name().toString(), attribute.value().toString());
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::Characters && !reader.isWhitespace())
            fields.insert(fields.take(QStringLiteral("?")), reader.text().toString());
        else if (reader.isStartElement())
            fields.insert(QStringLiteral("?"), reader.name().toString());
    }
    fields.remove(QStringLiteral("?"));
    if (reader.hasError())
        fields.insert(QStringLiteral("error"), reader.errorString());
    return fields;
}

/// The UID's four bytes, the lowest first, reckoned without the code under show.
QString lowestByteFirst(quint32 uid)
{
    QString hex;
    for (int byte = 0; byte < 4; ++byte, uid >>= 8)
        hex += QStringLiteral("%1").arg(uid & 0xff, 2, 16, QLatin1Char('0')).toUpper();
    return hex;
}

QString iso(const QDateTime &moment)
{
    return moment.toString(Qt::ISODate);
}

QByteArray parkingCheckAnswer(const QString &sessionId)
{
    return QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<Response Operation="ParkingCheckResponse" ResultCode="1">
    <SessionId>%1</SessionId>
    <ExternalSessionId>P-7</ExternalSessionId>
    <ParkingId>12</ParkingId>
    <StartTime>2019-05-14T09:30:00</StartTime>
    <AnticipatedStopTime>2019-05-14T11:30:00</AnticipatedStopTime>
    <LastChangeTime>2019-05-14T09:30:00</LastChangeTime>
    <TotalCharge>15000</TotalCharge>
    <AmountSum>5000</AmountSum>
    <CanExtend>1</CanExtend>
    <CanStop>0</CanStop>
    <AnswerTime>2019-05-14T10:02:11</AnswerTime>
    <ErrorInfo></ErrorInfo>
</Response>
)")
        .arg(sessionId)
        .toUtf8();
}

QByteArray parkInfoPayAnswer(const QString &sessionId)
{
    return QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<Response Operation="ParkInfoPayResponse" ResultCode="1">
    <PartnerId>dravik</PartnerId>
    <SessionId>%1</SessionId>
    <ExternalSessionId>P-7</ExternalSessionId>
    <AnticipatedStopTime>2019-05-14T11:30:00</AnticipatedStopTime>
    <AnswerTime>2019-05-14T10:05:42</AnswerTime>
    <ErrorInfo></ErrorInfo>
</Response>
)")
        .arg(sessionId)
        .toUtf8();
}

/// One customer's way through the protocol, step by step.
class Walkthrough
{
public:
    int run()
    {
        readCard();
        showSettings();
        askWhatIsOwed();
        readWhatIsOwed();
        registerPayment();
        readConfirmation();
        readRefusal();
        changeASetting();
        damageASealedFile();
        payAtTheCashService();
        return m_narrator.result();
    }

private:
    void readCard()
    {
        m_narrator.section(QStringLiteral("A card reader sends a card"));
        const QVariantMap map = {{QStringLiteral("id"), QString::number(UID)},
                                 {QStringLiteral("cardId"), QStringLiteral("000123456")},
                                 {QStringLiteral("pdata"), QStringLiteral("01312211020202190000000100000000")}};
        m_card = ParkomatCardData(map);
        m_narrator.line(QStringLiteral("as the customer is told: ") +
                        m_card.toStringList().join(QStringLiteral(" | ")));
        m_narrator.expect(QStringLiteral("a valid card"), m_card.isValid());
        m_narrator.expect(QStringLiteral("activated"), iso(m_card.cardDt()), QStringLiteral("2019-02-02T11:22:31"));
        m_narrator.expect(QStringLiteral("has a discount"), m_card.discount());
        m_narrator.expect(QStringLiteral("UID on the wire"), m_card.uidHex(), lowestByteFirst(UID));
        m_narrator.expect(QStringLiteral("back in a map, it is the same card"),
                          ParkomatCardData(m_card.toMap()) == m_card);
    }

    void showSettings()
    {
        m_narrator.section(QStringLiteral("The settings of a fresh terminal"));
        const ParkomatSettings settings;
        m_narrator.expect(QStringLiteral("csHost"), settings.cashServiceHost(), QStringLiteral("localhost"));
        m_narrator.expect(QStringLiteral("csPort"), QString::number(settings.cashServicePort()),
                          QStringLiteral("13006"));
        m_narrator.expect(QStringLiteral("csPath"), settings.cashServicePath(), QStringLiteral("api"));
        m_narrator.expect(QStringLiteral("PartnerId"), settings.partnerId(), QStringLiteral("dravik"));
        m_narrator.expect(QStringLiteral("ParkingId"), settings.parkingId(), QString());
        m_narrator.expect(QStringLiteral("TermId (the terminal's number)"), settings.termId(), QStringLiteral("0"));
        m_narrator.expect(QStringLiteral("reading has written nothing"),
                          !QFile::exists(TerminalAppSettings::fileName()));
    }

    void askWhatIsOwed()
    {
        m_narrator.section(QStringLiteral("What does the customer owe? The request"));
        const QMap<QString, QString> request = showRequest(ParkingCheckRequest(m_card).toXml());
        m_narrator.expect(QStringLiteral("operation"), request.value(QStringLiteral("@Operation")),
                          QStringLiteral("ParkingCheck"));
        expectHeader(request);
        m_checkSession = request.value(QStringLiteral("SessionId"));
    }

    void readWhatIsOwed()
    {
        m_narrator.section(QStringLiteral("What does the customer owe? The answer"));
        const auto answer = received<ParkingCheckResponse>(parkingCheckAnswer(m_checkSession));
        m_narrator.expect(QStringLiteral("success"), answer.resultCode() == BaseParkomatResponse::SUCCESS);
        m_narrator.expect(QStringLiteral("our session"), answer.sessionId(), m_checkSession);
        m_narrator.expect(QStringLiteral("the service's session"), answer.externalSessionId(), QStringLiteral("P-7"));
        m_narrator.expect(QStringLiteral("parking"), answer.parkingId(), QStringLiteral("12"));
        m_narrator.expect(QStringLiteral("since"), iso(answer.startTime()), QStringLiteral("2019-05-14T09:30:00"));
        m_narrator.expect(QStringLiteral("until"), iso(answer.anticipatedStopTime()),
                          QStringLiteral("2019-05-14T11:30:00"));
        m_narrator.expect(QStringLiteral("last change"), iso(answer.lastChangeTime()),
                          QStringLiteral("2019-05-14T09:30:00"));
        m_narrator.expect(QStringLiteral("owed"), answer.totalCharge().toString(), QStringLiteral("150.00"));
        m_narrator.expect(QStringLiteral("paid so far"), answer.amountSum().toString(), QStringLiteral("50.00"));
        m_narrator.expect(QStringLiteral("can be extended"), answer.canExtend());
        m_narrator.expect(QStringLiteral("cannot be stopped"), !answer.canStop());
        m_narrator.expect(QStringLiteral("answered"), iso(answer.responseTime()),
                          QStringLiteral("2019-05-14T10:02:11"));
        m_owed = answer.totalCharge();
    }

    void registerPayment()
    {
        m_narrator.section(QStringLiteral("150.00 is paid in. The request"));
        Payment payment(1187, QDateTime::currentDateTime(), PROVIDER);
        payment.setSumm(FixNumber(100, QStringLiteral("150.00")));
        const QMap<QString, QString> request = showRequest(ParkInfoPayRequest(m_card, payment, m_owed).toXml());
        m_narrator.expect(QStringLiteral("operation"), request.value(QStringLiteral("@Operation")),
                          QStringLiteral("ParkInfoPay"));
        expectHeader(request);
        m_narrator.expect(QStringLiteral("payment number"), request.value(QStringLiteral("Uin")),
                          QStringLiteral("1187"));
        m_narrator.expect(QStringLiteral("amount in hundredths"), request.value(QStringLiteral("Amount")),
                          QStringLiteral("15000"));
        m_narrator.expect(QStringLiteral("all that is owed"), request.value(QStringLiteral("Type")),
                          QStringLiteral("full"));
        m_paySession = request.value(QStringLiteral("SessionId"));
    }

    void readConfirmation()
    {
        m_narrator.section(QStringLiteral("150.00 is paid in. The answer"));
        const auto answer = received<ParkInfoPayResponse>(parkInfoPayAnswer(m_paySession));
        m_narrator.expect(QStringLiteral("success"), answer.resultCode() == BaseParkomatResponse::SUCCESS);
        m_narrator.expect(QStringLiteral("partner"), answer.partnerId(), QStringLiteral("dravik"));
        m_narrator.expect(QStringLiteral("our session"), answer.sessionId(), m_paySession);
        m_narrator.expect(QStringLiteral("the service's session"), answer.externalSessionId(), QStringLiteral("P-7"));
        m_narrator.expect(QStringLiteral("until"), iso(answer.anticipatedStopTime()),
                          QStringLiteral("2019-05-14T11:30:00"));
        m_narrator.expect(QStringLiteral("answered"), iso(answer.responseTime()),
                          QStringLiteral("2019-05-14T10:05:42"));
    }

    void readRefusal()
    {
        m_narrator.section(QStringLiteral("A refusal, and something that is no answer at all"));
        const auto refusal = received<ParkInfoPayResponse>(
            QByteArrayLiteral("<Response Operation=\"ParkInfoPayResponse\" ResultCode=\"4\"><ErrorInfo>card "
                              "blocked</ErrorInfo></Response>"));
        m_narrator.expect(QStringLiteral("result code"), QString::number(refusal.resultCode()), QStringLiteral("4"));
        m_narrator.expect(QStringLiteral("reason"), refusal.errorInfo(), QStringLiteral("card blocked"));
        const std::unique_ptr<BaseParkomatResponse> page(
            BaseParkomatResponse::parse(QByteArrayLiteral("<html><body>502 Bad Gateway</body></html>")));
        m_narrator.expect(QStringLiteral("a proxy's error page is not taken for one"), page == nullptr);
    }

    void changeASetting()
    {
        m_narrator.section(QStringLiteral("The terminal gets an identifier"));
        ParkomatSettings().setTermId(QStringLiteral("0042"));
        m_narrator.text(contents(TerminalAppSettings::fileName()));
        const QMap<QString, QString> request = readBack(ParkingCheckRequest(m_card).toXml());
        m_narrator.expect(QStringLiteral("TermId of the next request"), request.value(QStringLiteral("TermId")),
                          QStringLiteral("0042"));
        expectSession(request.value(QStringLiteral("SessionId")), QStringLiteral("0042"));
    }

    void damageASealedFile()
    {
        m_narrator.section(QStringLiteral("A sealed file, and what becomes of it when one bit falls over"));
        const QString path = QDir(TerminalAppSettings::workDir()).filePath(QStringLiteral("sealed.enc"));
        const QString key = QStringLiteral("word");
        const QString secret = QStringLiteral("a text nobody else may read");
        CryptedSettingsStorage(path).setValue(key, secret);
        m_narrator.expect(QStringLiteral("comes back"), CryptedSettingsStorage(path).value(key).toString(), secret);
        QByteArray sealed = contents(path);
        m_narrator.expect(QStringLiteral("cannot be read in the file"),
                          !sealed.isEmpty() && !sealed.contains(secret.toUtf8()));

        sealed[sealed.size() / 2] = static_cast<char>(sealed.at(sealed.size() / 2) ^ 1);
        QFile file(path);
        const bool isDamaged = file.open(QIODevice::WriteOnly) && file.write(sealed) == sealed.size();
        file.close();
        m_narrator.expect(QStringLiteral("one bit is changed"), isDamaged);
        const CryptedSettingsStorage damaged(path);
        m_narrator.expect(QStringLiteral("reads as empty"), damaged.allKeys().isEmpty());
        m_narrator.expect(QStringLiteral("says so"), damaged.status() == QSettings::FormatError);
    }

    void payAtTheCashService()
    {
        m_narrator.section(QStringLiteral("The same with the cash service: asked, paid, and asked again"));
        const RunningCashService service(QCoreApplication::applicationDirPath() + QStringLiteral("/cash-service"));
        m_narrator.expect(QStringLiteral("the cash service runs"), service.port() != 0);
        ParkomatSettings().setCashServicePort(service.port());
        ParkomatSettings().setCashServiceHost(QStringLiteral("127.0.0.1"));

        const Outcome owed = exchange([this](auto &client) { client.postData(ParkingCheckRequest(m_card)); });
        m_narrator.expect(QStringLiteral("owed"), owed.check.totalCharge().toString(), QStringLiteral("150.00"));
        Payment payment(1188, QDateTime::currentDateTime(), PROVIDER);
        payment.setSumm(owed.check.totalCharge());
        const Outcome paid = exchange(
            [&](auto &client) { client.postData(ParkInfoPayRequest(m_card, payment, owed.check.totalCharge())); });
        m_narrator.expect(QStringLiteral("registered"), paid.pay.resultCode() == BaseParkomatResponse::SUCCESS);
        const Outcome again = exchange([this](auto &client) { client.postData(ParkingCheckRequest(m_card)); });
        m_narrator.expect(QStringLiteral("asked again"), again.error.value(QStringLiteral("errorMessage")).toString(),
                          QStringLiteral("Парковка уже оплачена"));
    }

    QMap<QString, QString> showRequest(const QString &xml)
    {
        m_narrator.text(xml);
        QMap<QString, QString> request = readBack(xml);
        m_narrator.expect(QStringLiteral("well-formed"), !request.contains(QStringLiteral("error")));
        return request;
    }

    void expectHeader(const QMap<QString, QString> &request)
    {
        m_narrator.expect(QStringLiteral("the card's UID"), request.value(QStringLiteral("CardUid")),
                          lowestByteFirst(UID));
        m_narrator.expect(QStringLiteral("the card's number"), request.value(QStringLiteral("CardId")), m_card.id());
        m_narrator.expect(QStringLiteral("partner"), request.value(QStringLiteral("PartnerId")),
                          ParkomatSettings().partnerId());
        // The fresh terminal's identifier has one character and gives way to the three zeros that it lacks.
        expectSession(request.value(QStringLiteral("SessionId")), QStringLiteral("000"));
    }

    /// @param terminal what the identifier begins with; year, time, day of the year and number follow.
    void expectSession(const QString &sessionId, const QString &terminal)
    {
        const QRegularExpression form(QStringLiteral("^%1\\d{2}\\d{6}\\d{3}001$").arg(terminal));
        m_narrator.expect(QStringLiteral("session %1 has its form").arg(sessionId), form.match(sessionId).hasMatch());
    }

    /// What a reply's body is taken for; an answer without anything in it when it is of another kind.
    template <typename Answer>
    Answer received(const QByteArray &body)
    {
        const std::unique_ptr<BaseParkomatResponse> response(BaseParkomatResponse::parse(body));
        const auto *answer = dynamic_cast<const Answer *>(response.get());
        m_narrator.expect(QStringLiteral("is the answer that was waited for"), answer != nullptr);
        return answer == nullptr ? Answer() : *answer;
    }

    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static constexpr quint32 UID = 305419896;

    Narrator m_narrator;
    ParkomatCardData m_card;
    FixNumber m_owed;
    QString m_checkSession;
    QString m_paySession;
};
} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler(showLogLine);
    const int status = Walkthrough().run();
    QDir(TerminalAppSettings::workDir()).removeRecursively();
    return status;
}
