// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// What the views of a form project are called.
class WidgetNames : public QObject
{
    Q_OBJECT

public:
    /// @param portrait whether the views for an upright screen are asked for.
    explicit WidgetNames(bool portrait = false, QObject *parent = nullptr);

    /// The message view's file, relative to FormProject::projectDir(): "messageview.ui", upright
    /// "messageview-portrait.ui". What such a file has to hold is told by MessageWidgetController.
    [[nodiscard]] QString messageViewFileName() const;

private:
    bool m_portrait;
};
