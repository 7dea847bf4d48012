// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/fixnumber.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <yaml-cpp/yaml.h>

#include <functional>

namespace kiosk {
/// Reads values out of YAML nodes and collects every mistake with its place. What is not told to be there is a mistake.
class YamlReader
{
public:
    using ReadNode = std::function<void(const YAML::Node &)>;
    /// Takes a plain value. @return what is wrong with it; empty: nothing.
    using ReadText = std::function<QString(const QString &)>;

    struct Key
    {
        QString name;
        ReadNode read;
    };

    void addMistake(const YAML::Mark &mark, const QString &text);
    /// "SOURCE:LINE:COLUMN: …", in the order of their places.
    [[nodiscard]] QStringList mistakes(const QString &source) const;

    /// Reads KEY: VALUE lines, of which each may be there once. @param what the node is, for people.
    void readMap(const YAML::Node &node, const QString &what, const QVector<Key> &keys);
    /// Gives each item of a list to the reader. @param what the node is, for people.
    void readList(const YAML::Node &node, const QString &what, const ReadNode &read);

    // Readers of single values.
    [[nodiscard]] ReadNode text(const ReadText &read);
    [[nodiscard]] ReadNode text(QString &target);
    /// One of the words, separated by "|".
    [[nodiscard]] ReadNode word(const char *words, QString &target);
    /// A whole number from 0 on.
    [[nodiscard]] ReadNode number(int &target);
    /// An amount from 0 on, like 50 or 50.00.
    [[nodiscard]] ReadNode amount(FixNumber &target);

private:
    struct Mistake
    {
        int line;
        int column;
        QString text;

        bool operator<(const Mistake &other) const
        {
            return line < other.line || (line == other.line && column < other.column);
        }
    };

    QVector<Mistake> m_mistakes;
};

/// As YAML has it.
[[nodiscard]] QString scalarText(const YAML::Node &node);
} // namespace kiosk
