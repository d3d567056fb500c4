#include "search/criteria.h"

#include "core/settings_store.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace quillane {

namespace {

const QString kSection = QStringLiteral("SearchSettings");

class CriteriaTest : public testing::Test {
protected:
    CriteriaTest() : store(root.filePath(QStringLiteral("s.ini"))) { }

    void Put(const char* key, const char* value)
    {
        store.SaveSetting(kSection, QLatin1String(key), QString::fromUtf8(value));
    }
    QString Got(const QString& key) const { return store.GetSetting(kSection, key); }

    QTemporaryDir root;
    SettingsStore store;
    SearchCriteria criteria;
    Globals options;
};

/// A value of its own in every stored field.
SearchCriteria DistinctCriteria()
{
    SearchCriteria criteria;
    qint16 number = 0;
    for (const SearchSetting& setting : kSearchSettings) {
        for (SearchCriterion& row : RowsOf(criteria, setting.array)) {
            ++number;
            switch (setting.field) {
            case SearchField::Checked:
                row.checked = number % 3 == 0 ? kTrue : kFalse;
                break;
            case SearchField::Value:
                row.value = number;
                break;
            case SearchField::ValueHigh:
                row.valueHigh = qint16(-number);
                break;
            case SearchField::Keyword:
                row.keyword = QStringLiteral("keyword %1 = ü").arg(number);
                break;
            case SearchField::Text:
                row.text = QStringLiteral(" text %1; \"quoted\" ").arg(number);
                break;
            }
        }
    }
    return criteria;
}

} // namespace

TEST(SearchCriteria, TheArraysHaveTheirSizes)
{
    const SearchCriteria criteria;
    EXPECT_EQ(criteria.searchScope.size(), 10u);
    EXPECT_EQ(criteria.searchInfo.size(), 17u);
    EXPECT_EQ(criteria.searchSample.size(), 20u);
    EXPECT_EQ(criteria.searchSpectrum.size(), 75u);
    EXPECT_EQ(criteria.searchNumeric.size(), 4u);
    EXPECT_EQ(criteria.searchCharacter.size(), 4u);
    for (const SearchArrayRow& array : kSearchArrays) {
        EXPECT_EQ(RowsOf(criteria, array.array).size(), size_t(array.rows));
    }
}

TEST(SearchCriteria, RowsOfIsTheArrayOfThatName)
{
    SearchCriteria criteria;
    EXPECT_EQ(RowsOf(criteria, SearchArray::Scope).data(), criteria.searchScope.data());
    EXPECT_EQ(RowsOf(criteria, SearchArray::Info).data(), criteria.searchInfo.data());
    EXPECT_EQ(RowsOf(criteria, SearchArray::Sample).data(), criteria.searchSample.data());
    EXPECT_EQ(RowsOf(criteria, SearchArray::Spectrum).data(), criteria.searchSpectrum.data());
    EXPECT_EQ(RowsOf(criteria, SearchArray::Character).data(), criteria.searchCharacter.data());
    EXPECT_EQ(RowsOf(criteria, SearchArray::Numeric).data(), criteria.searchNumeric.data());
}

TEST(SearchCriteria, AFreshRowIsUnset)
{
    const SearchCriterion row;
    EXPECT_EQ(row.value, -1);
    EXPECT_EQ(row.valueHigh, -1);
    EXPECT_EQ(row.checked, 0);
    EXPECT_TRUE(row.keyword.isEmpty());
    EXPECT_TRUE(row.text.isEmpty());
}

TEST(SearchCriteria, TheWalkGoesOverTheArraysInOrder)
{
    const std::array<std::pair<SearchArray, SearchKind>, 6> walk = {{
        {SearchArray::Scope, SearchKind::Numeric},
        {SearchArray::Info, SearchKind::Numeric},
        {SearchArray::Sample, SearchKind::Text},
        {SearchArray::Spectrum, SearchKind::Numeric},
        {SearchArray::Character, SearchKind::Text},
        {SearchArray::Numeric, SearchKind::Numeric},
    }};
    ASSERT_EQ(std::size(kSearchArrays), walk.size());
    for (size_t i = 0; i < walk.size(); ++i) {
        EXPECT_EQ(kSearchArrays[i].array, walk[i].first);
        EXPECT_EQ(kSearchArrays[i].kind, walk[i].second);
    }
}

