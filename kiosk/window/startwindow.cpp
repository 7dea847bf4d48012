// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/startwindow.h"

#include "window/brokenscreen.h"
#include "window/look.h"
#include "window/screens.h"
#include "window/startingscreen.h"

#include <QCloseEvent>
#include <QVBoxLayout>

namespace kiosk {
StartWindow::StartWindow(const TrelmInfo &info, QWidget *parent)
    : QWidget(parent), m_info(info), m_screens(new Screens(info))
{
    Look::setUp(*this);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_screens);
    showStarting();
}

void StartWindow::showStarting()
{
    m_screens->showScreen(m_screens->starting());
}

void StartWindow::showLedgerFailure(const QString &reason, const QString &path)
{
    m_screens->broken().setLedgerFailure(reason, path, m_info);
    m_screens->showScreen(m_screens->broken());
}

void StartWindow::closeEvent(QCloseEvent *event)
{
    event->ignore();
    Q_EMIT closeWanted();
}
} // namespace kiosk
