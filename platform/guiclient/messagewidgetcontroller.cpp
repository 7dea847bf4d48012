// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/messagewidgetcontroller.h"

MessageWidgetController::MessageWidgetController(QObject *parent) : QObject(parent) {}

MessageWidgetController::~MessageWidgetController() = default;

void MessageWidgetController::setUi(QWidget *view)
{
    m_view = view;
}

void MessageWidgetController::initMessage(const QString & /*text*/, int /*seconds*/, int /*kind*/) {}

void MessageWidgetController::initMessageSingleSignalMode(const QString & /*text*/, int /*seconds*/, int /*kind*/) {}

void MessageWidgetController::setOkCaption(const QString & /*text*/) {}
