// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/provider.h"

Provider::Provider(qint64 id, const QString &name, QObject *parent) : QObject(parent), m_id(id), m_name(name) {}

qint64 Provider::id() const
{
    return m_id;
}

QString Provider::name() const
{
    return m_name;
}

QList<ProviderParameter> Provider::parameters() const
{
    return m_parameters;
}

void Provider::setParameters(const QList<ProviderParameter> &parameters)
{
    m_parameters = parameters;
    Q_EMIT parametersChanged();
}
