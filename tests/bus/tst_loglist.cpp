// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "bus/loglist.h"

#include "support/testcase.h"

namespace {
QString printed(const QStringList &list)
{
    QString text;
    QDebug(&text).nospace() << loglist(list);
    return text;
}
} // namespace

class LogListTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void list_streamed_isOneEntryALine_data()
    {
        QTest::addColumn<QStringList>("list");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << QStringList() << QString();
        QTest::newRow("one") << QStringList{QStringLiteral("a")} << QStringLiteral("a");
        QTest::newRow("several") << QStringList{QStringLiteral("a"), QStringLiteral("b c")} << QStringLiteral("a\nb c");
        QTest::newRow("empty ones") << QStringList{QString(), QStringLiteral("a"), QString(), QString()}
                                    << QStringLiteral("\na\n\n");
        QTest::newRow("quotes and escapes")
            << QStringList{QStringLiteral("<a b=\"c\">\\n</a>")} << QStringLiteral("<a b=\"c\">\\n</a>");
        QTest::newRow("Cyrillic") << QStringList{QString::fromUtf8("руб.")} << QString::fromUtf8("руб.");
        QTest::newRow("NUL") << QStringList{QString::fromLatin1("a\0b", 3)} << QStringLiteral("a\\x00b");
        QTest::newRow("escape sequence") << QStringList{QStringLiteral("a\x1b[2Jb"), QStringLiteral("c\u009b")}
                                         << QStringLiteral("a\\x1b[2Jb\nc\\x9b");
        QTest::newRow("tabulator and line ends")
            << QStringList{QStringLiteral("a\tb\r"), QStringLiteral("c\nd")} << QStringLiteral("a\tb\r\nc\nd");
    }

    void list_streamed_isOneEntryALine()
    {
        QFETCH(QStringList, list);
        QFETCH(QString, text);
        QCOMPARE(printed(list), text);
    }

    void longEntry_streamed_isNotCut()
    {
        const QString entry(1 << 20, QLatin1Char('x'));
        QCOMPARE(printed({entry, entry}), entry + QLatin1Char('\n') + entry);
    }

    void manyEntries_streamed_areAllThere()
    {
        QStringList list;
        for (int i = 0; i < 100'000; ++i)
            list.append(QString::number(i));
        QCOMPARE(printed(list), list.join(QLatin1Char('\n')));
    }

    void stream_afterwards_isAsItWas()
    {
        const QString quoted = QStringLiteral("b");
        QString text;
        QDebug(&text) << 1 << loglist({QStringLiteral("a")}) << quoted << 2;
        QCOMPARE(text.trimmed(), QStringLiteral("1 a \"b\" 2"));
        text.clear();
        QDebug(&text).nospace().noquote() << 1 << loglist({QStringLiteral("a")}) << quoted << 2;
        QCOMPARE(text, QStringLiteral("1ab2"));
    }

    void list_logged_isOneMessage()
    {
        qWarning() << loglist({QStringLiteral("a"), QStringLiteral("b")});
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).text, QStringLiteral("a\nb"));
    }
};

TEST_MAIN(LogListTest)
#include "tst_loglist.moc"
