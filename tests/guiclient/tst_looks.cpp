// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/defaultmessageview.h"
#include "guiclient/messagetext.h"
#include "guiclient/waitindicator.h"
#include "support/testcase.h"
#include "views.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>

#include <cmath>

namespace {
const QStringList VIEWS{
    QStringLiteral("wait"),         QStringLiteral("wait-card"), QStringLiteral("error"),
    QStringLiteral("question"),     QStringLiteral("long"),      QStringLiteral("one-word"),
    QStringLiteral("number"),       QStringLiteral("full"),      QStringLiteral("details"),
    QStringLiteral("long-details"), QStringLiteral("nothing"),   QStringLiteral("long-caption"),
};
const QList<QSize> SIZES{{1024, 768}, {1280, 1024}, {1080, 1920}, {1024, 660}};

QString longText()
{
    const QString sentence = QStringLiteral("Сервис временно недоступен, оплатите парковку позже. ");
    return sentence.repeated(40).left(1999) + QLatin1Char('!');
}

/// A viewer with one view up, as a customer would meet it.
class Scene
{
public:
    Scene(const QString &view, const QSize &size)
        : provider(18156, QStringLiteral("Городская парковка")), viewer(&session, &provider, Currency(), QString()),
          message(&viewer), input(&session, &viewer, {}, {}, &viewer)
    {
        viewer.resize(size);
        setUp(view);
        viewer.show();
        QVERIFY(QTest::qWaitForWindowExposed(&viewer));
        QCoreApplication::processEvents();
    }

    SessionManager session;
    Provider provider;
    PluginBaseFormViewer viewer;
    MessageWidgetController message;
    PluginProviderParameterInputController input;

private:
    void setUp(const QString &view)
    {
        using Controller = MessageWidgetController;
        if (view == QLatin1String("wait"))
            say(QStringLiteral("Проверка информации, подождите..."), 60, Controller::Wait);
        else if (view == QLatin1String("wait-card")) {
            say(QStringLiteral("Приложите парковочную карту"), 30, Controller::Prompt);
            message.setOkCaption(QStringLiteral("Ввести\nвручную"));
        } else if (view == QLatin1String("error"))
            say(QStringLiteral("Карта не найдена"), 10, Controller::Error);
        else if (view == QLatin1String("question"))
            say(QStringLiteral("Все данные будут потеряны. Продолжить отмену платежа?"), 15, Controller::YesNo);
        else if (view == QLatin1String("long"))
            say(longText(), 10, Controller::Prompt);
        else if (view == QLatin1String("one-word"))
            say(QString(2000, QLatin1Char('W')), 10, Controller::Error);
        else if (view == QLatin1String("long-caption")) {
            say(QStringLiteral("Приложите парковочную карту"), 30, Controller::Prompt);
            message.setOkCaption(QStringLiteral("Ввести номер карты вручную, если карта не читается & нет другой"));
        } else if (view == QLatin1String("number"))
            input.setParameter(provider.name(), Views::cardNumber(), false);
        else if (view == QLatin1String("full"))
            input.setParameter(provider.name(), Views::cardUid(), false);
        else if (view == QLatin1String("details") || view == QLatin1String("long-details")) {
            provider.setParameters(Views::filledParameters());
            viewer.setInfo({15, {}, {}, phone(view)});
            viewer.setPaidIn(FixNumber(100, 10000));
            if (view == QLatin1String("long-details"))
                provider.setParameters({Views::parameter("SummToPay", {}, QStringLiteral("92233720368547758.07")),
                                        Views::parameter("a", longText(), longText()),
                                        Views::parameter("b", QStringLiteral("Код"), QString(500, QLatin1Char('W')))});
            viewer.showPayDetail();
        }
    }

    static QString phone(const QString &view)
    {
        const QString one = QStringLiteral("8 800 100-20-30");
        return view == QLatin1String("long-details") ? (one + QLatin1String(", ")).repeated(8) + one : one;
    }

