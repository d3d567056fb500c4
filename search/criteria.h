#pragma once
// What a search asks for: six arrays of criteria, two options, and where the store keeps them.
#include "core/file_kinds.h"
#include "core/session.h"
#include "core/settings_table.h"
#include <QString>
#include <array>
#include <span>
#include <type_traits>

namespace quillane {

inline constexpr qint16 kNoBound = -1; ///< a bound that is not set

struct SearchCriterion {
    qint16 value = kNoBound;     ///< lower bound of a numeric criterion
    qint16 valueHigh = kNoBound; ///< upper bound of a numeric criterion
    QString keyword;             ///< name of the text tag to read
    QString text;                ///< wanted text of a text criterion
    qint16 checked = kFalse;     ///< -1 if the criterion takes part
    bool operator==(const SearchCriterion&) const = default;
};

/// The criteria of the session. The dialog edits searchNumeric and searchCharacter; the other
/// four come from the store alone, go back to it unchanged, and never have a keyword.
struct SearchCriteria {
    std::array<SearchCriterion, 10> searchScope;
    std::array<SearchCriterion, 17> searchInfo;
    std::array<SearchCriterion, 20> searchSample;
    std::array<SearchCriterion, 75> searchSpectrum;
    std::array<SearchCriterion, 4> searchNumeric;
    std::array<SearchCriterion, 4> searchCharacter;
    bool operator==(const SearchCriteria&) const = default;
};

enum class SearchArray : quint8 { Scope, Info, Sample, Spectrum, Character, Numeric };
enum class SearchKind : quint8 { Numeric, Text };
struct SearchArrayRow {
    SearchArray array;
    SearchKind kind;
    int rows;
};
/// The arrays in the order in which a file is tested against them.
inline constexpr SearchArrayRow kSearchArrays[] = {
    {SearchArray::Scope, SearchKind::Numeric, 10}, {SearchArray::Info, SearchKind::Numeric, 17},
    {SearchArray::Sample, SearchKind::Text, 20},   {SearchArray::Spectrum, SearchKind::Numeric, 75},
    {SearchArray::Character, SearchKind::Text, 4}, {SearchArray::Numeric, SearchKind::Numeric, 4},
};
/// The rows of one of the arrays.
std::span<SearchCriterion> RowsOf(SearchCriteria& criteria, SearchArray array);
std::span<const SearchCriterion> RowsOf(const SearchCriteria& criteria, SearchArray array);

enum class SearchField : quint8 { Checked, Value, ValueHigh, Keyword, Text };
struct SearchSetting {
    SearchArray array;
    SearchField field;
    SettingKey key;
};

// clang-format off
inline constexpr SettingKey kMatchCaseKey{"SearchSettings", "matchCase", SettingType::Boolean, "False"};
inline constexpr SettingKey kMatchWordKey{"SearchSettings", "matchWord", SettingType::Boolean, "False"};
/// The stored fields of the arrays, in the order of their loading, which follows the two options.
inline constexpr SearchSetting kSearchSettings[] = {
    {SearchArray::Character, SearchField::Checked, {"SearchSettings", "searchCharacter(i).CHECKED#", SettingType::Boolean, "False", {}, 4}},
    {SearchArray::Character, SearchField::Keyword, {"SearchSettings", "searchCharacter(i).Keyword#", SettingType::Text, "", {}, 4}},
    {SearchArray::Character, SearchField::Text, {"SearchSettings", "searchCharacter(i).String#", SettingType::Text, "", {}, 4}},
    {SearchArray::Numeric, SearchField::Checked, {"SearchSettings", "searchNumeric(i).CHECKED#", SettingType::Boolean, "False", {}, 4}},
    {SearchArray::Numeric, SearchField::Keyword, {"SearchSettings", "searchNumeric(i).Keyword#", SettingType::Text, "", {}, 4}},
    {SearchArray::Numeric, SearchField::Value, {"SearchSettings", "searchNumeric(i).value#", SettingType::Int16, "-1", {}, 4}},
    {SearchArray::Numeric, SearchField::ValueHigh, {"SearchSettings", "searchNumeric(i).ValueHigh#", SettingType::Int16, "-1", {}, 4}},
    {SearchArray::Spectrum, SearchField::Checked, {"SearchSettings", "searchSpectrum(i).CHECKED#", SettingType::Boolean, "False", {}, 75}},
    {SearchArray::Spectrum, SearchField::Value, {"SearchSettings", "searchSpectrum(i).value#", SettingType::Int16, "-1", {}, 75}},
    {SearchArray::Spectrum, SearchField::ValueHigh, {"SearchSettings", "searchSpectrum(i).ValueHigh#", SettingType::Int16, "-1", {}, 75}},
    {SearchArray::Sample, SearchField::Checked, {"SearchSettings", "searchSample(i).CHECKED#", SettingType::Boolean, "False", {}, 20}},
    {SearchArray::Sample, SearchField::Text, {"SearchSettings", "searchSample(i).String#", SettingType::Text, "", {}, 20}},
    {SearchArray::Info, SearchField::Checked, {"SearchSettings", "searchInfo(i).CHECKED#", SettingType::Boolean, "False", {}, 17}},
    {SearchArray::Info, SearchField::Value, {"SearchSettings", "searchInfo(i).value#", SettingType::Int16, "-1", {}, 17}},
    {SearchArray::Info, SearchField::ValueHigh, {"SearchSettings", "searchInfo(i).ValueHigh#", SettingType::Int16, "-1", {}, 17}},
    {SearchArray::Scope, SearchField::Checked, {"SearchSettings", "searchScope(i).CHECKED#", SettingType::Boolean, "False", {}, 10}},
    {SearchArray::Scope, SearchField::Value, {"SearchSettings", "searchScope(i).value#", SettingType::Int16, "-1", {}, 10}},
    {SearchArray::Scope, SearchField::ValueHigh, {"SearchSettings", "searchScope(i).ValueHigh#", SettingType::Int16, "-1", {}, 10}},
};
// clang-format on

/// Reads the options (matchCase, matchWord) and all arrays. A value that is absent or cannot be
/// converted has its default; keywords that no key holds become empty.
void LoadSearchSettings(const SettingsStore& store, SearchCriteria& criteria, Globals& options);
/// Hands the same values to the store.
void SaveSearchSettings(SettingsStore& store, const SearchCriteria& criteria,
                        const Globals& options);

} // namespace quillane
