// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

#include <memory>

class TextFlow;

/// A plain text of any length, never cut: it wraps, where it must it is written smaller, and where that is not enough
/// it scrolls under the finger, with a bar beside it that shows how much there is.
///
/// The font that the widget has is the largest it uses. Without a text it asks for no height.
class MessageText : public QLabel
{
    Q_OBJECT

public:
    explicit MessageText(QWidget *parent = nullptr);
    ~MessageText() override;

    /// The size of the letters now, in pixels.
    [[nodiscard]] int letterSize();
    /// How far the text can be scrolled, in pixels; 0: all of it is in sight.
    [[nodiscard]] int scrollRange();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    /// What the flow was made for; another one makes it again.
    struct Situation
    {
        QString text;
        QFont font;
        QSize size;
        Qt::Alignment alignment;
        bool operator==(const Situation &other) const
        {
            return text == other.text && size == other.size && alignment == other.alignment && font == other.font;
        }
    };

    const TextFlow &flow();
    void scrollTo(int offset);
    void drawScrollBar(QPainter &painter, const QRect &area);

    Situation m_situation;
    std::unique_ptr<TextFlow> m_flow;
    int m_letterSize = 0;
    int m_offset = 0;
    int m_grabbedAt = 0;
};
