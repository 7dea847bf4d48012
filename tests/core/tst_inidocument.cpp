// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/inidocument.h"

#include "support/testcase.h"
#include "support/workdirectory.h"

#include <QFile>
#include <QMap>
#include <QRandomGenerator>
#include <QSettings>

namespace {
struct Setting
{
    QString group;
    QString key;
    QString value;
};

/// As QSettings joins the names.
QString fullName(const Setting &setting)
{
    return setting.group.isEmpty() ? setting.key : setting.group + QLatin1Char('/') + setting.key;
}

/// A path that QSettings has not seen yet: it remembers files.
QString freshPath()
{
    static int number = 0;
    return WorkDirectory::path() + QStringLiteral("/%1.ini").arg(++number);
}

QByteArray writtenByQSettings(const QList<Setting> &settings, const char *codec = nullptr)
{
    const QString path = freshPath();
    {
        QSettings file(path, QSettings::IniFormat);
        if (codec != nullptr)
            file.setIniCodec(codec);
        for (const Setting &setting : settings)
            file.setValue(fullName(setting), setting.value);
    }
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The values that QSettings finds; "(none)" where there is none.
QStringList readByQSettings(const QByteArray &bytes, const QList<Setting> &settings, const char *codec = nullptr)
{
    const QString path = freshPath();
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            return {};
    }
    QSettings file(path, QSettings::IniFormat);
    if (codec != nullptr)
        file.setIniCodec(codec);
    QStringList values;
    for (const Setting &setting : settings)
        values.append(file.value(fullName(setting), QStringLiteral("(none)")).toString());
    return values;
}

QString shown(const Setting &setting)
{
    const QString text = setting.group + QLatin1Char('|') + setting.key + QLatin1Char('|') + setting.value;
    const std::unique_ptr<char[]> printable(QTest::toString(text));
    return QString::fromUtf8(printable.get());
}

void compareBothWays(const QList<Setting> &settings, const char *codec = nullptr)
{
    const IniDocument theirs(writtenByQSettings(settings, codec));
    IniDocument ours{QByteArray()};
    for (const Setting &setting : settings)
        ours.setValue(setting.group, setting.key, setting.value);
    const QStringList read = readByQSettings(ours.bytes(), settings, codec);
    QCOMPARE(read.size(), settings.size());
    for (int i = 0; i < settings.size(); ++i) {
        const Setting &setting = settings.at(i);
        const QString what = shown(setting);
        QVERIFY2(theirs.value(setting.group, setting.key) == setting.value, qPrintable(what + " from QSettings"));
        QVERIFY2(ours.value(setting.group, setting.key) == setting.value, qPrintable(what + " from us"));
        QVERIFY2(read.at(i) == setting.value, qPrintable(what + " to QSettings: " + read.at(i)));
    }
}

QStringList nastyTexts()
{
    QStringList texts = {QString::fromLatin1("\0", 1),
                         QString::fromLatin1("a\0b", 3),
                         QString::fromLatin1("@\0", 2),
                         QString(QChar(0xd800)),
                         QString(QChar(0xdc00)) + QLatin1Char('a'),
                         QString::fromUtf8("\U0001F697") + QLatin1Char('7')};
    for (const char *text : {"",
                             " ",
                             "  ",
                             "\t",
                             "\n",
                             "\r\n",
                             " a",
                             "a ",
                             " a ",
                             "\ta\t",
                             "a b",
                             "\"",
                             "\"\"",
                             "\"a\"",
                             "a\"b",
                             "'a'",
                             "\\",
                             "\\\\",
                             "a\\",
                             "\\n",
                             "\\x41",
                             "\\\"",
                             "C:\\new\\table",
                             ",",
                             "a,b",
                             ", ",
                             ";",
                             "a;b",
                             ";a",
                             "#",
                             "#a",
                             "=",
                             "a=b",
                             "==",
                             "[",
                             "]",
                             "[G]",
                             "[G]\nk=v",
                             "%",
                             "%41",
                             "%U0041",
                             "%zz",
                             "@",
                             "@@",
                             "@a",
                             "@@a",
                             "@Invalid()",
                             "@String(x)",
                             "@ByteArray(x)",
                             "@Variant(\\0)",
                             "@String(",
                             "@)",
                             "\001",
                             "\001a",
                             "\001f1",
                             "\001g",
                             "\177",
                             "\033[31m",
                             "\a\b\f\v",
                             "\001 ",
                             " \001",
                             "a\nb",
                             "a\r\nb=c",
                             "\xc2\x80",
                             "é",
                             "éa",
                             "é ",
                             "ключ",
                             "руб. 150,00",
                             "ключ1a",
                             "\ufeff",
                             "\ufeffa",
                             "\u2028",
                             "\u00a0",
                             "\u00a0a\u00a0",
                             "true",
                             "1",
                             "-0.5",
                             "http://localhost:13006/api?a=b;c,d#e",
                             "/",
                             "//",
                             "a/b",
                             "?",
                             "?\?/",
                             "()",
                             "@()",
                             "x41",
                             "\nf",
                             "\\f"})
        texts.append(QString::fromUtf8(text));
    texts.append(QString(100'000, QLatin1Char('x')));
    texts.append(QString(10'000, QChar(0x416)));
    return texts;
}

QString randomText(QRandomGenerator &random, int longest)
{
    static const QString alphabet = QString::fromUtf8("aAfF09xXnU \t\n\r\v\a\"'\\\\\\,;=@#%[]()/.-_é\u0080\u00a0"
                                                      "Жяключ€\ufeff\uffff") +
                                    QString::fromLatin1("\0\001\033\177", 4) + QChar(0xd83d) + QChar(0xde97);
    QString text;
    for (int size = random.bounded(longest + 1); size > 0; --size)
        text += alphabet.at(random.bounded(alphabet.size()));
    return text;
}

/// A name that QSettings keeps as it is: it drops slashes at the ends and all but one of several in a row.
QString randomName(QRandomGenerator &random)
{
    QString name;
    const QStringList parts = randomText(random, 8).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    name = parts.join(QLatin1Char('/'));
    return name.isEmpty() ? QStringLiteral("n") : name;
}
} // namespace

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

    void nastyValues_meanTheSameToQSettings()
    {
        QList<Setting> settings;
        for (const QString &text : nastyTexts())
            settings.append({QStringLiteral("G"), QStringLiteral("k%1").arg(settings.size()), text});
        compareBothWays(settings);
    }

    void nastyValues_meanTheSameToQSettingsInUtf8()
    {
        QList<Setting> settings;
        for (const QString &text : nastyTexts()) {
            // QSettings' own codec takes characters one by one, which breaks those that are made of two.
            if (std::none_of(text.cbegin(), text.cend(), [](QChar c) { return c.isSurrogate(); }))
                settings.append({QStringLiteral("G"), QStringLiteral("k%1").arg(settings.size()), text});
        }
        compareBothWays(settings, "UTF-8");
    }

    void nastyNames_meanTheSameToQSettings_data()
    {
        QTest::addColumn<QString>("group");
        QTest::addColumn<QString>("key");
        const auto row = [](const char *group, const char *key) {
            QTest::addRow("%s|%s", group, key) << QString::fromUtf8(group) << QString::fromUtf8(key);
        };
        for (const char *key :
             {"k",  "K",       "a/b",    "a/b/c",   "ключ",       "a b",  " a",    "a ",   "a=b",      "[a]",
              ";a", "#a",      "%",      "%41",     "%U0041",     "@a",   "\"a\"", "a\\b", "\001",     "a\nb",
              "é",  "General", "\u20ac", "a.b-c_d", "\U0001F697", "a//b", "/a",    "a/",   "//a///b//"}) {
            row("G", key);
            row("", key);
        }
        for (const char *group :
             {"g",    "a/b",         "a/b/c", "General", "general", "GENERAL", "%General", "General/a", "a/General",
              "ключ", "ГРУППА/ключ", "a b",   " a ",     "[a]",     "]",       "a]b",      ";a",        "#a",
              "=",    "%41",         "@a",    "a\\b",    "\"",      "/a",      "a/",       "a//b"})
            row(group, "k");
    }

    void nastyNames_meanTheSameToQSettings()
    {
        QFETCH(QString, group);
        QFETCH(QString, key);
        compareBothWays({{group, key, QStringLiteral("value")}});
    }

    void randomSettings_meanTheSameToQSettings_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 60; ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }

    void randomSettings_meanTheSameToQSettings()
    {
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        QMap<QString, Setting> settings;
        while (settings.size() < 60) {
            const Setting setting = {randomName(random), randomName(random), randomText(random, 30)};
            settings.insert(fullName(setting), setting);
        }
        compareBothWays(settings.values());
    }

    void randomFiles_keepAllOtherValues_data() { randomSettings_meanTheSameToQSettings_data(); }

    void randomFiles_keepAllOtherValues()
    {
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        const QList<QByteArray> pieces = {"[G]",      "[H]",    "[G",   "[General]", "[%General]", "[]",
                                          "k=1",      "j = 2",  "k",    "k=\"a",     "k=x\\",      "j=\\\\",
                                          "; k=c",    "# c\\",  "junk", "=v",        "",           "\\",
                                          "j=\\\\\\", "k=\"\\", "k=",   "[H]\\",     " \t",        "\xef\xbb\xbf"};
        const QStringList groups = {QString(), QStringLiteral("G"), QStringLiteral("H"), QStringLiteral("General")};
        const QStringList keys = {QStringLiteral("k"), QStringLiteral("j"), QStringLiteral("n")};
        for (int round = 0; round < 50; ++round) {
            QByteArray bytes;
            const QByteArray lineBreak = random.bounded(2) == 0 ? "\n" : "\r\n";
            for (int lines = random.bounded(12); lines > 0; --lines)
                bytes += pieces.at(random.bounded(pieces.size())) + lineBreak;
            if (random.bounded(2) == 0)
                bytes.chop(lineBreak.size());
            const QString group = groups.at(random.bounded(groups.size()));
            const QString key = keys.at(random.bounded(keys.size()));
            const QString value = randomText(random, 10);

            const IniDocument before(bytes);
            IniDocument after(bytes);
            after.setValue(group, key, value);
            for (const QString &g : groups) {
                for (const QString &k : keys) {
                    const bool isSet = g == group && k == key;
                    const std::optional<QString> expected = isSet ? value : before.value(g, k);
                    QVERIFY2(after.value(g, k) == expected, bytes + "\n-> " + after.bytes());
                }
            }
        }
    }
};

TEST_MAIN(IniDocumentTest)
#include "tst_inidocument.moc"
