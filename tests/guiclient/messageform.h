// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "guiclient/defaultmessageview.h"
#include "guiclient/formviewer.h"
#include "guiclient/messagewidgetcontroller.h"

#include <QAbstractButton>
#include <QLabel>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <memory>

/// What a controller tells.
class MessageListener
{
public:
    explicit MessageListener(const MessageWidgetController &controller)
        : m_finish(&controller, &MessageWidgetController::finish), m_tick(&controller, &MessageWidgetController::tick)
    {}

    [[nodiscard]] QList<int> codes() const
    {
        QList<int> codes;
        for (const QVariantList &arguments : m_finish)
            codes.append(arguments.at(0).toInt());
        return codes;
    }
    [[nodiscard]] int ticks() const { return m_tick.size(); }

private:
    QSignalSpy m_finish;
    QSignalSpy m_tick;
};

/// A form on the screen with the built-in message view.
class MessageForm
{
public:
    static constexpr auto NAME = "messagesView";

    MessageForm() : viewer(std::make_unique<FormViewer>()), view(new DefaultMessageView)
    {
        viewer->resize(1024, 768);
        viewer->addView(view, QLatin1String(NAME));
        viewer->show();
    }

    template <typename Part>
    [[nodiscard]] Part *part(const char *name) const
    {
        return view->findChild<Part *>(QLatin1String(name));
    }
    [[nodiscard]] QString text() const { return part<QLabel>("messageText")->text(); }
    [[nodiscard]] QString countdown() const
    {
        const auto *label = part<QLabel>("countdown");
        return label->isVisible() ? label->text() : QString();
    }
    /// The named parts that are in sight, in the order of the alphabet.
    [[nodiscard]] QStringList visibleParts() const
    {
        QStringList names;
        for (const char *name : {"cancelButton", "errorMark", "noButton", "okButton", "waitIndicator", "yesButton"}) {
            if (part<QWidget>(name)->isVisible())
                names.append(QLatin1String(name));
        }
        return names;
    }
    /// A touch in the middle of the button.
    void press(const char *name) const { QTest::mouseClick(part<QAbstractButton>(name), Qt::LeftButton); }

    std::unique_ptr<FormViewer> viewer;
    QPointer<QWidget> view;
};
