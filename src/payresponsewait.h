// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

class QObject;

/// Holds the host's commit until the answer to a registration is there or the host's online-check time-out has passed.
///
/// Made by the handler behind the request; it looks once a second, so that the call lasts up to a second longer than
/// the exchange. Events are processed meanwhile, and the handler may be destroyed by them: that ends the wait at once.
class PayResponseWait
{
public:
    /// @param isAnswered a member of @a handler, set when an answer was handled.
    PayResponseWait(QObject &handler, bool &isAnswered) : m_handler(handler), m_isAnswered(isAnswered) {}

    /// Does not touch the handler once it has gone.
    void run();

private:
    QObject &m_handler;
    bool &m_isAnswered;
};
