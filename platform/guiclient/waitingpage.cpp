// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/waitingpage.h"

#include "guiclient/waitindicator.h"

#include <QLabel>
#include <QVBoxLayout>

WaitingPage::WaitingPage(QWidget *parent) : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(32);
    layout->addStretch();
    layout->addWidget(new WaitIndicator(this), 0, Qt::AlignHCenter);
    layout->addWidget(new QLabel(QStringLiteral("Подождите, пожалуйста"), this), 0, Qt::AlignHCenter);
    layout->addStretch();
}
