// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/formviewer.h"

#include "core/sessionmanager.h"
#include "guiclient/defaultmessageview.h"
#include "guiclient/doubletapguard.h"
#include "guiclient/guiclientlog.h"
#include "guiclient/guistyle.h"
#include "guiclient/parentcover.h"
#include "guiclient/viewloader.h"
#include "guiclient/waitingpage.h"

#include <QApplication>
#include <QChildEvent>
#include <QFileInfo>
#include <QLayout>

#include <algorithm>

FormViewer::FormViewer(SessionManager *session, bool fullScreen, QWidget *parent)
    : QWidget(parent), m_session(session), m_fullScreen(fullScreen), m_doubleTapGuard(new DoubleTapGuard(this))
{
    hide();
    setAttribute(Qt::WA_StyledBackground);
    // A touch that no view wants is not for what the viewer covers.
    setAttribute(Qt::WA_NoMousePropagation);
    if (qApp->styleSheet().isEmpty() && qobject_cast<FormViewer *>(parent) == nullptr)
        setStyleSheet(GuiStyle::sheet());
    new ParentCover(this);
}

FormViewer::~FormViewer() = default;

QWidget *FormViewer::getUi(const QString &name) const
{
    const auto view = std::find_if(m_views.cbegin(), m_views.cend(), [&](const View &v) { return v.name == name; });
    return view != m_views.cend() ? view->widget.data() : nullptr;
}

void FormViewer::showWidget(const QString &name)
{
    QWidget *view = getUi(name);
    if (view == nullptr) {
        qCWarning(GUICLIENT_LOG) << "There is no view" << name << "to show.";
        return;
    }
    view->setGeometry(rect());
    layOut(view);
    // What follows from it, eventFilter() sees to: also when it is somebody else who shows the view.
    view->show();
}

bool FormViewer::loadFromFile(const QString &path, const QString &name, const QVariantMap &properties)
{
    if (!QFileInfo(path).isFile())
        return false;
    ViewLoader loader;
    QWidget *view = loader.loadView(path);
    if (view == nullptr) {
        qCWarning(GUICLIENT_LOG).noquote().nospace()
            << "The view \"" << name << "\" cannot be made of " << path << ": " << loader.reason()
            << ". The built-in message view is shown in its place; put the form project's file back.";
        view = new DefaultMessageView;
    }
    for (auto property = properties.cbegin(); property != properties.cend(); ++property)
        view->setProperty(property.key().toUtf8().constData(), property.value());
    addView(view, name);
    return true;
}

void FormViewer::addView(QWidget *view, const QString &name)
{
    if (QWidget *earlier = getUi(name); earlier != nullptr && earlier != view) {
        removeView(earlier);
        // Not at once: this may be the doing of one of its own buttons.
        earlier->deleteLater();
    }
    removeView(view);
    if (view->objectName().isEmpty())
        view->setObjectName(name);
    view->setParent(this);
    // Below a viewer that is laid over this one.
    view->lower();
    view->installEventFilter(this);
    m_views.append({name, view});
    showWidget(name);
}

void FormViewer::removeView(QWidget *view)
{
    if (!isView(view))
        return;
    view->hide();
    view->removeEventFilter(this);
    if (view->layout() != nullptr)
        view->layout()->setEnabled(true);
    m_views.erase(std::remove_if(m_views.begin(), m_views.end(), [&](const View &v) { return v.widget == view; }),
                  m_views.end());
}

bool FormViewer::isView(const QObject *object) const
{
    return object != nullptr &&
           std::any_of(m_views.cbegin(), m_views.cend(), [&](const View &v) { return v.widget.data() == object; });
}

QString FormViewer::currentView() const
{
    return m_current ? m_currentName : QString();
}

SessionManager *FormViewer::session() const
{
    return m_session;
}

