// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUiLoader>

/// Reads ".ui" files, with this library's own widgets beside Qt's.
class ViewLoader : public QUiLoader
{
    Q_OBJECT

public:
    /// @return null when the file does not make a widget: reason() then says why.
    [[nodiscard]] QWidget *loadView(const QString &path);
    [[nodiscard]] QString reason() const { return m_reason; }

    QWidget *createWidget(const QString &className, QWidget *parent, const QString &name) override;

private:
    QString m_reason;
};
