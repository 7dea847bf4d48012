// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/editornames.h"

#include <QGridLayout>
#include <QLabel>

namespace kiosk::EditorNames {
namespace {
template <typename Widget>
Widget *widgetAt(const QGridLayout &grid, int row, int column)
{
    const QLayoutItem *item = grid.itemAtPosition(row, column);
    return item == nullptr ? nullptr : qobject_cast<Widget *>(const_cast<QLayoutItem *>(item)->widget());
}
} // namespace

void complete(QWidget &page)
{
    const auto grids = page.findChildren<QGridLayout *>();
    for (const QGridLayout *grid : grids) {
        for (int row = 0; row < grid->rowCount(); ++row) {
            const auto *label = widgetAt<QLabel>(*grid, row, 0);
            auto *editor = widgetAt<QWidget>(*grid, row, 1);
            if (label != nullptr && editor != nullptr && editor->accessibleName().isEmpty())
                editor->setAccessibleName(label->text());
        }
    }
}
} // namespace kiosk::EditorNames
