// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// A terminal's set of views: a folder with ".ui" files, named as WidgetNames says.
class FormProject
{
public:
    /// @param projectDir the folder, without a separator at its end.
    explicit FormProject(const QString &projectDir) : m_projectDir(projectDir) {}

    [[nodiscard]] QString projectDir() const { return m_projectDir; }

private:
    QString m_projectDir;
};
