// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// Belongs to the plugin's set of classes and does nothing: all diagnostics go through Qt's message logger.
class ParkomatLogger : public QObject
{
    Q_OBJECT

public:
    explicit ParkomatLogger(QObject *parent) : QObject(parent) {}
};
