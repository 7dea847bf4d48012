// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "guiclient/messagewidgetcontroller.h"
#include "parkomatpluginhandler.h"
#include "support/waiting.h"

#include <QNetworkReply>
#include <QPointer>

/// Of a handler's own objects those of that class that are alive once the scheduled deletions are done.
template <typename Child>
[[nodiscard]] QList<Child *> childrenOf(const ParkomatPluginHandler &handler)
{
    deleteReleased();
    return handler.findChildren<Child *>(QString(), Qt::FindDirectChildrenOnly);
}

/// One for each message that is up.
[[nodiscard]] inline QList<MessageWidgetController *> controllers(const ParkomatPluginHandler &handler)
{
    return childrenOf<MessageWidgetController>(handler);
}

/// The replies that a handler, or one of its clients, still waits for. @param of may be null.
[[nodiscard]] inline QList<QPointer<QNetworkReply>> unanswered(const QObject *of)
{
    QList<QPointer<QNetworkReply>> all;
    const auto replies = of != nullptr ? of->findChildren<QNetworkReply *>() : QList<QNetworkReply *>();
    for (QNetworkReply *reply : replies) {
        if (!reply->isFinished())
            all.append(reply);
    }
    return all;
}
