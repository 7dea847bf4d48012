// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/inidocument.h"

#include "support/testcase.h"

/// Files as people write them.
class IniDocumentTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void value_inAFile_isRead_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("value");
        // Every row is about group G, key k; "(none)" where it is not there.
        const auto row = [](const char *name, const char *bytes, const char *value) {
            QTest::newRow(name) << QByteArray(bytes) << QString::fromUtf8(value);
        };
        row("empty file", "", "(none)");
        row("blank file", " \n\t\r\n\n", "(none)");
        row("plain", "[G]\nk=v\n", "v");
        row("no final newline", "[G]\nk=v", "v");
        row("CRLF", "[G]\r\nk=v\r\n", "v");
        row("blanks around", " [ G ] \n\t k \t=  v w \t\n", "v w");
        row("empty value", "[G]\nk=\n", "");
        row("empty value at the end", "[G]\nk=", "");
        row("quoted", "[G]\nk=\"  v  \"\n", "  v  ");
        row("quotes behind text", "[G]\nk=a\"b\"\n", "ab");
        row("open quote", "[G]\nk=\"v\n", "v");
        row("quoted comment sign", "[G]\nk=\"a;b\"\n", "a;b");
        row("equals sign", "[G]\nk=a=b\n", "a=b");
        row("UTF-8", "[G]\nk=руб. 150\n", "руб. 150");
        row("quoted UTF-8", "[G]\nk=\"руб. \"\n", "руб. ");
        row("escaped letters", "[G]\nk=\\x440\\x443\\x431.\n", "руб.");
        row("octal", "[G]\nk=\\101\\60\n", "A0");
        row("C's escapes", "[G]\nk=a\\tb\\nc\\\\d\\\"e\n", "a\tb\nc\\d\"e");
        row("escape without meaning", "[G]\nk=a\\qb\n", "ab");
        row("x without digits", "[G]\nk=a\\xz\n", "az");
        row("list", "[G]\nk=a, b, c\n", "a, b, c");
        row("doubled @", "[G]\nk=@@v\n", "@v");
        row("single @", "[G]\nk=@v\n", "@v");
        row("bytes", "[G]\nk=@ByteArray(v)\n", "v");
        row("invalid", "[G]\nk=@Invalid()\n", "");
        row("comment signs at the start", "[G]\n;k=a\n#k=b\n  ; k=c\nk=v\n", "v");
        row("later one counts", "[G]\nk=a\nk=b\n", "b");
        row("later section counts", "[G]\nk=a\n[H]\nk=h\n[G]\nk=b\n", "b");
        row("another section", "[H]\nk=v\n", "(none)");
        row("another section behind", "[G]\n[H]\nk=v\n", "(none)");
        row("above all sections", "k=v\n[G]\n", "(none)");
        row("another case", "[g]\nk=v\n[G]\nK=v\n", "(none)");
        row("longer key", "[G]\nkk=v\nk k=v\n", "(none)");
        row("comment behind the section", "[G] ; comment\nk=v\n", "v");
        row("section without an end", "[G\nk=v\n", "v");
        row("section after blanks", "  [G]\nk=v\n", "v");
        row("key without a value", "[G]\nk\nk2=v\n", "(none)");
        row("bracket in a value", "[G]\na=]\nk=[H]\n", "[H]");
        row("escaped names", "[%47]\n%6B=v\n", "v");
        row("wide escaped names", "[%U0047]\n%U006B=v\n", "v");
        row("line that goes on", "[G]\nk=a\\\nb\n", "ab");
        row("CRLF line that goes on", "[G]\r\nk=a\\\r\nb\r\nj=1\r\n", "ab");
        row("line that does not go on", "[G]\na=x\\\\\nk=v\n", "v");
        row("line that goes on hides a key", "[G]\na=x\\\nk=v\n", "(none)");
        row("comment does not go on", "[G]\n; dir=C:\\\nk=v\n", "v");
        row("last line goes on", "[G]\nk=v\\", "v");
        row("last line goes on nowhere", "[G]\nk=v\\\n", "v");
        row("byte order mark", "\xef\xbb\xbf[G]\nk=v\n", "v");
        row("byte order mark and comment", "\xef\xbb\xbf; comment\r\n[G]\r\nk=v\r\n", "v");
        row("broken UTF-8",
            "[G]\nk=a\xff"
            "b\n",
            "a\ufffdb");
        row("nonsense", "][=\n=\n==\n[]\n[]]\n\"\n[G]\nk=v\n", "v");
        QTest::newRow("NUL in the value") << QByteArray("[G]\nk=a\0b\n", 10) << QString::fromLatin1("a\0b", 3);
        QTest::newRow("NUL in the key") << QByteArray("[G]\nk\0=v\n", 9) << QStringLiteral("(none)");
        QTest::newRow("NUL in the section") << QByteArray("[G\0]\nk=v\n", 9) << QStringLiteral("(none)");
        QTest::newRow("long lines") << QByteArray("[G]\n;") + QByteArray(1 << 20, 'x') + "\nk=v\n"
                                    << QStringLiteral("v");
    }

    void value_inAFile_isRead()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, value);
        const IniDocument document(bytes);
        QCOMPARE(document.value(QStringLiteral("G"), QStringLiteral("k")).value_or(QStringLiteral("(none)")), value);
        QCOMPARE(document.bytes(), bytes);
    }

    void keyWithoutAGroup_isInGeneral_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("isThere");
        QTest::newRow("at the top") << QByteArray("k=v\n[G]\nk=g\n") << true;
        QTest::newRow("at the top behind a byte order mark") << QByteArray("\xef\xbb\xbfk=v\n[G]\nk=g\n") << true;
        QTest::newRow("General") << QByteArray("[G]\nk=g\n[General]\nk=v\n") << true;
        QTest::newRow("general") << QByteArray("[general]\nk=v\n") << true;
        QTest::newRow("%General") << QByteArray("[%General]\nk=v\n") << false;
        QTest::newRow("another") << QByteArray("[G]\nk=v\n") << false;
        QTest::newRow("nameless section") << QByteArray("[]\nk=v\n") << false;
    }

    void keyWithoutAGroup_isInGeneral()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, isThere);
        const std::optional<QString> value = IniDocument(bytes).value(QString(), QStringLiteral("k"));
        QCOMPARE(value.has_value(), isThere);
        QCOMPARE(value.value_or(QStringLiteral("v")), QStringLiteral("v"));
    }

    void value_set_leavesAllElseAsItWas_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after");
        // Every row sets key k of group G to "v".
        const auto row = [](const char *name, const char *before, const char *after) {
            QTest::newRow(name) << QByteArray(before) << QByteArray(after);
        };
        row("empty file", "", "[G]\nk=v\n");
        row("replaced", "[G]\nk=old\n", "[G]\nk=v\n");
        row("the same", "[G]\nk=v\n", "[G]\nk=v\n");
        row("replaced with blanks kept", " [G]\n  k =  old value  \n", " [G]\n  k =  v  \n");
        row("empty replaced", "[G]\nk=\nj=1\n", "[G]\nk=v\nj=1\n");
        row("empty at the end replaced", "[G]\nk=", "[G]\nk=v");
        row("CRLF kept", "[G]\r\nk=old\r\nj=1\r\n", "[G]\r\nk=v\r\nj=1\r\n");
        row("CRLF for a new line", "[G]\r\nj=1\r\n", "[G]\r\nj=1\r\nk=v\r\n");
        row("CRLF for a new section", "[H]\r\nj=1\r\n", "[H]\r\nj=1\r\n\r\n[G]\r\nk=v\r\n");
        row("no final newline", "[G]\nj=1", "[G]\nj=1\nk=v\n");
        row("no final newline in CRLF", "[G]\r\nj=1", "[G]\r\nj=1\r\nk=v\r\n");
        row("new section", "[H]\nk=h\n", "[H]\nk=h\n\n[G]\nk=v\n");
        row("new section without final newline", "[H]\nk=h", "[H]\nk=h\n\n[G]\nk=v\n");
        row("comments kept", "# one\n; two\n[G]\n# three\nk=old\n; four\n",
            "# one\n; two\n[G]\n# three\nk=v\n; four\n");
        row("nonsense kept", "what\n=\n[G]\n]junk[\nk=old\njunk", "what\n=\n[G]\n]junk[\nk=v\njunk");
        row("into its section", "[G]\nj=1\n\n; about H\n[H]\nk=h\n", "[G]\nj=1\nk=v\n\n; about H\n[H]\nk=h\n");
        row("later one replaced", "[G]\nk=a\nk=b\n", "[G]\nk=a\nk=v\n");
        row("later section replaced", "[G]\nk=a\n[H]\n[G]\nk=b\n", "[G]\nk=a\n[H]\n[G]\nk=v\n");
        row("commented key", "[G]\n;k=a\n", "[G]\nk=v\n;k=a\n");
        row("escaped names replaced", "[%47]\n%6B=old\n", "[%47]\n%6B=v\n");
        row("byte order mark kept", "\xef\xbb\xbf[G]\nk=old\n", "\xef\xbb\xbf[G]\nk=v\n");
        row("byte order mark alone", "\xef\xbb\xbf", "\xef\xbb\xbf[G]\nk=v\n");
        row("whole of a line that goes on", "[G]\nk=a\\\nb\nj=1\n", "[G]\nk=v\nj=1\n");
        row("behind a line that goes on", "[G]\nj=a\\\nb\n", "[G]\nj=a\\\nb\nk=v\n");
        row("behind a last line that goes on", "[G]\nj=a\\", "[G]\nj=a\\\n\nk=v\n");
        row("behind a last line that goes on nowhere", "[G]\nj=a\\\n", "[G]\nj=a\\\n\nk=v\n");
        row("new section behind a last line that goes on", "[H]\nj=a\\", "[H]\nj=a\\\n\n\n[G]\nk=v\n");
    }

    void value_set_leavesAllElseAsItWas()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        IniDocument document(before);
        document.setValue(QStringLiteral("G"), QStringLiteral("k"), QStringLiteral("v"));
        QCOMPARE(document.bytes(), after);
        QCOMPARE(document.value(QStringLiteral("G"), QStringLiteral("k")).value_or("(none)"), QStringLiteral("v"));
    }

    void valueWithoutAGroup_set_isInGeneral_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after");
        QTest::newRow("empty") << QByteArray() << QByteArray("[General]\nk=v\n");
        QTest::newRow("sections") << QByteArray("[G]\nk=g\n") << QByteArray("[G]\nk=g\n\n[General]\nk=v\n");
        QTest::newRow("top") << QByteArray("j=1\n[G]\nk=g\n") << QByteArray("j=1\nk=v\n[G]\nk=g\n");
        QTest::newRow("general") << QByteArray("[general]\n[G]\n") << QByteArray("[general]\nk=v\n[G]\n");
    }

    void valueWithoutAGroup_set_isInGeneral()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        IniDocument document(before);
        document.setValue(QString(), QStringLiteral("k"), QStringLiteral("v"));
        QCOMPARE(document.bytes(), after);
    }
};

TEST_MAIN(IniDocumentTest)
#include "tst_inidocument.moc"
