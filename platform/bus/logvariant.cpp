// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "bus/logvariant.h"

#include "bus/visiblecontrols.h"

#include <QStringList>

namespace {
QString onOneLine(const QString &text)
{
    return VisibleControls::in(text, VisibleControls::LineEnds::VISIBLE);
}

bool isContainer(const QVariant &value)
{
    const auto type = static_cast<QMetaType::Type>(value.type());
    return type == QMetaType::QVariantMap || type == QMetaType::QVariantHash || type == QMetaType::QVariantList ||
           type == QMetaType::QStringList;
}

/// The text of a value that is no container. One that has no text of its own is named by its type.
QString plainText(const QVariant &value)
{
    if (!value.isValid())
        return QStringLiteral("(invalid)");
    if (value.type() == QVariant::ByteArray) {
        // With the size, since a conversion without it ends at the first zero byte.
        const QByteArray bytes = value.toByteArray();
        return QString::fromUtf8(bytes.constData(), bytes.size());
    }
    if (value.canConvert<QString>())
        return value.toString();
    return QLatin1Char('(') + QLatin1String(value.typeName()) + QLatin1Char(')');
}

void appendEntries(QStringList &lines, const QVariant &container, const QString &indent);

void appendEntry(QStringList &lines, const QString &head, const QVariant &value, const QString &indent)
{
    if (!isContainer(value)) {
        lines.append(indent + head + QLatin1Char(' ') + onOneLine(plainText(value)));
        return;
    }
    lines.append(indent + head);
    appendEntries(lines, value, indent + QStringLiteral("  "));
}

void appendEntries(QStringList &lines, const QVariant &container, const QString &indent)
{
    if (container.type() == QVariant::Map || container.type() == QVariant::Hash) {
        const QVariantMap map = container.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            appendEntry(lines, onOneLine(it.key()) + QLatin1Char(':'), it.value(), indent);
        return;
    }
    const QVariantList list = container.toList();
    for (const QVariant &entry : list)
        appendEntry(lines, QStringLiteral("-"), entry, indent);
}
} // namespace

QDebug operator<<(QDebug debug, const logvariant &variant)
{
    QStringList lines;
    if (isContainer(variant.m_value))
        appendEntries(lines, variant.m_value, QString());
    else
        lines.append(onOneLine(plainText(variant.m_value)));
    const QDebugStateSaver saver(debug);
    debug.noquote() << lines.join(QLatin1Char('\n'));
    return debug;
}
