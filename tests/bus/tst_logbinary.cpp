// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "bus/logbinary.h"

#include "support/testcase.h"

namespace {
QString printed(const QByteArray &bytes, const QByteArray &encoding)
{
    QString text;
    QDebug(&text).nospace() << logbinary(bytes, encoding);
    return text;
}
} // namespace

class LogBinaryTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void bytes_streamed_areTextInTheEncoding_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("encoding");
        QTest::addColumn<QString>("text");
        const QString rouble = QString::fromUtf8("руб.");
        QTest::newRow("none") << QByteArray() << QByteArray("UTF-8") << QString();
        QTest::newRow("UTF-8") << QByteArray("руб.") << QByteArray("UTF-8") << rouble;
        QTest::newRow("utf-8") << QByteArray("руб.") << QByteArray("utf-8") << rouble;
        QTest::newRow("windows-1251") << QByteArray("\xf0\xf3\xe1.") << QByteArray("windows-1251") << rouble;
        QTest::newRow("KOI8-R") << QByteArray("\xd2\xd5\xc2.") << QByteArray("KOI8-R") << rouble;
        QTest::newRow("Latin-1") << QByteArray("\xe9") << QByteArray("ISO-8859-1") << QString::fromUtf8("é");
        QTest::newRow("unknown encoding") << QByteArray("a\xe9") << QByteArray("no-such") << QString::fromUtf8("aé");
        QTest::newRow("no encoding") << QByteArray("a\xe9") << QByteArray() << QString::fromUtf8("aé");
        QTest::newRow("unknown encoding with NUL")
            << QByteArray("a\0b", 3) << QByteArray("no-such") << QStringLiteral("a\\x00b");
        QTest::newRow("not quoted") << QByteArray("<a b=\"c\">\\</a>") << QByteArray("UTF-8")
                                    << QStringLiteral("<a b=\"c\">\\</a>");
        QTest::newRow("broken UTF-8") << QByteArray("a\xff"
                                                    "b")
                                      << QByteArray("UTF-8") << QString::fromUtf8("a\ufffdb");
        QTest::newRow("cut UTF-8") << QByteArray("a\xd1") << QByteArray("UTF-8") << QString::fromUtf8("a\ufffd");
        QTest::newRow("beyond the basic plane")
            << QByteArray("\xf0\x9f\x9a\x97") << QByteArray("UTF-8") << QString::fromUtf8("\U0001F697");
        QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbf<a/>") << QByteArray("UTF-8")
                                         << QStringLiteral("<a/>");
    }

    void bytes_streamed_areTextInTheEncoding()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, encoding);
        QFETCH(QString, text);
        QCOMPARE(printed(bytes, encoding), text);
    }

    void everyCharacter_streamed_isItselfOrVisible()
    {
        for (ushort code = 0; code < 0x200; ++code) {
            const bool isLineEndOrTab = code == '\n' || code == '\r' || code == '\t';
            const bool isControl = (code < 0x20 && !isLineEndOrTab) || (code >= 0x7f && code < 0xa0);
            const QString text = QString(QChar(code));
            const QString visible =
                QStringLiteral("\\x") + QString::number(code, 16).rightJustified(2, QLatin1Char('0'));
            QCOMPARE(printed(text.toUtf8(), "UTF-8"), isControl ? visible : text);
        }
    }

    void zeroByte_streamed_doesNotEndTheText()
    {
        QCOMPARE(printed(QByteArray("a\0b\0", 4), "UTF-8"), QStringLiteral("a\\x00b\\x00"));
    }

    void manyBytes_streamed_areAllThere()
    {
        const QByteArray bytes(1 << 20, 'x');
        QCOMPARE(printed(bytes, "UTF-8"), QString::fromLatin1(bytes));
        const QString zeros = printed(QByteArray(1 << 16, '\0'), "UTF-8");
        QCOMPARE(zeros, QStringLiteral("\\x00").repeated(1 << 16));
    }

    void stream_afterwards_isAsItWas()
    {
        const QString quoted = QStringLiteral("b");
        QString text;
        QDebug(&text) << 1 << logbinary("a", "UTF-8") << quoted << 2;
        QCOMPARE(text.trimmed(), QStringLiteral("1 a \"b\" 2"));
        text.clear();
        QDebug(&text).nospace().noquote() << 1 << logbinary("a", "UTF-8") << quoted << 2;
        QCOMPARE(text, QStringLiteral("1ab2"));
    }
};

TEST_MAIN(LogBinaryTest)
#include "tst_logbinary.moc"
