// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/lookchecks.h"

#include "guiclient/formviewer.h"
#include "guiclient/messagetext.h"
#include "kiosk/looks/contrast.h"
#include "kiosk/looks/rendering.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QComboBox>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QStyleOptionButton>
#include <QTextDocument>

#include <cmath>

namespace LookChecks {
namespace {
QString named(const QWidget &widget)
{
    QString text;
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        text = label->text();
    else if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        text = button->text();
    return QStringLiteral("%1 \"%2\" '%3'")
        .arg(QLatin1String(widget.metaObject()->className()), widget.objectName(), text);
}

/// The part of it that is in sight: scroll areas hide some.
QRect place(const QWidget &widget, const QWidget &window)
{
    QRect area = widget.rect();
    for (const QWidget *part = &widget; part != &window; part = part->parentWidget())
        area = area.translated(part->pos()).intersected(part->parentWidget()->rect());
    return area;
}

/// A viewer that is laid over a form hides all of the form.
bool isCovered(const QWidget &widget)
{
    for (const QWidget *part = &widget; part->parentWidget() != nullptr; part = part->parentWidget()) {
        const auto covers = part->parentWidget()->findChildren<FormViewer *>(QString(), Qt::FindDirectChildrenOnly);
        for (const FormViewer *cover : covers) {
            if (cover != part && cover->isVisible())
                return true;
        }
    }
    return false;
}

bool isControl(const QWidget &widget)
{
    // A spin box's line is part of the spin box.
    if (qobject_cast<const QAbstractSpinBox *>(widget.parentWidget()) != nullptr)
        return false;
    return qobject_cast<const QAbstractButton *>(&widget) != nullptr ||
           qobject_cast<const QLineEdit *>(&widget) != nullptr ||
           qobject_cast<const QAbstractSpinBox *>(&widget) != nullptr ||
           qobject_cast<const QComboBox *>(&widget) != nullptr;
}

/// There is nothing to read on an empty input line.
bool isBlank(const QWidget &widget)
{
    const auto *line = qobject_cast<const QLineEdit *>(&widget);
    return line != nullptr && line->text().isEmpty() && line->placeholderText().isEmpty();
}

bool isText(const QWidget &widget)
{
    const auto *label = qobject_cast<const QLabel *>(&widget);
    return label != nullptr && !label->text().isEmpty();
}

/// Every control and text that somebody sees, or would see after scrolling.
template <typename Predicate>
QList<QWidget *> seen(const QWidget &window, const Predicate &isWanted)
{
    QList<QWidget *> result;
    const auto widgets = window.findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        if (widget->isVisible() && isWanted(*widget) && !isCovered(*widget))
            result.append(widget);
    }
    return result;
}

bool isPart(const QWidget &widget)
{
    return isControl(widget) || isText(widget);
}

QString labelFault(QLabel &label, Scrolling scrolling)
{
    if (auto *message = qobject_cast<MessageText *>(&label)) {
        const bool isFault = scrolling == Scrolling::AFault && message->scrollRange() > 0;
        return isFault ? QStringLiteral("has to be scrolled") : QString();
    }
    const int width = label.width();
    if (!label.wordWrap()) {
        const QSize needed = label.sizeHint();
        return needed.width() <= width && needed.height() <= label.height() ? QString() : QStringLiteral("is cut off");
    }
    const int least = label.minimumSizeHint().width();
    if (least > width)
        return QStringLiteral("has a word that is cut off");
    return label.heightForWidth(width) <= label.height() ? QString() : QStringLiteral("has lines that are cut off");
}

QString buttonFault(const QAbstractButton &button)
{
    QStyleOptionButton option;
    option.initFrom(&button);
    option.text = button.text();
    const QRect room = button.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &button);
    const QSize needed = button.fontMetrics().size(Qt::TextShowMnemonic, button.text());
    return needed.width() <= room.width() && needed.height() <= room.height() ? QString()
                                                                              : QStringLiteral("is cut off");
}

QString textFault(QWidget &widget, Scrolling scrolling)
{
    if (auto *label = qobject_cast<QLabel *>(&widget))
        return labelFault(*label, scrolling);
    if (const auto *button = qobject_cast<QAbstractButton *>(&widget))
        return buttonFault(*button);
    if (const auto *line = qobject_cast<QLineEdit *>(&widget))
        return line->minimumSizeHint().height() <= line->height() ? QString() : QStringLiteral("is too low");
    return {};
}

