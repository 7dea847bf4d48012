// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "bus/logvariant.h"

#include "support/testcase.h"

#include <QDateTime>
#include <QUrl>

struct Textless
{
    int number = 0;
};
Q_DECLARE_METATYPE(Textless)

namespace {
QString printed(const QVariant &value)
{
    QString text;
    QDebug(&text).nospace() << logvariant(value);
    return text;
}

QString key(const char *text)
{
    return QString::fromUtf8(text);
}
} // namespace

class LogVariantTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void value_streamed_isItsText_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, const QVariant &value, const char *text) {
            QTest::newRow(name) << value << QString::fromUtf8(text);
        };
        row("nothing", QVariant(), "(invalid)");
        row("text", QStringLiteral("a \"b\" \\n"), "a \"b\" \\n");
        row("empty text", QString(), "");
        row("Cyrillic", QString::fromUtf8("руб."), "руб.");
        row("number", 4711, "4711");
        row("negative", -1, "-1");
        row("large", 18446744073709551615ULL, "18446744073709551615");
        row("real", 0.1, "0.1");
        row("true", true, "true");
        row("bytes", QByteArray("руб."), "руб.");
        row("moment", QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9), Qt::UTC), "2024-03-07T14:05:09.000Z");
        row("address", QUrl(QStringLiteral("http://localhost:13006/api")), "http://localhost:13006/api");
        row("no text", QVariant::fromValue(Textless()), "(Textless)");
        row("empty map", QVariantMap(), "");
        row("map", QVariantMap{{key("b"), 2}, {key("a"), QStringLiteral("one")}}, "a: one\nb: 2");
        row("hash", QVariantHash{{key("a"), 1}}, "a: 1");
        row("map with empty text", QVariantMap{{key("a"), QString()}}, "a: ");
        row("map with nothing", QVariantMap{{key("a"), QVariant()}}, "a: (invalid)");
        row("map with an empty key", QVariantMap{{QString(), 1}}, ": 1");
        row("list", QVariantList{1, QStringLiteral("two"), QVariant()}, "- 1\n- two\n- (invalid)");
        row("texts", QStringList{key("a"), key("b")}, "- a\n- b");
        row("map in a map", QVariantMap{{key("a"), QVariantMap{{key("b"), QVariantMap{{key("c"), 1}}}}}, {key("z"), 2}},
            "a:\n  b:\n    c: 1\nz: 2");
        row("list in a map", QVariantMap{{key("a"), QVariantList{1, 2}}}, "a:\n  - 1\n  - 2");
        row("map in a list", QVariantList{QVariantMap{{key("a"), 1}, {key("b"), 2}}}, "-\n  a: 1\n  b: 2");
        row("list in a list", QVariantList{QVariant(QVariantList{1, 2}), 3}, "-\n  - 1\n  - 2\n- 3");
        row("empty ones inside", QVariantMap{{key("a"), QVariantMap()}, {key("b"), QVariantList()}}, "a:\nb:");
        row("text with NUL", QString::fromLatin1("a\0b", 3), "a\\x00b");
        row("bytes with NUL", QByteArray("a\0b", 3), "a\\x00b");
        row("escape sequence", QVariantMap{{key("a\x1b[1m"), key("\x1b[2J\u009b")}}, "a\\x1b[1m: \\x1b[2J\\x9b");
        row("tabulator", QVariantMap{{key("a\tb"), key("c\td")}}, "a\tb: c\td");
        row("text that looks like an entry", QVariantMap{{key("a"), key("1\nb: 2\r")}}, "a: 1\\x0ab: 2\\x0d");
        row("key that looks like an entry", QVariantMap{{key("a: 1\nb"), 2}}, "a: 1\\x0ab: 2");
        row("key of a list with a line end", QVariantMap{{key("a\n"), QVariantList{1}}}, "a\\x0a:\n  - 1");
        row("several lines alone", key("a\r\nb"), "a\\x0d\\x0ab");
    }

    void value_streamed_isItsText()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, text);
        QCOMPARE(printed(value), text);
    }

    void longText_streamed_isNotCut()
    {
        const QString text(1 << 20, QLatin1Char('x'));
        QCOMPARE(printed(text), text);
        QCOMPARE(printed(text.toLatin1()), text);
        QCOMPARE(printed(QVariantMap{{key("a"), text}}), QStringLiteral("a: ") + text);
    }

    void deepNesting_streamed_isAllThere()
    {
        constexpr int depth = 200;
        QVariant value = QStringLiteral("core");
        for (int i = 0; i < depth; ++i)
            value = QVariantMap{{key("k"), value}};
        const QStringList lines = printed(value).split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), depth);
        QCOMPARE(lines.last(), QString(2 * (depth - 1), QLatin1Char(' ')) + QStringLiteral("k: core"));
    }

    void stream_afterwards_isAsItWas()
    {
        const QString quoted = QStringLiteral("b");
        QString text;
        QDebug(&text) << 1 << logvariant(QStringLiteral("a")) << quoted << 2;
        QCOMPARE(text.trimmed(), QStringLiteral("1 a \"b\" 2"));
        text.clear();
        QDebug(&text).nospace().noquote() << 1 << logvariant(QStringLiteral("a")) << quoted << 2;
        QCOMPARE(text, QStringLiteral("1ab2"));
    }

    void map_logged_isOneMessage()
    {
        qWarning() << logvariant(QVariantMap{{key("a"), 1}, {key("b"), 2}});
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).text, QStringLiteral("a: 1\nb: 2"));
    }
};

TEST_MAIN(LogVariantTest)
#include "tst_logvariant.moc"
