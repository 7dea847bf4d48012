// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/startingscreen.h"

#include "guiclient/waitindicator.h"
#include "window/parts.h"

#include <QVBoxLayout>

namespace kiosk {
StartingScreen::StartingScreen(QWidget *parent) : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(56, 32, 56, 48);
    layout->setSpacing(32);
    layout->addStretch(2);
    layout->addWidget(new WaitIndicator, 0, Qt::AlignCenter);
    for (QLabel *text : {Parts::label(QStringLiteral("Терминал включается"), "title"),
                         Parts::label(QStringLiteral("Подождите, пожалуйста"), "text")}) {
        text->setAlignment(Qt::AlignCenter);
        layout->addWidget(text);
    }
    layout->addStretch(3);
}
} // namespace kiosk
