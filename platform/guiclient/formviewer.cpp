// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/formviewer.h"

#include "core/sessionmanager.h"

#include <QFile>
#include <QUiLoader>

FormViewer::FormViewer(SessionManager *session, bool fullScreen, QWidget *parent)
    : QWidget(parent), m_session(session), m_fullScreen(fullScreen)
{
    hide();
}

FormViewer::~FormViewer() = default;

QWidget *FormViewer::getUi(const QString &name) const
{
    for (const View &view : m_views) {
        if (view.name == name)
            return view.widget;
    }
    return nullptr;
}

void FormViewer::showWidget(const QString &name)
{
    m_current = name;
    for (const View &view : qAsConst(m_views)) {
        if (QWidget *widget = view.widget)
            widget->setVisible(view.name == name);
    }
}

bool FormViewer::loadFromFile(const QString &path, const QString &name, const QVariantMap &properties)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QWidget *view = QUiLoader().load(&file);
    if (view == nullptr)
        view = new QWidget;
    for (auto property = properties.cbegin(); property != properties.cend(); ++property)
        view->setProperty(qPrintable(property.key()), property.value());
    addView(view, name);
    return true;
}

void FormViewer::addView(QWidget *view, const QString &name)
{
    delete getUi(name);
    view->setParent(this);
    m_views.append({name, view});
    showWidget(name);
}

void FormViewer::removeView(QWidget *view)
{
    for (int i = 0; i < m_views.size(); ++i) {
        if (m_views.at(i).widget != view)
            continue;
        m_views.removeAt(i);
        view->hide();
        return;
    }
}

QString FormViewer::currentView() const
{
    return m_current;
}

SessionManager *FormViewer::session() const
{
    return m_session;
}
