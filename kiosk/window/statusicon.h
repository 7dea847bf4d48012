// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace kiosk {
/// A large round sign that says at a glance how it went: a tick, an exclamation mark or a cross.
class StatusIcon : public QWidget
{
    Q_OBJECT

public:
    enum class Kind
    {
        Good,
        Doubtful,
        Bad
    };

    explicit StatusIcon(Kind kind, QWidget *parent = nullptr);
    void setKind(Kind kind);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Kind m_kind;
};
} // namespace kiosk
