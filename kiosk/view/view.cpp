// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "view/view.h"

#include "guiclient/pluginbaseformviewer.h"
#include "terminal.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QWindow>

namespace kiosk {
namespace {
constexpr auto MESSAGE_TEXT = "messageText";
constexpr auto INPUT_LINE = "inputLine";

/// The viewer that lies over the form, else the form.
FormViewer *topmostViewer(QWidget *form)
{
    auto *top = qobject_cast<FormViewer *>(form);
    const auto laidOver = form != nullptr ? form->findChildren<FormViewer *>() : QList<FormViewer *>();
    for (FormViewer *viewer : laidOver) {
        if (viewer->isVisible())
            top = viewer;
    }
    return top;
}

/// What press calls the button.
QString pressName(const QAbstractButton &button)
{
    const QString suffix = QStringLiteral("Button");
    const QString name = button.objectName();
    if (name == QLatin1String("receiptButton"))
        return QStringLiteral("ok");
    return name.endsWith(suffix) ? name.chopped(suffix.size()) : QString();
}

/// As the window system would: the window finds out which widget is meant.
void sendMouse(QWindow *window, QEvent::Type type, const QPoint &position)
{
    QMouseEvent event(type, position, position, window->mapToGlobal(position), Qt::LeftButton,
                      type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(window, &event);
}

void sendKey(QWidget *widget, QEvent::Type type, QChar character)
{
    QKeyEvent event(type, character.toUpper().unicode(), Qt::NoModifier, QString(character));
    QApplication::sendEvent(widget, &event);
}

bool isUp(const QWidget *widget)
{
    return widget->isVisible() && !widget->visibleRegion().isEmpty();
}

/// What can be read on one part; a null text where it has none.
QString textOf(const QWidget &part)
{
    if (const auto *const label = qobject_cast<const QLabel *>(&part))
        return label->text();
    if (const auto *const button = qobject_cast<const QAbstractButton *>(&part))
        return button->text();
    if (const auto *const line = qobject_cast<const QLineEdit *>(&part))
        return line->text();
    return {};
}
} // namespace

View::View(const Terminal &terminal, QWidget &window) : m_terminal(terminal), m_window(window) {}

QString View::screen() const
{
    switch (m_terminal.screen()) {
    case Terminal::Screen::Idle:
        return QStringLiteral("idle");
    case Terminal::Screen::Receipt:
        return QStringLiteral("receipt");
    case Terminal::Screen::Service:
        return QStringLiteral("service");
    case Terminal::Screen::Broken:
        return QStringLiteral("broken");
    case Terminal::Screen::Form:
    case Terminal::Screen::Details:
        break;
    }
    const auto has = [view = topmost()](const char *name) {
        const auto *const part = view->findChild<QWidget *>(QLatin1String(name));
        return part != nullptr && part->isVisible();
    };
    if (has(INPUT_LINE))
        return QStringLiteral("input");
    if (has(MESSAGE_TEXT))
        return QStringLiteral("message");
    const FormViewer *const viewer = topmostViewer(m_terminal.formWidget());
    const bool hasDetails =
        viewer != nullptr && viewer->currentView() == QLatin1String(PluginBaseFormViewer::PAY_DETAIL_VIEW);
    return hasDetails ? QStringLiteral("details") : QStringLiteral("waiting");
}

QString View::text() const
{
    const QString name = screen();
    const bool isLaidOver = name == QLatin1String("message") || name == QLatin1String("input");
    // The terminal's own bar tells of the money: it belongs to the details.
    const QWidget *const view = isLaidOver ? topmost() : &m_window;
    QStringList lines;
    const auto parts = view->findChildren<QWidget *>();
    for (const QWidget *part : parts) {
        const QString text = isUp(part) ? textOf(*part) : QString();
        if (!text.isEmpty())
            lines.append(text);
    }
    // Where a long word may break: nobody sees it.
    constexpr char16_t zeroWidthSpace = 0x200b;
    return lines.join(QLatin1Char('\n')).remove(QChar(zeroWidthSpace));
}

QStringList View::buttons() const
{
    QStringList names;
    for (const auto *name : {"ok", "yes", "no", "next", "back", "cancel", "pay"}) {
        if (button(QLatin1String(name)) != nullptr)
            names.append(QLatin1String(name));
    }
    return names;
}

QString View::press(const QString &name)
{
    const QAbstractButton *const meant = button(name);
    if (meant == nullptr)
        return QStringLiteral("there is no button \"%1\" to touch, but %2")
            .arg(name, buttons().isEmpty() ? QStringLiteral("none") : buttons().join(QStringLiteral(", ")));
    const QPointer<QWindow> window = m_window.window()->windowHandle();
    const QPoint position = meant->mapTo(m_window.window(), meant->rect().center());
    sendMouse(window, QEvent::MouseButtonPress, position);
    if (window)
        sendMouse(window, QEvent::MouseButtonRelease, position);
    return {};
}

QString View::type(const QString &text)
{
    const QPointer<QLineEdit> line = topmost()->findChild<QLineEdit *>(QLatin1String(INPUT_LINE));
    if (!line)
        return QStringLiteral("there is nothing to type on");
    for (const QChar character : text) {
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            if (line)
                sendKey(line, type, character);
        }
    }
    return {};
}

QWidget *View::topmost() const
{
    FormViewer *const viewer = topmostViewer(m_terminal.formWidget());
    if (viewer == nullptr)
        return &m_window;
    QWidget *const view = viewer->getUi(viewer->currentView());
    return view != nullptr ? view : viewer;
}

QAbstractButton *View::button(const QString &name) const
{
    const QWidget *const top = topmost();
    QAbstractButton *found = nullptr;
    const auto all = m_window.findChildren<QAbstractButton *>();
    for (QAbstractButton *one : all) {
        if (pressName(*one) != name || !one->isEnabled() || !isReachable(*one))
            continue;
        if (found == nullptr || top->isAncestorOf(one))
            found = one;
    }
    return found;
}

bool View::isReachable(const QWidget &widget) const
{
    if (!widget.isVisible())
        return false;
    const QWidget *const touched = m_window.childAt(widget.mapTo(&m_window, widget.rect().center()));
    return touched == &widget || widget.isAncestorOf(touched);
}
} // namespace kiosk
