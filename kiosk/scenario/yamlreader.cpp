// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/yamlreader.h"

#include <QRegularExpression>

#include <algorithm>

namespace kiosk {
namespace {
/// What the file has in a value may have line ends; a mistake is a line.
QString oneLine(QString text)
{
    return text.replace(QLatin1Char('\n'), QStringLiteral("\\n")).replace(QLatin1Char('\r'), QStringLiteral("\\r"));
}
} // namespace

QString scalarText(const YAML::Node &node)
{
    return node.IsScalar() ? QString::fromStdString(node.Scalar()) : QString();
}

void YamlReader::addMistake(const YAML::Mark &mark, const QString &text)
{
    // YAML counts from 0, and from -1 where it knows no place.
    m_mistakes.append({std::max(mark.line, 0) + 1, std::max(mark.column, 0) + 1, text});
}

QStringList YamlReader::mistakes(const QString &source) const
{
    QVector<Mistake> sorted = m_mistakes;
    std::stable_sort(sorted.begin(), sorted.end());
    QStringList lines;
    for (const Mistake &mistake : qAsConst(sorted))
        lines.append(
            QStringLiteral("%1:%2:%3: %4")
                .arg(source, QString::number(mistake.line), QString::number(mistake.column), oneLine(mistake.text)));
    return lines;
}

void YamlReader::readMap(const YAML::Node &node, const QString &what, const QVector<Key> &keys)
{
    QStringList names;
    for (const Key &key : keys)
        names.append(key.name);
    if (!node.IsMap()) {
        addMistake(node.Mark(),
                   QStringLiteral("%1: write KEY: VALUE; the keys are %2").arg(what, names.join(QStringLiteral(", "))));
        return;
    }
    QStringList seen;
    for (const auto &entry : node) {
        const QString name = scalarText(entry.first);
        const int index = names.indexOf(name);
        if (index < 0)
            addMistake(entry.first.Mark(), QStringLiteral("%1: there is no key \"%2\"; the keys are %3")
                                               .arg(what, name, names.join(QStringLiteral(", "))));
        else if (seen.contains(name))
            addMistake(entry.first.Mark(), QStringLiteral("%1: \"%2\" is there twice").arg(what, name));
        else
            keys.at(index).read(entry.second);
        seen.append(name);
    }
}

void YamlReader::readList(const YAML::Node &node, const QString &what, const ReadNode &read)
{
    if (!node.IsSequence()) {
        addMistake(node.Mark(), QStringLiteral("%1: write a list, each item behind a dash").arg(what));
        return;
    }
    for (const YAML::Node &item : node)
        read(item);
}

YamlReader::ReadNode YamlReader::text(const ReadText &read)
{
    return [this, read](const YAML::Node &node) {
        const QString mistake = node.IsScalar() ? read(scalarText(node)) : QStringLiteral("write a plain value");
        if (!mistake.isEmpty())
            addMistake(node.Mark(), mistake);
    };
}

YamlReader::ReadNode YamlReader::text(QString &target)
{
    return text([&target](const QString &value) {
        target = value;
        return QString();
    });
}

YamlReader::ReadNode YamlReader::word(const char *words, QString &target)
{
    const QStringList known = QString::fromLatin1(words).split(QLatin1Char('|'));
    return text([&target, known](const QString &value) {
        target = value;
        return known.contains(value)
                   ? QString()
                   : QStringLiteral("\"%1\" is none of %2").arg(value, known.join(QStringLiteral(", ")));
    });
}

YamlReader::ReadNode YamlReader::number(int &target)
{
    return text([&target](const QString &value) {
        static const QRegularExpression digits(QStringLiteral("^\\d{1,9}$"));
        target = value.toInt();
        return digits.match(value).hasMatch() ? QString()
                                              : QStringLiteral("\"%1\" is no whole number from 0 on").arg(value);
    });
}

YamlReader::ReadNode YamlReader::amount(FixNumber &target)
{
    return text([&target](const QString &value) {
        static const QRegularExpression decimal(QStringLiteral("^\\d{1,12}(\\.\\d{1,2})?$"));
        target = FixNumber(100, value);
        return decimal.match(value).hasMatch()
                   ? QString()
                   : QStringLiteral("\"%1\" is no amount; write one like 50 or 50.00").arg(value);
    });
}
} // namespace kiosk
