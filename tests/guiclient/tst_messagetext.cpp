// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/messagetext.h"

#include "guiclient/textflow.h"
#include "guiclient/waitindicator.h"
#include "support/testcase.h"
#include "support/waiting.h"

#include <QApplication>
#include <QWheelEvent>

namespace {
constexpr int SMALLEST = 26;
constexpr int LARGEST = 52;

/// A text on the screen, in letters of 52 pixels where there is room.
class Sheet
{
public:
    explicit Sheet(const QString &content, const QSize &size = {800, 400}) : text(&window)
    {
        QFont font;
        font.setPixelSize(LARGEST);
        text.setFont(font);
        text.resize(size);
        text.setText(content);
        window.resize(size);
        window.show();
    }

    [[nodiscard]] QImage picture() { return text.grab().toImage(); }
    /// The finger goes from one height to another.
    void drag(int from, int to)
    {
        QTest::mousePress(&text, Qt::LeftButton, {}, QPoint(100, from));
        QMouseEvent move(QEvent::MouseMove, QPoint(100, to), Qt::LeftButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&text, &move);
        QTest::mouseRelease(&text, Qt::LeftButton, {}, QPoint(100, to));
    }

    QWidget window;
    MessageText text;
};

QString words(int characters)
{
    return QStringLiteral("парковка ").repeated(characters).left(characters);
}

/// The rows of the picture in which something stands, beside the scroll bar.
int inkedRows(const QImage &picture)
{
    const QRgb paper = picture.pixel(30, 0);
    int rows = 0;
    for (int y = 0; y < picture.height(); ++y) {
        bool hasInk = false;
        for (int x = 30; x < picture.width() - 30 && !hasInk; ++x)
            hasInk = picture.pixel(x, y) != paper;
        rows += hasInk ? 1 : 0;
    }
    return rows;
}
} // namespace

