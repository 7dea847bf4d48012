// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <memory>

/// The screens of a payment, as the parking plugin and the terminal bring them up.
namespace FormScenes {
[[nodiscard]] std::unique_ptr<QWidget> waiting();
[[nodiscard]] std::unique_ptr<QWidget> waitCard();
[[nodiscard]] std::unique_ptr<QWidget> checking();
[[nodiscard]] std::unique_ptr<QWidget> error();
[[nodiscard]] std::unique_ptr<QWidget> errorOfTheNetwork();
[[nodiscard]] std::unique_ptr<QWidget> cancelQuestion();
[[nodiscard]] std::unique_ptr<QWidget> cardNumber();
[[nodiscard]] std::unique_ptr<QWidget> cardUid();
[[nodiscard]] std::unique_ptr<QWidget> details();
[[nodiscard]] std::unique_ptr<QWidget> detailsPart();
[[nodiscard]] std::unique_ptr<QWidget> detailsPaid();
[[nodiscard]] std::unique_ptr<QWidget> detailsChange();
[[nodiscard]] std::unique_ptr<QWidget> detailsNothingDue();
[[nodiscard]] std::unique_ptr<QWidget> detailsToReturn();
[[nodiscard]] std::unique_ptr<QWidget> detailsComission();
[[nodiscard]] std::unique_ptr<QWidget> errorWithMoney();
/// The customer cancelled, and then put a note in.
[[nodiscard]] std::unique_ptr<QWidget> questionWithMoney();
[[nodiscard]] std::unique_ptr<QWidget> checkingWithMoney();
[[nodiscard]] std::unique_ptr<QWidget> committing();
[[nodiscard]] std::unique_ptr<QWidget> committingError();
/// The plugin's message has gone, and it has not returned yet.
[[nodiscard]] std::unique_ptr<QWidget> committingWithoutAMessage();
} // namespace FormScenes
