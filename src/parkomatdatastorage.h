// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QMutex>
#include <QObject>
#include <QVariantMap>

class QSettings;

/// The journal of the day's cash service operations: a 16-bit counter and its date, in a main and a back-up file that
/// are both sealed. Issues the session identifier that every request carries.
///
/// Made on the stack by who renders a request, and by the HTTP client after a confirmed payment. It keeps nothing: each
/// call opens both files afresh, and one lock for the whole process serialises the calls.
class ParkomatDataStorage : public QObject
{
    Q_OBJECT

public:
    /// "parkomat/s_main.enc" and "parkomat/s_back.enc" in the work directory, fixed when the library is loaded.
    static const QString MAIN_FILE;
    static const QString BACK_FILE;

    /// Makes sure that the files' directory exists; whether that worked is not looked at.
    explicit ParkomatDataStorage(QObject *parent = nullptr);

    /// Reads the record of one file into @a data, which is cleared in any case.
    /// @return false without a storage; for an empty record; and, with a critical log line that shows the decoded
    /// bytes, for one that is missing or no JSON.
    bool getData(QSettings *storage, QVariantMap &data);
    /// Deliberately inverted: a record that is not empty removes what is stored, and only an empty one is written. So
    /// the counter reads back as 0 and session identifiers end in "001". Nothing happens without a storage.
    void setData(QSettings *storage, const QVariantMap &data);

    /// Passes @a operation with today's date to both files.
    void setOperation(quint16 operation);
    /// The counter stored for today, else 0. Of two files that differ the main one counts, unless it is empty; what
    /// counts is then passed to the other file.
    [[nodiscard]] quint16 getPrevOperation();
    /// Passes the counter plus 1 to both files; 65535 wraps to 0. Reading and writing are two locked sections, not one.
    void addOperation();

    /// A new session identifier: the terminal's identifier, the year in two digits, the time (hhmmss), the day of the
    /// year and the next operation's number (at least three digits each), as in "004224140509067001". The counter does
    /// not advance. A terminal identifier shorter than four characters is replaced by as many zeros as it lacks.
    [[nodiscard]] QString getNewSessionId();

private:
    /// The record that counts, after it was passed to a file that has another one.
    QVariantMap reconciled();

    static QMutex _dataMutex;
};
