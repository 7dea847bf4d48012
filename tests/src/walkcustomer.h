// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/handlerbench.h"

#include <algorithm>

/// The hands of a random walk's customer, on whatever is on top of the form. The form may be null, and there may be
/// nothing to touch.
namespace WalkCustomer {
/// What is typed, and what else a host may call a slot with.
[[nodiscard]] inline QString text(unsigned which)
{
    static const QStringList texts = {QString(), QStringLiteral("777"), QStringLiteral("12345678"),
                                      QStringLiteral("не число"), QString(5'000, QLatin1Char('f'))};
    return texts.at(static_cast<int>(which) % texts.size());
}

inline void press(PluginBaseFormViewer *form, unsigned which)
{
    const FormViewer *const viewer = HandlerBench::topViewerOf(form);
    const QWidget *const view = viewer != nullptr ? viewer->getUi(viewer->currentView()) : nullptr;
    QList<QAbstractButton *> buttons =
        view != nullptr ? view->findChildren<QAbstractButton *>() : QList<QAbstractButton *>();
    const auto isHidden = [](const QAbstractButton *button) { return !button->isVisible(); };
    buttons.erase(std::remove_if(buttons.begin(), buttons.end(), isHidden), buttons.end());
    if (!buttons.isEmpty())
        buttons.at(static_cast<int>(which) % buttons.size())->click();
}

inline void type(PluginBaseFormViewer *form, unsigned which, bool isGoingBack)
{
    const FormViewer *const viewer = HandlerBench::topViewerOf(form);
    auto *const line = viewer != nullptr ? viewer->findChild<QLineEdit *>(QStringLiteral("inputLine")) : nullptr;
    if (line == nullptr || !line->isVisible())
        return;
    line->setText(text(which));
    const QString button = isGoingBack ? QStringLiteral("backButton") : QStringLiteral("nextButton");
    line->parent()->findChild<QAbstractButton *>(button)->click();
}
} // namespace WalkCustomer
