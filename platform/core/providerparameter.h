// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

/// One field of a payment to a provider: what it is called, what the customer is asked, what it holds. All texts.
class ProviderParameter
{
public:
    /// What plugins and the payment protocol call it. Exact, case-sensitive.
    [[nodiscard]] QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }

    /// What the customer reads beside the value or above the input.
    [[nodiscard]] QString label() const { return m_label; }
    void setLabel(const QString &label) { m_label = label; }

    /// What the customer reads where the value is shown once more for a check; empty: label().
    [[nodiscard]] QString checkLabel() const { return m_checkLabel; }
    void setCheckLabel(const QString &label) { m_checkLabel = label; }

    [[nodiscard]] QString value() const { return m_value; }
    void setValue(const QString &value) { m_value = value; }

    /// Which on-screen keyboard types it: "number" (digits) or "full" (letters and digits).
    [[nodiscard]] QString keyboardType() const { return m_keyboardType; }
    void setKeyboardType(const QString &type) { m_keyboardType = type; }

    /// Letters of a "full" keyboard: "en"; empty where the type has none.
    [[nodiscard]] QString keyboardLanguage() const { return m_keyboardLanguage; }
    void setKeyboardLanguage(const QString &language) { m_keyboardLanguage = language; }

private:
    QString m_name;
    QString m_label;
    QString m_checkLabel;
    QString m_value;
    QString m_keyboardType;
    QString m_keyboardLanguage;
};

Q_DECLARE_METATYPE(ProviderParameter)
