// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "guiclient/message.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>

class MessageView;
class QWidget;

/// Runs one message in a message view: its text, the buttons of its kind, its count-down.
///
/// A message view is any widget with these children, told by their object names, of which each may be missing (what is
/// missing is logged once as a warning and the message runs without it):
/// - "messageText", a QLabel: the text;
/// - "countdown", a QLabel: the seconds left;
/// - "okButton", "cancelButton", "yesButton", "noButton", each a QAbstractButton;
/// - "waitIndicator" and "errorMark", any widgets, which a view need not have: there with the kinds Wait and Error.
/// The controller sets the captions and which of them are visible; the look is the view's.
///
/// The last controller that a view was given to owns it. An earlier one emits nothing from then on and never touches
/// the view again. Deleting the owner hides the view. View and controller may die in any order; without a view the
/// controller counts down all the same. It may be deleted inside its own signals.
class MessageWidgetController : public QObject
{
    Q_OBJECT

public:
    enum Kind
    {
        Wait = 0,   ///< no buttons
        Error = 1,  ///< one button, OK
        Prompt = 2, ///< OK and cancel
        YesNo = 110
    };
    enum ExitCode
    {
        TimeOut = 0,
        Yes = 1,
        Closed = 2, ///< by any other button
        PromptOk = 3
    };

    explicit MessageWidgetController(QObject *parent = nullptr);
    ~MessageWidgetController() override;

    /// Makes the controller the view's owner, and lets go of the view it had. @param view may be null.
    void setUi(QWidget *view);

    /// Starts a message in place of the one before. finish() tells every button, until the owner takes the message off,
    /// and the end of the time.
    /// @param text plain text of any length.
    /// @param seconds until the message closes by itself; 0 or less: it closes by button alone, and tick() goes on.
    /// @param kind one of Kind; others are logged as a warning and taken as Error.
    void initMessage(const QString &text, int seconds, int kind);
    /// The same, but finish() comes at most once.
    void initMessageSingleSignalMode(const QString &text, int seconds, int kind);

    /// Replaces the current message's "ОК"; the next message has its own again. @param text may have several lines.
    void setOkCaption(const QString &text);

Q_SIGNALS:
    /// The message closes; it is off the screen where that was its time, or where finish() comes but once. @param
    /// exitCode one of ExitCode.
    void finish(int exitCode);
    /// Once a second, while the message has not closed.
    void tick();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    friend class MessageView;

    void start(const QString &text, int seconds, int kind, bool isSingleSignal);
    [[nodiscard]] int secondsLeft() const;
    /// Called by the view's buttons, and when the time is over. Its last act is finish().
    void close(int exitCode);
    /// Called when another controller takes the view.
    void loseView();
    void releaseView();

    QPointer<MessageView> m_view;
    Message m_message;
    int m_seconds = 0;
    QElapsedTimer m_sinceStart;
    QBasicTimer m_timer;
    bool m_isSingleSignal = false;
    bool m_hasFinished = false;
    bool m_isSilent = false;
};
