// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/messagewidgetcontroller.h"

#include "guiclient/guiclientlog.h"
#include "guiclient/messageview.h"

#include <QTimerEvent>
#include <QWidget>

namespace {
constexpr int SECOND = 1000;
// A message that has no time to close by itself.
constexpr int UNLIMITED = 0;

bool isKnown(int kind)
{
    using Controller = MessageWidgetController;
    return kind == Controller::Wait || kind == Controller::Error || kind == Controller::Prompt ||
           kind == Controller::YesNo;
}
} // namespace

MessageWidgetController::MessageWidgetController(QObject *parent) : QObject(parent) {}

MessageWidgetController::~MessageWidgetController()
{
    releaseView();
}

void MessageWidgetController::releaseView()
{
    if (m_view && m_view->owner() == this)
        m_view->release();
    m_view.clear();
}

void MessageWidgetController::setUi(QWidget *widget)
{
    MessageView *view = widget != nullptr ? MessageView::of(widget) : nullptr;
    if (view != m_view)
        releaseView();
    m_isSilent = false;
    m_view = view;
    if (!m_view)
        return;
    m_view->setOwner(this);
    if (m_timer.isActive()) {
        m_message.secondsLeft = secondsLeft();
        m_view->show(m_message);
    }
}

void MessageWidgetController::initMessage(const QString &text, int seconds, int kind)
{
    start(text, seconds, kind, false);
}

void MessageWidgetController::initMessageSingleSignalMode(const QString &text, int seconds, int kind)
{
    start(text, seconds, kind, true);
}

void MessageWidgetController::start(const QString &text, int seconds, int kind, bool isSingleSignal)
{
    if (m_isSilent)
        return;
    if (!isKnown(kind)) {
        qCWarning(GUICLIENT_LOG) << "There is no message kind" << kind << "- it is shown as an error:" << text;
        kind = Error;
    }
    m_seconds = qMax(seconds, UNLIMITED);
    m_message = {text, kind, QStringLiteral("ОК"), m_seconds};
    m_isSingleSignal = isSingleSignal;
    m_hasFinished = false;
    m_sinceStart.start();
    m_timer.start(SECOND, Qt::PreciseTimer, this);
    if (m_view)
        m_view->show(m_message);
}

void MessageWidgetController::setOkCaption(const QString &text)
{
    m_message.okCaption = text;
    if (m_view && !m_isSilent)
        m_view->setOkCaption(text);
}

int MessageWidgetController::secondsLeft() const
{
    // By the clock, not by counting ticks, of which a busy event loop leaves some out.
    return m_seconds - static_cast<int>((m_sinceStart.elapsed() + SECOND / 2) / SECOND);
}

void MessageWidgetController::timerEvent(QTimerEvent * /*event*/)
{
    const QPointer<MessageWidgetController> self(this);
    Q_EMIT tick();
    // Deleted by the receiver, or closed.
    if (!self || !m_timer.isActive() || m_seconds == UNLIMITED)
        return;
    const int left = secondsLeft();
    if (left <= 0)
        close(TimeOut);
    else if (m_view)
        m_view->setSecondsLeft(left);
}

void MessageWidgetController::close(int exitCode)
{
    if (m_isSingleSignal && m_hasFinished)
        return;
    m_hasFinished = true;
    m_timer.stop();
    if (m_view && (m_isSingleSignal || exitCode == TimeOut))
        m_view->takeOff();
    Q_EMIT finish(exitCode);
}

void MessageWidgetController::loseView()
{
    m_isSilent = true;
    m_timer.stop();
    m_view.clear();
}
