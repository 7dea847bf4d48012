// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

class FormViewer;
class InputView;
class ProviderParameter;
class SessionManager;

/// Asks the customer to type one parameter of a provider, on a screen of its own with a keyboard to touch; a keyboard
/// at the terminal types too: Enter is "next", Escape is "back".
///
/// The screen is a view of the form viewer while the controller lives. Its children are named "inputLine" (a
/// QLineEdit), "nextButton" and "backButton". What is typed is handed over as it is, empty too.
class PluginProviderParameterInputController : public QObject
{
    Q_OBJECT

public:
    /// @param session the customer's session; asking needs nothing of it, so it may be null.
    /// @param viewer which shows the screen; may be null, or go first: then there is no screen.
    /// @param viewName the screen's name among the viewer's views; empty: "inputView".
    /// @param hint a line below the parameter's label; empty: none.
    PluginProviderParameterInputController(SessionManager *session, FormViewer *viewer, const QString &viewName,
                                           const QString &hint, QObject *parent = nullptr);
    /// Removes the screen.
    ~PluginProviderParameterInputController() override;

    /// Shows the screen with the parameter's label, value and keyboard: "number" (a number pad) or "full" (letters and
    /// digits); others are logged as a warning and taken as "full".
    /// @param providerName whom the payment goes to.
    /// @param hidden whether what is typed shows as dots.
    void setParameter(const QString &providerName, const ProviderParameter &parameter, bool hidden);

Q_SIGNALS:
    // Each is the last act of what emits it: the receiver may delete the controller.
    void needBack();
    void needNext(const QString &text);

private:
    QPointer<FormViewer> m_viewer;
    QString m_viewName;
    QString m_hint;
    QPointer<InputView> m_view;
};
