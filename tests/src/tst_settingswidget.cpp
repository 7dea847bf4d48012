// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/terminalappsettings.h"
#include "parkomatpluginhandler.h"
#include "parkomatpluginsettingswidget.h"
#include "parkomatsettings.h"
#include "support/testcase.h"

#include <QAccessible>
#include <QApplication>
#include <QFile>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>
#include <QTranslator>

#include <memory>
#include <type_traits>

// The host has no business deleting a page by this interface.
static_assert(!std::has_virtual_destructor_v<IPayByProviderSettingsWidget>);

namespace {
const char *const LINES[] = {"leParkingId", "lePartnerId", "leTermId", "leCashServiceIp", "leCashServicePath"};

/// What is stored under the plugin's key; "(none)" where nothing is.
QString stored(const QString &key)
{
    return TerminalAppSettings().getPluginSettingsValue(ParkomatSettings::PARKOMAT_SECTION, key,
                                                        QStringLiteral("(none)"));
}

QStringList stored()
{
    QStringList all;
    for (const QString &key : {ParkomatSettings::PARKING_ID, ParkomatSettings::PARTNER_ID,
                               ParkomatSettings::PARKOMAT_ID, ParkomatSettings::CASH_SERVICE_HOST,
                               ParkomatSettings::CASH_SERVICE_PORT, ParkomatSettings::CASH_SERVICE_PATH})
        all.append(stored(key));
    return all;
}

void store(const QStringList &values)
{
    TerminalAppSettings settings;
    const QStringList keys = {ParkomatSettings::PARKING_ID,        ParkomatSettings::PARTNER_ID,
                              ParkomatSettings::PARKOMAT_ID,       ParkomatSettings::CASH_SERVICE_HOST,
                              ParkomatSettings::CASH_SERVICE_PORT, ParkomatSettings::CASH_SERVICE_PATH};
    for (int i = 0; i < keys.size(); ++i)
        settings.setPluginSettingsValue(ParkomatSettings::PARKOMAT_SECTION, keys.at(i), values.at(i));
}

template <typename Editor>
Editor &editor(const QWidget &page, const char *name)
{
    auto *const found = page.findChild<Editor *>(QLatin1String(name));
    if (found == nullptr)
        qFatal("the page has no %s", name);
    return *found;
}

/// What the editors show, in the order of stored().
QStringList shown(const QWidget &page)
{
    return {editor<QLineEdit>(page, "leParkingId").text(),
            editor<QLineEdit>(page, "lePartnerId").text(),
            editor<QLineEdit>(page, "leTermId").text(),
            editor<QLineEdit>(page, "leCashServiceIp").text(),
            QString::number(editor<QSpinBox>(page, "sbCashServicePort").value()),
            editor<QLineEdit>(page, "leCashServicePath").text()};
}

const QStringList NOTHING = {QStringLiteral("(none)"), QStringLiteral("(none)"), QStringLiteral("(none)"),
                             QStringLiteral("(none)"), QStringLiteral("(none)"), QStringLiteral("(none)")};
const QStringList DEFAULTS = {QString(),
                              QStringLiteral("dravik"),
                              QStringLiteral("4224"),
                              QStringLiteral("localhost"),
                              QStringLiteral("13006"),
                              QStringLiteral("api")};
const QStringList OTHERS = {QStringLiteral("12"),       QStringLiteral("north"), QStringLiteral(" 7 "),
                            QStringLiteral("10.0.0.1"), QStringLiteral("65535"), QStringLiteral("/a/б/")};

/// Renders every text of the page's context in capitals, as a translation would.
class Capitals : public QTranslator
{
public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char *context, const char *sourceText, const char * /*disambiguation*/,
                                    int /*n*/) const override
    {
        return qstrcmp(context, "ParkomatPluginSettingsWidget") == 0 ? QString::fromUtf8(sourceText).toUpper()
                                                                     : QString();
    }
};
} // namespace

