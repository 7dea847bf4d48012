// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/steprunner.h"
#include "window/bench/carpark.h"

#include <QWidget>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace kiosk {
/// What surrounds a terminal, to be had beside its window: parking cards, bank notes, a hand on its buttons, and a cash
/// service that can be broken. For tests and demonstrations: a terminal in use has none.
///
/// Everything it does is a step, done as scenarios do it.
class BenchPanel : public QWidget
{
    Q_OBJECT

public:
    /// @param stage what it refers to outlives the panel.
    /// @param admin the cash service's admin interface, which names the cards.
    BenchPanel(const Stage &stage, const QUrl &admin, QWidget *parent = nullptr);

    /// Puts it to the right of the terminal's window, or as far there as the screen lets all of it be seen.
    void moveBeside(const QWidget &window);

    /// Called when the car park has answered.
    void setCards(const QVector<ParkedCard> &cards);

private:
    [[nodiscard]] QPushButton *button(const Step &step);
    [[nodiscard]] QWidget *section(const QString &heading, QLayout *content);
    [[nodiscard]] QLayout *grid(const QVector<Step> &steps, int columns);
    [[nodiscard]] QLayout *input(Verb verb, const QString &caption, const QString &name);
    void run(const Step &step);
    void tell(const QString &outcome);

    StepRunner m_runner;
    CarPark m_carPark;
    QVBoxLayout *m_cards;
    QLabel *m_outcome;
    QString m_running;
};
} // namespace kiosk
