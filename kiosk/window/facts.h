// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>
#include <QString>

class QGridLayout;

namespace kiosk {
/// A card of facts: what something is called, and what it is.
class Facts : public QFrame
{
    Q_OBJECT

public:
    explicit Facts(QWidget *parent = nullptr);

    void clear();
    void addHeading(const QString &text);
    /// Both in one row. @param role the value's look.
    void addRow(const QString &caption, const QString &value, const char *role = "value");
    /// The value below its caption, for long ones; it breaks at separators too, as paths must.
    void addBelow(const QString &caption, const QString &value);

private:
    QGridLayout *m_grid;
};
} // namespace kiosk
