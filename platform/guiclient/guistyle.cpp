// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/guistyle.h"

QString GuiStyle::sheet()
{
    return QStringLiteral(R"(
FormViewer { background: #f1f4f7; }
FormViewer QLabel { color: #14202c; font-family: "DejaVu Sans"; font-size: 28px; }
FormViewer MessageText { font-size: 52px; font-weight: bold; }

FormViewer #countdown { color: #3d4a57; font-size: 32px; }
FormViewer #inputHint, FormViewer #providerName { color: #3d4a57; font-size: 28px; font-weight: normal; }
FormViewer #errorMark {
    color: #ffffff; background: #b3261e; border-radius: 44px; font-size: 60px; font-weight: bold;
    min-width: 88px; max-width: 88px; min-height: 88px; max-height: 88px;
}

FormViewer QPushButton {
    color: #0b4a8a; background: #ffffff; border: 3px solid #0b4a8a; border-radius: 14px;
    font-family: "DejaVu Sans"; font-size: 34px; font-weight: bold; min-height: 76px; padding: 8px 24px;
}
FormViewer QPushButton:pressed { background: #cfe0f2; }
FormViewer #okButton, FormViewer #nextButton { color: #ffffff; background: #0b4a8a; }
FormViewer #okButton:pressed, FormViewer #nextButton:pressed { background: #07315c; }
FormViewer QPushButton:focus { border-color: #d97700; }

FormViewer #inputLabel { font-size: 40px; }
FormViewer #inputLine {
    color: #14202c; background: #ffffff; border: 3px solid #0b4a8a; border-radius: 14px;
    font-family: "DejaVu Sans Mono"; font-size: 52px; font-weight: bold; min-height: 78px; padding: 0px 20px;
    selection-color: #ffffff; selection-background-color: #0b4a8a;
}
FormViewer #backButton, FormViewer #nextButton { min-height: 72px; padding: 0px 24px; }
FormViewer OnScreenKeyboard QPushButton {
    color: #14202c; border: 2px solid #7b8a99; font-size: 36px; min-height: 62px; padding: 0px;
}
FormViewer #clearKey, FormViewer #eraseKey { color: #14202c; background: #dde5ed; font-size: 26px; }
FormViewer #eraseKey { font-size: 44px; }
FormViewer OnScreenKeyboard QPushButton:pressed { background: #9cc3ea; }

FormViewer #sumDueCaption { font-size: 40px; }
FormViewer #sumDue { font-size: 96px; }
FormViewer #paidIn { font-size: 40px; }
FormViewer #parameterLabel { color: #3d4a57; font-size: 30px; font-weight: normal; }
FormViewer #parameterValue { font-size: 30px; }
FormViewer #phone { font-size: 28px; font-weight: normal; }
FormViewer QScrollArea, FormViewer #parameters { background: transparent; border: none; }
FormViewer QScrollBar:vertical { background: #dde5ed; width: 28px; border-radius: 14px; }
FormViewer QScrollBar::handle:vertical { background: #5d6f80; min-height: 64px; border-radius: 14px; }
FormViewer QScrollBar::add-line, FormViewer QScrollBar::sub-line { height: 0px; }
)");
}
