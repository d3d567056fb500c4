#include "core/settings_store.h"
#include "core/failure.h"
#include "core/ini_text.h"
#include "core/native_path.h"
#include "core/paths.h"
#include <utility>

namespace quillane {

namespace {

constexpr qint64 kMostStoreBytes = 16ll << 20; // a store in use has a few kilobytes

} // namespace

SettingsStore::SettingsStore(QString file) : mFile(std::move(file))
{
    Read();
}

void SettingsStore::Read()
{
    ResumeNext([&] { mSections = ParseIni(ReadWholeFile(mFile, kMostStoreBytes)); });
}

QString SettingsStore::GetSetting(const QString& section, const QString& key,
                                  const QString& fallback) const
{
    const auto found = mSections.constFind(section);
    return found == mSections.cend() ? fallback : found->value(key, fallback);
}

bool SettingsStore::Contains(const QString& section, const QString& key) const
{
    const auto found = mSections.constFind(section);
    return found != mSections.cend() && found->contains(key);
}

void SettingsStore::SaveSetting(const QString& section, const QString& key, const QString& value)
{
    auto& entries = mSections[section];
    const auto there = entries.constFind(key);
    if (there != entries.cend() && *there == value)
        return;
    entries.insert(key, value);
    mChanged = true;
}

bool SettingsStore::Flush(QString* lastError)
{
    if (!mChanged)
        return true;
    try {
        MakeFolder(FolderOf(mFile), 0700);
        WriteWholeFile(mFile, IniText(mSections), {.newFileMode = 0600});
        mChanged = false;
        return true;
    } catch (const Failure& failure) {
        if (lastError != nullptr)
            *lastError = failure.Description();
        return false;
    }
}

} // namespace quillane
