// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QTextLayout>

class QPainter;

/// Plain text in lines of a given width: breaks at words, and inside a word that is longer than a line, so that nothing
/// of it is ever cut off at the side.
class TextFlow
{
public:
    TextFlow(const QString &text, const QFont &font, int width, Qt::Alignment alignment);

    /// Of all lines, in pixels.
    [[nodiscard]] int height() const { return m_height; }
    /// @param top where the first line begins. Lines outside of the painter's clip are left out.
    void draw(QPainter &painter, const QPoint &top) const;

private:
    QTextLayout m_layout;
    int m_height = 0;
};
