// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "arguments.h"
#include "control/controlserver.h"
#include "control/socketname.h"
#include "core/terminalappsettings.h"
#include "endlimit.h"
#include "extension/dircreator.h"
#include "guiclient/formproject.h"
#include "kiosklog.h"
#include "ledger/ledger.h"
#include "payment/commit.h"
#include "plugin/pluginfile.h"
#include "plugin/pluginhost.h"
#include "plugin/pluginprobe.h"
#include "pluginsettings.h"
#include "scenario/player.h"
#include "scenario/servicefaults.h"
#include "signalwatch.h"
#include "terminal.h"
#include "terminalinfo.h"
#include "window/bench/benchpanel.h"
#include "window/kioskwindow.h"
#include "window/look.h"
#include "window/startup.h"
#include "window/startwindow.h"
#include "workdirlock.h"

#include <QApplication>
#include <QFile>
#include <QScreen>
#include <QTemporaryDir>
#include <QTextStream>

#include <memory>
#include <optional>

namespace {
using namespace kiosk;

enum Status
{
    Held = 0,
    Failed = 1,
    Unusable = 2
};

const QString ENDED_EARLY = QStringLiteral("the scenario was ended before its end");

int fail(Status status, const QStringList &texts)
{
    QTextStream err(stderr);
    for (const QString &text : texts)
        err << "kiosk: " << text << '\n';
    return status;
}

/// Where there is no screen, everything is drawn into memory.
void chooseScreen()
{
    if (!qEnvironmentVariableIsSet("DISPLAY") && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

/// @return why they are not stored; empty: they are.
QString applySettings(const Arguments &arguments, const std::optional<Scenario> &scenario)
{
    TerminalAppSettings settings;
    QString reason;
    if (scenario) {
        reason = PluginSettings::write(scenario->settings);
        if (scenario->host.onlineCheckTimeout)
            settings.setOnlineCheckTimeout(*scenario->host.onlineCheckTimeout);
        if (scenario->host.autoCloseMessagesAfter)
            settings.setAutoCloseMessagesAfter(*scenario->host.autoCloseMessagesAfter);
    }
    const QString mistake = PluginSettings::write(arguments.settings);
    return mistake.isEmpty() ? reason : mistake;
}

QString pluginPath(const Arguments &arguments)
{
    return arguments.pluginFile.isEmpty()
               ? PluginFile::find(QCoreApplication::applicationDirPath() + QStringLiteral("/../plugins"))
               : arguments.pluginFile;
}

/// Tells each step on the standard output, and what the customer sees behind it where that is something else.
void narrate(const Player &player)
{
    QObject::connect(
        &player, &Player::stepHeld, &player,
        [before = QString()](int number, const QString &caption, const QString &screen, const QString &text) mutable {
            QTextStream out(stdout);
            out << QStringLiteral("%1  %2\n").arg(number, 3).arg(caption);
            QString seen = screen + QStringLiteral(": ") + text;
            seen.replace(QLatin1Char('\n'), QStringLiteral(" | "));
            if (seen != before)
                out << QStringLiteral("     sees ") << seen << '\n';
            before = seen;
        });
}

/// A commit may take as long as the plugin waits for the payee, and a little more.
void limitTheEnd(const Terminal &terminal)
{
    const auto setPatience = [] {
        constexpr std::chrono::seconds grace{10};
        EndLimit::setPatience(std::chrono::duration_cast<std::chrono::seconds>(commitTimeLimit()) + grace);
    };
    setPatience();
    QObject::connect(&terminal, &Terminal::committingChanged, &terminal, setPatience);
}

/// Ends the program when the terminal is ready for it and the scenario, if there is one, is through.
int runUntilQuit(const SignalWatch &signalWatch, Terminal &terminal, Player *player)
{
    int status = Held;
    bool mayEnd = player == nullptr;
    QObject::connect(&terminal, &Terminal::quitReady, &terminal, [&] {
        if (mayEnd)
            QCoreApplication::exit(status);
    });
    limitTheEnd(terminal);
    QObject::connect(&terminal, &Terminal::quitWanted, &terminal, [&] {
        // A scenario goes on behind its own.
        if (mayEnd)
            EndLimit::begin();
    });
    QObject::connect(&signalWatch, &SignalWatch::endWanted, &terminal, [&] {
        if (!mayEnd)
            status = fail(Failed, {ENDED_EARLY});
        mayEnd = true;
        terminal.quit();
    });
    if (player != nullptr) {
        QObject::connect(player, &Player::finished, &terminal, [&](const QString &failure) {
            mayEnd = true;
            status = failure.isEmpty() ? Held : fail(Failed, {failure});
            terminal.quit();
        });
        narrate(*player);
        player->start();
    }
    return QCoreApplication::exec();
}

void show(QWidget &window, const Arguments &arguments)
{
    arguments.isFullScreen ? window.showFullScreen() : window.show();
}

PluginProbe probeByThisProgram()
{
    return {QCoreApplication::applicationFilePath(), {QStringLiteral("--") + QLatin1String(PROBE_OPTION)}};
}

TerminalOptions terminalOptions(FormProject &project, const std::optional<Scenario> &scenario)
{
    TerminalOptions options;
    options.project = &project;
    if (scenario) {
        options.keepPlugin = scenario->host.keepPlugin;
        options.comission = scenario->host.comission;
    }
    return options;
}

int runTerminal(const Arguments &arguments, const std::optional<Scenario> &scenario)
{
    const SignalWatch signalWatch;
    const QString unstored = applySettings(arguments, scenario);
    // A terminal takes payments with those that it has; its log tells. A scenario would be another one.
    if (scenario && !unstored.isEmpty())
        return fail(Unusable, {unstored});
    std::optional<StartWindow> startWindow(terminalInfo());
    // In the corner: a bench panel opens beside it.
    if (!arguments.bench.isEmpty())
        startWindow->move(startWindow->screen()->availableGeometry().topLeft());
    show(*startWindow, arguments);
    std::optional<Startup> startup(*startWindow);
    QObject::connect(&signalWatch, &SignalWatch::endWanted, &*startup, &Startup::end);

    const QString ledgerPath = InitConfig::workDir() + QStringLiteral("/kiosk.db");
    // Nobody mends one while a scenario waits.
    const auto ledger = scenario ? std::make_unique<Ledger>(ledgerPath) : startup->openLedger(ledgerPath);
    PluginHost host(pluginPath(arguments));
    if (!ledger || !startup->load(host, probeByThisProgram()))
        return scenario ? fail(Failed, {ENDED_EARLY}) : Held;
    // From here on the terminal says when the program may end.
    startup.reset();

    FormProject project(Look::projectDir());
    Terminal terminal(host, *ledger, terminalOptions(project, scenario));
    KioskWindow window(terminal);
    window.move(startWindow->pos());
    show(window, arguments);
    startWindow.reset();

    std::optional<ServiceFaults> faults;
    if (!arguments.bench.isEmpty())
        faults.emplace(arguments.bench);
    const Stage stage = {terminal, window, faults ? &*faults : nullptr, arguments.shotsDir};
    std::optional<BenchPanel> panel;
    if (!arguments.bench.isEmpty() && !scenario && QGuiApplication::platformName() != QLatin1String("offscreen")) {
        panel.emplace(stage, arguments.bench);
        panel->openBeside(window);
    }
    ControlServer control(stage);
    const QString reason = control.listen(controlSocket(InitConfig::workDir()));
    if (!reason.isEmpty())
        qCWarning(KIOSK_LOG).noquote() << "kioskctl cannot reach this terminal:" << reason;
    std::optional<Player> player;
    if (scenario)
        player.emplace(*scenario, stage);
    return runUntilQuit(signalWatch, terminal, player ? &*player : nullptr);
}

int run(const Arguments &arguments)
{
    std::optional<Scenario> scenario;
    if (!arguments.scenario.isEmpty())
        scenario = readScenario(arguments.scenario);
    std::optional<QTemporaryDir> temporary;
    QString workDir = arguments.workDir;
    if (workDir.isEmpty() && scenario) {
        workDir = temporary.emplace().path();
        // Never the terminal's own: a scenario's money is none.
        if (!temporary->isValid())
            return fail(Unusable, {QStringLiteral("no temporary folder for the scenario: %1. Give --work-dir, or set "
                                                  "TMPDIR to a folder that may be written to.")
                                       .arg(temporary->errorString())});
    }
    if (!workDir.isEmpty())
        qputenv("TERMINAL_WORK_DIR", QFile::encodeName(workDir));
    if (!DirCreator::checkAndCreate(InitConfig::workDir(), DirCreator::OWNER_ONLY))
        return fail(Unusable, {QStringLiteral("%1 cannot be used").arg(InitConfig::workDir())});
    const WorkDirLock lock(InitConfig::workDir());
    if (!lock.isTaken())
        return fail(Unusable, {QStringLiteral("another terminal uses %1").arg(InitConfig::workDir())});
    return runTerminal(arguments, scenario);
}
} // namespace

int main(int argc, char **argv)
{
    chooseScreen();
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("kiosk"));
    QApplication::setQuitOnLastWindowClosed(false);
    const Arguments arguments = Arguments::parse(QCoreApplication::arguments());
    if (!arguments.probedPlugin.isEmpty())
        return PluginProbe::runInChild(arguments.probedPlugin);
    if (arguments.wantsHelp) {
        QTextStream(stdout) << arguments.help;
        return Held;
    }
    if (!arguments.mistakes.isEmpty())
        return fail(Unusable, arguments.mistakes);
    try {
        const int status = run(arguments);
        // What the plugin has let go of goes while its library is there.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        // No plugin is left to wait for.
        EndLimit::cancel();
        return status;
    } catch (const ScenarioError &error) {
        // Plain: "FILE:LINE:COLUMN: …" is what editors find their way by.
        QTextStream(stderr) << error.mistakes().join(QLatin1Char('\n')) << '\n';
        return Unusable;
    } catch (const LedgerError &error) {
        return fail(Unusable, {error.text()});
    }
}
