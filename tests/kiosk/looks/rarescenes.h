// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <memory>

/// What cash services seldom answer, on the screens of a payment.
namespace RareScenes {
/// A refusal that gives no reason.
[[nodiscard]] std::unique_ptr<QWidget> errorWithoutAText();
/// A reason that is longer than the screen: it scrolls under the finger.
[[nodiscard]] std::unique_ptr<QWidget> errorThatScrolls();
[[nodiscard]] std::unique_ptr<QWidget> detailsLessThanNothingDue();
} // namespace RareScenes