int letterSize(QWidget &widget)
{
    auto *message = qobject_cast<MessageText *>(&widget);
    return message != nullptr ? message->letterSize() : QFontInfo(widget.font()).pixelSize();
}

/// What is in a scroll area may stick out of it.
bool isScrolled(const QWidget &widget)
{
    const QWidget *viewport = widget.parentWidget();
    return viewport != nullptr && qobject_cast<const QAbstractScrollArea *>(viewport->parentWidget()) != nullptr;
}

bool sticksOut(const QWidget &widget)
{
    const QRect room = widget.parentWidget()->rect();
    if (!isScrolled(widget))
        return !room.contains(widget.geometry());
    return widget.x() < 0 || widget.x() + widget.width() > room.width();
}

bool hasMarkup(const QWidget &widget)
{
    const auto *label = qobject_cast<const QLabel *>(&widget);
    if (label == nullptr || label->textFormat() == Qt::PlainText)
        return false;
    return label->textFormat() != Qt::AutoText || Qt::mightBeRichText(label->text());
}

void scrollIntoSight(QWidget &part, QWidget &window)
{
    for (QWidget *around = part.parentWidget(); around != &window; around = around->parentWidget()) {
        if (auto *area = qobject_cast<QScrollArea *>(around))
            area->ensureWidgetVisible(&part, 0, 0);
    }
}
} // namespace

QStringList clipped(QWidget &window, Scrolling scrolling)
{
    QStringList faults;
    const QSize needed = window.minimumSizeHint();
    if (needed.width() > window.width() || needed.height() > window.height())
        faults.append(QStringLiteral("it needs %1 x %2").arg(needed.width()).arg(needed.height()));
    const auto parts = seen(window, isPart);
    for (QWidget *part : parts) {
        const QString fault = textFault(*part, scrolling);
        if (!fault.isEmpty())
            faults.append(named(*part) + QLatin1Char(' ') + fault);
    }
    const auto all = seen(window, [](const QWidget &) { return true; });
    for (QWidget *widget : all) {
        if (sticksOut(*widget))
            faults.append(named(*widget) + QStringLiteral(" sticks out of what it is in"));
    }
    return faults;
}

QStringList overlapping(QWidget &window)
{
    QStringList faults;
    const auto parts = seen(window, isPart);
    for (int i = 0; i < parts.size(); ++i) {
        for (int j = i + 1; j < parts.size(); ++j) {
            if (place(*parts[i], window).intersects(place(*parts[j], window)))
                faults.append(named(*parts[i]) + QStringLiteral(" and ") + named(*parts[j]));
        }
    }
    return faults;
}

QStringList nameless(QWidget &window)
{
    QStringList faults;
    const auto controls = seen(window, isControl);
    for (QWidget *control : controls) {
        const QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(control);
        if (accessible == nullptr || accessible->text(QAccessible::Name).trimmed().isEmpty())
            faults.append(named(*control));
    }
    return faults;
}

QStringList smallTargets(QWidget &window, int side)
{
    QStringList faults;
    const auto controls = seen(window, isControl);
    for (const QWidget *control : controls) {
        if (control->width() < side || control->height() < side)
            faults.append(
                QStringLiteral("%1 is %2 x %3").arg(named(*control)).arg(control->width()).arg(control->height()));
    }
    return faults;
}

QStringList smallTexts(QWidget &window, int least)
{
    QStringList faults;
    const auto parts = seen(window, isPart);
    for (QWidget *part : parts) {
        if (isBlank(*part))
            continue;
        const int size = letterSize(*part);
        if (size < least)
            faults.append(QStringLiteral("%1 has letters of %2 pixels").arg(named(*part)).arg(size));
    }
    return faults;
}

QStringList paleTexts(QWidget &window, double ratio)
{
    QStringList faults;
    QImage picture = Rendering::picture(window);
    const auto parts = seen(window, isPart);
    for (QWidget *part : parts) {
        if (isBlank(*part))
            continue;
        if (hasMarkup(*part))
            faults.append(named(*part) + QStringLiteral(" has mark-up"));
        if (place(*part, window).size() != part->size()) {
            scrollIntoSight(*part, window);
            picture = Rendering::picture(window);
        }
        // Frames are no text.
        constexpr int frame = 4;
        const double contrast =
            Contrast::ofText(picture.copy(place(*part, window).adjusted(frame, frame, -frame, -frame)));
        if (contrast < ratio)
            faults.append(QStringLiteral("%1 has a contrast of %2").arg(named(*part)).arg(contrast, 0, 'f', 2));
    }
    return faults;
}
} // namespace LookChecks
