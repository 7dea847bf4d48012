// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/look.h"

#include "guiclient/guistyle.h"

#include <QApplication>
#include <QFile>
#include <QStyle>
#include <QStyleFactory>
#include <QWidget>

// Outside every namespace, as Qt's macro wants it.
static void initProject()
{
    Q_INIT_RESOURCE(project);
}

namespace kiosk::Look {
QString projectDir()
{
    initProject();
    return QStringLiteral(":/kiosk/project");
}

void apply(QApplication &application)
{
    QFile file(projectDir() + QStringLiteral("/style.qss"));
    const bool isOpen = file.open(QIODevice::ReadOnly);
    Q_ASSERT(isOpen);
    // The same look on every desktop.
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    application.setStyleSheet(GuiStyle::sheet() + (isOpen ? QString::fromUtf8(file.readAll()) : QString()));
}

void setUp(QWidget &window)
{
    apply(*qApp);
    window.setWindowTitle(QStringLiteral("Оплата парковки"));
    window.resize(1024, 768);
}

void refresh(QWidget &widget)
{
    widget.style()->unpolish(&widget);
    widget.style()->polish(&widget);
}
} // namespace kiosk::Look
