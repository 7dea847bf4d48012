// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/scenario.h"

#include "fuzztarget.h"

#include <QRegularExpression>

#include <functional>

namespace {
const QString SOURCE = QStringLiteral("file.yaml");

/// Runs the reader. @return its mistakes; empty: it has read what there was.
QStringList mistakesOf(const std::function<void()> &read)
{
    try {
        read();
        return {};
    } catch (const kiosk::ScenarioError &error) {
        FUZZ_REQUIRE(!error.mistakes().isEmpty());
        return error.mistakes();
    }
}

void requireEachToBeALineWithItsPlace(const QStringList &mistakes)
{
    static const QRegularExpression placed(QStringLiteral("^file\\.yaml:[1-9]\\d*:[1-9]\\d*: [^\\n\\r]+$"));
    for (const QString &mistake : mistakes)
        FUZZ_REQUIRE(placed.match(mistake).hasMatch());
}
} // namespace

/// A scenario file, and each of its lines as a step of its own: it is read, or everything that is wrong is told.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray text = FuzzTarget::bytes(data, size);
    kiosk::Scenario scenario;
    const auto read = [&] { scenario = kiosk::readScenario(text, SOURCE); };
    const QStringList mistakes = mistakesOf(read);
    requireEachToBeALineWithItsPlace(mistakes);
    FUZZ_REQUIRE(mistakes.isEmpty() == !scenario.steps.isEmpty());
    const int steps = scenario.steps.size();
    FUZZ_REQUIRE(mistakesOf(read) == mistakes);
    FUZZ_REQUIRE(scenario.steps.size() == steps);

    const QList<QByteArray> lines = text.split('\n');
    for (const QByteArray &line : lines) {
        QByteArray step = line.trimmed();
        if (step.startsWith("- "))
            step.remove(0, 2);
        requireEachToBeALineWithItsPlace(
            mistakesOf([&] { Q_UNUSED(kiosk::readStep(QString::fromUtf8(step), SOURCE)); }));
    }
    return 0;
}
