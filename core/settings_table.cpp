#include "core/settings_table.h"
#include "core/failure.h"
#include "core/numbers.h"
#include "core/settings_store.h"
#include <type_traits>

namespace quillane {

namespace {

template <typename Value, typename Convert>
Value ReadConverted(const SettingsStore& store, const SettingKey& row, int index, Convert convert)
{
    Value value = convert(DefaultText(row));
    ResumeNext([&] { value = convert(ReadText(store, row, index)); });
    return value;
}

// One value in either direction; the overloads choose by its type.
struct SettingReader {
    const SettingsStore& store;
    const SettingFallbacks& fallbacks;
    void operator()(const SettingKey& row, int index, QString& value) const
    {
        value = ReadText(store, row, index, fallbacks);
    }
    void operator()(const SettingKey& row, int index, qint16& value) const
    {
        value = ReadInt16(store, row, index);
    }
    void operator()(const SettingKey& row, int index, qint32& value) const
    {
        value = ReadInt32(store, row, index);
    }
    void operator()(const SettingKey& row, int index, bool& value) const
    {
        value = ReadBool(store, row, index);
    }
    void operator()(const SettingKey& row, int index, float& value) const
    {
        value = ReadSingle(store, row, index);
    }
};

struct SettingWriter {
    SettingsStore& store;
    void operator()(const SettingKey& row, int index, const QString& value) const
    {
        WriteText(store, row, value, index);
    }
    void operator()(const SettingKey& row, int index, qint16 value) const
    {
        WriteInt(store, row, value, index);
    }
    void operator()(const SettingKey& row, int index, qint32 value) const
    {
        WriteInt(store, row, value, index);
    }
    void operator()(const SettingKey& row, int index, bool value) const
    {
        WriteBool(store, row, value, index);
    }
    void operator()(const SettingKey& row, int index, float value) const
    {
        WriteSingle(store, row, value, index);
    }
};

template <typename Step, typename Value>
void DoSetting(const Step& step, const SettingKey& row, Value& value)
{
    step(row, 0, value);
}

template <typename Step, typename Value>
void DoSetting(const Step& step, const SettingKey& row, Four<Value>& values)
{
    for (int i = 0; i < row.count; ++i)
        step(row, i, values[size_t(i)]);
}

template <typename Step, typename Value>
void DoSetting(const Step& step, const SettingKey& row, const Four<Value>& values)
{
    for (int i = 0; i < row.count; ++i)
        step(row, i, values[size_t(i)]);
}

// Runs step for every row of the table whose value is a member of holder.
template <typename Step, typename Holder> void WalkSettings(const Step& step, Holder& holder)
{
    for (const SettingKey& row : kSettings) {
        std::visit(
            [&](auto member) {
                if constexpr (std::is_invocable_v<decltype(member), Holder&>)
                    DoSetting(step, row, holder.*member);
            },
            row.home);
    }
}

} // namespace

const SettingKey& SettingRow(QLatin1String section, QLatin1String key)
{
    for (const SettingKey& row : kSettings) {
        if (section == QLatin1String(row.section) && key == QLatin1String(row.key))
            return row;
    }
    for (const SettingKey& row : kAlbumSettings) {
        if (section == QLatin1String(row.section) && key == QLatin1String(row.key))
            return row;
    }
    throw Failure(kFailureIndex,
                  QStringLiteral("There is no setting %1 in the section %2.").arg(key, section));
}

QString StoredKey(const SettingKey& row, int index)
{
    return QString::fromLatin1(row.key).replace(u'#', QString::number(index));
}

QString DefaultText(const SettingKey& row, const SettingFallbacks& fallbacks)
{
    QString named;
    switch (row.named) {
    case SettingFallback::InTable:
        break;
    case SettingFallback::BrowsePath:
        named = fallbacks.browsePath;
        break;
    case SettingFallback::ExePath:
        named = fallbacks.exePath;
        break;
    case SettingFallback::GsPath:
        named = fallbacks.gsPath;
        break;
    }
    return named.isEmpty() ? QString::fromLatin1(row.fallback) : named;
}

QString ReadText(const SettingsStore& store, const SettingKey& row, int index,
                 const SettingFallbacks& fallbacks)
{
    return store.GetSetting(QString::fromLatin1(row.section), StoredKey(row, index),
                            DefaultText(row, fallbacks));
}

qint16 ReadInt16(const SettingsStore& store, const SettingKey& row, int index)
{
    return ReadConverted<qint16>(store, row, index, Int16FromText);
}

qint32 ReadInt32(const SettingsStore& store, const SettingKey& row, int index)
{
    return ReadConverted<qint32>(store, row, index, Int32FromText);
}

bool ReadBool(const SettingsStore& store, const SettingKey& row, int index)
{
    return ReadConverted<bool>(store, row, index, BoolFromText);
}

float ReadSingle(const SettingsStore& store, const SettingKey& row, int index)
{
    return ReadConverted<float>(store, row, index, SingleFromText);
}

void WriteText(SettingsStore& store, const SettingKey& row, const QString& value, int index)
{
    store.SaveSetting(QString::fromLatin1(row.section), StoredKey(row, index), value);
}

void WriteInt(SettingsStore& store, const SettingKey& row, qint32 value, int index)
{
    WriteText(store, row, TextOf(value), index);
}

void WriteBool(SettingsStore& store, const SettingKey& row, bool value, int index)
{
    WriteText(store, row, TextFromBool(value), index);
}

void WriteSingle(SettingsStore& store, const SettingKey& row, float value, int index)
{
    WriteText(store, row, TextOf(value), index);
}

void LoadGlobals(const SettingsStore& store, Globals& globals, const SettingFallbacks& fallbacks)
{
    WalkSettings(SettingReader{store, fallbacks}, globals);
}

void SaveGlobals(SettingsStore& store, const Globals& globals)
{
    WalkSettings(SettingWriter{store}, globals);
}

void LoadMainWindowSettings(const SettingsStore& store, MainWindowSettings& settings)
{
    WalkSettings(SettingReader{store, {}}, settings);
}

void SaveMainWindowSettings(SettingsStore& store, const MainWindowSettings& settings)
{
    WalkSettings(SettingWriter{store}, settings);
}

} // namespace quillane