/// Texts that are never cut, and the dots that go round.
class MessageTextTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void text_empty_asksForNoHeight()
    {
        Sheet sheet(QStringLiteral("Подождите"));
        QVERIFY(sheet.text.heightForWidth(800) >= LARGEST);
        QVERIFY(sheet.text.minimumSizeHint().height() >= SMALLEST);
        sheet.text.setText({});
        QCOMPARE(sheet.text.heightForWidth(800), 0);
        QCOMPARE(sheet.text.sizeHint().height(), 0);
        QCOMPARE(sheet.text.minimumSizeHint().height(), 0);
    }

    void text_ofAnyLength_isAllThere_data()
    {
        QTest::addColumn<QString>("content");
        QTest::addColumn<bool>("isLarge");
        QTest::addColumn<bool>("isScrolled");
        QTest::newRow("none") << QString() << true << false;
        QTest::newRow("short") << words(20) << true << false;
        QTest::newRow("several lines") << QStringLiteral("a\nb\nc") << true << false;
        QTest::newRow("longer") << words(300) << false << false;
        QTest::newRow("2,000 characters") << words(2000) << false << true;
        QTest::newRow("many lines") << QStringLiteral("a\n").repeated(100) << false << true;
        QTest::newRow("a long word") << QString(40, QLatin1Char('W')) << false << false;
        QTest::newRow("a word of 2,000") << QString(2000, QLatin1Char('W')) << false << true;
    }

    void text_ofAnyLength_isAllThere()
    {
        QFETCH(QString, content);
        QFETCH(bool, isLarge);
        QFETCH(bool, isScrolled);
        Sheet sheet(content);
        QCOMPARE(sheet.text.letterSize() == LARGEST, isLarge);
        QVERIFY(sheet.text.letterSize() >= SMALLEST);
        QCOMPARE(sheet.text.scrollRange() > 0, isScrolled);
        QVERIFY(!isScrolled || sheet.text.letterSize() == SMALLEST);
        QCOMPARE(inkedRows(sheet.picture()) > 0, !content.isEmpty());
    }

    void text_changed_isLaidOutAnew()
    {
        Sheet sheet(words(2000));
        QVERIFY(sheet.text.scrollRange() > 0);
        sheet.text.setText(words(20));
        QCOMPARE(sheet.text.scrollRange(), 0);
        QCOMPARE(sheet.text.letterSize(), LARGEST);
        sheet.text.resize(200, 40);
        QVERIFY(sheet.text.letterSize() < LARGEST);
    }

    void amount_tooWide_isWrittenSmallerBeforeItIsBroken()
    {
        Sheet sheet(QStringLiteral("92233720368547758.07"), {600, 200});
        QVERIFY(sheet.text.letterSize() < LARGEST);
        QVERIFY(sheet.text.letterSize() > SMALLEST);
        // One line of it.
        QVERIFY(inkedRows(sheet.picture()) < LARGEST);
    }

    void text_tooLong_scrollsUnderTheFinger()
    {
        Sheet sheet(words(2000));
        const QImage top = sheet.picture();
        sheet.drag(300, 100);
        const QImage middle = sheet.picture();
        QVERIFY(middle != top);
        sheet.drag(100, 300);
        QCOMPARE(sheet.picture(), top);
        // Not beyond its ends.
        sheet.drag(100, 300);
        QCOMPARE(sheet.picture(), top);
        sheet.drag(300, -10000);
        const QImage bottom = sheet.picture();
        QVERIFY(bottom != middle);
        sheet.drag(300, 200);
        QCOMPARE(sheet.picture(), bottom);
        QVERIFY(inkedRows(bottom) > 0);
    }

    void text_scrolledToItsEnd_staysThereWhenThereIsMoreRoom()
    {
        Sheet sheet(words(2000));
        sheet.drag(300, -10000);
        sheet.text.resize(800, 500);
        Sheet larger(words(2000), {800, 500});
        larger.drag(300, -10000);
        QCOMPARE(sheet.picture(), larger.picture());
    }

    void text_thatFits_doesNotScroll()
    {
        Sheet sheet(words(20));
        const QImage before = sheet.picture();
        sheet.drag(300, 100);
        QCOMPARE(sheet.picture(), before);
    }

    void wheel_turned_scrolls()
    {
        Sheet sheet(words(2000));
        const QImage top = sheet.picture();
        QWheelEvent down({100, 100}, {100, 100}, {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&sheet.text, &down);
        QVERIFY(sheet.picture() != top);
    }

    void text_new_beginsAtItsTop()
    {
        Sheet sheet(words(2000));
        sheet.drag(300, -10000);
        sheet.text.setText(words(1900));
        QCOMPARE(sheet.picture(), Sheet(words(1900)).picture());
    }

    void flow_ofWords_breaksBetweenThem_data()
    {
        QTest::addColumn<QString>("content");
        QTest::addColumn<int>("width");
        QTest::addColumn<bool>("breaksWords");
        QTest::newRow("wide enough") << QStringLiteral("один два") << 1000 << false;
        QTest::newRow("two lines") << QStringLiteral("один два") << 100 << false;
        QTest::newRow("too narrow") << QStringLiteral("один два") << 20 << true;
        QTest::newRow("no text") << QString() << 20 << false;
        QTest::newRow("no width") << QStringLiteral("a") << 0 << true;
    }

    void flow_ofWords_breaksBetweenThem()
    {
        QFETCH(QString, content);
        QFETCH(int, width);
        QFETCH(bool, breaksWords);
        QFont font;
        font.setPixelSize(24);
        const TextFlow flow(content, font, width, Qt::AlignLeft);
        QCOMPARE(flow.breaksWords(), breaksWords);
        QVERIFY(flow.height() > 0 || content.isEmpty());
    }

    void indicator_visible_moves()
    {
        QWidget window;
        WaitIndicator indicator(&window);
        indicator.resize(indicator.sizeHint());
        window.show();
        const QImage before = indicator.grab().toImage();
        WAIT_FOR(indicator.grab().toImage() != before, true);
    }

    void indicator_hidden_stands()
    {
        QWidget window;
        WaitIndicator indicator(&window);
        indicator.resize(indicator.sizeHint());
        WaitIndicator reference(&window);
        window.show();
        indicator.hide();
        const QImage before = indicator.grab().toImage();
        int steps = 0;
        QImage last = reference.grab().toImage();
        const auto countSteps = [&] {
            const QImage now = reference.grab().toImage();
            steps += now != last ? 1 : 0;
            last = now;
            return steps;
        };
        WAIT_FOR(countSteps() >= 3, true);
        QCOMPARE(indicator.grab().toImage(), before);
    }
};

WIDGET_TEST_MAIN(MessageTextTest)
#include "tst_messagetext.moc"
