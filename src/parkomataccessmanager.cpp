// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkomataccessmanager.h"

#include "bus/logbinary.h"
#include "bus/loglist.h"
#include "bus/logvariant.h"
#include "parkinfopayrequest.h"
#include "parkingcheckrequest.h"
#include "parkomatdatastorage.h"
#include "parkomatlog.h"
#include "parkomatsettings.h"

#include <QAuthenticator>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QPointer>

#include <algorithm>
#include <memory>

namespace {
constexpr int NO_ANSWER = -1;

QVariantMap errorMap(int code, const QString &message)
{
    return {{QStringLiteral("error"), code}, {QStringLiteral("errorMessage"), message}};
}

/// What travels through a queued connection, or one made by name, must be known by name.
bool registerTypes()
{
    qRegisterMetaType<ParkInfoPayResponse>("ParkInfoPayResponse");
    qRegisterMetaType<ParkingCheckResponse>("ParkingCheckResponse");
    qRegisterMetaType<QList<QSslError>>("QList<QSslError>");
    return true;
}

/// Holds the manager while it reports a reply. Whoever listens may delete the client, but Qt goes on working with the
/// manager and the reply once the listener returns: the manager must not die with its owner then, but a little later.
class ManagerHold
{
public:
    explicit ManagerHold(QNetworkAccessManager *manager)
        : m_manager(manager), m_owner(manager->parent()), m_isOutermost(manager->parent() != nullptr)
    {
        manager->setParent(nullptr);
    }
    ~ManagerHold()
    {
        if (!m_isOutermost)
            return;
        if (m_owner)
            m_manager->setParent(m_owner);
        else
            m_manager->deleteLater();
    }
    ManagerHold(const ManagerHold &) = delete;
    ManagerHold &operator=(const ManagerHold &) = delete;

private:
    QNetworkAccessManager *m_manager;
    QPointer<QObject> m_owner;
    /// A listener with an event loop of its own lets other replies be reported meanwhile.
    bool m_isOutermost;
};
} // namespace

ParkomatAccessManager::ParkomatAccessManager(QObject *parent)
    : QObject(parent), m_manager(new QNetworkAccessManager(this))
{
    static const bool areTypesKnown = registerTypes();
    Q_UNUSED(areTypesKnown)

    // Spelt as Qt itself spells them, it finds them at once: else it costs a tenth of an exchange to bring them there.
    // clang-format off
    connect(m_manager, SIGNAL(authenticationRequired(QNetworkReply*,QAuthenticator*)),
            this, SLOT(authenticationRequired(QNetworkReply*,QAuthenticator*)));
    connect(m_manager, SIGNAL(finished(QNetworkReply*)),
            this, SLOT(finished(QNetworkReply*)));
    connect(m_manager, SIGNAL(networkAccessibleChanged(QNetworkAccessManager::NetworkAccessibility)),
            this, SLOT(networkAccessibleChanged(QNetworkAccessManager::NetworkAccessibility)));
    connect(m_manager, SIGNAL(sslErrors(QNetworkReply*,QList<QSslError>)),
            this, SLOT(sslErrors(QNetworkReply*,QList<QSslError>)));
    connect(m_manager, SIGNAL(proxyAuthenticationRequired(QNetworkProxy,QAuthenticator*)),
            this, SLOT(proxyAuthenticationRequired(QNetworkProxy,QAuthenticator*)));
    // clang-format on
}

QNetworkRequest ParkomatAccessManager::prepareRequest(const QString &operation, const QUrlQuery &query) const
{
    const ParkomatSettings settings;
    QString path = settings.cashServicePath() + QLatin1Char('/') + operation;
    // A URL with a host and a relative path is not valid: Qt would send a request line without any path.
    if (!path.startsWith(QLatin1Char('/')))
        path.prepend(QLatin1Char('/'));

    QUrl url;
    url.setHost(settings.cashServiceHost(), QUrl::DecodedMode);
    url.setPath(path, QUrl::DecodedMode);
    url.setPort(settings.cashServicePort());
    url.setScheme(QStringLiteral("http"));
    if (!query.isEmpty())
        url.setQuery(query);

    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/soap+xml"));
    return request;
}

