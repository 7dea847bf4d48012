// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/rendering.h"

#include "support/messagelog.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QHash>
#include <QLabel>
#include <QPixmap>

namespace Rendering {
namespace {
QString longer(const QString &text)
{
    const QString more = text.left(text.size() * 2 / 5).trimmed();
    return more.isEmpty() ? text : text + QLatin1Char(' ') + more;
}

/// @return whether they were shown already.
bool show(const QHash<QWidget *, QString> &texts)
{
    bool wereShown = true;
    for (auto text = texts.cbegin(); text != texts.cend(); ++text) {
        wereShown = wereShown && text.key()->property("text") == text.value();
        text.key()->setProperty("text", text.value());
    }
    return wereShown;
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
    QHash<QWidget *, QString> texts;
    const auto all = widget.findChildren<QWidget *>();
    for (QWidget *part : all) {
        if (qobject_cast<QLabel *>(part) != nullptr || qobject_cast<QAbstractButton *>(part) != nullptr)
            texts.insert(part, longer(part->property("text").toString()));
    }
    // A view that makes room for them may have the terminal set its own texts again: then they are made longer again.
    constexpr int rounds = 3;
    for (int i = 0; i < rounds && !show(texts); ++i)
        settle(widget);
    if (!show(texts))
        qFatal("the longer texts do not stay");
}
} // namespace Rendering
