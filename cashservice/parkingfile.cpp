// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkingfile.h"

#include <yaml-cpp/yaml.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iterator>
#include <set>

namespace cash {
namespace {
/// Each reader returns what is wrong with the text; nothing where it took it.
using ReadText = std::function<std::string(const std::string &)>;
using ReadNode = std::function<void(const YAML::Node &)>;

struct Key
{
    std::string name;
    bool isRequired;
    ReadNode read;
};

class Reader
{
public:
    Reader(std::string path, Moment launch) : m_path(std::move(path)), m_launch(launch) {}

    CarPark read()
    {
        CarPark park;
        // A folder can be opened, but not read: the library would throw half-way and leak.
        std::error_code ignored;
        if (std::filesystem::is_directory(m_path, ignored))
            throw ParkingFileError(m_path + ": cannot be read; is it a file?");
        try {
            const std::vector<YAML::Node> documents = YAML::LoadAllFromFile(m_path);
            readPark(documents.empty() ? YAML::Node() : documents.front(), park);
            if (documents.size() > 1)
                addMistake(documents[1].Mark(), "there is a second document; write one alone");
        } catch (const YAML::BadFile &) {
            throw ParkingFileError(m_path + ": cannot be read");
        } catch (const YAML::Exception &error) {
            addMistake(error.mark, error.msg);
        }
        if (m_mistakes.empty())
            return park;
        std::stable_sort(m_mistakes.begin(), m_mistakes.end());
        std::string text;
        for (const Mistake &mistake : m_mistakes)
            text += (text.empty() ? "" : "\n") + m_path + ":" + std::to_string(mistake.line) + ":" +
                    std::to_string(mistake.column) + ": " + mistake.text;
        throw ParkingFileError(text);
    }

private:
    struct Mistake
    {
        int line;
        int column;
        std::string text;

        bool operator<(const Mistake &other) const
        {
            return line < other.line || (line == other.line && column < other.column);
        }
    };

    void addMistake(const YAML::Mark &mark, const std::string &text)
    {
        m_mistakes.push_back({std::max(mark.line, 0) + 1, std::max(mark.column, 0) + 1, text});
    }

    void readPark(const YAML::Node &node, CarPark &park)
    {
        readMap(node, "the file",
                {{"parking", true, text([&park](const std::string &value) {
                      park.parkingId = value;
                      return value.empty() ? "write the car park's identifier" : "";
                  })},
                 {"tariff", true, [&](const YAML::Node &value) { readTariff(value, park.tariff); }},
                 {"cards", true, [&](const YAML::Node &value) { readCards(value, park); }}});
    }

    void readTariff(const YAML::Node &node, Tariff &tariff)
    {
        readMap(node, "tariff",
                {{"per-hour", true, amount(tariff.perHour)},
                 {"daily-maximum", true, amount(tariff.dailyMaximum)},
                 {"free", true, text([&tariff](const std::string &value) {
                      const auto time = durationFromText(value);
                      tariff.freeTime = time ? std::chrono::duration_cast<std::chrono::seconds>(*time).count() : 0;
                      return time ? "" : "\"" + value + "\" is no time; write one like 15m, or 0m; at most 36500d";
                  })}});
    }

    void readCards(const YAML::Node &node, CarPark &park)
    {
        if (!node.IsSequence()) {
            addMistake(node.Mark(), "cards: write a list, each card behind a dash");
            return;
        }
        for (const YAML::Node &item : node)
            readCard(item, park);
    }

    void readCard(const YAML::Node &node, CarPark &park)
    {
        Card card;
        readMap(node, "the card",
                {{"uid", true, text([&](const std::string &value) { return readUid(value, park, card); })},
                 {"entered", true, text([&](const std::string &value) { return readEntry(value, card); })},
                 {"state", false, text([&card](const std::string &value) {
                      card.state = stateFromName(value).value_or(card.state);
                      return stateFromName(value) ? ""
                                                  : "there is no state \"" + value + "\"; there are " + stateNames();
                  })},
                 {"paid", false, amount(card.paid)},
                 {"answer-after", false, text([&card](const std::string &value) {
                      card.answerAfter = durationFromText(value).value_or(card.answerAfter);
                      return durationFromText(value)
                                 ? ""
                                 : "\"" + value + "\" is no time; write one like 500ms or 5s; at most 36500d";
                  })},
                 {"note", false, text([&card](const std::string &value) {
                      card.note = value;
                      return "";
                  })}});
        park.cards[card.uid] = card;
    }

