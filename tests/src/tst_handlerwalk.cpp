// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "randomwalk.h"

#include <cstdio>

namespace {
constexpr int STEPS = 600;
// Under instruments a walk takes minutes on a busy machine.
constexpr int LIMIT_MS = 240'000;

QByteArray lastLines(const QByteArray &text, int count)
{
    return text.trimmed().split('\n').mid(std::max(0, text.trimmed().count('\n') + 1 - count)).join('\n');
}
} // namespace

/// Whatever is done to the plugin, in whatever order: it does not crash, leaves nothing behind and shows no more than
/// there is.
class HandlerWalkTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void walk_anyOrder_isSurvived_data()
    {
        QTest::addColumn<QString>("seed");
        for (int seed = 1; seed <= 8; ++seed)
            QTest::addRow("seed %d", seed) << QString::number(seed);
    }
    /// In a process of its own, which names the step when it dies.
    void walk_anyOrder_isSurvived()
    {
        QFETCH(QString, seed);
        const auto child = ChildProcess::start("walks", {seed});
        const bool hasEnded = child->waitForFinished(LIMIT_MS);
        const QByteArray said = child->readAllStandardOutput();
        const bool isGood = hasEnded && child->exitStatus() == QProcess::NormalExit && child->exitCode() == 0;
        if (!isGood)
            std::fputs(said.constData(), stderr);
        QVERIFY2(isGood, qPrintable(QStringLiteral("seed %1:\n%2\n%3")
                                        .arg(seed, QString::fromUtf8(lastLines(said, 12)),
                                             QString::fromUtf8(child->readAllStandardError()))));
        QVERIFY(said.contains("step 600: "));
    }
};

TEST_CHILD(walks)
{
    const MessageLog log;
    const auto tell = [](int number, const char *name, unsigned a, unsigned b) {
        std::printf("step %d: %s (%u, %u)\n", number, name, a, b);
        std::fflush(stdout);
    };
    QString wrong;
    {
        RandomWalk walk(arguments.value(0).toUInt(), tell);
        wrong = walk.walk(STEPS);
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (!QApplication::allWidgets().isEmpty())
        wrong += QStringLiteral("\n%1 widgets left").arg(QApplication::allWidgets().size());
    const QList<LogLine> lines = MessageLog::take();
    for (const LogLine &line : lines) {
        if (line.level != QtDebugMsg && !line.file.startsWith(QLatin1String("src/")))
            wrong += QLatin1Char('\n') + toString(line);
    }
    std::printf("%s\n", qPrintable(wrong));
    return wrong.isEmpty() ? 0 : 1;
}

WIDGET_TEST_MAIN(HandlerWalkTest)
#include "tst_handlerwalk.moc"
