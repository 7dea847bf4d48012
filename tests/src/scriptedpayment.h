// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "parkomatpluginhandler.h"
#include "scriptedservice.h"

/// A payment through a handler of its own, and the cash service that it asks.
struct ScriptedPayment
{
    ScriptedService service;
    ParkomatPluginHandler handler;
    HandlerBench bench{&handler};
};

/// Up to the commit: the check is over, the customer has paid.
struct PaidPayment : ScriptedPayment
{
    PaidPayment()
    {
        bench.start();
        leaveCheck({{QStringLiteral("cardData"), HandlerBench::demoCard()},
                    {QStringLiteral("totalCharge"), QStringLiteral("150.00")}});
    }

    /// What the check has left for the commit: "cardData" and "totalCharge".
    void leaveCheck(const QVariantMap &data) const
    {
        bench.session().setPluginsData({{QStringLiteral("parcomatData"), data}});
    }
};

/// The next payment, at its first screen; that before was stopped while it asked the cash service.
struct NextPayment : ScriptedPayment
{
    NextPayment()
    {
        service.hold();
        bench.startWithScreen();
        bench.readCard(HandlerBench::demoCard());
        WAIT_FOR(service.requests(), 1);
        handler.stop();
        bench.newPayment();
        bench.startWithScreen();
    }
};
