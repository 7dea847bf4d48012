// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/defaultmessageview.h"

#include "guiclient/captionbutton.h"
#include "guiclient/messagetext.h"
#include "guiclient/waitindicator.h"

#include <QVBoxLayout>

namespace {
template <typename Part>
Part *named(Part *part, const char *name)
{
    part->setObjectName(QLatin1String(name));
    return part;
}

QLabel *errorMark(QWidget *parent)
{
    auto *mark = named(new QLabel(QStringLiteral("!"), parent), "errorMark");
    mark->setAlignment(Qt::AlignCenter);
    mark->setAccessibleName(QStringLiteral("Ошибка"));
    return mark;
}
} // namespace

DefaultMessageView::DefaultMessageView(QWidget *parent) : QWidget(parent)
{
    auto *countdown = named(new QLabel(this), "countdown");
    countdown->setAlignment(Qt::AlignCenter);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(24);
    for (const char *name : {"cancelButton", "noButton", "yesButton", "okButton"}) {
        buttons->addWidget(named(new CaptionButton(this), name), 1);
    }
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(48, 40, 48, 40);
    layout->setSpacing(24);
    layout->addStretch(1);
    layout->addWidget(named(new WaitIndicator(this), "waitIndicator"), 0, Qt::AlignHCenter);
    layout->addWidget(errorMark(this), 0, Qt::AlignHCenter);
    layout->addWidget(named(new MessageText(this), "messageText"));
    layout->addWidget(countdown);
    // On a tall screen the buttons stay near to what they answer.
    auto *gap = new QWidget(this);
    gap->setMaximumHeight(160);
    layout->addWidget(gap, 8);
    layout->addLayout(buttons);
    layout->addStretch(1);
}
