// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/initconfig.h"

#include "support/testcase.h"
#include "support/workdirectory.h"

#include <QDir>
#include <QStandardPaths>

#include <cstdio>

#include <pwd.h>
#include <unistd.h>

namespace {
// As a plugin's static members do: while nothing of the program runs yet, without an application object.
const QString ASKED_BEFORE_MAIN = InitConfig::workDir();
const bool HAD_APPLICATION_BEFORE_MAIN = QCoreApplication::instance() != nullptr;

const char VARIABLE[] = "TERMINAL_WORK_DIR";

/// Gives the variable back when it dies.
class Variable
{
public:
    Variable() : m_before(qgetenv(VARIABLE)) {}
    ~Variable() { qputenv(VARIABLE, m_before); }
    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;

private:
    QByteArray m_before;
};

QString fallback()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/payment-terminal");
}

/// A null text removes the variable, an empty one leaves it empty.
void setOrRemove(QProcessEnvironment &environment, const QString &name, const QString &value)
{
    if (value.isNull())
        environment.remove(name);
    else
        environment.insert(name, value);
}
} // namespace

class InitConfigTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void workDir_beforeMain_isKnown()
    {
        QVERIFY(!HAD_APPLICATION_BEFORE_MAIN);
        QVERIFY(!ASKED_BEFORE_MAIN.isEmpty());
        QCOMPARE(ASKED_BEFORE_MAIN, WorkDirectory::path());
    }

    void workDir_inTheEnvironment_isTakenAsItStands_data()
    {
        QTest::addColumn<QString>("path");
        for (const char *path : {"/somewhere", "/somewhere/", "//some//where/../else", "relative", ".", " ", "~/x",
                                 "C:\\terminal", "/каталог", "/with blank/", "$HOME/x", "/\"quoted\""})
            QTest::addRow("%s", path) << QString::fromUtf8(path);
    }

    void workDir_inTheEnvironment_isTakenAsItStands()
    {
        QFETCH(QString, path);
        const Variable variable;
        qputenv(VARIABLE, path.toUtf8());
        QCOMPARE(InitConfig::workDir(), path);
    }

    void workDir_withoutTheVariable_isFixed()
    {
        const Variable variable;
        qunsetenv(VARIABLE);
        QCOMPARE(InitConfig::workDir(), fallback());
        QVERIFY(InitConfig::workDir().startsWith(QLatin1Char('/')));
    }

    void workDir_withAnEmptyVariable_isFixed()
    {
        const Variable variable;
        qputenv(VARIABLE, "");
        QCOMPARE(InitConfig::workDir(), fallback());
    }

    void workDir_ofAnyEnvironment_isAbsoluteAndClean_data()
    {
        QTest::addColumn<QString>("home");
        QTest::addColumn<QString>("dataHome");
        QTest::addColumn<QString>("expected");
        const QString unset;
        const QString empty = QStringLiteral("");
        const passwd *user = ::getpwuid(::geteuid());
        QVERIFY(user != nullptr);
        const QString ofUser =
            QDir::cleanPath(QFile::decodeName(user->pw_dir) + QStringLiteral("/.local/share/payment-terminal"));
        const QString ofHome = QStringLiteral("/some/where/.local/share/payment-terminal");
        const QString home = QStringLiteral("/some/where");
        QTest::newRow("HOME") << home << unset << ofHome;
        QTest::newRow("HOME that is not clean") << QStringLiteral("//some/./else/../where/") << unset << ofHome;
        QTest::newRow("HOME that is the root")
            << QStringLiteral("/") << unset << QStringLiteral("/.local/share/payment-terminal");
        QTest::newRow("no HOME") << unset << unset << ofUser;
        QTest::newRow("empty HOME") << empty << unset << ofUser;
        QTest::newRow("relative HOME") << QStringLiteral("some/where") << unset << ofUser;
        QTest::newRow("HOME is the current directory") << QStringLiteral(".") << unset << ofUser;
        for (const QString &any : {unset, empty, home, QStringLiteral("some/where")})
            QTest::addRow("XDG_DATA_HOME, HOME is %s", any.isNull() ? "unset" : qPrintable(any))
                << any << QStringLiteral("/data//") << QStringLiteral("/data/payment-terminal");
        QTest::newRow("empty XDG_DATA_HOME") << home << empty << ofHome;
        QTest::newRow("relative XDG_DATA_HOME") << home << QStringLiteral("data") << ofHome;
        QTest::newRow("relative XDG_DATA_HOME, no HOME") << unset << QStringLiteral("data") << ofUser;
    }

    void workDir_ofAnyEnvironment_isAbsoluteAndClean()
    {
        QFETCH(QString, home);
        QFETCH(QString, dataHome);
        QFETCH(QString, expected);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QLatin1String(VARIABLE));
        setOrRemove(environment, QStringLiteral("HOME"), home);
        setOrRemove(environment, QStringLiteral("XDG_DATA_HOME"), dataHome);
        const auto child = ChildProcess::start("printsWorkDir", {}, environment);
        QCOMPARE(ChildProcess::finish(*child), 0);
        QCOMPARE(QFile::decodeName(child->readAll()), expected);
    }

    void workDir_ofAnyApplication_isTheSame()
    {
        const Variable variable;
        qunsetenv(VARIABLE);
        const QString before = InitConfig::workDir();
        QCoreApplication::setOrganizationName(QStringLiteral("somebody"));
        QCoreApplication::setApplicationName(QStringLiteral("something"));
        QCOMPARE(InitConfig::workDir(), before);
    }

    void workDir_asked_isNotMade()
    {
        const Variable variable;
        const QString path = WorkDirectory::path() + QStringLiteral("/not-made");
        qputenv(VARIABLE, QFile::encodeName(path));
        QCOMPARE(InitConfig::workDir(), path);
        QVERIFY(!QFile::exists(path));
    }
};

TEST_CHILD(printsWorkDir)
{
    std::fputs(InitConfig::encodedWorkDir().constData(), stdout);
    return 0;
}

TEST_MAIN(InitConfigTest)
#include "tst_initconfig.moc"
