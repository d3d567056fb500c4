#include "core/window_registry.h"
#include "core/failure.h"
#include <algorithm>

namespace quillane {

void WindowRegistry::Register(const QString& name, Maker make)
{
    if (!mMakers.emplace(name, std::move(make)).second)
        throw Failure(kFailureGeneral, QStringLiteral("The window %1 is known already.").arg(name));
}

bool WindowRegistry::Knows(const QString& name) const
{
    return mMakers.contains(name);
}

QObject* WindowRegistry::Get(const QString& name)
{
    if (QObject* there = Loaded(name))
        return there;
    const auto maker = mMakers.find(name);
    // A window that is being made is not there yet, and nothing is made any more at the end.
    if (maker == mMakers.end() || mDestroying || mBeingMade.contains(name))
        return nullptr;
    mBeingMade.insert(name);
    QObject* made = nullptr;
    try {
        made = maker->second();
    } catch (...) {
        mBeingMade.erase(name);
        throw;
    }
    mBeingMade.erase(name);
    std::erase_if(mLoaded, [](const auto& entry) { return entry.second.isNull(); });
    if (made != nullptr)
        mLoaded.emplace_back(name, made);
    return made;
}

QObject* WindowRegistry::Loaded(const QString& name) const
{
    for (const auto& [loadedName, window] : mLoaded) {
        if (loadedName == name && !window.isNull())
            return window.data();
    }
    return nullptr;
}

QVector<QString> WindowRegistry::LoadedNames() const
{
    QVector<QString> names;
    for (const auto& [name, window] : mLoaded) {
        if (!window.isNull())
            names.append(name);
    }
    return names;
}

void WindowRegistry::DestroyAll()
{
    mDestroying = true;
    while (!mLoaded.empty()) {
        const QPointer<QObject> last = mLoaded.back().second;
        mLoaded.pop_back();
        delete last.data();
    }
    mDestroying = false;
}

} // namespace quillane
