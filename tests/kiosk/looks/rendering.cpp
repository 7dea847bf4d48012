// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/rendering.h"

#include "support/messagelog.h"
#include "window/paymentscreen.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QHash>
#include <QLabel>
#include <QPixmap>
#include <QSignalBlocker>

#include <vector>

namespace Rendering {
namespace {
QString longer(const QString &text)
{
    const QString more = text.left(text.size() * 2 / 5).trimmed();
    return more.isEmpty() ? text : text + QLatin1Char(' ') + more;
}
} // namespace

void prepareFonts()
{
    qputenv("FONTCONFIG_FILE", KIOSK_LOOKS "/fonts.conf");
    // What a desktop may have set.
    for (const char *name : {"QT_SCALE_FACTOR", "QT_FONT_DPI", "QT_AUTO_SCREEN_SCALE_FACTOR", "QT_STYLE_OVERRIDE"})
        qunsetenv(name);
}

Stage::Stage(std::unique_ptr<QWidget> widget, const QSize &size) : m_widget(widget.release())
{
    m_ground.setFixedSize(size);
    m_widget->setParent(&m_ground);
    m_widget->setGeometry(m_ground.rect());
    m_widget->show();
    m_ground.show();
    // Qt's platform for drawing into memory complains that it has no window manager.
    MessageLog::drop();
    settle(*m_widget);
}

void settle(QWidget &widget)
{
    // A layout may ask for another one. No timer is served here.
    constexpr int rounds = 5;
    for (int i = 0; i < rounds; ++i)
        QCoreApplication::sendPostedEvents();
    widget.ensurePolished();
}

QImage picture(QWidget &widget)
{
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

void lengthenTexts(QWidget &widget)
{
    // A view that makes room for the longer texts has the terminal set its own texts again, which are the short ones.
    std::vector<QSignalBlocker> blockers;
    const auto screens = widget.findChildren<kiosk::PaymentScreen *>();
    for (kiosk::PaymentScreen *screen : screens)
        blockers.emplace_back(screen);
    QHash<QWidget *, QString> texts;
    const auto all = widget.findChildren<QWidget *>();
    for (QWidget *part : all) {
        if (qobject_cast<QLabel *>(part) != nullptr || qobject_cast<QAbstractButton *>(part) != nullptr)
            texts.insert(part, longer(part->property("text").toString()));
    }
    for (auto text = texts.cbegin(); text != texts.cend(); ++text)
        text.key()->setProperty("text", text.value());
    settle(widget);
    for (auto text = texts.cbegin(); text != texts.cend(); ++text) {
        if (text.key()->property("text") != text.value())
            qFatal("a longer text does not stay: %s", qPrintable(text.value()));
    }
}
} // namespace Rendering
