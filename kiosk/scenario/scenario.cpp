// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/scenario.h"

#include "scenario/stepreader.h"
#include "scenario/yamldocuments.h"

#include <QFile>
#include <QRegularExpression>

namespace kiosk {
namespace {
YamlReader::ReadNode seconds(YamlReader &reader, std::optional<int> &target)
{
    return [&reader, &target](const YAML::Node &node) {
        int value = 0;
        reader.number(value)(node);
        target = value;
    };
}

void readHost(const YAML::Node &node, YamlReader &reader, HostSettings &host)
{
    QString plugin;
    reader.readMap(node, QStringLiteral("host"),
                   {{QStringLiteral("onlineCheckTimeout"), seconds(reader, host.onlineCheckTimeout)},
                    {QStringLiteral("autoCloseMessagesAfter"), seconds(reader, host.autoCloseMessagesAfter)},
                    {QStringLiteral("plugin"), reader.word("fresh|kept", plugin)},
                    {QStringLiteral("comission"), reader.amount(host.comission)}});
    host.keepPlugin = plugin == QLatin1String("kept");
}

void readFile(const YAML::Node &node, YamlReader &reader, Scenario &scenario)
{
    if (node.IsNull()) {
        reader.addMistake(node.Mark(), QStringLiteral("the scenario: it is empty; write its steps"));
        return;
    }
    const auto addStep = [&](const YAML::Node &item) { scenario.steps.append(readStep(item, reader)); };
    reader.readMap(node, QStringLiteral("the scenario"),
                   {{QStringLiteral("settings"), pluginSettings(reader, scenario.settings)},
                    {QStringLiteral("host"), [&](const YAML::Node &value) { readHost(value, reader, scenario.host); }},
                    {QStringLiteral("steps"),
                     [&](const YAML::Node &value) { reader.readList(value, QStringLiteral("steps"), addStep); }}});
    const YAML::Node steps = node.IsMap() ? node["steps"] : YAML::Node();
    if (node.IsMap() && (!steps || (steps.IsSequence() && steps.size() == 0)))
        reader.addMistake(node.Mark(), QStringLiteral("the scenario: there are no steps"));
}

/// Has the text's one document read. @throw ScenarioError
void parse(const QByteArray &text, const QString &source, YamlReader &reader,
           const std::function<void(const YAML::Node &)> &read)
{
    try {
        const std::string bytes = text.toStdString();
        if (const std::optional<YAML::Mark> second = secondDocument(bytes))
            reader.addMistake(*second, QStringLiteral("there is a second document"));
        read(YAML::Load(bytes));
    } catch (const YAML::Exception &error) {
        reader.addMistake(error.mark, QString::fromStdString(error.msg));
    }
    const QStringList mistakes = reader.mistakes(source);
    if (!mistakes.isEmpty())
        throw ScenarioError(mistakes);
}
} // namespace

Scenario readScenario(const QString &path)
{
    QFile file(path);
    const bool isOpen = file.open(QIODevice::ReadOnly);
    const QByteArray text = isOpen ? file.readAll() : QByteArray();
    // A file that is open may fail yet, and would look empty.
    if (file.error() != QFileDevice::NoError)
        throw ScenarioError({QStringLiteral("%1: %2").arg(path, file.errorString())});
    return readScenario(text, path);
}

Scenario readScenario(const QByteArray &text, const QString &path)
{
    Scenario scenario;
    scenario.path = path;
    YamlReader reader;
    parse(text, path, reader, [&](const YAML::Node &node) { readFile(node, reader, scenario); });
    return scenario;
}

Step readStep(const QString &text, const QString &source)
{
    // No verb has a blank in it, so a command is nothing else in YAML; a comment is no value.
    static const QRegularExpression command(QStringLiteral("^([a-z][a-z-]*)\\s+([^#:\\s].*)$"));
    const QRegularExpressionMatch match = command.match(text.trimmed());
    const QString inYaml = match.hasMatch() ? match.captured(1) + QStringLiteral(": ") + match.captured(2) : text;
    Step step;
    YamlReader reader;
    parse(inYaml.toUtf8(), source, reader, [&](const YAML::Node &node) { step = readStep(node, reader); });
    return step;
}
} // namespace kiosk
