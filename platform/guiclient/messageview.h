// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>

class MessageWidgetController;
class QAbstractButton;
class QLabel;
class QWidget;
struct Message;

/// Knows the named parts of a widget that shows messages, and which controller has it.
///
/// A child of that widget, made when the first controller takes it. Parts are looked up then, once, and may be missing
/// or go later.
class MessageView : public QObject
{
    Q_OBJECT

public:
    /// The one of that widget, which is made if there is none.
    [[nodiscard]] static MessageView *of(QWidget *widget);

    [[nodiscard]] MessageWidgetController *owner() const;
    /// The owner before is told that it has lost the view.
    void setOwner(MessageWidgetController *owner);
    /// Hides the view; its owner stays the owner.
    void takeOff();
    /// Hides the widget and has no owner any more.
    void release();

    void show(const Message &message);
    void setOkCaption(const QString &caption);
    void setSecondsLeft(int seconds);

private:
    explicit MessageView(QWidget *widget);
    QAbstractButton *findButton(const char *name, const QString &caption);
    void buttonPressed(const QAbstractButton *button);
    void warnOfMissing(const char *name, const char *kind);

    QWidget *m_widget;
    int m_kind = 0;
    QPointer<MessageWidgetController> m_owner;
    QPointer<QLabel> m_text;
    QPointer<QLabel> m_countdown;
    QPointer<QWidget> m_waitIndicator;
    QPointer<QWidget> m_errorMark;
    QPointer<QAbstractButton> m_ok;
    QPointer<QAbstractButton> m_cancel;
    QPointer<QAbstractButton> m_yes;
    QPointer<QAbstractButton> m_no;
};
