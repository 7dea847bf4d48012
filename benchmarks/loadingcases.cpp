// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "benchmarkcase.h"

#include <QFile>
#include <QObject>
#include <QPluginLoader>

#include <stdexcept>

namespace {
using Operation = BenchmarkCase::Operation;

const std::string EMPTY = "load-empty-plugin";
constexpr int TIMES = 50;

bool isMapped(const QString &file)
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    return !maps.open(QIODevice::ReadOnly) || maps.readAll().contains(QFile::encodeName(file));
}

/// Loads a plugin's file, makes its instance, and takes both away again.
Operation loading(const char *file)
{
    const auto operation = [file = QString::fromUtf8(file)] {
        QPluginLoader loader(file);
        // Without Qt's hint to keep it in memory, so that each time is the first.
        loader.setLoadHints({});
        QObject *instance = loader.instance();
        if (instance == nullptr)
            throw std::runtime_error(loader.errorString().toStdString());
        delete instance;
        if (!loader.unload())
            throw std::runtime_error(loader.errorString().toStdString());
    };
    operation();
    if (isMapped(QString::fromUtf8(file)))
        throw std::runtime_error("the plugin stays in memory: only the first load would be one");
    return operation;
}
} // namespace

BenchmarkCases loadingCases()
{
    return {{"loading", "load-plugin", std::nullopt, [] { return loading(PLUGIN_FILE); }, RatioBound{EMPTY, 4}, TIMES},
            {"loading", EMPTY, std::nullopt, [] { return loading(EMPTY_PLUGIN_FILE); }, std::nullopt, TIMES}};
}
