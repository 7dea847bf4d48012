// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkomatpluginsettingswidget.h"

#include "parkomatsettings.h"
#include "ui_parkomatpluginsettingswidget.h"

ParkomatPluginSettingsWidget::ParkomatPluginSettingsWidget(QWidget *parent)
    : QWidget(parent), m_ui(new Ui::ParkomatPluginSettingsWidget)
{
    m_ui->setupUi(this);
    reload();
}

ParkomatPluginSettingsWidget::~ParkomatPluginSettingsWidget()
{
    delete m_ui;
}

void ParkomatPluginSettingsWidget::reload()
{
    const ParkomatSettings settings;
    m_ui->leParkingId->setText(settings.parkingId());
    m_ui->lePartnerId->setText(settings.partnerId());
    m_ui->leTermId->setText(settings.termId());
    m_ui->leCashServiceIp->setText(settings.cashServiceHost());
    m_ui->sbCashServicePort->setValue(settings.cashServicePort());
    m_ui->leCashServicePath->setText(settings.cashServicePath());
}

void ParkomatPluginSettingsWidget::saveSettings()
{
    ParkomatSettings settings;
    settings.setParkingId(m_ui->leParkingId->text());
    settings.setPartnerId(m_ui->lePartnerId->text());
    settings.setTermId(m_ui->leTermId->text());
    settings.setCashServiceHost(m_ui->leCashServiceIp->text());
    settings.setCashServicePort(static_cast<unsigned short>(m_ui->sbCashServicePort->value()));
    settings.setCashServicePath(m_ui->leCashServicePath->text());
}
