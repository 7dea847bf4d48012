// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "bareexchange.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>

#include <stdexcept>

BareExchange::BareExchange(quint16 port, const QString &operation, const QString &text)
    : m_request(QUrl(QStringLiteral("http://127.0.0.1:%1/api/%2").arg(port).arg(operation))), m_body(text.toUtf8()),
      m_expected(operation.toUtf8() + "Response")
{
    m_request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/soap+xml"));
}

void BareExchange::run() const
{
    QNetworkAccessManager manager;
    QEventLoop loop;
    QByteArray answer;
    QObject::connect(&manager, &QNetworkAccessManager::finished, &loop, [&](QNetworkReply *reply) {
        answer = reply->readAll();
        reply->deleteLater();
        manager.clearConnectionCache();
        loop.quit();
    });
    manager.post(m_request, m_body);
    loop.exec();
    if (!answer.contains(m_expected))
        throw std::runtime_error("the exchange failed: " + answer.toStdString());
}