    void say(const QString &text, int seconds, int kind)
    {
        viewer.addView(new DefaultMessageView, QStringLiteral("messagesView"));
        message.setUi(viewer.getUi(QStringLiteral("messagesView")));
        message.initMessage(text, seconds, kind);
    }
};

template <typename Part>
QList<Part *> visibleParts(const QWidget &of)
{
    QList<Part *> parts = of.findChildren<Part *>();
    parts.erase(std::remove_if(parts.begin(), parts.end(), [](const Part *part) { return !part->isVisible(); }),
                parts.end());
    return parts;
}

/// What a customer reads or touches.
QList<QWidget *> leaves(const QWidget &of)
{
    QList<QWidget *> parts = visibleParts<QWidget>(of);
    const auto isNone = [](const QWidget *part) {
        return qobject_cast<const QLabel *>(part) == nullptr &&
               qobject_cast<const QAbstractButton *>(part) == nullptr &&
               qobject_cast<const QLineEdit *>(part) == nullptr && qobject_cast<const WaitIndicator *>(part) == nullptr;
    };
    parts.erase(std::remove_if(parts.begin(), parts.end(), isNone), parts.end());
    return parts;
}

bool isScrolled(const QWidget *part)
{
    for (const QWidget *above = part->parentWidget(); above != nullptr; above = above->parentWidget()) {
        if (qobject_cast<const QScrollArea *>(above) != nullptr)
            return true;
    }
    return false;
}

QRect placeOf(const QWidget *part)
{
    return {part->mapTo(part->window(), QPoint()), part->size()};
}

double luminance(QRgb colour)
{
    const auto linear = [](int channel) {
        const double value = channel / 255.0;
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) + 0.0722 * linear(qBlue(colour));
}

/// Between what most of the picture is and what differs most from it.
double contrast(const QImage &picture)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ++counts[picture.pixel(x, y)];
    }
    QRgb background = 0;
    for (auto count = counts.cbegin(); count != counts.cend(); ++count) {
        if (count.value() > counts.value(background))
            background = count.key();
    }
    double best = 1;
    for (auto count = counts.cbegin(); count != counts.cend(); ++count) {
        const double one = luminance(background) + 0.05;
        const double other = luminance(count.key()) + 0.05;
        best = std::max(best, std::max(one, other) / std::min(one, other));
    }
    return best;
}

QString accessibleName(QWidget *part)
{
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(part);
    return interface != nullptr ? interface->text(QAccessible::Name) : QString();
}

QString describe(const QWidget *part)
{
    const QRect place = placeOf(part);
    return QStringLiteral("%1 %2 at %3,%4 of %5x%6")
        .arg(QLatin1String(part->metaObject()->className()), part->objectName())
        .arg(place.x())
        .arg(place.y())
        .arg(place.width())
        .arg(place.height());
}

/// Empty when all is well.
QString faultOf(QWidget *part, const QImage &picture)
{
    const QRect place = placeOf(part);
    if (qobject_cast<QAbstractButton *>(part) != nullptr && (place.height() < 64 || place.width() < 64))
        return QStringLiteral("too small to touch");
    if (!isScrolled(part) && !picture.rect().contains(place))
        return QStringLiteral("not on the screen");
    if (accessibleName(part).isEmpty())
        return QStringLiteral("without an accessible name");
    auto *text = qobject_cast<MessageText *>(part);
    if (text != nullptr && text->letterSize() < 26)
        return QStringLiteral("letters too small to read");
    if (text == nullptr && qobject_cast<WaitIndicator *>(part) == nullptr &&
        qobject_cast<QLineEdit *>(part) == nullptr) {
        const QSize needed = part->sizeHint();
        if (place.width() < needed.width() && !part->hasHeightForWidth())
            return QStringLiteral("narrower than its text");
        const int height = part->hasHeightForWidth() ? part->heightForWidth(place.width()) : needed.height();
        if (place.height() < height)
            return QStringLiteral("lower than its text");
    }
    if (!isScrolled(part) && qobject_cast<QLineEdit *>(part) == nullptr && contrast(picture.copy(place)) < 4.5)
        return QStringLiteral("hard to read: a contrast of %1").arg(contrast(picture.copy(place)));
    return {};
}
} // namespace

/// Each view at each size of screen, as somebody sees it who stands before it.
class LooksTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void view_atEachSize_canBeReadAndTouched_data()
    {
        QTest::addColumn<QString>("view");
        QTest::addColumn<QSize>("size");
        for (const QString &view : VIEWS) {
            for (const QSize &size : SIZES)
                QTest::addRow("%s-%dx%d", qPrintable(view), size.width(), size.height()) << view << size;
        }
    }

    void view_atEachSize_canBeReadAndTouched()
    {
        QFETCH(QString, view);
        QFETCH(QSize, size);
        Scene scene(view, size);
        const QImage picture = scene.viewer.grab().toImage();
        // For people to look at.
        const QString folder = qEnvironmentVariable("GUICLIENT_PICTURES");
        if (!folder.isEmpty())
            picture.save(folder + QLatin1Char('/') + QLatin1String(QTest::currentDataTag()) + QLatin1String(".png"));

        QStringList faults;
        const QList<QWidget *> parts = leaves(scene.viewer);
        QVERIFY(!parts.isEmpty());
        for (QWidget *part : parts) {
            const QString fault = faultOf(part, picture);
            if (!fault.isEmpty())
                faults.append(describe(part) + QStringLiteral(": ") + fault);
            for (QWidget *other : parts) {
                if (part < other && !isScrolled(part) && !isScrolled(other) && placeOf(part).intersects(placeOf(other)))
                    faults.append(describe(part) + QStringLiteral(" overlaps ") + describe(other));
            }
        }
        const auto bars = visibleParts<QScrollBar>(scene.viewer);
        if (!view.startsWith(QLatin1String("long")) && !bars.isEmpty())
            faults.append(QStringLiteral("scrolls where there is room"));
        if (!faults.isEmpty())
            QFAIL(qPrintable(faults.join(QLatin1Char('\n'))));
    }
};

WIDGET_TEST_MAIN(LooksTest)
#include "tst_looks.moc"
