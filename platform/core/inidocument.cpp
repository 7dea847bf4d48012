// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/inidocument.h"

#include "core/ininame.h"
#include "core/inivalue.h"

#include <QStringList>

namespace {
// Files are looked at in place: settings are read several times a payment.
using Text = std::string_view;

constexpr Text BYTE_ORDER_MARK = "\xef\xbb\xbf";

/// Where a key's value stands in a file, and where the key would go if it is not there.
struct Place
{
    /// The value's bytes without blanks around; npos when the key is not there.
    std::size_t value = Text::npos;
    std::size_t valueSize = 0;
    /// Behind the last line of the section; npos when the section is not there.
    std::size_t sectionEnd = Text::npos;
};

struct Name
{
    QString section;
    QString key;
};

/// QSettings' own division of a full key: the section is what comes before the first slash; slashes at the ends, and
/// all but one of several, do not count.
Name nameOf(const QString &group, const QString &key)
{
    const QLatin1Char slash('/');
    if (!group.isEmpty() && !group.contains(slash) && !key.isEmpty() && !key.contains(slash))
        return {group, key};
    const QStringList parts = (group + slash + key).split(slash, Qt::SkipEmptyParts);
    return parts.size() > 1 ? Name{parts.first(), parts.mid(1).join(slash)} : Name{QString(), parts.join(slash)};
}

bool isGeneral(const QString &section)
{
    return section.compare(QLatin1String("General"), Qt::CaseInsensitive) == 0;
}

bool isSection(Text written, const QString &section)
{
    // "General" is the section of keys without a group; a group of that name is set off by "%".
    const bool isSetOff = written.size() > 1 && written.front() == '%';
    const Text rest = written.substr(isSetOff ? 1 : 0);
    if (rest.size() == 7 && qstrnicmp(rest.data(), "General", 7) == 0)
        return isSetOff ? isGeneral(section) : section.isEmpty();
    return !section.isEmpty() && IniName::isName(written, section);
}

QByteArray writtenSection(const QString &section)
{
    if (section.isEmpty())
        return "General";
    return isGeneral(section) ? '%' + section.toLatin1() : IniName::written(section);
}

Text textOf(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

Text trimmed(Text text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// Of a line without blanks around it.
bool isComment(Text line)
{
    return !line.empty() && (line.front() == ';' || line.front() == '#');
}

/// Whether a line goes on behind its break, which is not part of @a line: it ends in a backslash, itself not escaped.
bool goesOn(Text line)
{
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    bool isOdd = false;
    for (; !line.empty() && line.back() == '\\'; line.remove_suffix(1))
        isOdd = !isOdd;
    return isOdd;
}

/// Behind the line that begins at @a begin. Comments do not go on.
std::size_t lineEnd(Text file, std::size_t begin)
{
    std::size_t lineBreak = file.find('\n', begin);
    while (lineBreak != Text::npos && goesOn(file.substr(begin, lineBreak - begin)) &&
           !isComment(trimmed(file.substr(begin, lineBreak - begin))))
        lineBreak = file.find('\n', lineBreak + 1);
    return lineBreak == Text::npos ? file.size() : lineBreak + 1;
}

/// Where the first line begins.
std::size_t firstLine(Text file)
{
    return file.substr(0, BYTE_ORDER_MARK.size()) == BYTE_ORDER_MARK ? BYTE_ORDER_MARK.size() : 0;
}

QByteArray lineBreakOf(Text file)
{
    const std::size_t lineBreak = file.find('\n');
    const bool isWide = lineBreak != Text::npos && lineBreak > 0 && file[lineBreak - 1] == '\r';
    return isWide ? "\r\n" : "\n";
}

/// What it takes, behind @a before, for a new line to begin.
QByteArray endOfLine(Text before, const QByteArray &lineBreak)
{
    if (before.size() == firstLine(before))
        return QByteArray();
    const bool isEnded = before.back() == '\n';
    if (isEnded)
        before.remove_suffix(1);
    // A last line that goes on would swallow what comes behind it.
    const int missing = (isEnded ? 0 : 1) + (goesOn(before) ? 1 : 0);
    return lineBreak.repeated(missing);
}

Place find(Text file, const Name &name)
{
    Place place;
    // Keys above the first section are without a group.
    bool isInSection = name.section.isEmpty();
    std::size_t end = 0;
    for (std::size_t begin = firstLine(file); begin < file.size(); begin = end) {
        end = lineEnd(file, begin);
        const Text line = trimmed(file.substr(begin, end - begin));
        if (line.empty() || isComment(line))
            continue;
        const bool isHead = line.front() == '[';
        if (isHead)
            isInSection = isSection(trimmed(line.substr(1, line.find(']') - 1)), name.section);
        if (!isInSection)
            continue;
        place.sectionEnd = end;
        const std::size_t equals = line.find('=');
        if (isHead || equals == Text::npos || !IniName::isName(trimmed(line.substr(0, equals)), name.key))
            continue;
        const Text value = trimmed(line.substr(equals + 1));
        place.value = static_cast<std::size_t>(value.data() - file.data());
        place.valueSize = value.size();
    }
    return place;
}
} // namespace

std::optional<QString> IniDocument::value(const QString &group, const QString &key) const
{
    const Text file = textOf(m_bytes);
    const Place place = find(file, nameOf(group, key));
    if (place.value == Text::npos)
        return std::nullopt;
    return IniValue::read(file.substr(place.value, place.valueSize));
}

void IniDocument::setValue(const QString &group, const QString &key, const QString &value)
{
    const Name name = nameOf(group, key);
    const Text file = textOf(m_bytes);
    const Place place = find(file, name);
    const QByteArray written = IniValue::written(value);
    if (place.value != Text::npos) {
        m_bytes.replace(static_cast<int>(place.value), static_cast<int>(place.valueSize), written);
        return;
    }
    const bool hasSection = place.sectionEnd != Text::npos;
    const Text before = file.substr(0, hasSection ? place.sectionEnd : file.size());
    const QByteArray lineBreak = lineBreakOf(file);
    QByteArray added = endOfLine(before, lineBreak);
    if (!hasSection)
        added += (before.size() > firstLine(file) ? lineBreak : QByteArray()) + '[' + writtenSection(name.section) +
                 ']' + lineBreak;
    added += IniName::written(name.key) + '=' + written + lineBreak;
    m_bytes.insert(static_cast<int>(before.size()), added);
}
