// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>
#include <QString>

/// The terminal as it presents itself: on receipts, in the service menu, to plugins.
struct TrelmInfo
{
    /// The terminal's number; 0 where none was given out yet.
    qint64 id = 0;
    QString name;
    /// Where it stands.
    QString address;
    /// Whom a customer calls when something went wrong.
    QString phone;
};

Q_DECLARE_METATYPE(TrelmInfo)
