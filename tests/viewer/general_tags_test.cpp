#include "viewer/general_tags.h"

#include "platform/fake/fake_loop.h"
#include <gtest/gtest.h>

namespace quillane {
namespace {

GeneralTagTexts EveryText()
{
    return {QStringLiteral("Ann"),   QStringLiteral("(c) Ann"), QStringLiteral("Maker"),
            QStringLiteral("a day"), QStringLiteral("Box"),     QStringLiteral("Two"),
            QStringLiteral("Paper"), QStringLiteral("Seven")};
}

/// Slots that hold something, with their texts.
QMap<qint16, QString> PendingTexts(const EngineInstance& lead)
{
    QMap<qint16, QString> texts;
    for (qint16 slot = 0; slot <= 178; ++slot) {
        if (!lead.Comment(slot).IsEmpty()) {
            texts.insert(slot, lead.Comment(slot).Text());
        }
    }
    return texts;
}

const QString kSoftware = QStringLiteral("%1.%2.%3 Quillane")
                              .arg(QUILLANE_VERSION_MAJOR)
                              .arg(QUILLANE_VERSION_MINOR)
                              .arg(QUILLANE_VERSION_REVISION);

TEST(WriteGeneralTags, EveryBoxHasItsSlot)
{
    const FakeLoop loop;
    EngineInstance lead;
    GeneralTagTexts texts = EveryText();
    WriteGeneralTags(lead, QStringLiteral("/p/a.tif"), texts, loop, QStringLiteral("Quillane"),
                     true);
    const QMap<qint16, QString> expected = {
        {0, QStringLiteral("Ann")},   {1, QStringLiteral("(c) Ann")}, {2, QStringLiteral("a day")},
        {4, QStringLiteral("Box")},   {5, QStringLiteral("Maker")},   {6, QStringLiteral("Two")},
        {7, QStringLiteral("Paper")}, {8, QStringLiteral("Seven")},   {9, kSoftware}};
    EXPECT_EQ(PendingTexts(lead), expected);
}

TEST(WriteGeneralTags, FourOfAPngHaveSlotsOfTheirOwn)
{
    const FakeLoop loop;
    EngineInstance lead;
    GeneralTagTexts texts = EveryText();
    WriteGeneralTags(lead, QStringLiteral("/p/a.Png"), texts, loop, QStringLiteral("Quillane"),
                     true);
    const QMap<qint16, QString> expected = {
        {0, QStringLiteral("Ann")},
        {1, QStringLiteral("(c) Ann")},
        {2, QStringLiteral("a day")},
        {5, QStringLiteral("Maker")},
        {9, kSoftware},
        {175, QStringLiteral("Box")},
        {176, QStringLiteral("Two")},
        {177, QStringLiteral("Seven")},
        {178, QStringLiteral("Paper")},
    };
    EXPECT_EQ(PendingTexts(lead), expected);
}

TEST(WriteGeneralTags, AnEmptyBoxClearsItsSlot)
{
    const FakeLoop loop;
    EngineInstance lead;
    lead.SetComment(0, QStringLiteral("somebody"));
    lead.SetComment(4, QStringLiteral("somewhere"));
    GeneralTagTexts texts;
    texts.txtDateCreated = QStringLiteral("then");
    WriteGeneralTags(lead, QStringLiteral("a.jpg"), texts, loop, QStringLiteral("Quillane"), true);
    EXPECT_EQ(PendingTexts(lead).keys(), (QList<qint16>{2, 9}));
}

TEST(WriteGeneralTags, AnEmptyDateIsFilledInTheBoxToo)
{
    FakeLoop loop;
    loop.SetNow(QDateTime(QDate(2026, 3, 5), QTime(7, 8, 9)));
    EngineInstance lead;
    GeneralTagTexts texts;
    WriteGeneralTags(lead, QStringLiteral("a.jpg"), texts, loop, QStringLiteral("Quillane"), true);
    EXPECT_EQ(texts.txtDateCreated, QStringLiteral("2664:03:05 07:08:09"));
    EXPECT_EQ(lead.Comment(2).Text(), texts.txtDateCreated);
}

TEST(WriteGeneralTags, TheDateIsTheTwoDigitYearAndTheDayOfTheYear)
{
    EXPECT_EQ(GeneralTagDate(QDateTime(QDate(2026, 11, 21), QTime(14, 13, 48))),
              QStringLiteral("26325:11:21 14:13:48"));
    EXPECT_EQ(GeneralTagDate(QDateTime(QDate(2005, 1, 1), QTime(0, 0, 0))),
              QStringLiteral("051:01:01 00:00:00"));
    EXPECT_EQ(GeneralTagDate(QDateTime(QDate(2000, 12, 31), QTime(23, 59, 59))),
              QStringLiteral("00366:12:31 23:59:59"));
}

TEST(WriteGeneralTags, BoxesThatWereNotFilledFromTheFileAreNotWritten)
{
    const FakeLoop loop;
    EngineInstance lead;
    lead.SetComment(0, QStringLiteral("the file's own"));
    GeneralTagTexts texts = EveryText();
    texts.txtDateCreated.clear();
    WriteGeneralTags(lead, QStringLiteral("a.gif"), texts, loop, QStringLiteral("Quillane"), false);
    const QMap<qint16, QString> expected = {{0, QStringLiteral("the file's own")}, {9, kSoftware}};
    EXPECT_EQ(PendingTexts(lead), expected);
    EXPECT_EQ(texts.txtDateCreated, QString());
}

} // namespace
} // namespace quillane
