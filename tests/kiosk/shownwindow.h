// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "kiosk/terminalbench.h"
#include "support/messagelog.h"
#include "support/testclock.h"
#include "window/kioskwindow.h"

#include <QLabel>
#include <QPushButton>

#include <memory>

/// The window of a terminal with the fake plugin, and what is on it.
class ShownWindow
{
public:
    explicit ShownWindow(kiosk::Terminal &terminal)
        : m_window(std::make_unique<kiosk::KioskWindow>(terminal, &m_ground))
    {
        m_ground.setFixedSize(1024, 768);
        m_ground.show();
        // Qt's platform for drawing into memory complains that it has no window manager.
        MessageLog::drop();
    }

    [[nodiscard]] kiosk::KioskWindow &window() { return *m_window; }
    void close() { m_window.reset(); }

    template <typename Widget>
    [[nodiscard]] Widget *part(const char *name = "") const
    {
        return m_window->findChild<Widget *>(QLatin1String(name));
    }
    template <typename Widget>
    [[nodiscard]] bool isUp() const
    {
        const auto *screen = m_window->findChild<Widget *>();
        return screen != nullptr && screen->isVisible();
    }
    [[nodiscard]] bool isUp(const char *name) const { return part<QWidget>(name)->isVisible(); }
    [[nodiscard]] QString text(const char *name) const { return part<QLabel>(name)->text(); }
    void touch(const char *name) { QTest::mouseClick(part<QPushButton>(name), Qt::LeftButton); }
    /// A customer who pays 150.00, up to the receipt.
    void pay(TerminalBench &bench)
    {
        bench.showDetails();
        bench.takeCash("150");
        touch("payButton");
        WAIT_FOR(bench->screen(), kiosk::Terminal::Screen::Receipt);
    }

    /// All that can be read.
    [[nodiscard]] QString allText() const
    {
        QStringList lines;
        const auto labels = m_window->findChildren<QLabel *>();
        for (const QLabel *label : labels) {
            if (label->isVisible())
                lines.append(label->text());
        }
        return lines.join(QLatin1Char('\n')).remove(QChar(0x200B));
    }

private:
    /// Whose size does not change: Qt's platform has something to say each time that one does.
    QWidget m_ground;
    std::unique_ptr<kiosk::KioskWindow> m_window;
};

/// Lets a second pass, and a little more: timers of Qt's are not exact.
inline void passASecond()
{
    TestClock::skip(1100);
    QCoreApplication::processEvents();
}
