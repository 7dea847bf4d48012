// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/headerbar.h"

#include "window/holdbutton.h"
#include "window/parts.h"

#include <QDateTime>
#include <QHBoxLayout>
#include <QLocale>

namespace kiosk {
HeaderBar::HeaderBar(const TrelmInfo &info, QWidget *parent)
    : QFrame(parent), m_date(Parts::line({}, "headerNote")), m_time(Parts::line({}, "headerTime"))
{
    auto *service = new HoldButton(QStringLiteral("P"));
    service->setObjectName(QStringLiteral("serviceButton"));
    service->setAccessibleName(QStringLiteral("Сервисное меню: удерживайте"));
    service->setFocusPolicy(Qt::NoFocus);
    connect(service, &HoldButton::held, this, &HeaderBar::serviceWanted);

    auto *names = new QVBoxLayout;
    names->setSpacing(0);
    names->addWidget(Parts::label(info.name.isEmpty() ? QStringLiteral("Оплата парковки") : info.name, "headerName"));
    if (!info.address.isEmpty())
        names->addWidget(Parts::label(info.address, "headerNote"));
    auto *clock = new QVBoxLayout;
    clock->setSpacing(0);
    clock->addWidget(m_time, 0, Qt::AlignRight);
    clock->addWidget(m_date, 0, Qt::AlignRight);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(16, 8, 24, 8);
    layout->setSpacing(20);
    layout->addWidget(service);
    layout->addLayout(names, 1);
    layout->addLayout(clock);
    showTime();
    m_timer.start(1000, this);
}

void HeaderBar::timerEvent(QTimerEvent * /*event*/)
{
    showTime();
}

void HeaderBar::showTime()
{
    const QDateTime now = QDateTime::currentDateTime();
    m_time->setText(now.toString(QStringLiteral("HH:mm")));
    m_date->setText(QLocale(QLocale::Russian).toString(now.date(), QStringLiteral("d MMMM yyyy")));
}
} // namespace kiosk
