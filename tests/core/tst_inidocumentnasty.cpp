// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/inidocument.h"

#include "support/testcase.h"
#include "support/testfiles.h"

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
    return TestFiles::contents(path);
}

/// The values that QSettings finds; "(none)" where there is none.
QStringList readByQSettings(const QByteArray &bytes, const QList<Setting> &settings, const char *codec = nullptr)
{
    const QString path = freshPath();
    if (!TestFiles::write(path, bytes))
        return {};
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

/// Whatever is in names and values means the same to QSettings, and leaves the others alone.
class IniDocumentNastyTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
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

TEST_MAIN(IniDocumentNastyTest)
#include "tst_inidocumentnasty.moc"
