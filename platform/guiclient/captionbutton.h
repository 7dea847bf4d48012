// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QPushButton>

/// A button whose caption is never cut: it breaks between words, and inside a word that is wider than the button, and
/// the button gets as high as that takes. A caption's own line breaks stay.
class CaptionButton : public QPushButton
{
    Q_OBJECT

public:
    explicit CaptionButton(QWidget *parent = nullptr);

    /// One caption's length takes nothing from the buttons beside it: no more than the widest word asks for.
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    /// @param width of the whole button. @return the caption with a line break wherever it breaks.
    [[nodiscard]] QString wrapped(int width) const;
    /// What the style needs around a caption.
    [[nodiscard]] QSize frame() const;
};
