// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The plugin's configuration, read from and written to the terminal's settings under one group.
///
/// Made wherever a value is needed: it keeps nothing, so what was saved a moment ago, by whomever, is what the next
/// getter returns. All values are stored as text.
class ParkomatSettings
{
public:
    /// Group of every setting.
    static const QString PARKOMAT_SECTION;
    static const QString RECORD_VERSION;
    // Keys.
    static const QString PARTNER_ID;
    static const QString PARKING_ID;
    static const QString PARKOMAT_ID;
    static const QString CASH_SERVICE_HOST;
    static const QString CASH_SERVICE_PORT;
    static const QString CASH_SERVICE_PATH;
    // Operations of the cash service.
    static const QString PARKING_CHECK;
    static const QString PARK_INFO_PAY;

    /// Host name or address of the cash service; "localhost" unless set.
    [[nodiscard]] QString cashServiceHost() const;
    void setCashServiceHost(const QString &host);

    /// 13006 unless set. There is no range check: stored text is read as a number and cut to 16 bits (70000 reads as
    /// 4464), and text that is no number reads as 0.
    [[nodiscard]] unsigned short cashServicePort() const;
    void setCashServicePort(unsigned short port);

    /// Path before the operation's name, as it stands; "api" unless set.
    [[nodiscard]] QString cashServicePath() const;
    void setCashServicePath(const QString &path);

    /// Whom the terminal belongs to, for the parking operator; "dravik" unless set.
    [[nodiscard]] QString partnerId() const;
    void setPartnerId(const QString &id);

    /// Empty unless set.
    [[nodiscard]] QString parkingId() const;
    void setParkingId(const QString &id);

    /// The parking meter's identifier; the terminal's own number unless set.
    [[nodiscard]] QString termId() const;
    void setTermId(const QString &id);

    /// Version of the request format, always "2".
    [[nodiscard]] QString recordVersion() const;
};
