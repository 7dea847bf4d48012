// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/initconfig.h"

#include <QString>

/// The terminal's settings: "terminal.ini" in the work directory.
///
/// Every call reads or writes the file itself; nothing is remembered between calls or shared between objects, so what
/// another process (or an engineer with an editor) wrote, the next call sees. A setter that cannot write leaves a
/// critical log line and the file as it was.
class TerminalAppSettings : public InitConfig
{
public:
    /// A plugin's own setting.
    /// @return @a defaultValue when the key is absent; a key that is there without a value is an empty text.
    [[nodiscard]] QString getPluginSettingsValue(const QString &group, const QString &key,
                                                 const QString &defaultValue) const;
    void setPluginSettingsValue(const QString &group, const QString &key, const QString &value);

    /// The terminal's number; 0 unless set.
    [[nodiscard]] qint64 trelmId() const;
    void setTrelmId(qint64 id);

    /// How long an answer from a payee's service is waited for, in seconds; 60 unless set.
    [[nodiscard]] int onlineCheckTimeout() const;
    void setOnlineCheckTimeout(int seconds);

    /// How long a message stays up before it closes by itself, in seconds; 10 unless set.
    [[nodiscard]] int autoCloseMessagesAfter() const;
    void setAutoCloseMessagesAfter(int seconds);

    /// Whether a setter, of whichever object, could not write since the last call of this: a plugin's page has nothing
    /// else to tell its terminal. Setters of other threads do not count.
    [[nodiscard]] static bool takeWriteFailure();

    /// Where the settings are kept.
    [[nodiscard]] static QString fileName();
};
