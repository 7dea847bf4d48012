// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/parts.h"

#include "window/look.h"

#include <QVariant>

namespace kiosk::Parts {
QLabel *line(const QString &text, const char *role)
{
    auto *result = new QLabel(text);
    // Texts of the payee and of the service are shown as they are.
    result->setTextFormat(Qt::PlainText);
    setRole(*result, role);
    return result;
}

QLabel *label(const QString &text, const char *role)
{
    QLabel *result = line(text, role);
    result->setWordWrap(true);
    return result;
}

QPushButton *button(const QString &text, const char *name, const char *role)
{
    auto *result = new QPushButton(text);
    result->setObjectName(QLatin1String(name));
    // A keyboard reaches it; a touch leaves no frame behind.
    result->setFocusPolicy(Qt::TabFocus);
    setRole(*result, role);
    return result;
}

void setRole(QWidget &widget, const char *role)
{
    if (widget.property("role") == QLatin1String(role))
        return;
    widget.setProperty("role", QLatin1String(role));
    Look::refresh(widget);
}
} // namespace kiosk::Parts
