// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/step.h"

#include <QStringList>
#include <QVector>

#include <optional>
#include <stdexcept>

namespace kiosk {
/// What is wrong with a scenario: every mistake with its place, "FILE:LINE:COLUMN: …".
class ScenarioError : public std::runtime_error
{
public:
    explicit ScenarioError(const QStringList &mistakes)
        : std::runtime_error(mistakes.join(QLatin1Char('\n')).toStdString()), m_mistakes(mistakes)
    {}
    [[nodiscard]] QStringList mistakes() const { return m_mistakes; }

private:
    QStringList m_mistakes;
};

/// What a scenario asks of the terminal it is played on. What is not there stays as it is.
struct HostSettings
{
    /// Seconds.
    std::optional<int> onlineCheckTimeout;
    std::optional<int> autoCloseMessagesAfter;
    /// See TerminalOptions.
    bool keepPlugin = false;
    FixNumber comission;
};

/// A customer's doings, and what is expected of the terminal.
struct Scenario
{
    QString path;
    /// The plugin's, by their keys.
    QVariantMap settings;
    HostSettings host;
    QVector<Step> steps;
};

/// Reads a scenario from YAML; ../scenarios has some. @throw ScenarioError with all mistakes at once.
[[nodiscard]] Scenario readScenario(const QString &path);
/// The same of what a file holds. @param path whose mistakes they are.
[[nodiscard]] Scenario readScenario(const QByteArray &text, const QString &path);
/// Reads one step, "press: ok", or a command, "press ok": kioskctl and the bench panel take both.
/// @param source whose mistakes they are, in place of a file's name.
/// @throw ScenarioError
[[nodiscard]] Step readStep(const QString &text, const QString &source);
/// The verbs with what they take, a line each, for people.
[[nodiscard]] QStringList stepSyntaxes();
} // namespace kiosk
