// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/providerparameter.h"

#include <QObject>

/// Whom a payment goes to, with the fields of that payment. The host makes a new one for each payment.
class Provider : public QObject
{
    Q_OBJECT

public:
    /// @param id the provider's number, from 1.
    Provider(qint64 id, const QString &name, QObject *parent = nullptr);

    [[nodiscard]] qint64 id() const;
    [[nodiscard]] QString name() const;

    [[nodiscard]] QList<ProviderParameter> parameters() const;
    /// Replaces them all; emits parametersChanged().
    void setParameters(const QList<ProviderParameter> &parameters);

Q_SIGNALS:
    void parametersChanged();

private:
    qint64 m_id;
    QString m_name;
    QList<ProviderParameter> m_parameters;
};