TEST(SearchCriteria, TheStoredKeysInTheOrderOfTheirLoading)
{
    struct Expected {
        const char* key;
        SettingType type;
        const char* fallback;
        int count;
    };
    const Expected expected[] = {
        {"searchCharacter(i).CHECKED#", SettingType::Boolean, "False", 4},
        {"searchCharacter(i).Keyword#", SettingType::Text, "", 4},
        {"searchCharacter(i).String#", SettingType::Text, "", 4},
        {"searchNumeric(i).CHECKED#", SettingType::Boolean, "False", 4},
        {"searchNumeric(i).Keyword#", SettingType::Text, "", 4},
        {"searchNumeric(i).value#", SettingType::Int16, "-1", 4},
        {"searchNumeric(i).ValueHigh#", SettingType::Int16, "-1", 4},
        {"searchSpectrum(i).CHECKED#", SettingType::Boolean, "False", 75},
        {"searchSpectrum(i).value#", SettingType::Int16, "-1", 75},
        {"searchSpectrum(i).ValueHigh#", SettingType::Int16, "-1", 75},
        {"searchSample(i).CHECKED#", SettingType::Boolean, "False", 20},
        {"searchSample(i).String#", SettingType::Text, "", 20},
        {"searchInfo(i).CHECKED#", SettingType::Boolean, "False", 17},
        {"searchInfo(i).value#", SettingType::Int16, "-1", 17},
        {"searchInfo(i).ValueHigh#", SettingType::Int16, "-1", 17},
        {"searchScope(i).CHECKED#", SettingType::Boolean, "False", 10},
        {"searchScope(i).value#", SettingType::Int16, "-1", 10},
        {"searchScope(i).ValueHigh#", SettingType::Int16, "-1", 10},
    };
    ASSERT_EQ(std::size(kSearchSettings), std::size(expected));
    for (size_t i = 0; i < std::size(expected); ++i) {
        const SettingKey& key = kSearchSettings[i].key;
        EXPECT_STREQ(key.section, "SearchSettings");
        EXPECT_STREQ(key.key, expected[i].key);
        EXPECT_EQ(key.type, expected[i].type) << key.key;
        EXPECT_STREQ(key.fallback, expected[i].fallback) << key.key;
        EXPECT_EQ(key.count, expected[i].count) << key.key;
    }
    for (const SettingKey& key : {kMatchCaseKey, kMatchWordKey}) {
        EXPECT_STREQ(key.section, "SearchSettings");
        EXPECT_EQ(key.type, SettingType::Boolean);
        EXPECT_STREQ(key.fallback, "False");
    }
    EXPECT_STREQ(kMatchCaseKey.key, "matchCase");
    EXPECT_STREQ(kMatchWordKey.key, "matchWord");
}

TEST_F(CriteriaTest, AnEmptyStoreGivesTheDefaults)
{
    criteria = DistinctCriteria();
    options.matchCase = options.matchWord = true;
    LoadSearchSettings(store, criteria, options);
    EXPECT_EQ(criteria, SearchCriteria());
    EXPECT_FALSE(options.matchCase);
    EXPECT_FALSE(options.matchWord);
}

TEST_F(CriteriaTest, KeysAreTheLiteralFollowedByTheIndex)
{
    Put("searchScope(i).CHECKED9", "True");
    Put("searchInfo(i).value16", "160");
    Put("searchInfo(i).ValueHigh16", "170");
    Put("searchSample(i).String19", "nineteen");
    Put("searchSpectrum(i).ValueHigh74", "74");
    Put("searchNumeric(i).Keyword3", "ISO");
    Put("searchCharacter(i).String0", "Rome");
    Put("matchWord", "True");
    LoadSearchSettings(store, criteria, options);
    EXPECT_EQ(criteria.searchScope[9].checked, -1);
    EXPECT_EQ(criteria.searchInfo[16].value, 160);
    EXPECT_EQ(criteria.searchInfo[16].valueHigh, 170);
    EXPECT_EQ(criteria.searchSample[19].text, "nineteen");
    EXPECT_EQ(criteria.searchSpectrum[74].valueHigh, 74);
    EXPECT_EQ(criteria.searchNumeric[3].keyword, "ISO");
    EXPECT_EQ(criteria.searchCharacter[0].text, "Rome");
    EXPECT_FALSE(options.matchCase);
    EXPECT_TRUE(options.matchWord);
}

