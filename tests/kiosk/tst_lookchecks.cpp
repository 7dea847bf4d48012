// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/messagetext.h"
#include "kiosk/looks/contrast.h"
#include "kiosk/looks/goldenimage.h"
#include "kiosk/looks/lookchecks.h"
#include "kiosk/looks/rendering.h"
#include "support/testcase.h"
#include "support/workdirectory.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {
constexpr QSize SIZE(400, 300);

std::unique_ptr<QWidget> page(const QString &style = {})
{
    auto made = std::make_unique<QWidget>();
    made->setStyleSheet(QStringLiteral("* { font: 20px \"Open Sans\"; color: black; background: white; }") + style);
    return made;
}

template <typename Widget>
Widget *placed(QWidget &parent, const QRect &place, const QString &text = {})
{
    auto *made = new Widget(&parent);
    made->setObjectName(text);
    if constexpr (!std::is_same_v<Widget, QLineEdit>)
        made->setText(text);
    made->setGeometry(place);
    return made;
}

QImage picture()
{
    QImage image(320, 240, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

/// The ground of the kiosk's screens.
constexpr QColor GROUND(0xf1, 0xf4, 0xf7);

/// A white card with a thin frame on the ground. @param surface what it is filled with.
QImage pictureWithCard(const QColor &surface = Qt::white)
{
    QImage image = picture();
    image.fill(GROUND);
    QPainter painter(&image);
    painter.setPen(QColor(0xcf, 0xd8, 0xe1));
    painter.setBrush(surface);
    painter.drawRect(40, 40, 99, 63);
    return image;
}

/// On it more shades than a palette holds, a pixel of each, as the edges of letters have them.
QImage pictureWithShades()
{
    QImage image = pictureWithCard();
    for (int i = 0; i < 900; ++i)
        image.setPixel(i % 300, 120 + 4 * (i / 300), qRgb(100 + i % 30, 100 + i / 30, 110));
    return image;
}

/// A button in two colours at a place.
QImage pictureWithButton(const QPoint &place, const QColor &ground = QColor(11, 74, 138))
{
    QImage image = picture();
    QPainter painter(&image);
    painter.fillRect(QRect(place, QSize(100, 64)), ground);
    painter.fillRect(QRect(place + QPoint(20, 28), QSize(60, 8)), Qt::white);
    return image;
}
} // namespace

/// The checks of the looks tests find what they are there for.
class LookChecksTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void checks_ofAGoodPage_findNothing()
    {
        auto content = page();
        placed<QLabel>(*content, {10, 10, 200, 40}, QStringLiteral("Текст"));
        placed<QPushButton>(*content, {10, 60, 200, 64}, QStringLiteral("Кнопка"));
        Rendering::Stage stage(std::move(content), SIZE);
        QCOMPARE(LookChecks::clipped(stage.widget()), QStringList());
        QCOMPARE(LookChecks::overlapping(stage.widget()), QStringList());
        QCOMPARE(LookChecks::nameless(stage.widget()), QStringList());
        QCOMPARE(LookChecks::smallTargets(stage.widget(), 64), QStringList());
        QCOMPARE(LookChecks::smallTexts(stage.widget(), 20), QStringList());
        QCOMPARE(LookChecks::paleTexts(stage.widget(), 4.5), QStringList());
    }

    void clipped_text_isFound_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QRect>("place");
        QTest::addColumn<int>("faults");
        const QRect roomy(10, 10, 300, 100);
        QTest::newRow("a line that fits") << "line" << roomy << 0;
        QTest::newRow("a line that is too narrow") << "line" << QRect(10, 10, 100, 100) << 1;
        QTest::newRow("a line that is too low") << "line" << QRect(10, 10, 300, 12) << 1;
        QTest::newRow("lines that fit") << "lines" << QRect(10, 10, 150, 100) << 0;
        QTest::newRow("one line too many") << "lines" << QRect(10, 10, 150, 40) << 1;
        QTest::newRow("a word that is too long") << "lines" << QRect(10, 10, 60, 200) << 1;
        QTest::newRow("a button that fits") << "button" << roomy << 0;
        QTest::newRow("a button that is too narrow") << "button" << QRect(10, 10, 100, 64) << 1;
        QTest::newRow("a button that is too low") << "button" << QRect(10, 10, 300, 16) << 1;
        QTest::newRow("a line that sticks out of the page") << "line" << QRect(200, 10, 300, 100) << 1;
    }

    void clipped_text_isFound()
    {
        QFETCH(const QString, kind);
        QFETCH(const QRect, place);
        QFETCH(const int, faults);
        const QString text = QStringLiteral("Терминал не работает");
        auto content = page();
        if (kind == QLatin1String("button"))
            placed<QPushButton>(*content, place, text);
        else
            placed<QLabel>(*content, place, text)->setWordWrap(kind == QLatin1String("lines"));
        Rendering::Stage stage(std::move(content), SIZE);
        QCOMPARE(LookChecks::clipped(stage.widget()).size(), faults);
    }

    void clipped_pageThatNeedsMore_isFound()
    {
        auto content = page();
        auto *layout = new QVBoxLayout(content.get());
        auto *tall = new QLabel(QStringLiteral("Текст"));
        tall->setMinimumHeight(SIZE.height());
        layout->addWidget(tall);
        Rendering::Stage stage(std::move(content), SIZE);
        QVERIFY(LookChecks::clipped(stage.widget()).first().startsWith(QLatin1String("it needs")));
    }

    void clipped_belowTheEdgeOfAScrollArea_isNone()
    {
        auto content = page();
        auto *area = new QScrollArea(content.get());
        area->setGeometry(0, 0, 400, 100);
        auto *tall = new QWidget;
        tall->resize(300, 600);
        placed<QLabel>(*tall, {10, 400, 200, 40}, QStringLiteral("Ниже"));
        area->setWidget(tall);
        Rendering::Stage stage(std::move(content), SIZE);
        QCOMPARE(LookChecks::clipped(stage.widget()), QStringList());
    }

    void overlapping_controls_areFound_data()
    {
        QTest::addColumn<QRect>("second");
        QTest::addColumn<int>("faults");
        QTest::newRow("beside") << QRect(210, 10, 100, 64) << 0;
        QTest::newRow("a pixel too far left") << QRect(209, 10, 100, 64) << 1;
        QTest::newRow("on it") << QRect(10, 10, 200, 64) << 1;
    }

    void overlapping_controls_areFound()
    {
        QFETCH(const QRect, second);
        QFETCH(const int, faults);
        auto content = page();
        placed<QPushButton>(*content, {10, 10, 200, 64}, QStringLiteral("Одна"));
        placed<QLabel>(*content, second, QStringLiteral("Другая"));
        Rendering::Stage stage(std::move(content), SIZE);
        QCOMPARE(LookChecks::overlapping(stage.widget()).size(), faults);
    }

    void nameless_controls_areFound()
    {
        auto content = page();
        placed<QLineEdit>(*content, {10, 10, 200, 64}, QStringLiteral("nameless"));
        placed<QLineEdit>(*content, {10, 100, 200, 64}, QStringLiteral("named"))
            ->setAccessibleName(QStringLiteral("Имя"));
        placed<QPushButton>(*content, {10, 200, 200, 64});
        Rendering::Stage stage(std::move(content), SIZE);
        QCOMPARE(LookChecks::nameless(stage.widget()).size(), 2);
    }

    void smallTargets_lowerOrNarrower_areFound()
    {
        auto content = page();
        placed<QPushButton>(*content, {10, 10, 64, 64}, QStringLiteral("А"));
        placed<QPushButton>(*content, {100, 10, 64, 63}, QStringLiteral("Б"));
        placed<QPushButton>(*content, {200, 10, 63, 64}, QStringLiteral("В"));
        Rendering::Stage stage(std::move(content), SIZE);
        const QStringList expected = {QStringLiteral("QPushButton \"Б\" 'Б' is 64 x 63"),
                                      QStringLiteral("QPushButton \"В\" 'В' is 63 x 64")};
        QCOMPARE(LookChecks::smallTargets(stage.widget(), 64), expected);
    }

    void smallTexts_areFound_data()
    {
        QTest::addColumn<QString>("style");
        QTest::addColumn<QStringList>("faults");
        const QString label = QStringLiteral("QLabel \"Текст\" 'Текст' has letters of 17 pixels");
        const QString button = QStringLiteral("QPushButton \"Кнопка\" 'Кнопка' has letters of 17 pixels");
        QTest::newRow("just large enough") << "* { font-size: 18px; }" << QStringList();
        QTest::newRow("a text") << "QLabel { font-size: 17px; }" << QStringList{label};
        QTest::newRow("a button") << "QPushButton { font-size: 17px; }" << QStringList{button};
        QTest::newRow("an empty line") << "QLineEdit { font-size: 17px; }" << QStringList();
    }

    void smallTexts_areFound()
    {
        QFETCH(const QString, style);
        auto content = page(style);
        placed<QLabel>(*content, {10, 10, 200, 40}, QStringLiteral("Текст"));
        placed<QPushButton>(*content, {10, 60, 200, 64}, QStringLiteral("Кнопка"));
        placed<QLineEdit>(*content, {10, 140, 200, 64});
        Rendering::Stage stage(std::move(content), SIZE);
        QTEST(LookChecks::smallTexts(stage.widget(), 18), "faults");
    }

    void smallTexts_ofAMessageThatHadToShrink_areFound()
    {
        auto content = page(QStringLiteral("* { font-size: 40px; }"));
        auto *text = placed<MessageText>(*content, {10, 10, 380, 280}, QStringLiteral("Подождите"));
        Rendering::Stage stage(std::move(content), SIZE);
        QCOMPARE(LookChecks::smallTexts(stage.widget(), 40), QStringList());
        text->setText(QStringLiteral("Подождите, пожалуйста. ").repeated(20));
        QCOMPARE(LookChecks::smallTexts(stage.widget(), 40).size(), 1);
    }

    void clipped_messageThatScrolls_isFoundUnlessItIsMeantTo()
    {
        auto content = page();
        placed<MessageText>(*content, {10, 10, 380, 100}, QStringLiteral("Подождите, пожалуйста. ").repeated(20));
        Rendering::Stage stage(std::move(content), SIZE);
        QCOMPARE(LookChecks::clipped(stage.widget()).size(), 1);
        QCOMPARE(LookChecks::clipped(stage.widget(), LookChecks::Scrolling::Meant), QStringList());
    }

    void paleTexts_areMeasuredAsDrawn_data()
    {
        QTest::addColumn<QString>("style");
        QTest::addColumn<bool>("isEnabled");
        QTest::addColumn<int>("faults");
        QTest::newRow("black on white") << "" << true << 0;
        QTest::newRow("#767676 on white: 4.54") << "QPushButton { color: #767676; }" << true << 0;
        QTest::newRow("#7a7a7a on white: 4.29") << "QPushButton { color: #7a7a7a; }" << true << 1;
        QTest::newRow("on its own colour") << "QPushButton { color: white; }" << true << 1;
        QTest::newRow("pale when it is off") << "QPushButton:disabled { color: #999999; }" << false << 1;
    }

    void paleTexts_areMeasuredAsDrawn()
    {
        QFETCH(const QString, style);
        QFETCH(const bool, isEnabled);
        QFETCH(const int, faults);
        auto content = page(QStringLiteral("QPushButton { font: bold 28px \"Open Sans\"; border: none; }") + style);
        placed<QPushButton>(*content, {10, 10, 200, 64}, QStringLiteral("Текст"))->setEnabled(isEnabled);
        Rendering::Stage stage(std::move(content), SIZE);
        QCOMPARE(LookChecks::paleTexts(stage.widget(), 4.5).size(), faults);
    }

    void paleTexts_outOfSight_areScrolledIntoIt_data()
    {
        QTest::addColumn<int>("y");
        QTest::newRow("in sight") << 10;
        QTest::newRow("half out of sight") << 180;
        QTest::newRow("out of sight") << 400;
    }

    void paleTexts_outOfSight_areScrolledIntoIt()
    {
        QFETCH(const int, y);
        auto content = page();
        auto *area = new QScrollArea(content.get());
        area->setGeometry(0, 0, 400, 200);
        auto *tall = new QWidget;
        tall->resize(300, 600);
        placed<QLabel>(*tall, {10, y, 200, 40}, QStringLiteral("Бледный"))
            ->setStyleSheet(QStringLiteral("color: #cccccc;"));
        placed<QLabel>(*tall, {10, 550, 200, 40}, QStringLiteral("Чёткий"));
        area->setWidget(tall);
        Rendering::Stage stage(std::move(content), SIZE);
        const QStringList faults = LookChecks::paleTexts(stage.widget(), 4.5);
        QCOMPARE(faults.size(), 1);
        QVERIFY2(faults.first().contains(QStringLiteral("Бледный")), qPrintable(faults.first()));
    }

    void paleTexts_withMarkup_areFaults_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("format");
        QTest::addColumn<int>("faults");
        const QString twoColours = QStringLiteral("Чёткий <font color=\"#cccccc\">бледный</font>");
        QTest::newRow("two colours") << twoColours << int(Qt::AutoText) << 1;
        QTest::newRow("always mark-up") << QStringLiteral("Чёткий") << int(Qt::RichText) << 1;
        QTest::newRow("never mark-up") << twoColours << int(Qt::PlainText) << 0;
        QTest::newRow("none in it") << QStringLiteral("1 < 2") << int(Qt::AutoText) << 0;
    }

    void paleTexts_withMarkup_areFaults()
    {
        QFETCH(const QString, text);
        QFETCH(const int, format);
        auto content = page();
        placed<QLabel>(*content, {10, 10, 380, 40}, text)->setTextFormat(static_cast<Qt::TextFormat>(format));
        Rendering::Stage stage(std::move(content), SIZE);
        QTEST(LookChecks::paleTexts(stage.widget(), 4.5).size(), "faults");
    }

    void contrast_ofKnownColours_isWcags()
    {
        QCOMPARE(Contrast::ratio(Qt::black, Qt::white), 21.0);
        QCOMPARE(Contrast::ratio(Qt::white, Qt::white), 1.0);
        QVERIFY(std::abs(Contrast::ratio(QColor(0x76, 0x76, 0x76), Qt::white) - 4.54) < 0.01);
    }

    void lengthenTexts_addsTwoFifths()
    {
        auto content = page();
        const auto *label = placed<QLabel>(*content, {10, 10, 300, 40}, QStringLiteral("Десять бук"));
        const auto *button = placed<QPushButton>(*content, {10, 100, 300, 64}, QStringLiteral("1"));
        Rendering::Stage stage(std::move(content), SIZE);
        Rendering::lengthenTexts(stage.widget());
        QCOMPARE(label->text(), QStringLiteral("Десять бук Деся"));
        QCOMPARE(button->text(), QStringLiteral("1"));
    }

    void goldenImage_whatAnybodyWouldSee_differs_data()
    {
        QTest::addColumn<QImage>("actual");
        QTest::addColumn<bool>("differs");
        const QPoint place(40, 40);
        QImage smoothed = pictureWithButton(place);
        for (int y = 0; y < smoothed.height(); y += 16)
            smoothed.setPixel(40, y, qRgb(120, 120, 120));
        QTest::newRow("the same") << pictureWithButton(place) << false;
        QTest::newRow("a pixel of an edge here and there") << smoothed << false;
        QTest::newRow("a surface that is two steps off") << pictureWithButton(place, QColor(13, 74, 137)) << false;
        QTest::newRow("a surface that is three steps off") << pictureWithButton(place, QColor(11, 77, 138)) << true;
        QTest::newRow("missing") << picture() << true;
        QTest::newRow("a pixel to the right") << pictureWithButton({41, 40}) << true;
        QTest::newRow("a pixel down") << pictureWithButton({40, 41}) << true;
        QTest::newRow("another colour") << pictureWithButton(place, QColor(61, 74, 87)) << true;
        QTest::newRow("another size") << pictureWithButton(place).copy(0, 0, 320, 239) << true;
    }

    void goldenImage_whatAnybodyWouldSee_differs()
    {
        QFETCH(const QImage, actual);
        QFETCH(const bool, differs);
        const QString difference = GoldenImage::difference(pictureWithButton({40, 40}), actual);
        QVERIFY2(difference.isEmpty() != differs, qPrintable(difference));
    }

    void goldenImage_surfaceThatTurnsIntoGround_differs()
    {
        QCOMPARE(GoldenImage::difference(pictureWithCard(), pictureWithCard()), QString());
        QVERIFY(!GoldenImage::difference(pictureWithCard(), pictureWithCard(GROUND)).isEmpty());
        QVERIFY(!GoldenImage::difference(pictureWithCard(GROUND), pictureWithCard()).isEmpty());
    }

    void goldenImage_edgeThatIsSmoothedInAnotherWay_isNone_data()
    {
        QTest::addColumn<int>("steps");
        QTest::addColumn<bool>("differs");
        QTest::newRow("a little") << 15 << false;
        QTest::newRow("much") << 20 << true;
    }

    void goldenImage_edgeThatIsSmoothedInAnotherWay_isNone()
    {
        QFETCH(const int, steps);
        QFETCH(const bool, differs);
        // Every second pixel of a line, as a slanted stroke's edge has them.
        const auto smoothed = [](int level) {
            QImage image = picture();
            for (int x = 32; x < 96; x += 2)
                image.setPixel(x, 100, qRgb(level, level, level));
            return image;
        };
        const QString difference = GoldenImage::difference(smoothed(120), smoothed(120 + steps));
        QVERIFY2(difference.isEmpty() != differs, qPrintable(difference));
    }

    void goldenImage_ofAFile_keepsSurfacesExactly()
    {
        const QString path = WorkDirectory::path() + QStringLiteral("/shades.png");
        const QImage image = pictureWithShades();
        qputenv("RENEW_GOLDEN_IMAGES", "1");
        QVERIFY(GoldenImage::differenceFromFile(path, image).startsWith(QLatin1String("renewed")));
        qunsetenv("RENEW_GOLDEN_IMAGES");
        QCOMPARE(GoldenImage::differenceFromFile(path, image), QString());
        const QImage kept(path);
        QCOMPARE(kept.format(), QImage::Format_Indexed8);
        // Ground, frame and card.
        for (const QPoint &point : {QPoint(10, 10), QPoint(40, 70), QPoint(90, 70)})
            QCOMPARE(QColor(kept.pixel(point)), QColor(image.pixel(point)));
    }

    void goldenImage_ofAFile_isWrittenOnDemandAlone()
    {
        const QString path = WorkDirectory::path() + QStringLiteral("/lookchecks.png");
        const QImage image = pictureWithButton({40, 40});
        const QString absent = GoldenImage::differenceFromFile(path, image);
        QVERIFY2(absent.contains(QLatin1String("there is no picture")), qPrintable(absent));
        QVERIFY(!QFile::exists(path));

        qputenv("RENEW_GOLDEN_IMAGES", "1");
        const QString renewed = GoldenImage::differenceFromFile(path, image);
        qunsetenv("RENEW_GOLDEN_IMAGES");
        QVERIFY2(renewed.startsWith(QLatin1String("renewed")), qPrintable(renewed));
        QCOMPARE(GoldenImage::differenceFromFile(path, image), QString());
        QVERIFY(GoldenImage::differenceFromFile(path, picture()).contains(QLatin1String("it differs within")));
    }
};

int main(int argc, char **argv)
{
    Rendering::prepareFonts();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("RENEW_GOLDEN_IMAGES");
    const QApplication application(argc, argv);
    TEST_RUN(LookChecksTest)
}

#include "tst_lookchecks.moc"