/// The plugin's page in the service menu.
class SettingsWidgetTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void form_rows_areLabelAndEditor_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QByteArray>("label");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("editor");
        const auto row = [](int number, const char *label, const QString &text, const char *editor) {
            QTest::newRow(editor) << number << QByteArray(label) << text << QByteArray(editor);
        };
        row(0, "label", QStringLiteral("ИД партнера"), "lePartnerId");
        row(1, "label_2", QStringLiteral("ИД парковки"), "leParkingId");
        row(2, "label_3", QStringLiteral("ИД паркомата"), "leTermId");
        row(3, "label_4", QStringLiteral("Cash service IP"), "leCashServiceIp");
        row(4, "label_5", QStringLiteral("Cash service port"), "sbCashServicePort");
        row(5, "label_6", QStringLiteral("Cash service path"), "leCashServicePath");
    }

    void form_rows_areLabelAndEditor()
    {
        QFETCH(int, row);
        QFETCH(QByteArray, label);
        QFETCH(QString, text);
        QFETCH(QByteArray, editor);
        const ParkomatPluginSettingsWidget page;
        const auto *const grid = page.findChild<QGridLayout *>(QStringLiteral("gridLayout"));
        QVERIFY(grid != nullptr);
        QCOMPARE(grid->rowCount(), 6);
        QCOMPARE(grid->columnCount(), 2);
        QCOMPARE(grid->count(), 12);
        const auto *const shownLabel = qobject_cast<QLabel *>(grid->itemAtPosition(row, 0)->widget());
        QVERIFY(shownLabel != nullptr);
        QCOMPARE(shownLabel->objectName(), QString::fromLatin1(label));
        QCOMPARE(shownLabel->text(), text);
        QWidget *const shownEditor = grid->itemAtPosition(row, 1)->widget();
        QCOMPARE(shownEditor->objectName(), QString::fromLatin1(editor));
        QCOMPARE(shownEditor->metaObject()->className(), editor == "sbCashServicePort" ? "QSpinBox" : "QLineEdit");
        // Who does not see the page is told which editor it is.
        QCOMPARE(QAccessible::queryAccessibleInterface(shownEditor)->text(QAccessible::Name), text);
    }

    void form_page_isAsLaidOut()
    {
        const ParkomatPluginSettingsWidget page;
        QCOMPARE(page.objectName(), QStringLiteral("ParkomatPluginSettingsWidget"));
        QCOMPARE(page.windowTitle(), QStringLiteral("Form"));
        QCOMPARE(page.size(), QSize(491, 257));
        QCOMPARE(page.windowFlags(), QWidget().windowFlags());
        QCOMPARE(page.layout()->objectName(), QStringLiteral("verticalLayout"));
        QCOMPARE(page.layout()->metaObject()->className(), "QVBoxLayout");
        QCOMPARE(page.layout()->count(), 1);
        QCOMPARE(page.findChildren<QPushButton *>().size(), 0);
        for (const char *name : LINES) {
            const QLineEdit &line = editor<QLineEdit>(page, name);
            QCOMPARE(line.validator(), nullptr);
            QCOMPARE(line.maxLength(), QLineEdit().maxLength());
        }
        const QSpinBox &port = editor<QSpinBox>(page, "sbCashServicePort");
        QCOMPARE(port.minimum(), 0);
        QCOMPARE(port.maximum(), 65'535);
    }

    void form_metaObject_addsNothing()
    {
        const QMetaObject &meta = ParkomatPluginSettingsWidget::staticMetaObject;
        QCOMPARE(meta.superClass(), &QWidget::staticMetaObject);
        QCOMPARE(meta.methodCount(), meta.methodOffset());
        QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    }

    void form_texts_goThroughTheTranslation()
    {
        Capitals translation;
        QVERIFY(QCoreApplication::installTranslator(&translation));
        const ParkomatPluginSettingsWidget page;
        QCoreApplication::removeTranslator(&translation);
        QCOMPARE(editor<QLabel>(page, "label").text(), QStringLiteral("ИД ПАРТНЕРА"));
        QCOMPARE(editor<QLabel>(page, "label_6").text(), QStringLiteral("CASH SERVICE PATH"));
    }

    void form_parent_ownsThePage()
    {
        auto parent = std::make_unique<QWidget>();
        const QPointer<ParkomatPluginSettingsWidget> page = new ParkomatPluginSettingsWidget(parent.get());
        QCOMPARE(page->parentWidget(), parent.get());
        const QPointer<QSpinBox> port = &editor<QSpinBox>(*page, "sbCashServicePort");
        parent.reset();
        QVERIFY(page.isNull());
        QVERIFY(port.isNull());
    }

    void values_fresh_areTheDefaults()
    {
        TerminalAppSettings().setTrelmId(4224);
        const ParkomatPluginSettingsWidget page;
        QCOMPARE(shown(page), DEFAULTS);
        // To be opened changes nothing.
        QCOMPARE(stored(), NOTHING);
    }

    void values_stored_areShown()
    {
        store(OTHERS);
        const ParkomatPluginSettingsWidget page;
        QCOMPARE(shown(page), OTHERS);
    }

    void values_portStored_isShownAsItIsRead_data()
    {
        QTest::addColumn<QString>("storedPort");
        QTest::addColumn<int>("port");
        QTest::newRow("lowest") << QStringLiteral("0") << 0;
        QTest::newRow("highest") << QStringLiteral("65535") << 65'535;
        QTest::newRow("cut to 16 bits") << QStringLiteral("70000") << 4'464;
        QTest::newRow("no number") << QStringLiteral("http") << 0;
    }

    void values_portStored_isShownAsItIsRead()
    {
        QFETCH(QString, storedPort);
        QFETCH(int, port);
        ParkomatSettings().setPartnerId(QStringLiteral("north"));
        TerminalAppSettings().setPluginSettingsValue(ParkomatSettings::PARKOMAT_SECTION,
                                                     ParkomatSettings::CASH_SERVICE_PORT, storedPort);
        const ParkomatPluginSettingsWidget page;
        QCOMPARE(editor<QSpinBox>(page, "sbCashServicePort").value(), port);
    }

    void save_nothingEdited_storesAllSix()
    {
        TerminalAppSettings().setTrelmId(4224);
        ParkomatPluginSettingsWidget page;
        page.saveSettings();
        QCOMPARE(stored(), DEFAULTS);
        // The terminal's own number is the parking meter's from now on.
        TerminalAppSettings().setTrelmId(5);
        QCOMPARE(ParkomatSettings().termId(), QStringLiteral("4224"));
    }

    void save_fresh_storesInTheOrderOfTheSettings()
    {
        ParkomatPluginSettingsWidget().saveSettings();
        QFile file(TerminalAppSettings::fileName());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QStringList keys;
        const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        for (const QString &line : lines) {
            if (line.contains(QLatin1Char('=')))
                keys.append(line.section(QLatin1Char('='), 0, 0));
        }
        QCOMPARE(keys, QStringList({QStringLiteral("ParkingId"), QStringLiteral("PartnerId"), QStringLiteral("TermId"),
                                    QStringLiteral("csHost"), QStringLiteral("csPort"), QStringLiteral("csPath")}));
    }

    void save_edits_areStoredAsTheyAre()
    {
        ParkomatPluginSettingsWidget page;
        editor<QLineEdit>(page, "leParkingId").setText(OTHERS.at(0));
        editor<QLineEdit>(page, "lePartnerId").setText(OTHERS.at(1));
        editor<QLineEdit>(page, "leTermId").setText(OTHERS.at(2));
        editor<QLineEdit>(page, "leCashServiceIp").setText(OTHERS.at(3));
        editor<QSpinBox>(page, "sbCashServicePort").setValue(70'000);
        editor<QLineEdit>(page, "leCashServicePath").setText(OTHERS.at(5));
        QCOMPARE(stored(), NOTHING);
        // By the interface, as the host does.
        static_cast<IPayByProviderSettingsWidget &>(page).saveSettings();
        QCOMPARE(stored(), OTHERS);
        QCOMPARE(shown(ParkomatPluginSettingsWidget()), OTHERS);
    }

    void save_emptyTexts_areStored()
    {
        store(OTHERS);
        ParkomatPluginSettingsWidget page;
        for (const char *name : LINES)
            editor<QLineEdit>(page, name).clear();
        editor<QSpinBox>(page, "sbCashServicePort").setValue(0);
        page.saveSettings();
        QCOMPARE(stored(), QStringList({QString(), QString(), QString(), QString(), QStringLiteral("0"), QString()}));
    }

    void save_storedMeanwhile_isOverwritten()
    {
        store(OTHERS);
        ParkomatPluginSettingsWidget page;
        ParkomatSettings().setPartnerId(QStringLiteral("south"));
        page.saveSettings();
        QCOMPARE(stored(), OTHERS);
    }

    void reload_edits_areDiscarded()
    {
        store(OTHERS);
        ParkomatPluginSettingsWidget page;
        editor<QLineEdit>(page, "lePartnerId").setText(QStringLiteral("typed"));
        ParkomatSettings().setParkingId(QStringLiteral("13"));
        page.reload();
        QStringList expected = OTHERS;
        expected[0] = QStringLiteral("13");
        QCOMPARE(shown(page), expected);
    }

    void handlersPage_destroyed_isMadeAnewFromWhatIsStored()
    {
        ParkomatPluginHandler handler;
        auto *const first = dynamic_cast<QWidget *>(handler.getSettingsWidget());
        QVERIFY(first != nullptr);
        editor<QLineEdit>(*first, "lePartnerId").setText(QStringLiteral("typed"));
        // Whoever opens the page again while it is there finds the edits.
        QCOMPARE(dynamic_cast<QWidget *>(handler.getSettingsWidget()), first);
        delete first;
        const std::unique_ptr<QWidget> second(dynamic_cast<QWidget *>(handler.getSettingsWidget()));
        QVERIFY(second != nullptr);
        QCOMPARE(editor<QLineEdit>(*second, "lePartnerId").text(), QStringLiteral("dravik"));
    }
};

WIDGET_TEST_MAIN(SettingsWidgetTest)
#include "tst_settingswidget.moc"
