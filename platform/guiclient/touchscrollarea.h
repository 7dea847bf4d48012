// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollArea>

/// Scrolls its widget up and down under the finger. Not with Qt's own recogniser of that gesture, which leaks memory
/// for each area.
class TouchScrollArea : public QScrollArea
{
    Q_OBJECT

public:
    /// @param content as wide as the area.
    explicit TouchScrollArea(QWidget *content, QWidget *parent = nullptr);

    /// As high as the content wants to be.
    [[nodiscard]] QSize sizeHint() const override;

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    int m_grabbedAt = 0;
};
