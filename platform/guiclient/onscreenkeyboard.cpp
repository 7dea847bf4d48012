// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/onscreenkeyboard.h"

#include <QGridLayout>
#include <QPushButton>

namespace {
// In the place of these characters stand the keys that type nothing.
const QChar CLEAR = QLatin1Char('<');
const QChar ERASE = QLatin1Char('>');
constexpr int TALLEST_KEY = 112;
constexpr int SPACING = 8;

QStringList rows(OnScreenKeyboard::Type type)
{
    if (type == OnScreenKeyboard::Type::Number)
        return {QStringLiteral("123"), QStringLiteral("456"), QStringLiteral("789"), QStringLiteral("<0>")};
    return {QStringLiteral("1234567890"), QStringLiteral("ABCDEFGHIJ"), QStringLiteral("KLMNOPQRST"),
            QStringLiteral("UVWXYZ<<>>")};
}
} // namespace

OnScreenKeyboard::OnScreenKeyboard(Type type, QWidget *parent) : QWidget(parent)
{
    setMaximumWidth(type == Type::Number ? 640 : 1240);
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(SPACING);
    int row = 0;
    for (const QString &characters : rows(type)) {
        for (int column = 0; column < characters.size(); ++column) {
            const QChar character = characters.at(column);
            const int width = characters.count(character);
            if (column > 0 && characters.at(column - 1) == character)
                continue;
            QPushButton *key = nullptr;
            if (character == CLEAR) {
                key = makeKey(QStringLiteral("Стереть\nвсё"), "clearKey");
                connect(key, &QPushButton::clicked, this, &OnScreenKeyboard::cleared);
            } else if (character == ERASE) {
                key = makeKey(QStringLiteral("⌫"), "eraseKey");
                key->setAccessibleName(QStringLiteral("Стереть"));
                connect(key, &QPushButton::clicked, this, &OnScreenKeyboard::erased);
            } else {
                key = makeKey(character, "key");
                connect(key, &QPushButton::clicked, this, [this, character] { Q_EMIT typed(character); });
            }
            grid->addWidget(key, row, column, 1, width);
            grid->setColumnStretch(column, 1);
        }
        ++row;
    }
    setMaximumHeight(row * (TALLEST_KEY + SPACING) - SPACING);
}

QPushButton *OnScreenKeyboard::makeKey(const QString &caption, const char *name)
{
    auto *key = new QPushButton(caption, this);
    key->setObjectName(QLatin1String(name));
    key->setFocusPolicy(Qt::NoFocus);
    key->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
    return key;
}
