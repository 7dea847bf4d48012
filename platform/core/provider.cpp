// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/provider.h"

Provider::Provider(qint64 id, const QString &name, QObject *parent) : QObject(parent), m_id(id), m_name(name) {}

void Provider::setParameters(const QList<ProviderParameter> &parameters)
{
    m_parameters = parameters;
    Q_EMIT parametersChanged();
}
