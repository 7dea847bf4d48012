// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
// Prints when the plugin whose file is given was built.
#include "plugininterface/ipaybyprovider.h"

#include <QCoreApplication>
#include <QPluginLoader>

#include <cstdio>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QPluginLoader loader(QCoreApplication::arguments().value(1));
    const auto *plugin = qobject_cast<IPayByProvider *>(loader.instance());
    if (plugin == nullptr) {
        std::fprintf(stderr, "%s\n", qPrintable(loader.errorString()));
        return EXIT_FAILURE;
    }
    std::printf("%s\n", qPrintable(plugin->pluginBuild()));
    return EXIT_SUCCESS;
}
