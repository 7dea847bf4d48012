// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QNetworkRequest>
#include <QString>

/// The least that Qt can do for one exchange: a manager of its own, one post of bytes that are ready, the answer read,
/// nothing kept open.
class BareExchange
{
public:
    /// @param operation what is posted to the service on @a port of this machine.
    BareExchange(quint16 port, const QString &operation, const QString &text);

    /// @throws std::runtime_error when the answer is not the operation's.
    void run() const;

private:
    QNetworkRequest m_request;
    QByteArray m_body;
    QByteArray m_expected;
};
