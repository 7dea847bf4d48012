// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "parkinfopayresponse.h"
#include "parkingcheckresponse.h"

#include <QList>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QObject>
#include <QSslError>
#include <QUrlQuery>
#include <QVariantMap>

class ParkInfoPayRequest;
class ParkingCheckRequest;
class QAuthenticator;
class QNetworkProxy;
class QNetworkReply;

/// The cash service's client: posts requests and turns each reply into exactly one signal.
///
/// Made by the payment flow for each payment, with the handler as parent. Several requests may be in flight; nothing
/// ties a reply to its request, so the kind of answer is told by its body alone. There is no retry and no time-out of
/// its own. No connection is kept open behind the last reply: a client lives as long as the handler, and an open
/// connection holds a thread, a socket and an event descriptor.
class ParkomatAccessManager : public QObject
{
    Q_OBJECT

public:
    explicit ParkomatAccessManager(QObject *parent = nullptr);

    /// A request to http://HOST:PORT/PATH/operation as the settings have it now, with content type
    /// "application/soap+xml". Only a path without a slash in front gets one; nothing else about it is mended.
    [[nodiscard]] QNetworkRequest prepareRequest(const QString &operation, const QUrlQuery &query) const;

    /// Posts a document in UTF-8. @return true, always: what fails arrives later through error().
    bool postData(const QString &operation, const QString &xml);
    bool postData(const ParkingCheckRequest &request);
    bool postData(const ParkInfoPayRequest &request);

Q_SIGNALS:
    /// @param err "error" (int): the network error's code, the service's result code, or -1 for an answer that is none;
    /// "errorMessage": the text to it.
    void error(QVariantMap err);
    void progress(int percent);
    void parkInfoPayResponse(ParkInfoPayResponse response);
    void parkingCheckResponse(ParkingCheckResponse response);

public Q_SLOTS:
    void authenticationRequired(QNetworkReply *reply, QAuthenticator *authenticator);
    /// Called when a reply is complete, well or not. Emits its one signal, then closes the reply and schedules its
    /// deletion. After a registered payment the journal advances, once the signal has been seen.
    void finished(QNetworkReply *reply);
    void networkAccessibleChanged(QNetworkAccessManager::NetworkAccessibility accessibility);
    /// Called when a certificate does not hold: it is logged and accepted.
    void sslErrors(QNetworkReply *reply, const QList<QSslError> &errors);
    /// Called when a proxy wants to know who asks: it gets the name and password configured for it.
    void proxyAuthenticationRequired(const QNetworkProxy &proxy, QAuthenticator *authenticator);
    /// Emits progress() in whole per cent, unless the total is not known. Connected to nothing by this class.
    void calcProgress(qint64 value, qint64 total);

private:
    void closeIdleConnections();

    QNetworkAccessManager *m_manager;
};
