// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/inputview.h"

#include "core/providerparameter.h"
#include "guiclient/guiclientlog.h"
#include "guiclient/inputline.h"
#include "guiclient/messagetext.h"
#include "guiclient/onscreenkeyboard.h"

#include <QPushButton>
#include <QVBoxLayout>

namespace {
OnScreenKeyboard::Type keyboardType(const ProviderParameter &parameter)
{
    const QString type = parameter.keyboardType();
    if (type == QLatin1String("number"))
        return OnScreenKeyboard::Type::Number;
    const QString language = parameter.keyboardLanguage();
    const bool isKnown = type == QLatin1String("full") && (language.isEmpty() || language == QLatin1String("en"));
    if (!isKnown)
        qCWarning(GUICLIENT_LOG) << "There is no keyboard" << type << language << "- parameter" << parameter.name()
                                 << "is typed with the full English one.";
    return OnScreenKeyboard::Type::Full;
}

QPushButton *makeButton(const char *name, const QString &caption, QWidget *parent)
{
    auto *button = new QPushButton(caption, parent);
    button->setObjectName(QLatin1String(name));
    // The line keeps the focus: there a keyboard at the terminal types.
    button->setFocusPolicy(Qt::NoFocus);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return button;
}

void addText(QVBoxLayout *layout, const char *name, const QString &text)
{
    if (text.isEmpty())
        return;
    auto *label = new MessageText;
    label->setObjectName(QLatin1String(name));
    label->setText(text);
    layout->addWidget(label);
}
} // namespace

InputView::InputView(const ProviderParameter &parameter, const QString &providerName, const QString &hint,
                     QWidget *parent)
    : QWidget(parent)
{
    const OnScreenKeyboard::Type type = keyboardType(parameter);
    m_line = new InputLine(type == OnScreenKeyboard::Type::Number, this);
    m_line->setObjectName(QStringLiteral("inputLine"));
    m_line->setText(parameter.value());
    m_line->setAccessibleName(parameter.label());
    setFocusProxy(m_line);
    auto *keyboard = new OnScreenKeyboard(type, this);
    connectKeyboard(keyboard);
    const auto goOn = [this] { Q_EMIT next(m_line->text()); };
    connect(m_line, &InputLine::entered, this, goOn);
    connect(m_line, &InputLine::escaped, this, &InputView::back);

    auto *backButton = makeButton("backButton", QStringLiteral("Назад"), this);
    auto *nextButton = makeButton("nextButton", QStringLiteral("Далее"), this);
    connect(backButton, &QPushButton::clicked, this, &InputView::back);
    connect(nextButton, &QPushButton::clicked, this, goOn);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(24);
    buttons->addWidget(backButton);
    buttons->addWidget(nextButton);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 16, 32, 20);
    layout->setSpacing(12);
    layout->addStretch();
    addText(layout, "providerName", providerName);
    addText(layout, "inputLabel", parameter.label());
    addText(layout, "inputHint", hint);
    layout->addWidget(m_line);
    auto *centred = new QHBoxLayout;
    centred->addWidget(keyboard);
    layout->addLayout(centred, 1);
    layout->addLayout(buttons);
    layout->addStretch();
}

void InputView::connectKeyboard(const OnScreenKeyboard *keyboard)
{
    connect(keyboard, &OnScreenKeyboard::typed, m_line, &QLineEdit::insert);
    connect(keyboard, &OnScreenKeyboard::erased, m_line, &QLineEdit::backspace);
    connect(keyboard, &OnScreenKeyboard::cleared, m_line, &QLineEdit::clear);
}

void InputView::hideText()
{
    m_line->setEchoMode(QLineEdit::Password);
}
