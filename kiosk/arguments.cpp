// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "arguments.h"

#include "pluginsettings.h"

#include <QCommandLineParser>
#include <QFileInfo>

#include <array>

namespace kiosk {
namespace {
QString absolute(const QString &path)
{
    return path.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath();
}

// The options' names.
const char PLUGIN_FILE[] = "plugin-file";
const char WORK_DIR[] = "work-dir";
const char SET[] = "set";
const char PLAY[] = "play";
const char SHOTS[] = "shots";
const char BENCH[] = "bench";
const char FULL_SCREEN[] = "fullscreen";

/// Options that take a value.
struct Option
{
    const char *name;
    const char *value;
    const char *help;
};
constexpr std::array<Option, 7> OPTIONS = {{
    {PLUGIN_FILE, "FILE", "The plugin, in place of the first one beside the program."},
    {WORK_DIR, "DIR", "Where the terminal keeps its state; --play takes a temporary folder unless this tells."},
    {SET, "KEY=VALUE", "One of the plugin's settings; may be given more than once."},
    {PLAY, "SCENARIO.yaml", "Plays a scenario and ends."},
    {SHOTS, "DIR", "Where the scenario's screenshots go; none are taken unless this tells."},
    {BENCH, "ADMIN-URL", "The cash service's admin interface, to set its faults."},
    {PROBE_OPTION, "FILE", ""},
}};

void addOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        QStringLiteral("A payment terminal that takes money for parking, through a plugin. Exit status with --play: 0 "
                       "every step held, 1 a step failed; 2: bad arguments or a bad file."));
    for (const Option &option : OPTIONS) {
        QCommandLineOption added{QString::fromLatin1(option.name), QString::fromLatin1(option.help),
                                 QString::fromLatin1(option.value)};
        if (qstrlen(option.help) == 0)
            added.setFlags(QCommandLineOption::HiddenFromHelp);
        parser.addOption(added);
    }
    parser.addOption({QString::fromLatin1(FULL_SCREEN), QStringLiteral("Takes the whole screen.")});
    parser.addHelpOption();
}

/// What is wrong before any value is looked at.
QStringList mistakesOf(const QCommandLineParser &parser)
{
    QStringList mistakes;
    for (const Option &option : OPTIONS) {
        const QString name = QString::fromLatin1(option.name);
        if (parser.isSet(name) && parser.values(name).contains(QString()))
            mistakes.append(QStringLiteral("--%1 is empty").arg(name));
    }
    const QStringList words = parser.positionalArguments();
    for (const QString &word : words)
        mistakes.append(QStringLiteral("\"%1\" is no option").arg(word));
    return mistakes;
}

/// "KEY=VALUE"; the value may have further equals signs.
void addSetting(const QString &text, Arguments &arguments)
{
    const int equals = text.indexOf(QLatin1Char('='));
    if (equals < 0) {
        arguments.mistakes.append(QStringLiteral("--set %1: write KEY=VALUE").arg(text));
        return;
    }
    const QString key = text.left(equals);
    const QString value = text.mid(equals + 1);
    const QString mistake = PluginSettings::mistake(key, value);
    if (!mistake.isEmpty())
        arguments.mistakes.append(QStringLiteral("--set %1: %2").arg(text, mistake));
    arguments.settings.insert(key, value);
}

QUrl benchUrl(const QString &text, Arguments &arguments)
{
    const QUrl url(text, QUrl::StrictMode);
    if (!text.isEmpty() && (!url.isValid() || url.host().isEmpty() || url.scheme() != QLatin1String("http")))
        arguments.mistakes.append(
            QStringLiteral("--bench %1: write the admin interface like http://127.0.0.1:13006/admin").arg(text));
    return url;
}
} // namespace

Arguments Arguments::parse(const QStringList &words)
{
    QCommandLineParser parser;
    addOptions(parser);
    Arguments arguments;
    if (!parser.parse(words))
        arguments.mistakes.append(parser.errorText());
    arguments.mistakes += mistakesOf(parser);
    const auto value = [&parser](const char *name) { return parser.value(QString::fromLatin1(name)); };
    arguments.pluginFile = absolute(value(PLUGIN_FILE));
    arguments.workDir = absolute(value(WORK_DIR));
    arguments.scenario = value(PLAY);
    arguments.shotsDir = absolute(value(SHOTS));
    arguments.bench = benchUrl(value(BENCH), arguments);
    arguments.isFullScreen = parser.isSet(QString::fromLatin1(FULL_SCREEN));
    arguments.probedPlugin = value(PROBE_OPTION);
    const QStringList settings = parser.values(QString::fromLatin1(SET));
    for (const QString &setting : settings)
        addSetting(setting, arguments);
    arguments.wantsHelp = parser.isSet(QStringLiteral("help"));
    arguments.help = parser.helpText();
    return arguments;
}
} // namespace kiosk