    static std::string readUid(const std::string &value, const CarPark &park, Card &card)
    {
        const auto uid = uidFromText(value);
        card.uid = uid.value_or(0);
        if (!uid)
            return "\"" + value + "\" is no UID; write eight hexadecimal digits, the highest first";
        return park.cards.count(*uid) != 0 ? "there is a card with the UID " + value + " above" : "";
    }

    std::string readEntry(const std::string &value, Card &card) const
    {
        constexpr std::string_view suffix = " before launch";
        const bool isRelative =
            value.size() > suffix.size() && value.compare(value.size() - suffix.size(), suffix.size(), suffix) == 0;
        if (isRelative) {
            const auto before = durationFromText(value.substr(0, value.size() - suffix.size()));
            if (before)
                card.entered = m_launch - std::chrono::duration_cast<std::chrono::seconds>(*before).count();
            return before ? "" : "\"" + value + "\" says no time; write one like 2h30m before launch; at most 36500d";
        }
        const auto moment = momentFromLocalText(value);
        card.entered = moment.value_or(0);
        return moment
                   ? ""
                   : "\"" + value +
                         "\" is no entry; write 2024-03-07T11:35:09, of the years 2000 to 2099, or 2h30m before launch";
    }

    /// A reader of a plain value.
    ReadNode text(const ReadText &read)
    {
        return [this, read](const YAML::Node &node) {
            const std::string trouble = node.IsScalar() ? read(node.Scalar()) : "write a plain value";
            if (!trouble.empty())
                addMistake(node.Mark(), trouble);
        };
    }

    ReadNode amount(Hundredths &target)
    {
        return text([&target](const std::string &value) {
            target = amountFromText(value).value_or(0);
            return amountFromText(value) ? "" : "\"" + value + "\" is no amount; write one like 50.00";
        });
    }

    void readMap(const YAML::Node &node, const std::string &what, const std::vector<Key> &keys)
    {
        if (!node.IsMap()) {
            addMistake(node.Mark(), what + ": write KEY: VALUE lines; the keys are " + namesOf(keys));
            return;
        }
        std::set<std::string> seen;
        for (const auto &entry : node)
            readEntryOf(entry.first, entry.second, keys, seen);
        for (const Key &key : keys) {
            if (key.isRequired && seen.count(key.name) == 0)
                addMistake(node.Mark(), what + ": \"" + key.name + "\" is missing");
        }
    }

    void readEntryOf(const YAML::Node &name, const YAML::Node &value, const std::vector<Key> &keys,
                     std::set<std::string> &seen)
    {
        const std::string text = name.IsScalar() ? name.Scalar() : std::string();
        const auto key = std::find_if(keys.begin(), keys.end(), [&text](const Key &one) { return one.name == text; });
        if (key == keys.end())
            addMistake(name.Mark(), "there is no key \"" + text + "\" here; the keys are " + namesOf(keys));
        else if (!seen.insert(text).second)
            addMistake(name.Mark(), "\"" + text + "\" is there twice");
        else
            key->read(value);
    }

    static std::string namesOf(const std::vector<Key> &keys)
    {
        std::string names;
        for (const Key &key : keys)
            names += (names.empty() ? "" : ", ") + key.name;
        return names;
    }

    std::string m_path;
    Moment m_launch;
    std::vector<Mistake> m_mistakes;
};
} // namespace

CarPark readParkingFile(const std::string &path, Moment launch)
{
    return Reader(path, launch).read();
}
} // namespace cash
