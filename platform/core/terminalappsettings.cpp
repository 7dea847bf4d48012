// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/terminalappsettings.h"

#include "core/corelog.h"
#include "core/inifile.h"

#include <utility>

namespace {
const char FILE_NAME[] = "/terminal.ini";
const char TERMINAL_GROUP[] = "TERMINAL";
const char TRELM_ID[] = "trelmId";
const char ONLINE_CHECK_TIMEOUT[] = "onlineCheckTimeout";
const char AUTO_CLOSE_MESSAGES_AFTER[] = "autoCloseMessagesAfter";

IniFile settingsFile()
{
    return IniFile(InitConfig::encodedWorkDir() + FILE_NAME);
}

/// A whole number of the terminal's own group; text that is none is reported and does not count.
template <typename Integer>
Integer terminalValue(const char *key, Integer defaultValue)
{
    const std::optional<QString> text = settingsFile().value(QLatin1String(TERMINAL_GROUP), QLatin1String(key));
    if (!text)
        return defaultValue;
    bool isNumber = false;
    const qint64 number = text->toLongLong(&isNumber);
    if (isNumber && number == static_cast<Integer>(number))
        return static_cast<Integer>(number);
    qCWarning(CORE_LOG).noquote().nospace()
        << TerminalAppSettings::fileName() << ": [" << TERMINAL_GROUP << "] " << key << '=' << *text
        << " is not a whole number, or too large a one; " << defaultValue
        << " is used instead. Write a number in digits there, or remove the line.";
    return defaultValue;
}

thread_local bool hasWriteFailed = false;

void setValue(const QString &group, const QString &key, const QString &value)
{
    if (!settingsFile().setValue(group, key, value))
        hasWriteFailed = true;
}

void setTerminalValue(const char *key, qint64 value)
{
    setValue(QLatin1String(TERMINAL_GROUP), QLatin1String(key), QString::number(value));
}
} // namespace

bool TerminalAppSettings::takeWriteFailure()
{
    return std::exchange(hasWriteFailed, false);
}

QString TerminalAppSettings::fileName()
{
    return workDir() + QLatin1String(FILE_NAME);
}

QString TerminalAppSettings::getPluginSettingsValue(const QString &group, const QString &key,
                                                    const QString &defaultValue) const
{
    return settingsFile().value(group, key).value_or(defaultValue);
}

void TerminalAppSettings::setPluginSettingsValue(const QString &group, const QString &key, const QString &value)
{
    setValue(group, key, value);
}

qint64 TerminalAppSettings::trelmId() const
{
    return terminalValue<qint64>(TRELM_ID, 0);
}

void TerminalAppSettings::setTrelmId(qint64 id)
{
    setTerminalValue(TRELM_ID, id);
}

int TerminalAppSettings::onlineCheckTimeout() const
{
    return terminalValue<int>(ONLINE_CHECK_TIMEOUT, 60);
}

void TerminalAppSettings::setOnlineCheckTimeout(int seconds)
{
    setTerminalValue(ONLINE_CHECK_TIMEOUT, seconds);
}

int TerminalAppSettings::autoCloseMessagesAfter() const
{
    return terminalValue<int>(AUTO_CLOSE_MESSAGES_AFTER, 10);
}

void TerminalAppSettings::setAutoCloseMessagesAfter(int seconds)
{
    setTerminalValue(AUTO_CLOSE_MESSAGES_AFTER, seconds);
}