bool ParkomatAccessManager::postData(const QString &operation, const QString &xml)
{
    qCWarning(DEFAULT_LOG).noquote() << loglist(xml.split(QLatin1Char('\n')));
    QNetworkRequest request = prepareRequest(operation, QUrlQuery());
    const QByteArray body = xml.toUtf8();
    request.setHeader(QNetworkRequest::ContentLengthHeader, body.size());
    m_manager->post(request, body);
    qCWarning(DEFAULT_LOG).noquote() << request.url().toString();
    return true;
}

bool ParkomatAccessManager::postData(const ParkingCheckRequest &request)
{
    return postData(QStringLiteral("ParkingCheck"), request.toXml());
}

bool ParkomatAccessManager::postData(const ParkInfoPayRequest &request)
{
    return postData(QStringLiteral("ParkInfoPay"), request.toXml());
}

void ParkomatAccessManager::authenticationRequired(QNetworkReply *, QAuthenticator *) {}

void ParkomatAccessManager::finished(QNetworkReply *reply)
{
    if (reply == nullptr) {
        qCCritical(DEFAULT_LOG).noquote() << tr("Reply is null object");
        return;
    }
    if (!reply->isFinished())
        qCWarning(DEFAULT_LOG).noquote() << tr("The reply is not finished");

    const ManagerHold hold(m_manager);
    const QPointer<ParkomatAccessManager> self(this);
    const QPointer<QNetworkReply> guardedReply(reply);
    if (reply->error() != QNetworkReply::NoError) {
        const QVariantMap map = errorMap(reply->error(), reply->errorString());
        Q_EMIT error(map);
        qCWarning(DEFAULT_LOG).noquote() << logvariant(map);
    } else {
        const QByteArray body = reply->readAll();
        const std::unique_ptr<const BaseParkomatResponse> response(BaseParkomatResponse::parse(body));
        const auto *check = dynamic_cast<const ParkingCheckResponse *>(response.get());
        const auto *pay = dynamic_cast<const ParkInfoPayResponse *>(response.get());
        qCWarning(DEFAULT_LOG).noquote() << logbinary(body, "UTF-8");
        qCWarning(DEFAULT_LOG).noquote() << loglist(QString::fromUtf8(body).split(QLatin1Char('\n')));
        if (response && response->resultCode() != BaseParkomatResponse::SUCCESS) {
            Q_EMIT error(errorMap(response->resultCode(), response->errorInfo()));
        } else if (check != nullptr) {
            Q_EMIT parkingCheckResponse(*check);
        } else if (pay != nullptr) {
            Q_EMIT parkInfoPayResponse(*pay);
            ParkomatDataStorage().addOperation();
        } else {
            Q_EMIT error(errorMap(NO_ANSWER, tr("Unknown response")));
            qCWarning(DEFAULT_LOG).noquote() << logbinary(body, "UTF-8");
        }
    }
    if (guardedReply) {
        guardedReply->close();
        guardedReply->deleteLater();
    }
    if (self)
        closeIdleConnections();
}

void ParkomatAccessManager::networkAccessibleChanged(QNetworkAccessManager::NetworkAccessibility) {}

void ParkomatAccessManager::sslErrors(QNetworkReply *reply, const QList<QSslError> &errors)
{
    for (const QSslError &sslError : errors)
        qCWarning(DEFAULT_LOG).noquote() << static_cast<int>(sslError.error()) << sslError.errorString();
    // Deliberately: parking operators run the service on certificates of their own.
    reply->ignoreSslErrors(errors);
}

void ParkomatAccessManager::proxyAuthenticationRequired(const QNetworkProxy &proxy, QAuthenticator *authenticator)
{
    if (authenticator == nullptr)
        return;
    authenticator->setUser(proxy.user());
    authenticator->setPassword(proxy.password());
}

void ParkomatAccessManager::calcProgress(qint64 value, qint64 total)
{
    if (total >= 1 && value >= 0)
        Q_EMIT progress(static_cast<int>(value * 100 / total));
}

void ParkomatAccessManager::closeIdleConnections()
{
    // Replies are the manager's children. An unfinished one would never finish without its connection.
    const auto replies = m_manager->findChildren<QNetworkReply *>(QString(), Qt::FindDirectChildrenOnly);
    const bool isIdle =
        std::all_of(replies.cbegin(), replies.cend(), [](const QNetworkReply *reply) { return reply->isFinished(); });
    if (isIdle)
        m_manager->clearConnectionCache();
}
