// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QTextLayout>

class QPainter;

/// Plain text in lines of a given width: breaks between words, and inside words only where one is longer than a line,
/// so that nothing of it is ever cut off at the side.
class TextFlow
{
public:
    TextFlow(const QString &text, const QFont &font, int width, Qt::Alignment alignment);

    /// Of all lines, in pixels.
    [[nodiscard]] int height() const { return m_height; }
    /// Whether a word is longer than a line.
    [[nodiscard]] bool breaksWords() const { return m_breaksWords; }
    /// The text with a line break wherever a line ends.
    [[nodiscard]] QString lines() const;
    /// @param top where the first line begins. Lines outside of the painter's clip are left out.
    void draw(QPainter &painter, const QPoint &top) const;

private:
    void layOut(int width, const QTextOption &option);

    QTextLayout m_layout;
    int m_height = 0;
    bool m_breaksWords = false;
};
