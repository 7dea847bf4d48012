// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/goldenimage.h"
#include "kiosk/looks/lookchecks.h"
#include "kiosk/looks/rendering.h"
#include "kiosk/looks/samples.h"
#include "kiosk/looks/scene.h"
#include "support/testcase.h"
#include "support/testclock.h"
#include "window/look.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>

/// Every screen on the three sizes of screen that there are, as it is and with texts 40 % longer: nothing is cut off,
/// lies on something else, is too pale or too small, and it looks as it did when it was found good.
class LooksTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void font_ofEachText_isTheNamedOne_data();
    void font_ofEachText_isTheNamedOne();
    void screen_onEachSize_canBeUsed_data();
    void screen_onEachSize_canBeUsed();
    void screen_onTheSmallestSize_looksAsItDid_data();
    void screen_onTheSmallestSize_looksAsItDid();
};

namespace {
constexpr int LEAST_TARGET = 64;
/// In pixels, for who stands before it: 5 mm from line to line on a terminal of 15 inches.
constexpr int LEAST_LETTERS = 18;
constexpr double LEAST_CONTRAST = 4.5;

QVector<QSize> sizes()
{
    return {{1024, 768}, {1280, 1024}, {1080, 1920}};
}

QString sizeText(const QSize &size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

void addScenes(const QVector<QSize> &onSizes)
{
    QTest::addColumn<Scene::Row>("scene");
    QTest::addColumn<QSize>("size");
    for (const Scene::Row &row : Scene::all()) {
        for (const QSize &size : onSizes)
            QTest::addRow("%s-%s", qPrintable(row.name), qPrintable(sizeText(size))) << row << size;
    }
}

QString together(const char *what, const QStringList &faults)
{
    return faults.isEmpty() ? QString()
                            : QLatin1String(what) + QStringLiteral(":\n  ") + faults.join(QLatin1String("\n  "));
}

/// What is wrong, in lines; empty if nothing is.
QString faultsOf(QWidget &window, LookChecks::Scrolling scrolling)
{
    QStringList faults = {together("cut off", LookChecks::clipped(window, scrolling)),
                          together("overlapping", LookChecks::overlapping(window)),
                          together("without a name", LookChecks::nameless(window)),
                          together("too small to touch", LookChecks::smallTargets(window, LEAST_TARGET)),
                          together("too small to read", LookChecks::smallTexts(window, LEAST_LETTERS)),
                          together("too pale", LookChecks::paleTexts(window, LEAST_CONTRAST))};
    faults.removeAll(QString());
    return faults.join(QLatin1Char('\n'));
}
} // namespace

Q_DECLARE_METATYPE(Scene::Row)

void LooksTest::font_ofEachText_isTheNamedOne_data()
{
    addScenes({sizes().first()});
}

void LooksTest::font_ofEachText_isTheNamedOne()
{
    QFETCH(const Scene::Row, scene);
    QFETCH(const QSize, size);
    Rendering::Stage stage(scene.make(), size);
    const auto all = stage.widget().findChildren<QWidget *>();
    for (const QWidget *widget : all) {
        const bool hasText = qobject_cast<const QLabel *>(widget) != nullptr ||
                             qobject_cast<const QAbstractButton *>(widget) != nullptr ||
                             qobject_cast<const QLineEdit *>(widget) != nullptr;
        if (hasText)
            QCOMPARE(QFontInfo(widget->font()).family(), QStringLiteral("Open Sans"));
    }
}

void LooksTest::screen_onEachSize_canBeUsed_data()
{
    addScenes(sizes());
}

void LooksTest::screen_onEachSize_canBeUsed()
{
    QFETCH(const Scene::Row, scene);
    QFETCH(const QSize, size);
    TestClock::freeze(Samples::now());

    Rendering::Stage stage(scene.make(), size);
    const QString faults = faultsOf(stage.widget(), scene.scrolling);
    QVERIFY2(faults.isEmpty(), qPrintable(faults));

    Rendering::lengthenTexts(stage.widget());
    const QString longFaults = faultsOf(stage.widget(), scene.scrolling);
    QVERIFY2(longFaults.isEmpty(), qPrintable(QStringLiteral("with longer texts, ") + longFaults));
}

void LooksTest::screen_onTheSmallestSize_looksAsItDid_data()
{
    addScenes({sizes().first()});
}

void LooksTest::screen_onTheSmallestSize_looksAsItDid()
{
    QFETCH(const Scene::Row, scene);
    QFETCH(const QSize, size);
    TestClock::freeze(Samples::now());

    Rendering::Stage stage(scene.make(), size);
    const QString path = QStringLiteral(KIOSK_GOLDEN "/%1.png").arg(scene.name);
    const QString difference = GoldenImage::differenceFromFile(path, Rendering::picture(stage.widget()));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

int main(int argc, char **argv)
{
    Rendering::prepareFonts();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    kiosk::Look::apply(application);
    TEST_RUN(LooksTest)
}

#include "tst_looks.moc"
