// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/bench/benchpanel.h"

#include "scenario/scenario.h"
#include "terminal.h"
#include "window/bench/benchsteps.h"
#include "window/parts.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QScreen>
#include <QTimer>

#include <algorithm>

namespace kiosk {
namespace {
constexpr int SPACING = 4;

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
    : QWidget(parent), m_stage(stage), m_carPark(admin), m_cards(new QVBoxLayout),
      m_outcome(Parts::label({}, "benchOutcome"))
{
    setObjectName(QStringLiteral("benchPanel"));
    setAttribute(Qt::WA_StyledBackground);
    setWindowTitle(QStringLiteral("Стенд"));
    m_outcome->setObjectName(QStringLiteral("benchOutcome"));
    m_cards->setSpacing(SPACING);

    m_outcome->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    // However long its words are.
    m_outcome->setMinimumWidth(1);
    // What goes wrong is read again, and sent to somebody.
    m_outcome->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto *left = new QVBoxLayout;
    left->setSpacing(SPACING);
    left->addWidget(section(QStringLiteral("Карту к считывателю"), m_cards));
    left->addWidget(section(QStringLiteral("Купюру в приёмник"), grid(BenchSteps::notes(), 5)));
    left->addStretch(1);
    auto *right = new QVBoxLayout;
    right->setSpacing(SPACING);
    right->addWidget(section(QStringLiteral("Кнопки терминала"), grid(BenchSteps::touches(), 4)));
    right->addLayout(input(QStringLiteral("Набрать"), QStringLiteral("typedText"),
                           [this](const QString &text) { run(BenchSteps::typed(Verb::Type, text)); }));
    right->addWidget(section(QStringLiteral("Неисправности сервиса"), grid(BenchSteps::faults(), 1)));
    right->addLayout(input(QStringLiteral("Задать"), QStringLiteral("faultRule"),
                           [this](const QString &text) { run(BenchSteps::typed(Verb::SetFault, text)); }));
    right->addStretch(1);
    auto *columns = new QHBoxLayout;
    columns->setSpacing(20);
    columns->addLayout(left, 1);
    columns->addLayout(right, 1);
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(SPACING);
    layout->addLayout(columns);
    layout->addWidget(section(QStringLiteral("Шаг, как в сценарии или у kioskctl"), anyStep()));
    layout->addWidget(m_outcome, 1);

    connect(&m_carPark, &CarPark::answered, this, &BenchPanel::setCards);
    connect(&m_carPark, &CarPark::failed, this,
            [this](const QString &reason) { tell(QStringLiteral("Карты"), reason); });
    // What a card owes changes with each payment.
    connect(&stage.terminal, &Terminal::committingChanged, &m_carPark, &CarPark::ask);
    m_carPark.ask();
}

void BenchPanel::openBeside(const QWidget &window, std::chrono::milliseconds patience)
{
    // Once: later answers leave a panel closed that somebody has closed.
    auto *opening = new QObject(this);
    const auto open = [this, &window] {
        // By itself a window takes two thirds of the screen at first, and grows above its upper edge.
        resize(sizeHint());
        moveBeside(window);
        show();
    };
    const auto openAtLast = [this, open, opening] {
        opening->deleteLater();
        if (!m_hasOpened || isVisible())
            open();
    };
    connect(&m_carPark, &CarPark::answered, opening, openAtLast);
    connect(&m_carPark, &CarPark::failed, opening, openAtLast);
    // A service that keeps silent may be what is looked into.
    QTimer::singleShot(patience, opening, [this, open] {
        m_hasOpened = true;
        open();
    });
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
    layout->setSpacing(SPACING);
    layout->addWidget(Parts::line(heading, "benchHeading"));
    layout->addLayout(content);
    return made;
}

QLayout *BenchPanel::grid(const QVector<Step> &steps, int columns)
{
    auto *made = new QGridLayout;
    made->setSpacing(SPACING);
    for (int i = 0; i < steps.size(); ++i)
        made->addWidget(button(steps.at(i)), i / columns, i % columns);
    return made;
}

QLayout *BenchPanel::input(const QString &caption, const QString &name,
                           const std::function<void(const QString &text)> &use)
{
    auto *line = new QLineEdit;
    line->setObjectName(name);
    line->setAccessibleName(caption);
    QPushButton *done = Parts::button(caption, "benchButton", "bench");
    const auto useText = [line, use] { use(line->text()); };
    connect(done, &QPushButton::clicked, this, useText);
    connect(line, &QLineEdit::returnPressed, this, useText);
    auto *made = new QHBoxLayout;
    made->setSpacing(SPACING);
    made->addWidget(line, 1);
    made->addWidget(done);
    return made;
}

QLayout *BenchPanel::anyStep()
{
    QLayout *made =
        input(QStringLiteral("Сделать"), QStringLiteral("step"), [this](const QString &text) { runText(text); });
    // Away from the others: it ends the terminal.
    made->addWidget(button(BenchSteps::quit()));
    return made;
}

void BenchPanel::run(const Step &step)
{
    const QString caption = step.caption.section(QLatin1Char('\n'), 0, 0);
    auto *runner = new StepRunner(m_stage, this);
    connect(runner, &StepRunner::finished, this,
            [this, runner, caption](const QString &failure, const QString &refusal) {
                runner->deleteLater();
                m_running.removeOne(caption);
                tell(caption, failure + refusal);
            });
    m_told.clear();
    m_running.append(caption);
    showOutcome();
    runner->run(step);
}

void BenchPanel::runText(const QString &text)
{
    try {
        run(readStep(text, QStringLiteral("step")));
    } catch (const ScenarioError &error) {
        tell(text, error.mistakes().join(QLatin1Char('\n')));
    }
}

void BenchPanel::tell(const QString &what, const QString &outcome)
{
    m_told = what + QStringLiteral(": ") + (outcome.isEmpty() ? QStringLiteral("сделано") : outcome);
    showOutcome();
}

void BenchPanel::showOutcome()
{
    QStringList lines = m_running;
    for (QString &line : lines)
        line += QStringLiteral(": выполняется");
    if (!m_told.isEmpty())
        lines.prepend(m_told);
    m_outcome->setText(lines.join(QLatin1Char('\n')));
    // A window does not grow by itself with a text that breaks into lines; one that is not shown yet has no size.
    if (isVisible())
        resize(width(), std::max(height(), heightForWidth(width())));
}
} // namespace kiosk
