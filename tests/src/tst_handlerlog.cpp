// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkingcheckrequest.h"
#include "parkomatlogger.h"
#include "parkomatpluginhandler.h"
#include "scriptedservice.h"
#include "support/golden.h"
#include "support/stillclock.h"

#include <QApplication>

namespace {
const QString PARKOMAT = QStringLiteral("parkomat");
const QString DEFAULT = QStringLiteral("default");

const QString CONSTRUCTOR = QStringLiteral("ParkomatPluginHandler::ParkomatPluginHandler(QObject*)");
const QString DESTRUCTOR = QStringLiteral("virtual ParkomatPluginHandler::~ParkomatPluginHandler()");
const QString START =
    QStringLiteral("virtual IPayWidget* ParkomatPluginHandler::start(Provider*, const Currency&, SessionManager*)");
const QString CARD =
    QStringLiteral("void ParkomatPluginHandler::newParcomatCardDataCommandHandler(QString, QVariantMap)");
const QString COMMIT =
    QStringLiteral("virtual void ParkomatPluginHandler::doPaymentPredProcessing(SessionManager*, PayPack*)");
const QString PAID = QStringLiteral("void ParkomatPluginHandler::parkInfoPayResponseHandler(ParkInfoPayResponse)");
const QString WHAT_NOW = QStringLiteral("НУЖНО ОБРАБАТЫВАТЬ ОШИБКУ! ЧТО ДЕЛАТЬ С ПЛАТЕЖОМ И ДЕНЬГАМИ?");

/// A line of the handler as the tests write it: "level [category] function: text".
QString rendered(QtMsgType level, const QString &category, const QString &function, const QString &text)
{
    const QString name = level == QtDebugMsg     ? QStringLiteral("debug")
                         : level == QtWarningMsg ? QStringLiteral("warning")
                                                 : QStringLiteral("critical");
    return QStringLiteral("%1 [%2] %3: %4").arg(name, category, function, text);
}

/// What the handler logged since the last call, in order; lines of other files are left out.
QStringList takeHandlersLines()
{
    QStringList all;
    const QList<LogLine> lines = MessageLog::take();
    for (const LogLine &line : lines) {
        if (line.file != QLatin1String("src/parkomatpluginhandler.cpp"))
            continue;
        all.append(line.line > 0 ? rendered(line.level, line.category, line.function, line.text)
                                 : QStringLiteral("a line without a number"));
    }
    return all;
}

/// Where the plugin's lines since the last call come from, in order, one a line: "level [category] file function".
QByteArray takeOrigins()
{
    QByteArray all;
    const QList<LogLine> lines = MessageLog::take();
    for (const LogLine &line : lines) {
        if (line.file.startsWith(QLatin1String("src/")))
            all += rendered(line.level, line.category, line.file, line.function).toUtf8() + '\n';
    }
    return all;
}

/// Switches levels of categories on and off while it lives.
class FilterRules
{
public:
    explicit FilterRules(const QString &rules) { QLoggingCategory::setFilterRules(rules); }
    ~FilterRules() { QLoggingCategory::setFilterRules(QString()); }
    FilterRules(const FilterRules &) = delete;
    FilterRules &operator=(const FilterRules &) = delete;
};

/// What a payment from the first to the last breath of its handler leaves in the log, the request aside.
QStringList linesOfAPayment(const QString &request)
{
    return {rendered(QtDebugMsg, PARKOMAT, CONSTRUCTOR, QStringLiteral("NALOG_CONSTRUCTOR")),
            rendered(QtDebugMsg, PARKOMAT, START, QStringLiteral("NALOG_PLUGIN_STARTED")),
            rendered(QtWarningMsg, DEFAULT, CARD,
                     QStringLiteral("cardId: 0000123456\nid: 305419896\npdata: ") + HandlerBench::payload()),
            rendered(QtWarningMsg, DEFAULT, CARD, request),
            rendered(QtWarningMsg, DEFAULT, COMMIT, QStringLiteral("SOME PAYS FOR PROVIDER: Парковка")),
            rendered(QtWarningMsg, DEFAULT, PAID, QStringLiteral("1 ")),
            rendered(QtDebugMsg, DEFAULT, DESTRUCTOR, QStringLiteral("ParkomatPluginHandler plugin destructor")),
            rendered(QtDebugMsg, PARKOMAT, DESTRUCTOR, QStringLiteral("NALOG_DESTRUCTOR"))};
}

void runAPayment()
{
    ScriptedService service;
    service.plan(ScriptedService::check());
    service.plan(ScriptedService::pay());
    ParkomatPluginHandler handler;
    HandlerBench bench(&handler);
    bench.startWithScreen();
    bench.readCard(HandlerBench::demoCard());
    WAIT_FOR(bench.parameter(QStringLiteral("UIN")), QStringLiteral("uin-1"));
    QVERIFY(bench.commitAnswered({HandlerBench::payment(70'001, 10'000), HandlerBench::payment(70'002, 5'000)}));
    QCOMPARE(service.complaint(), QString());
}
} // namespace

