// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "plugininterface/ipaybyprovider.h"
#include "plugininterface/ipaybyprovidersettingswidget.h"
#include "support/testcase.h"

#include <QApplication>
#include <QCborMap>
#include <QCborStreamReader>
#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QLibraryInfo>
#include <QMetaMethod>
#include <QPluginLoader>
#include <QPointer>
#include <QProcess>
#include <QWidget>

#include <cstddef>
#include <cstring>
#include <type_traits>

namespace {
const QString PLUGIN = QStringLiteral(PLUGIN_FILE);

/// What a program of the tool chain writes about the plugin's file, by lines.
QStringList outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments + QStringList{PLUGIN});
    if (!process.waitForFinished(60'000) || process.exitCode() != 0)
        return {QStringLiteral("%1 failed: %2").arg(program, process.errorString())};
    return QString::fromLocal8Bit(process.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

/// Where a virtual member function stands in its class's table: 0 is the first one.
template <typename Function>
std::ptrdiff_t slotOf(Function function)
{
    // The common C++ ABI keeps the offset in the table, plus one, in the pointer's first word.
    std::ptrdiff_t word = 0;
    std::memcpy(&word, &function, sizeof word);
    return (word - 1) / static_cast<std::ptrdiff_t>(sizeof(void *));
}

// What the operations take and give, in their order: hosts are built against it.
using I = IPayByProvider;
static_assert(std::is_same_v<decltype(&I::pluginVersion), QString (I::*)() const>);
static_assert(std::is_same_v<decltype(&I::pluginBuild), QString (I::*)() const>);
static_assert(std::is_same_v<decltype(&I::supportedProviders), QSet<long long> (I::*)() const>);
static_assert(std::is_same_v<decltype(&I::setMessageReciever), bool (I::*)(QObject *, const char *)>);
static_assert(std::is_same_v<decltype(&I::setMessageSender), bool (I::*)(QObject *, const char *)>);
static_assert(std::is_same_v<decltype(&I::setTrelmInfo), void (I::*)(const TrelmInfo &)>);
static_assert(std::is_same_v<decltype(&I::start), IPayWidget *(I::*)(Provider *, const Currency &, SessionManager *)>);
static_assert(std::is_same_v<decltype(&I::needRestartIfExists), bool (I::*)()>);
static_assert(std::is_same_v<decltype(&I::hasSettingsWidget), bool (I::*)()>);
static_assert(std::is_same_v<decltype(&I::needPaymentPredProcessing), bool (I::*)()>);
static_assert(std::is_same_v<decltype(&I::needPaymentPostProcessing), bool (I::*)()>);
static_assert(std::is_same_v<decltype(&I::needPaymentPayCheck), bool (I::*)()>);
static_assert(std::is_same_v<decltype(&I::needPaymentJsonPayCheck), bool (I::*)()>);
static_assert(std::is_same_v<decltype(&I::needCloseCycleSummCheck), bool (I::*)()>);
static_assert(std::is_same_v<decltype(&I::prepareCloseCycleSummCheck), QList<QVariantMap> (I::*)()>);
static_assert(std::is_same_v<decltype(&I::startWaitPostProcessing), void (I::*)(QVariant)>);
static_assert(std::is_same_v<decltype(&I::doPaymentPredProcessing), void (I::*)(SessionManager *, PayPack *)>);
static_assert(std::is_same_v<decltype(&I::doPaymentPayCheck),
                             bool (I::*)(SessionManager *, Payment, Provider *, QVariantMap, QVariantMap *)>);
static_assert(std::is_same_v<decltype(&I::sendPaymentJsonPayCheck),
                             void (I::*)(SessionManager *, Payment, Provider *, QVariantMap *)>);
static_assert(std::is_same_v<decltype(&I::getSettingsWidget), IPayByProviderSettingsWidget *(I::*)()>);
static_assert(std::is_same_v<decltype(&I::stop), void (I::*)()>);
static_assert(std::is_same_v<decltype(&I::showInitScreen), void (I::*)()>);
static_assert(std::is_same_v<decltype(&I::pluginDescription), QString (I::*)()>);
static_assert(std::is_same_v<decltype(&I::pluginFormTemplates), QVariantMap (I::*)()>);
static_assert(std::is_same_v<decltype(&I::pluginId), int (I::*)()>);
static_assert(std::is_same_v<decltype(&I::pluginStringId), QString (I::*)()>);
static_assert(std::is_same_v<decltype(&I::getStompFilters), QVariantList (I::*)()>);
} // namespace

/// The plugin's shared library as a host finds, judges and loads it.
class EntryTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void metaData_unloaded_namesInterfaceAndClass()
    {
        const QPluginLoader loader(PLUGIN);
        const QJsonObject metaData = loader.metaData();
        QCOMPARE(metaData.value(QStringLiteral("IID")).toString(),
                 QStringLiteral("org.trelm.terminal.plugins.paybyprovider"));
        QCOMPARE(metaData.value(QStringLiteral("className")).toString(), QStringLiteral("ParkomatPluginHandler"));
        QCOMPARE(metaData.value(QStringLiteral("MetaData")).toObject(), QJsonObject());
        QCOMPARE(metaData.value(QStringLiteral("debug")).toBool(), IS_DEBUG_BUILD);
        QCOMPARE(metaData.value(QStringLiteral("version")).toInt() >> 8, QT_VERSION >> 8);
        QVERIFY(!loader.isLoaded());
    }

    void metaData_inTheFile_isWhatQtReads()
    {
        QFile file(PLUGIN);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        const QByteArray mark = QByteArrayLiteral("QTMETADATA !");
        const int begin = bytes.indexOf(mark);
        QVERIFY(begin > 0);
        QCOMPARE(bytes.indexOf(mark, begin + 1), -1);
        // Behind the mark: format, Qt's major and minor version, what the build needs (its lowest bit: a debug Qt).
        const QByteArray head = bytes.mid(begin + mark.size(), 4);
        QCOMPARE(head, QByteArray::fromRawData("\0\x05\x0f", 3) + (IS_DEBUG_BUILD ? '\1' : '\0'));
        QCborStreamReader reader(bytes.mid(begin + mark.size() + 4));
        const QCborMap map = QCborValue::fromCbor(reader).toMap();
        constexpr int iid = 2;
        constexpr int className = 3;
        QCOMPARE(map.size(), 2);
        QCOMPARE(map.value(iid).toString(), QStringLiteral("org.trelm.terminal.plugins.paybyprovider"));
        QCOMPARE(map.value(className).toString(), QStringLiteral("ParkomatPluginHandler"));
    }

    void exports_areQtsEntryPointsAlone()
    {
        QStringList names;
        const QStringList lines =
            outputOf(QStringLiteral("nm"), {QStringLiteral("-D"), QStringLiteral("--defined-only")});
        for (const QString &line : lines)
            names.append(line.section(QLatin1Char(' '), 1));
        QCOMPARE(names,
                 QStringList({QStringLiteral("T qt_plugin_instance"), QStringLiteral("T qt_plugin_query_metadata")}));
    }

    void libraries_areAllUsed() { QCOMPARE(outputOf(QStringLiteral("ldd"), {QStringLiteral("-u")}), QStringList()); }

    void instance_isOneUntilItIsDestroyed()
    {
        QPluginLoader loader(PLUGIN);
        const QPointer<QObject> first = loader.instance();
        QVERIFY2(first, qPrintable(loader.errorString()));
        QCOMPARE(first->parent(), nullptr);
        QCOMPARE(loader.instance(), first.data());
        QCOMPARE(QPluginLoader(PLUGIN).instance(), first.data());
        delete first;
        QObject *second = loader.instance();
        QVERIFY(second != nullptr);
        QVERIFY(qobject_cast<IPayByProvider *>(second) != nullptr);
        delete second;
    }

    void lifeCycle_isLogged()
    {
        QPluginLoader loader(PLUGIN);
        delete loader.instance();
        QStringList seen;
        for (const LogLine &line : MessageLog::take()) {
            QCOMPARE(line.level, QtDebugMsg);
            QCOMPARE(line.file, QStringLiteral("src/parkomatpluginhandler.cpp"));
            seen.append(line.category + QLatin1Char(' ') + line.function + QLatin1Char(' ') + line.text);
        }
        const QString destructor = QStringLiteral("virtual ParkomatPluginHandler::~ParkomatPluginHandler() ");
        QCOMPARE(seen, QStringList({QStringLiteral("parkomat ParkomatPluginHandler::ParkomatPluginHandler(QObject*) "
                                                   "NALOG_CONSTRUCTOR"),
                                    QStringLiteral("default ") + destructor +
                                        QStringLiteral("ParkomatPluginHandler plugin destructor"),
                                    QStringLiteral("parkomat ") + destructor + QStringLiteral("NALOG_DESTRUCTOR")}));
    }

    void metacast_answersForThreeNames()
    {
        QPluginLoader loader(PLUGIN);
        const std::unique_ptr<QObject> object(loader.instance());
        QCOMPARE(object->metaObject()->className(), "ParkomatPluginHandler");
        QCOMPARE(object->qt_metacast("ParkomatPluginHandler"), static_cast<void *>(object.get()));
        const void *plugin = dynamic_cast<IPayByProvider *>(object.get());
        QCOMPARE(object->qt_metacast("IPayByProvider"), plugin);
        QCOMPARE(object->qt_metacast("org.trelm.terminal.plugins.paybyprovider"), plugin);
        QVERIFY(plugin > static_cast<void *>(object.get()));
    }

    void slots_haveTheirOrderAndTypes()
    {
        QPluginLoader loader(PLUGIN);
        const std::unique_ptr<QObject> object(loader.instance());
        const QMetaObject *meta = object->metaObject();
        QStringList seen;
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
            const QMetaMethod method = meta->method(i);
            QCOMPARE(method.methodType(), QMetaMethod::Slot);
            QCOMPARE(method.access(), QMetaMethod::Public);
            seen.append(QString::fromLatin1(method.typeName()) + QLatin1Char(' ') +
                        QString::fromLatin1(method.methodSignature()));
        }
        QCOMPARE(seen, QStringList({
                           QStringLiteral("QPointer<MessageWidgetController> loadPermitCancelMessagesView()"),
                           QStringLiteral("QPointer<MessageWidgetController> loadHelperMessagesView()"),
                           QStringLiteral("void hideHelperMessagesView()"),
                           QStringLiteral("void cancelAcceptHandler()"),
                           QStringLiteral("void permitCancel()"),
                           QStringLiteral("void permitCancelMessageResult(int)"),
                           QStringLiteral("void exitFromMessage()"),
                           QStringLiteral("void exitFromMessageCode(int)"),
                           QStringLiteral("void newParcomatCardDataCommandHandler(QString,QVariantMap)"),
                           QStringLiteral("void showCarNumberInputScreen()"),
                           QStringLiteral("void showCardNumberInputScreen()"),
                           QStringLiteral("void showCardUidInputScreen()"),
                           QStringLiteral("void carNumberInputHandler(QString)"),
                           QStringLiteral("void cardNumberInputHandler(QString)"),
                           QStringLiteral("void cardUidInputHandler(QString)"),
                           QStringLiteral("void parkomatAccessManagerErrorHandler(QVariantMap)"),
                           QStringLiteral("void waitCardMsgHandler(int)"),
                           QStringLiteral("void parkInfoPayResponseHandler(ParkInfoPayResponse)"),
                           QStringLiteral("void parkingCheckResponseHandler(ParkingCheckResponse)"),
                       }));
    }

    void interface_hasItsOrder()
    {
        const std::ptrdiff_t places[] = {
            slotOf(&I::pluginVersion),
            slotOf(&I::pluginBuild),
            slotOf(&I::supportedProviders),
            slotOf(&I::setMessageReciever),
            slotOf(&I::setMessageSender),
            slotOf(&I::setTrelmInfo),
            slotOf(&I::start),
            slotOf(&I::needRestartIfExists),
            slotOf(&I::hasSettingsWidget),
            slotOf(&I::needPaymentPredProcessing),
            slotOf(&I::needPaymentPostProcessing),
            slotOf(&I::needPaymentPayCheck),
            slotOf(&I::needPaymentJsonPayCheck),
            slotOf(&I::needCloseCycleSummCheck),
            slotOf(&I::prepareCloseCycleSummCheck),
            slotOf(&I::startWaitPostProcessing),
            slotOf(&I::doPaymentPredProcessing),
            slotOf(&I::doPaymentPayCheck),
            slotOf(&I::sendPaymentJsonPayCheck),
            slotOf(&I::getSettingsWidget),
            slotOf(&I::stop),
            slotOf(&I::showInitScreen),
            slotOf(&I::pluginDescription),
            slotOf(&I::pluginFormTemplates),
            slotOf(&I::pluginId),
            slotOf(&I::pluginStringId),
            slotOf(&I::getStompFilters),
        };
        // The destructor takes the first two places.
        std::ptrdiff_t expected = 2;
        for (const std::ptrdiff_t place : places)
            QCOMPARE(place, expected++);
        QCOMPARE(expected, std::ptrdiff_t(2 + 27));
    }

    void identity_isTheContracts()
    {
        QPluginLoader loader(PLUGIN);
        const std::unique_ptr<QObject> object(loader.instance());
        auto *plugin = qobject_cast<IPayByProvider *>(object.get());
        QVERIFY(plugin != nullptr);
        QCOMPARE(plugin->pluginVersion(), QStringLiteral("5.0.10"));
        QCOMPARE(plugin->supportedProviders(), QSet<long long>{18156});
        QCOMPARE(plugin->pluginDescription(), QStringLiteral("Плагин паркомата"));
        QCOMPARE(plugin->pluginFormTemplates(), QVariantMap());
        QCOMPARE(plugin->pluginId(), 2023);
        QCOMPARE(plugin->pluginStringId(), QStringLiteral("tarvSchoolCardPlugin"));
        QCOMPARE(plugin->getStompFilters(), QVariantList{QStringLiteral("tarvSchoolCardPluginRequest")});
        QCOMPARE(plugin->getStompFilters().constFirst().type(), QVariant::String);
        const QDateTime build = QDateTime::fromString(plugin->pluginBuild(), Qt::ISODate);
        QVERIFY2(build.isValid(), qPrintable(plugin->pluginBuild()));
        QCOMPARE(build.toString(QStringLiteral("yyyy-MM-ddThh:mm:ss")), plugin->pluginBuild());
    }

    void stages_areTheContracts()
    {
        QPluginLoader loader(PLUGIN);
        const std::unique_ptr<QObject> object(loader.instance());
        auto *plugin = qobject_cast<IPayByProvider *>(object.get());
        QVERIFY(plugin->needRestartIfExists());
        QVERIFY(plugin->hasSettingsWidget());
        QVERIFY(plugin->needPaymentPredProcessing());
        QVERIFY(!plugin->needPaymentPostProcessing());
        QVERIFY(!plugin->needPaymentPayCheck());
        QVERIFY(!plugin->needPaymentJsonPayCheck());
        QVERIFY(!plugin->needCloseCycleSummCheck());
        QVERIFY(plugin->prepareCloseCycleSummCheck().isEmpty());
        plugin->startWaitPostProcessing(QVariant());
        QVariantMap result = {{QStringLiteral("untouched"), true}};
        const QVariantMap before = result;
        QVERIFY(!plugin->doPaymentPayCheck(nullptr, Payment(), nullptr, {}, &result));
        plugin->sendPaymentJsonPayCheck(nullptr, Payment(), nullptr, &result);
        QCOMPARE(result, before);
        QVERIFY(plugin->setMessageReciever(nullptr, nullptr));
        QVERIFY(plugin->setMessageSender(nullptr, nullptr));
    }

    void settingsPage_isOneUntilItIsDestroyed()
    {
        QPluginLoader loader(PLUGIN);
        const std::unique_ptr<QObject> object(loader.instance());
        auto *plugin = qobject_cast<IPayByProvider *>(object.get());
        IPayByProviderSettingsWidget *page = plugin->getSettingsWidget();
        QCOMPARE(plugin->getSettingsWidget(), page);
        QPointer<QWidget> widget = dynamic_cast<QWidget *>(page);
        QVERIFY(widget);
        QCOMPARE(widget->parent(), nullptr);
        delete widget;
        QPointer<QWidget> next = dynamic_cast<QWidget *>(plugin->getSettingsWidget());
        QVERIFY(next);
        QVERIFY(next->findChild<QWidget *>(QStringLiteral("leTermId")) != nullptr);
        delete next;
    }
};

WIDGET_TEST_MAIN(EntryTest)
#include "tst_entry.moc"
