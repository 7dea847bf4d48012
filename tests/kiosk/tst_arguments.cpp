// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "arguments.h"

#include "support/testcase.h"

#include <QDir>

using kiosk::Arguments;

namespace {
Arguments parse(const QStringList &words)
{
    return Arguments::parse(QStringList{QStringLiteral("kiosk")} + words);
}
} // namespace

class ArgumentsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void arguments_byDefault_areEmpty()
    {
        const Arguments arguments = parse({});
        QVERIFY(arguments.mistakes.isEmpty());
        QVERIFY(arguments.pluginFile.isEmpty());
        QVERIFY(arguments.workDir.isEmpty());
        QVERIFY(arguments.scenario.isEmpty());
        QVERIFY(arguments.shotsDir.isEmpty());
        QVERIFY(arguments.bench.isEmpty());
        QVERIFY(arguments.settings.isEmpty());
        QVERIFY(!arguments.isFullScreen);
        QVERIFY(!arguments.wantsHelp);
        QVERIFY(arguments.probedPlugin.isEmpty());
    }

    void arguments_withEverything_areTaken()
    {
        const Arguments arguments =
            parse({QStringLiteral("--plugin-file"), QStringLiteral("p.so"), QStringLiteral("--work-dir=/w"),
                   QStringLiteral("--set"), QStringLiteral("csPort=80"), QStringLiteral("--set"),
                   QStringLiteral("csPath=a=b"), QStringLiteral("--play"), QStringLiteral("s.yaml"),
                   QStringLiteral("--shots"), QStringLiteral("/s"), QStringLiteral("--bench"),
                   QStringLiteral("http://127.0.0.1:13006/admin"), QStringLiteral("--fullscreen")});
        QCOMPARE(arguments.mistakes, QStringList());
        QCOMPARE(arguments.pluginFile, QDir::current().absoluteFilePath(QStringLiteral("p.so")));
        QCOMPARE(arguments.workDir, QStringLiteral("/w"));
        QCOMPARE(arguments.settings, (QVariantMap{{QStringLiteral("csPort"), QStringLiteral("80")},
                                                  {QStringLiteral("csPath"), QStringLiteral("a=b")}}));
        QCOMPARE(arguments.scenario, QStringLiteral("s.yaml"));
        QCOMPARE(arguments.shotsDir, QStringLiteral("/s"));
        QCOMPARE(arguments.bench, QUrl(QStringLiteral("http://127.0.0.1:13006/admin")));
        QVERIFY(arguments.isFullScreen);
    }

    void mistakes_ofSeveralArguments_areToldAllAtOnce()
    {
        const QStringList mistakes =
            parse({QStringLiteral("--set"), QStringLiteral("a=1"), QStringLiteral("--set"), QStringLiteral("csPort"),
                   QStringLiteral("--set"), QStringLiteral("csPort=x"), QStringLiteral("--bench"),
                   QStringLiteral("127.0.0.1:80"), QStringLiteral("--work-dir="), QStringLiteral("word")})
                .mistakes;
        QCOMPARE(mistakes.size(), 6);
        const QString all = mistakes.join(QLatin1Char('\n'));
        for (const char *part : {"--set a=1: there is no setting \"a\"", "--set csPort: write KEY=VALUE",
                                 "--set csPort=x: \"x\" is no port", "--bench 127.0.0.1:80: write the admin interface",
                                 "--work-dir is empty", "\"word\" is no option"})
            QVERIFY2(all.contains(QLatin1String(part)), qPrintable(all));
    }

    void mistake_ofAnOption_isTold()
    {
        QCOMPARE(parse({QStringLiteral("--paly"), QStringLiteral("--play")}).mistakes.size(), 1);
        QCOMPARE(parse({QStringLiteral("--play")}).mistakes.size(), 1);
    }

    void help_wanted_listsWhatPeopleNeed()
    {
        const Arguments arguments = parse({QStringLiteral("--help")});
        QVERIFY(arguments.wantsHelp);
        QVERIFY(arguments.mistakes.isEmpty());
        for (const char *option :
             {"--plugin-file", "--work-dir", "--set", "--play", "--shots", "--bench", "--fullscreen"})
            QVERIFY2(arguments.help.contains(QLatin1String(option)), option);
        QVERIFY(!arguments.help.contains(QLatin1String(kiosk::PROBE_OPTION)));
    }
};

TEST_MAIN(ArgumentsTest)
#include "tst_arguments.moc"
