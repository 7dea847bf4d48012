// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/livingobjects.h"

#include <QObject>

#include <mutex>
#include <unordered_set>

/// Qt's hooks for tools: it calls what stands here for every object. Its header is not installed by default.
extern Q_CORE_EXPORT quintptr qtHookData[];

namespace {
enum Hook
{
    QtVersion = 2,
    AddObject = 3,
    RemoveObject = 4
};

std::mutex mutex;
std::unordered_set<const QObject *> alive;

void noteAlive(const QObject *object)
{
    const std::lock_guard lock(mutex);
    alive.insert(object);
}

void noteDead(const QObject *object)
{
    const std::lock_guard lock(mutex);
    alive.erase(object);
}
} // namespace

LivingObjects::LivingObjects()
{
    if (qtHookData[QtVersion] != QT_VERSION)
        qFatal("this Qt's hooks are not where they are looked for");
    alive.clear();
    qtHookData[AddObject] = reinterpret_cast<quintptr>(&noteAlive);
    qtHookData[RemoveObject] = reinterpret_cast<quintptr>(&noteDead);
}

LivingObjects::~LivingObjects()
{
    qtHookData[AddObject] = 0;
    qtHookData[RemoveObject] = 0;
}

int LivingObjects::count() const
{
    const std::lock_guard lock(mutex);
    return static_cast<int>(alive.size());
}

QStringList LivingObjects::classes() const
{
    const std::lock_guard lock(mutex);
    QStringList all;
    for (const QObject *object : alive)
        all.append(QLatin1String(object->metaObject()->className()));
    all.sort();
    return all;
}