TEST_F(CriteriaTest, WhatTheStoreHoldsOfAKeywordOfTheOtherArraysIsNotRead)
{
    Put("searchScope(i).Keyword0", "ISO");
    Put("searchSample(i).Keyword0", "City");
    LoadSearchSettings(store, criteria, options);
    EXPECT_TRUE(criteria.searchScope[0].keyword.isEmpty());
    EXPECT_TRUE(criteria.searchSample[0].keyword.isEmpty());
}

TEST_F(CriteriaTest, ABooleanIsAWordOrANumberAndRubbishTakesTheDefault)
{
    Put("searchScope(i).CHECKED0", "-1");
    Put("searchScope(i).CHECKED1", "0");
    Put("searchScope(i).CHECKED2", "perhaps");
    Put("searchScope(i).value0", "40000");
    Put("searchScope(i).value1", "ten");
    Put("searchScope(i).value2", "32767");
    LoadSearchSettings(store, criteria, options);
    EXPECT_EQ(criteria.searchScope[0].checked, -1);
    EXPECT_EQ(criteria.searchScope[1].checked, 0);
    EXPECT_EQ(criteria.searchScope[2].checked, 0);
    EXPECT_EQ(criteria.searchScope[0].value, -1);
    EXPECT_EQ(criteria.searchScope[1].value, -1);
    EXPECT_EQ(criteria.searchScope[2].value, 32767);
}

TEST_F(CriteriaTest, EveryStoredFieldComesBackAsItWasAfterTheFileWasWritten)
{
    const SearchCriteria saved = DistinctCriteria();
    options.matchCase = true;
    SaveSearchSettings(store, saved, options);
    ASSERT_TRUE(store.Flush());

    const SettingsStore read(store.File());
    Globals readOptions;
    LoadSearchSettings(read, criteria, readOptions);
    EXPECT_EQ(criteria, saved);
    EXPECT_TRUE(readOptions.matchCase);
    EXPECT_FALSE(readOptions.matchWord);
}

TEST_F(CriteriaTest, BooleansAreStoredAsWordsAndNumbersAsPlainText)
{
    criteria.searchNumeric[1].checked = kTrue;
    criteria.searchNumeric[1].value = 100;
    SaveSearchSettings(store, criteria, options);
    EXPECT_EQ(Got(QStringLiteral("searchNumeric(i).CHECKED1")), "True");
    EXPECT_EQ(Got(QStringLiteral("searchNumeric(i).CHECKED0")), "False");
    EXPECT_EQ(Got(QStringLiteral("searchNumeric(i).value1")), "100");
    EXPECT_EQ(Got(QStringLiteral("searchNumeric(i).ValueHigh1")), "-1");
    EXPECT_EQ(Got(QStringLiteral("matchCase")), "False");
}

TEST_F(CriteriaTest, EveryIndexedKeyIsWritten)
{
    SaveSearchSettings(store, criteria, options);
    int keys = 0;
    for (const SearchSetting& setting : kSearchSettings) {
        for (int i = 0; i < setting.key.count; ++i) {
            EXPECT_TRUE(store.Contains(kSection, StoredKey(setting.key, i)));
            ++keys;
        }
        EXPECT_FALSE(store.Contains(kSection, StoredKey(setting.key, setting.key.count)));
    }
    EXPECT_EQ(keys, 3 * (10 + 17 + 75) + 2 * 20 + 4 * 4 + 3 * 4);
}

} // namespace quillane
