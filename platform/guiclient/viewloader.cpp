// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/viewloader.h"

#include "guiclient/messagetext.h"
#include "guiclient/waitindicator.h"

#include <QFile>

QWidget *ViewLoader::loadView(const QString &path)
{
    m_reason.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_reason = file.errorString();
        return nullptr;
    }
    if (file.size() == 0) {
        m_reason = QStringLiteral("the file is empty");
        return nullptr;
    }
    QWidget *view = load(&file);
    if (view == nullptr)
        m_reason = errorString();
    return view;
}

QWidget *ViewLoader::createWidget(const QString &className, QWidget *parent, const QString &name)
{
    QWidget *made = nullptr;
    // A message can be longer than a plain label has room for.
    const bool isMessageLabel = className == QLatin1String("QLabel") && name == QLatin1String("messageText");
    if (isMessageLabel || className == QLatin1String("MessageText"))
        made = new MessageText(parent);
    else if (className == QLatin1String("WaitIndicator"))
        made = new WaitIndicator(parent);
    else
        return QUiLoader::createWidget(className, parent, name);
    made->setObjectName(name);
    return made;
}
