// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QSettings>

/// A QSettings whose file is sealed: encrypted and authenticated with the terminal's storage key.
///
/// Used like any QSettings on a file. Files are replaced whole (a reader sees the old one or the new one) and writers
/// of several processes take turns by a lock file beside it; a new file is for its owner alone. Every object reads the
/// file afresh, except while another object in the same process still has it open: those share what was read, as
/// QSettings objects do.
///
/// A file that is not authentic (damaged, or sealed with another key) reads as empty, sets QSettings::FormatError and
/// is logged as critical. It stays where it is until something is written; before that it is kept aside under its own
/// name with ".damaged" (then ".damaged-2", …). If it cannot be kept aside, nothing is written and that is logged as
/// critical. So is, at the latest when the object dies, a file that could not be read or written at all.
///
/// A pipe, socket or device in the file's place is logged as critical and never opened: it reads as empty, what is
/// written is lost, and QSettings::AccessError is set.
///
/// A writer waits for its turn without a limit: QSettings offers none, and has no way to drop a change that it cannot
/// write, not even when it dies. A lock whose owner has ended is taken over; one whose owner lives and hangs stops
/// every writer until that owner is ended. Reading waits for nobody.
class CryptedSettingsStorage : public QSettings
{
    Q_OBJECT

public:
    explicit CryptedSettingsStorage(const QString &path, QObject *parent = nullptr);
    ~CryptedSettingsStorage() override;

    /// As QSettings::status(); FormatError also for a file without any byte, which QSettings takes for a new one
    /// although no sealed file is ever empty; and AccessError for what is no file.
    [[nodiscard]] QSettings::Status status() const;

private:
    CryptedSettingsStorage(const QString &path, Status seen, QObject *parent);

    /// What was wrong with the file before QSettings saw it.
    Status m_seen;
};
