// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/idlescreen.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace kiosk {
namespace {
QWidget *step(int number, const QString &text)
{
    auto *card = new QFrame;
    Parts::setRole(*card, "card");
    auto *layout = new QVBoxLayout(card);
    layout->setContentsMargins(20, 24, 20, 24);
    layout->setSpacing(16);
    QLabel *digit = Parts::line(QString::number(number), "stepNumber");
    digit->setAlignment(Qt::AlignCenter);
    digit->setFixedSize(56, 56);
    QLabel *what = Parts::label(text, "step");
    what->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    layout->addWidget(digit, 0, Qt::AlignHCenter);
    layout->addWidget(what, 1);
    return card;
}
} // namespace

IdleScreen::IdleScreen(QWidget *parent) : QWidget(parent), m_steps(new QWidget), m_notice(Parts::label({}, "noticeBad"))
{
    QLabel *title = Parts::label(QStringLiteral("Оплата парковки"), "title");
    title->setAlignment(Qt::AlignCenter);
    QPushButton *start = Parts::button(QStringLiteral("Оплатить парковку"), "startButton", "huge");
    connect(start, &QPushButton::clicked, this, &IdleScreen::startWanted);
    m_notice->setAlignment(Qt::AlignCenter);

    auto *steps = new QHBoxLayout(m_steps);
    steps->setContentsMargins(0, 0, 0, 0);
    steps->setSpacing(24);
    steps->addWidget(step(1, QStringLiteral("Приложите парковочную карту")), 1);
    steps->addWidget(step(2, QStringLiteral("Проверьте сумму")), 1);
    steps->addWidget(step(3, QStringLiteral("Внесите купюры")), 1);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(56, 32, 56, 48);
    layout->setSpacing(32);
    layout->addStretch(2);
    layout->addWidget(title);
    layout->addWidget(m_steps);
    layout->addWidget(m_notice);
    layout->addStretch(3);
    layout->addWidget(start);
    setNotice({});
}

void IdleScreen::setNotice(const QString &text)
{
    m_notice->setText(text);
    m_notice->setVisible(!text.isEmpty());
    // One thing at a time.
    m_steps->setVisible(text.isEmpty());
}
} // namespace kiosk
