// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/messageview.h"

#include "guiclient/guiclientlog.h"
#include "guiclient/message.h"
#include "guiclient/messagewidgetcontroller.h"

#include <QAbstractButton>
#include <QLabel>

namespace {
using Controller = MessageWidgetController;

void setVisible(QWidget *part, bool isVisible)
{
    if (part != nullptr && part->isHidden() == isVisible)
        part->setVisible(isVisible);
}

void setCaption(QAbstractButton *button, const QString &caption)
{
    // A "&" would underline the letter behind it.
    const QString text = QString(caption).replace(QLatin1Char('&'), QLatin1String("&&"));
    if (button != nullptr && button->text() != text)
        button->setText(text);
}

/// Texts that do not change cost a layout all the same.
void setText(QLabel *label, const QString &text)
{
    if (label != nullptr && label->text() != text)
        label->setText(text);
}
} // namespace

MessageView *MessageView::of(QWidget *widget)
{
    auto *view = widget->findChild<MessageView *>(QString(), Qt::FindDirectChildrenOnly);
    return view != nullptr ? view : new MessageView(widget);
}

MessageView::MessageView(QWidget *widget) : QObject(widget), m_widget(widget)
{
    const auto label = [&](const char *name) {
        auto *found = widget->findChild<QLabel *>(QLatin1String(name));
        if (found == nullptr)
            warnOfMissing(name, "QLabel");
        else
            // What a service answers must not be taken for mark-up.
            found->setTextFormat(Qt::PlainText);
        return found;
    };
    m_text = label("messageText");
    if (m_text)
        m_text->setWordWrap(true);
    m_countdown = label("countdown");
    m_waitIndicator = widget->findChild<QWidget *>(QStringLiteral("waitIndicator"));
    m_errorMark = widget->findChild<QWidget *>(QStringLiteral("errorMark"));
    m_ok = findButton("okButton", QString());
    m_cancel = findButton("cancelButton", QStringLiteral("Отмена"));
    m_yes = findButton("yesButton", QStringLiteral("Да"));
    m_no = findButton("noButton", QStringLiteral("Нет"));
}

QAbstractButton *MessageView::findButton(const char *name, const QString &caption)
{
    auto *button = m_widget->findChild<QAbstractButton *>(QLatin1String(name));
    if (button == nullptr) {
        warnOfMissing(name, "QAbstractButton");
        return nullptr;
    }
    setCaption(button, caption);
    connect(button, &QAbstractButton::clicked, this, [this, button] { buttonPressed(button); });
    return button;
}

void MessageView::buttonPressed(const QAbstractButton *button)
{
    if (!m_owner)
        return;
    if (button == m_yes)
        m_owner->close(Controller::Yes);
    else if (button == m_ok && m_kind == Controller::Prompt)
        m_owner->close(Controller::PromptOk);
    else
        m_owner->close(Controller::Closed);
}

void MessageView::warnOfMissing(const char *name, const char *kind)
{
    qCWarning(GUICLIENT_LOG).noquote().nospace()
        << "The message view \"" << m_widget->objectName() << "\" has no " << kind << " \"" << name
        << "\": messages are shown without it. Add it to the view's .ui file.";
}

MessageWidgetController *MessageView::owner() const
{
    return m_owner;
}

void MessageView::setOwner(MessageWidgetController *owner)
{
    if (m_owner && m_owner != owner)
        m_owner->loseView();
    m_owner = owner;
}

void MessageView::takeOff()
{
    m_widget->hide();
}

void MessageView::release()
{
    m_owner.clear();
    takeOff();
}

void MessageView::show(const Message &message)
{
    m_kind = message.kind;
    setText(m_text, message.text);
    setOkCaption(message.okCaption);
    setSecondsLeft(message.secondsLeft);
    setVisible(m_waitIndicator, m_kind == Controller::Wait);
    setVisible(m_errorMark, m_kind == Controller::Error);
    setVisible(m_ok, m_kind == Controller::Error || m_kind == Controller::Prompt);
    setVisible(m_cancel, m_kind == Controller::Prompt);
    setVisible(m_yes, m_kind == Controller::YesNo);
    setVisible(m_no, m_kind == Controller::YesNo);
    setVisible(m_widget, true);
}

void MessageView::setOkCaption(const QString &caption)
{
    setCaption(m_ok, caption);
}

void MessageView::setSecondsLeft(int seconds)
{
    setVisible(m_countdown, seconds > 0);
    if (seconds > 0)
        setText(m_countdown, QStringLiteral("Осталось %1 с").arg(seconds));
}
