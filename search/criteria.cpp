#include "search/criteria.h"

#include "core/settings_store.h"

namespace quillane {

namespace {

template <typename Criteria> auto RowsOfArray(Criteria& criteria, SearchArray array)
{
    using Row =
        std::conditional_t<std::is_const_v<Criteria>, const SearchCriterion, SearchCriterion>;
    switch (array) {
    case SearchArray::Scope:
        return std::span<Row>(criteria.searchScope);
    case SearchArray::Info:
        return std::span<Row>(criteria.searchInfo);
    case SearchArray::Sample:
        return std::span<Row>(criteria.searchSample);
    case SearchArray::Spectrum:
        return std::span<Row>(criteria.searchSpectrum);
    case SearchArray::Character:
        return std::span<Row>(criteria.searchCharacter);
    case SearchArray::Numeric:
        return std::span<Row>(criteria.searchNumeric);
    }
    return std::span<Row>();
}

void LoadSearchField(const SettingsStore& store, const SearchSetting& setting, int index,
                     SearchCriterion& row)
{
    switch (setting.field) {
    case SearchField::Checked:
        row.checked = ReadBool(store, setting.key, index) ? kTrue : kFalse;
        break;
    case SearchField::Value:
        row.value = ReadInt16(store, setting.key, index);
        break;
    case SearchField::ValueHigh:
        row.valueHigh = ReadInt16(store, setting.key, index);
        break;
    case SearchField::Keyword:
        row.keyword = ReadText(store, setting.key, index);
        break;
    case SearchField::Text:
        row.text = ReadText(store, setting.key, index);
        break;
    }
}

void SaveSearchField(SettingsStore& store, const SearchSetting& setting, int index,
                     const SearchCriterion& row)
{
    switch (setting.field) {
    case SearchField::Checked:
        WriteBool(store, setting.key, row.checked == kTrue, index);
        break;
    case SearchField::Value:
        WriteInt(store, setting.key, row.value, index);
        break;
    case SearchField::ValueHigh:
        WriteInt(store, setting.key, row.valueHigh, index);
        break;
    case SearchField::Keyword:
        WriteText(store, setting.key, row.keyword, index);
        break;
    case SearchField::Text:
        WriteText(store, setting.key, row.text, index);
        break;
    }
}

} // namespace

std::span<SearchCriterion> RowsOf(SearchCriteria& criteria, SearchArray array)
{
    return RowsOfArray(criteria, array);
}

std::span<const SearchCriterion> RowsOf(const SearchCriteria& criteria, SearchArray array)
{
    return RowsOfArray(criteria, array);
}

void LoadSearchSettings(const SettingsStore& store, SearchCriteria& criteria, Globals& options)
{
    options.matchCase = ReadBool(store, kMatchCaseKey);
    options.matchWord = ReadBool(store, kMatchWordKey);
    criteria = {};
    for (const SearchSetting& setting : kSearchSettings) {
        const std::span<SearchCriterion> rows = RowsOf(criteria, setting.array);
        for (size_t i = 0; i < rows.size(); ++i) {
            LoadSearchField(store, setting, int(i), rows[i]);
        }
    }
}

void SaveSearchSettings(SettingsStore& store, const SearchCriteria& criteria,
                        const Globals& options)
{
    WriteBool(store, kMatchCaseKey, options.matchCase);
    WriteBool(store, kMatchWordKey, options.matchWord);
    for (const SearchSetting& setting : kSearchSettings) {
        const std::span<const SearchCriterion> rows = RowsOf(criteria, setting.array);
        for (size_t i = 0; i < rows.size(); ++i) {
            SaveSearchField(store, setting, int(i), rows[i]);
        }
    }
}

} // namespace quillane