void FormViewer::setCurrent(QWidget *view)
{
    m_current = view;
    m_currentName.clear();
    for (const View &each : qAsConst(m_views)) {
        QWidget *widget = each.widget;
        if (widget == view)
            m_currentName = each.name;
        else if (widget != nullptr)
            widget->hide();
    }
    if (view != nullptr) {
        view->setGeometry(rect());
        layOut(view);
    }
    if (isVisible()) {
        updateWaitingPage();
        takeFocus();
        m_doubleTapGuard->arm();
    }
}

void FormViewer::layOut(QWidget *view)
{
    QLayout *layout = view->layout();
    if (layout == nullptr || layout->isEnabled() == isVisible())
        return;
    layout->setEnabled(isVisible());
    if (!isVisible())
        return;
    layout->invalidate();
    layout->activate();
}

bool FormViewer::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ShowToParent && watched != m_current)
        setCurrent(qobject_cast<QWidget *>(watched));
    else if (event->type() == QEvent::HideToParent && watched == m_current)
        setCurrent(nullptr);
    return false;
}

void FormViewer::childEvent(QChildEvent *event)
{
    QWidget::childEvent(event);
    if (!event->removed() || event->child() == m_waitingPage)
        return;
    // Given to somebody else, or deleted: then no pointer to it is left.
    if (isView(event->child())) {
        removeView(qobject_cast<QWidget *>(event->child()));
        return;
    }
    const auto gone = std::remove_if(m_views.begin(), m_views.end(), [](const View &view) { return !view.widget; });
    if (gone == m_views.end())
        return;
    m_views.erase(gone, m_views.end());
    if (!m_current)
        setCurrent(nullptr);
}

void FormViewer::setVisible(bool visible)
{
    if (visible && m_fullScreen && isWindow())
        setWindowState(windowState() | Qt::WindowFullScreen);
    QWidget::setVisible(visible);
}

void FormViewer::showEvent(QShowEvent * /*event*/)
{
    QWidget *before = QApplication::focusWidget();
    m_focusBefore = before != nullptr && before->window() == window() && !isAncestorOf(before) ? before : nullptr;
    if (m_current)
        layOut(m_current);
    updateWaitingPage();
    takeFocus();
    m_doubleTapGuard->arm();
}

void FormViewer::hideEvent(QHideEvent * /*event*/)
{
    if (m_current)
        layOut(m_current);
    if (m_focusBefore && isAncestorOf(QApplication::focusWidget()))
        m_focusBefore->setFocus();
}

void FormViewer::resizeEvent(QResizeEvent * /*event*/)
{
    if (m_current)
        m_current->setGeometry(rect());
    if (m_waitingPage != nullptr)
        m_waitingPage->setGeometry(rect());
}

void FormViewer::updateWaitingPage()
{
    if (m_waitingPage == nullptr) {
        if (m_current)
            return;
        m_waitingPage = new WaitingPage(this);
        m_waitingPage->setGeometry(rect());
        m_waitingPage->lower();
    }
    m_waitingPage->setVisible(!m_current);
}

bool FormViewer::isCovered() const
{
    const QObjectList &all = children();
    return std::any_of(all.cbegin(), all.cend(), [](QObject *child) {
        const auto *viewer = qobject_cast<FormViewer *>(child);
        return viewer != nullptr && viewer->isVisible();
    });
}

void FormViewer::takeFocus()
{
    if (!isCovered())
        (m_current ? m_current.data() : this)->setFocus();
}

bool FormViewer::focusNextPrevChild(bool next)
{
    const auto step = [next](QWidget *widget) {
        return next ? widget->nextInFocusChain() : widget->previousInFocusChain();
    };
    QWidget *start = isAncestorOf(QApplication::focusWidget()) ? QApplication::focusWidget() : this;
    for (QWidget *widget = step(start); m_current && widget != start; widget = step(widget)) {
        if ((widget->focusPolicy() & Qt::TabFocus) == 0 || !widget->isEnabled() || !widget->isVisible() ||
            !m_current->isAncestorOf(widget))
            continue;
        widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return true;
    }
    return false;
}