/// What the handler leaves in the host's log: engineers search it by these lines.
class HandlerLogTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void payment_whole_isLoggedInOrder()
    {
        const StillClock clock;
        // The card is on it as it was read, at this moment.
        const QString request = ParkingCheckRequest(ParkomatCardData(QVariant(HandlerBench::demoCard()))).toXml();
        QVERIFY(request.contains(QStringLiteral("<CardUid>78563412</CardUid>")));
        MessageLog::drop();
        runAPayment();
        QCOMPARE(takeHandlersLines(), linesOfAPayment(request));
    }

    // A line tells by its place what had been done when it was written: the request is on record before it is sent.
    void payment_whole_isLoggedByEachPartInTurn()
    {
        const StillClock clock;
        runAPayment();
        COMPARE_GOLDEN(takeOrigins(), QStringLiteral("payment-log.txt"));
    }

    void payment_categoryOff_isLoggedWithoutItsLines_data()
    {
        QTest::addColumn<QString>("rules");
        QTest::addColumn<QString>("missing");
        QTest::newRow("the plugin's own")
            << QStringLiteral("parkomat.debug=false") << QStringLiteral("debug [parkomat]");
        QTest::newRow("warnings") << QStringLiteral("default.warning=false") << QStringLiteral("warning [default]");
        QTest::newRow("the destructor's") << QStringLiteral("default.debug=false") << QStringLiteral("debug [default]");
    }

    void payment_categoryOff_isLoggedWithoutItsLines()
    {
        QFETCH(QString, rules);
        QFETCH(QString, missing);
        const StillClock clock;
        const QString request = ParkingCheckRequest(ParkomatCardData(QVariant(HandlerBench::demoCard()))).toXml();
        MessageLog::drop();
        const FilterRules filter(rules);
        runAPayment();
        QStringList expected;
        for (const QString &line : linesOfAPayment(request)) {
            if (!line.startsWith(missing))
                expected.append(line);
        }
        QCOMPARE(takeHandlersLines(), expected);
    }

    void start_repeated_isLoggedEachTime()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        MessageLog::drop();
        bench.start();
        bench.start();
        const QString line = rendered(QtDebugMsg, PARKOMAT, START, QStringLiteral("NALOG_PLUGIN_STARTED"));
        QCOMPARE(takeHandlersLines(), QStringList({line, line}));
    }

    void commit_beforeStart_isCritical()
    {
        ParkomatPluginHandler handler;
        const HandlerBench bench(&handler);
        MessageLog::drop();
        bench.commit({});
        QCOMPARE(takeHandlersLines(),
                 QStringList(rendered(QtCriticalMsg, DEFAULT, COMMIT, QStringLiteral("INVALID PLUGIN PROVIDER"))));
    }

    void answer_negative_isCriticalInTheBussCategory()
    {
        ParkomatPluginHandler handler;
        const HandlerBench bench(&handler);
        MessageLog::drop();
        const ParkInfoPayResponse refusal(6, {{QStringLiteral("ErrorInfo"), QStringLiteral("Другая сумма")}});
        const QString warning = rendered(QtWarningMsg, DEFAULT, PAID, QStringLiteral("6 Другая сумма"));
        handler.parkInfoPayResponseHandler(refusal);
        QCOMPARE(takeHandlersLines(),
                 QStringList({warning, rendered(QtCriticalMsg, QStringLiteral("trelmbus"), PAID, WHAT_NOW)}));
        const FilterRules filter(QStringLiteral("trelmbus.critical=false"));
        handler.parkInfoPayResponseHandler(refusal);
        QCOMPARE(takeHandlersLines(), QStringList(warning));
    }

    void card_map_isLoggedWhole()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        const HandlerBench bench(&handler);
        service.hold();
        MessageLog::drop();
        handler.newParcomatCardDataCommandHandler(
            QStringLiteral("command"), {{QStringLiteral("nested"), QVariantMap({{QStringLiteral("key"), 1}})},
                                        {QStringLiteral("text"), QStringLiteral("a b")}});
        QCOMPARE(takeHandlersLines().constFirst(),
                 rendered(QtWarningMsg, DEFAULT, CARD, QStringLiteral("nested:\n  key: 1\ntext: a b")));
        WAIT_FOR(service.requests(), 1);
    }

    void card_typed_isLoggedWithItsFixedFields()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        service.hold();
        handler.cardNumberInputHandler(QStringLiteral("99"));
        MessageLog::drop();
        handler.cardUidInputHandler(QStringLiteral("FFFFFFFF"));
        QCOMPARE(
            takeHandlersLines().constFirst(),
            rendered(QtWarningMsg, DEFAULT, CARD,
                     QStringLiteral("cardId: 99\ncdt: 1\nid: 4294967295\npdata: 01312211020202190000000100000000")));
        WAIT_FOR(service.requests(), 1);
    }

    void category_ownOne_isOneForTheProcess()
    {
        QCOMPARE(&PARKOMAT_PLUGIN_LOG(), &PARKOMAT_PLUGIN_LOG());
        QCOMPARE(PARKOMAT_PLUGIN_LOG().categoryName(), "parkomat");
        QVERIFY(PARKOMAT_PLUGIN_LOG().isDebugEnabled());
    }

    void logger_class_isAPlainObject()
    {
        QObject parent;
        const auto *const logger = new ParkomatLogger(&parent);
        QCOMPARE(logger->parent(), &parent);
        const QMetaObject *const meta = logger->metaObject();
        QCOMPARE(meta->className(), "ParkomatLogger");
        QCOMPARE(meta->methodCount(), meta->methodOffset());
    }
};

WIDGET_TEST_MAIN(HandlerLogTest)
#include "tst_handlerlog.moc"
