// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/stepreader.h"

#include "pluginsettings.h"
#include "scenario/scenario.h"

#include <QRegularExpression>

#include <algorithm>

namespace kiosk {
namespace {
using ReadNode = YamlReader::ReadNode;
using Key = YamlReader::Key;

const char SCREENS[] = "idle|message|input|details|receipt|service";
const char OUTCOMES[] = "open|committing|confirmed|unconfirmed|interrupted";
const char BUTTONS[] = "ok|yes|no|next|back|cancel|pay";

/// Keeps the value as a text under the key, once the reader of its kind has taken it.
template <typename Map>
ReadNode valueOf(const QString &key, Map &target, const ReadNode &check)
{
    return [&target, key, check](const YAML::Node &node) {
        check(node);
        target.insert(key, scalarText(node));
    };
}

ReadNode ignore(const std::function<ReadNode(QString &)> &reader)
{
    return [reader](const YAML::Node &node) {
        QString unused;
        reader(unused)(node);
    };
}

ReadNode anyText(YamlReader &reader)
{
    return ignore([&reader](QString &unused) { return reader.text(unused); });
}

ReadNode anyAmount(YamlReader &reader)
{
    return [&reader](const YAML::Node &node) {
        FixNumber unused;
        reader.amount(unused)(node);
    };
}

ReadNode anyNumber(YamlReader &reader)
{
    return [&reader](const YAML::Node &node) {
        int unused = 0;
        reader.number(unused)(node);
    };
}

ReadNode card(YamlReader &reader, Step &step)
{
    return [&reader, &step](const YAML::Node &node) {
        QVector<Key> keys;
        for (const auto *key : {"id", "cardId", "pdata"})
            keys.append({QLatin1String(key), valueOf(QLatin1String(key), step.values, anyText(reader))});
        reader.readMap(node, QStringLiteral("the card"), keys);
    };
}

ReadNode service(YamlReader &reader, Step &step)
{
    return [&reader, &step](const YAML::Node &node) {
        if (scalarText(node) == QLatin1String("clear"))
            step.verb = Verb::ClearFaults;
        else if (node.IsScalar())
            reader.addMistake(node.Mark(), QStringLiteral("write {fault: RULE} or clear"));
        else
            reader.readMap(node, QStringLiteral("service"), {{QStringLiteral("fault"), reader.text(step.text)}});
    };
}

/// Any names, each with a text.
ReadNode texts(YamlReader &reader, const QString &what, QMap<QString, QString> &target)
{
    return [&reader, what, &target](const YAML::Node &node) {
        QVector<Key> keys;
        // A name that is there twice is a mistake all the same.
        for (const auto &entry : node.IsMap() ? node : YAML::Node()) {
            const QString name = scalarText(entry.first);
            const bool isNew =
                std::none_of(keys.cbegin(), keys.cend(), [&](const Key &key) { return key.name == name; });
            if (isNew)
                keys.append({name, valueOf(name, target, anyText(reader))});
        }
        reader.readMap(node, what, keys);
    };
}

ReadNode payment(YamlReader &reader, QMap<QString, QString> &target)
{
    return [&reader, &target](const YAML::Node &node) {
        const auto key = [&target](const char *name, const ReadNode &check) {
            return Key{QLatin1String(name), valueOf(QLatin1String(name), target, check)};
        };
        const ReadNode outcome = ignore([&reader](QString &unused) { return reader.word(OUTCOMES, unused); });
        reader.readMap(node, QStringLiteral("payment"),
                       {key("uid", anyNumber(reader)), key("summ", anyAmount(reader)), key("total", anyAmount(reader)),
                        key("change", anyAmount(reader)), key("outcome", outcome)});
    };
}

ReadNode buttons(YamlReader &reader, std::optional<QStringList> &target)
{
    return [&reader, &target](const YAML::Node &node) {
        target.emplace();
        reader.readList(node, QStringLiteral("buttons"), [&](const YAML::Node &item) {
            QString name;
            reader.word(BUTTONS, name)(item);
            if (target->contains(name))
                reader.addMistake(item.Mark(), QStringLiteral("buttons: \"%1\" is there twice").arg(name));
            target->append(name);
        });
    };
}

ReadNode expectation(YamlReader &reader, Step &step)
{
    return [&reader, &expected = step.expectation](const YAML::Node &node) {
        reader.readMap(
            node, QStringLiteral("expect"),
            {{QStringLiteral("screen"), reader.word(SCREENS, expected.screen)},
             {QStringLiteral("text"), reader.text(expected.text)},
             {QStringLiteral("buttons"), buttons(reader, expected.buttons)},
             {QStringLiteral("parameters"), texts(reader, QStringLiteral("parameters"), expected.parameters)},
             {QStringLiteral("payment"), payment(reader, expected.payment)},
             {QStringLiteral("within"), reader.number(expected.within)}});
    };
}

/// It becomes a file's name.
ReadNode screenshotName(YamlReader &reader, Step &step)
{
    return reader.text([&step](const QString &value) {
        static const QRegularExpression name(QStringLiteral("^[A-Za-z0-9_][A-Za-z0-9_.-]*$"));
        step.text = value;
        return name.match(value).hasMatch()
                   ? QString()
                   : QStringLiteral("\"%1\" is no name; write letters, digits, dots and dashes").arg(value);
    });
}

ReadNode note(YamlReader &reader, Step &step)
{
    return [&reader, &step](const YAML::Node &node) { reader.amount(step.amount)(node); };
}

struct Syntax
{
    const char *verb;
    Verb meaning;
    /// What it takes; null: nothing.
    const char *value;
    ReadNode (*read)(YamlReader &, Step &);
};

const QVector<Syntax> &syntaxes()
{
    static const QVector<Syntax> all = {
        {"start", Verb::Start, nullptr, nullptr},
        {"stop", Verb::Stop, nullptr, nullptr},
        {"card", Verb::Card, "{id: TEXT, cardId: TEXT, pdata: TEXT}", card},
        {"session-card", Verb::SessionCard, "{id: TEXT, cardId: TEXT, pdata: TEXT}", card},
        {"press", Verb::Press, BUTTONS, [](YamlReader &reader, Step &step) { return reader.word(BUTTONS, step.text); }},
        {"type", Verb::Type, "TEXT", [](YamlReader &reader, Step &step) { return reader.text(step.text); }},
        {"cash", Verb::Cash, "AMOUNT", note},
        {"open", Verb::OpenService, "service",
         [](YamlReader &reader, Step &step) { return reader.word("service", step.text); }},
        {"save", Verb::Save, nullptr, nullptr},
        {"close", Verb::Close, nullptr, nullptr},
        {"settings", Verb::Settings, "{KEY: VALUE}",
         [](YamlReader &reader, Step &step) { return pluginSettings(reader, step.values); }},
        {"service", Verb::SetFault, "{fault: RULE}|clear", service},
        {"expect", Verb::Expect,
         "{screen: NAME, text: TEXT, buttons: [NAME], parameters: {NAME: VALUE}, "
         "payment: {uid, summ, total, change, outcome}, within: MILLISECONDS}",
         expectation},
        {"screenshot", Verb::Screenshot, "NAME", screenshotName},
        {"wait", Verb::Wait, "MILLISECONDS",
         [](YamlReader &reader, Step &step) { return reader.number(step.milliseconds); }},
        {"quit", Verb::Quit, nullptr, nullptr},
    };
    return all;
}

QString verbNames()
{
    QStringList names;
    for (const Syntax &syntax : syntaxes())
        names.append(QLatin1String(syntax.verb));
    return names.join(QStringLiteral(", "));
}

void readValue(const Syntax &syntax, const YAML::Node &verb, const YAML::Node &value, YamlReader &reader, Step &step)
{
    const QString name = QLatin1String(syntax.verb);
    if (syntax.read == nullptr && value.IsDefined())
        reader.addMistake(value.Mark(), QStringLiteral("%1 takes nothing").arg(name));
    else if (syntax.read != nullptr && !value.IsDefined())
        reader.addMistake(verb.Mark(), QStringLiteral("write %1: %2").arg(name, QLatin1String(syntax.value)));
    else if (syntax.read != nullptr)
        syntax.read(reader, step)(value);
}

QString onOneLine(const YAML::Node &node)
{
    YAML::Emitter text;
    text.SetSeqFormat(YAML::Flow);
    text.SetMapFormat(YAML::Flow);
    text << node;
    return QString::fromUtf8(text.c_str());
}
} // namespace

Step readStep(const YAML::Node &node, YamlReader &reader)
{
    Step step;
    step.line = node.Mark().line + 1;
    const bool isPair = node.IsMap() && node.size() == 1;
    if (!node.IsScalar() && !isPair) {
        reader.addMistake(node.Mark(), QStringLiteral("write a step as VERB or VERB: VALUE"));
        return step;
    }
    const YAML::Node verb = isPair ? node.begin()->first : node;
    const YAML::Node value = isPair ? node.begin()->second : YAML::Node(YAML::NodeType::Undefined);
    const QString name = scalarText(verb);
    const auto syntax = std::find_if(syntaxes().cbegin(), syntaxes().cend(),
                                     [&name](const Syntax &one) { return name == QLatin1String(one.verb); });
    if (syntax == syntaxes().cend()) {
        reader.addMistake(verb.Mark(),
                          QStringLiteral("there is no step \"%1\"; the steps are %2").arg(name, verbNames()));
        return step;
    }
    step.verb = syntax->meaning;
    step.caption = isPair ? name + QStringLiteral(": ") + onOneLine(value) : name;
    readValue(*syntax, verb, value, reader, step);
    return step;
}

YamlReader::ReadNode pluginSettings(YamlReader &reader, QVariantMap &target)
{
    return [&reader, &target](const YAML::Node &node) {
        QVector<Key> keys;
        const QStringList names = PluginSettings::keys();
        for (const QString &name : names) {
            const ReadNode check =
                reader.text([name](const QString &value) { return PluginSettings::mistake(name, value); });
            keys.append({name, valueOf(name, target, check)});
        }
        reader.readMap(node, QStringLiteral("settings"), keys);
    };
}

QStringList stepSyntaxes()
{
    QStringList lines;
    for (const Syntax &syntax : syntaxes())
        lines.append(syntax.value == nullptr
                         ? QString::fromLatin1(syntax.verb)
                         : QStringLiteral("%1: %2").arg(QLatin1String(syntax.verb), QLatin1String(syntax.value)));
    return lines;
}
} // namespace kiosk
