// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/steprunner.h"
#include "window/bench/carpark.h"

#include <QWidget>

#include <chrono>
#include <functional>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace kiosk {
/// What surrounds a terminal, to be had beside its window: parking cards, bank notes, a hand on its buttons, and a cash
/// service that can be broken. For tests and demonstrations: a terminal in use has none.
///
/// Everything it does is a step, done as scenarios do it. One that takes its time keeps no other from being done, as
/// with several kioskctl at once: what is expected may be for the next touch to bring about.
class BenchPanel : public QWidget
{
    Q_OBJECT

public:
    /// @param stage what it refers to outlives the panel.
    /// @param admin the cash service's admin interface, which names the cards.
    BenchPanel(const Stage &stage, const QUrl &admin, QWidget *parent = nullptr);

    /// Shows it beside the terminal's window once the car park has answered, since it has its size then, and the window
    /// its frame; and without the cards when that takes longer.
    void openBeside(const QWidget &window, std::chrono::milliseconds patience = std::chrono::seconds(2));
    /// Puts it to the right of the terminal's window, or as far there as the screen lets all of it be seen.
    void moveBeside(const QWidget &window);

    /// Called when the car park has answered.
    void setCards(const QVector<ParkedCard> &cards);

private:
    [[nodiscard]] QPushButton *button(const Step &step);
    [[nodiscard]] QWidget *section(const QString &heading, QLayout *content);
    [[nodiscard]] QLayout *grid(const QVector<Step> &steps, int columns);
    /// A line to type on, whose text is done by the button beside it or the Enter key.
    [[nodiscard]] QLayout *input(const QString &caption, const QString &name,
                                 const std::function<void(const QString &text)> &use);
    [[nodiscard]] QLayout *anyStep();
    void run(const Step &step);
    void runText(const QString &text);
    void tell(const QString &what, const QString &outcome);
    void showOutcome();

    Stage m_stage;
    bool m_hasOpened = false;
    CarPark m_carPark;
    QVBoxLayout *m_cards;
    QLabel *m_outcome;
    QString m_told;
    /// What is going on: "wait" and "expect" take their time, and so does the cash service.
    QStringList m_running;
};
} // namespace kiosk
