// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/bench/benchpanel.h"

#include "terminal.h"
#include "window/bench/benchsteps.h"
#include "window/parts.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QScreen>

#include <algorithm>

namespace kiosk {
namespace {
void clear(QLayout &layout)
{
    while (QLayoutItem *item = layout.takeAt(0)) {
        // Not at once: the button's own click may have led here.
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
}
} // namespace

BenchPanel::BenchPanel(const Stage &stage, const QUrl &admin, QWidget *parent)
    : QWidget(parent), m_runner(stage), m_carPark(admin), m_cards(new QVBoxLayout),
      m_outcome(Parts::label({}, "benchOutcome"))
{
    setObjectName(QStringLiteral("benchPanel"));
    setAttribute(Qt::WA_StyledBackground);
    setWindowTitle(QStringLiteral("Стенд"));
    m_outcome->setObjectName(QStringLiteral("benchOutcome"));
    m_cards->setSpacing(4);

    auto *left = new QVBoxLayout;
    left->addWidget(section(QStringLiteral("Карту к считывателю"), m_cards));
    left->addWidget(section(QStringLiteral("Купюру в приёмник"), grid(BenchSteps::notes(), 5)));
    left->addStretch(1);
    left->addWidget(m_outcome);
    auto *right = new QVBoxLayout;
    right->addWidget(section(QStringLiteral("Кнопки терминала"), grid(BenchSteps::touches(), 4)));
    right->addLayout(input(Verb::Type, QStringLiteral("Набрать"), QStringLiteral("typedText")));
    right->addWidget(section(QStringLiteral("Неисправности сервиса"), grid(BenchSteps::faults(), 1)));
    right->addLayout(input(Verb::SetFault, QStringLiteral("Задать"), QStringLiteral("faultRule")));
    right->addStretch(1);
    auto *layout = new QHBoxLayout(this);
    layout->setSpacing(20);
    layout->addLayout(left, 1);
    layout->addLayout(right, 1);

    connect(&m_runner, &StepRunner::finished, this,
            [this](const QString &failure, const QString &refusal) { tell(failure + refusal); });
    connect(&m_carPark, &CarPark::answered, this, &BenchPanel::setCards);
    connect(&m_carPark, &CarPark::failed, this, &BenchPanel::tell);
    // What a card owes changes with each payment.
    connect(&stage.terminal, &Terminal::committingChanged, &m_carPark, &CarPark::ask);
    m_carPark.ask();
}

void BenchPanel::moveBeside(const QWidget &window)
{
    const QRect screen = window.screen()->availableGeometry();
    const QSize room = sizeHint();
    const QPoint beside = window.frameGeometry().topRight() + QPoint(1, 0);
    // The left upper corner counts most: where the panel is larger than the screen that is what must be seen.
    move(std::max(screen.left(), std::min(beside.x(), screen.right() + 1 - room.width())),
         std::max(screen.top(), std::min(beside.y(), screen.bottom() + 1 - room.height())));
}

void BenchPanel::setCards(const QVector<ParkedCard> &cards)
{
    clear(*m_cards);
    for (const ParkedCard &card : cards)
        m_cards->addWidget(button(BenchSteps::card(card)));
}

QPushButton *BenchPanel::button(const Step &step)
{
    QPushButton *made = Parts::button(step.caption, "benchButton", "bench");
    connect(made, &QPushButton::clicked, this, [this, step] { run(step); });
    return made;
}

QWidget *BenchPanel::section(const QString &heading, QLayout *content)
{
    auto *made = new QWidget;
    auto *layout = new QVBoxLayout(made);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(Parts::line(heading, "benchHeading"));
    layout->addLayout(content);
    return made;
}

QLayout *BenchPanel::grid(const QVector<Step> &steps, int columns)
{
    auto *made = new QGridLayout;
    made->setSpacing(4);
    for (int i = 0; i < steps.size(); ++i)
        made->addWidget(button(steps.at(i)), i / columns, i % columns);
    return made;
}

QLayout *BenchPanel::input(Verb verb, const QString &caption, const QString &name)
{
    auto *line = new QLineEdit;
    line->setObjectName(name);
    line->setAccessibleName(caption);
    QPushButton *done = Parts::button(caption, "benchButton", "bench");
    const auto runTyped = [this, verb, line] { run(BenchSteps::typed(verb, line->text())); };
    connect(done, &QPushButton::clicked, this, runTyped);
    connect(line, &QLineEdit::returnPressed, this, runTyped);
    auto *made = new QHBoxLayout;
    made->addWidget(line, 1);
    made->addWidget(done);
    return made;
}

void BenchPanel::run(const Step &step)
{
    m_running = step.caption.section(QLatin1Char('\n'), 0, 0);
    m_runner.run(step);
}

void BenchPanel::tell(const QString &outcome)
{
    m_outcome->setText(m_running + QStringLiteral(": ") + (outcome.isEmpty() ? QStringLiteral("сделано") : outcome));
}
} // namespace kiosk
