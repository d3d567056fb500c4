#include "metadata/text_tags.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

const QString kAnn = QStringLiteral("Name=Ann\r\nCity= Rome \r\n");

QString Tag(const char* key, const QString& text, qint16 caseSensitive = 0)
{
    return GetTextTag(QString::fromLatin1(key), text, caseSensitive);
}

QString Set(const char* key, const char* value, const char* text)
{
    return SetTextTag(QString::fromLatin1(key), QString::fromLatin1(value),
                      QString::fromLatin1(text));
}

} // namespace

TEST(GetTextTag, ValueIsTrimmedAndEndsAtItsLine)
{
    EXPECT_EQ(Tag("City", kAnn), "Rome");
    EXPECT_EQ(Tag("Name", kAnn), "Ann");
}

TEST(GetTextTag, CaseCountsOnlyForMinusOne)
{
    EXPECT_EQ(Tag("CITY", kAnn), "Rome");
    EXPECT_EQ(Tag("CITY", kAnn, 1), "Rome");
    EXPECT_EQ(Tag("CITY", kAnn, -2), "Rome");
    EXPECT_EQ(Tag("CITY", kAnn, -1), "");
    EXPECT_EQ(Tag("City", kAnn, qint16(65535)), "Rome");
}

TEST(GetTextTag, ValueKeepsItsEqualSigns)
{
    EXPECT_EQ(Tag("Note", "Note=a=b"), "a=b");
    EXPECT_EQ(Tag("Note", "Note==b\n"), "=b");
}

TEST(GetTextTag, NotFoundLineHidesWhatFollows)
{
    EXPECT_EQ(Tag("City", "NOT FOUND\nCity=Rome\n"), "");
    EXPECT_EQ(Tag("City", "  NOT FOUND  \nCity=Rome\n"), "");
    EXPECT_EQ(Tag("City", "City=Rome\nNOT FOUND\n"), "Rome");
}

TEST(GetTextTag, NotFoundLineWithACarriageReturnHidesNothing)
{
    EXPECT_EQ(Tag("City", "NOT FOUND\r\nCity=Rome\r\n"), "Rome");
    EXPECT_EQ(Tag("City", "not found\nCity=Rome\n"), "Rome");
}

TEST(GetTextTag, FirstMatchingLineWins)
{
    EXPECT_EQ(Tag("A", "A=1\nA=2\n"), "1");
    EXPECT_EQ(Tag("A", "A=\nA=2\n"), "");
}

TEST(GetTextTag, BlanksAroundTheNameDoNotCount)
{
    EXPECT_EQ(Tag("City", "  City  =  Rome  "), "Rome");
    EXPECT_EQ(Tag(" City", "City=Rome"), "");
    EXPECT_EQ(Tag("City", "\tCity=Rome"), "");
}

TEST(GetTextTag, OnlyBlanksAreTrimmed)
{
    EXPECT_EQ(Tag("City", "City=\tRome\t\r\n"), "\tRome\t");
}

TEST(GetTextTag, ValueIsCutAtItsFirstCarriageReturn)
{
    EXPECT_EQ(Tag("City", "City=Rome \rCountry=Italy\n"), "Rome");
    EXPECT_EQ(Tag("Country", "City=Rome\rCountry=Italy\n"), "");
    EXPECT_EQ(Tag("City", "City=\r\n"), "");
}

TEST(GetTextTag, LinesWithoutAnEqualSignAreSkipped)
{
    EXPECT_EQ(Tag("City", "City\nfree text\n\nCity=Rome"), "Rome");
}

TEST(GetTextTag, NameMustMatchWhole)
{
    EXPECT_EQ(Tag("Name", "Nickname=Al\r\nName=Ann\r\n"), "Ann");
    EXPECT_EQ(Tag("Na", "Name=Ann"), "");
}

TEST(GetTextTag, EmptyKeyMatchesALineThatStartsWithAnEqualSign)
{
    EXPECT_EQ(Tag("", "A=1\n=2\n"), "2");
    EXPECT_EQ(Tag("", ""), "");
}

TEST(GetTextTag, LettersOutsideAsciiIgnoreCaseToo)
{
    EXPECT_EQ(GetTextTag(QString::fromUtf16(u"STRA\u00c4E"),
                         QString::fromUtf16(u"stra\u00e4e=\u03b1"), 0),
              QString::fromUtf16(u"\u03b1"));
}

TEST(GetTextTag, LongTextIsReadToItsEnd)
{
    QString text;
    for (int i = 0; i < 60'000; ++i) {
        text += QStringLiteral("Key%1=%1\r\n").arg(i);
    }
    EXPECT_EQ(Tag("Key59999", text), "59999");
    EXPECT_EQ(Tag("Key60000", text), "");
}

TEST(SetTextTag, ValueIsReplaced)
{
    EXPECT_EQ(Set("City", "Paris", "Name=Ann\r\nCity=Rome\r\n"), "Name=Ann\r\nCity=Paris\r\n");
    EXPECT_EQ(Set("Name", "", "Name=Ann\r\nCity=Rome\r\n"), "Name=\r\nCity=Rome\r\n");
}

TEST(SetTextTag, ChangeOfCaseAloneIsNotWritten)
{
    EXPECT_EQ(Set("City", "ROME", "City=Rome\r\n"), "City=Rome\r\n");
}

TEST(SetTextTag, FirstOccurrenceOfTheKeyDecidesThePlace)
{
    // Found in "Nickname" whatever its case; the tail is counted with the length of "Ann".
    EXPECT_EQ(Set("Name", "Bob", "Nickname=Al\r\nName=Ann\r\n"), "Nickname=Bob\nName=Ann\r\n");
    EXPECT_EQ(Set("Name", "Bob", "a name here=x\r\nName=Ann\r\n"), "a name here=BobName=Ann\r\n");
}

TEST(SetTextTag, KeyIsFoundInAnotherCase)
{
    EXPECT_EQ(Set("CITY", "Paris", "City=Rome\r\n"), "City=Paris\r\n");
}

TEST(SetTextTag, BlanksBehindTheEqualSignShiftTheTail)
{
    EXPECT_EQ(Set("City", "Paris", "City= Rome\r\n"), "City=Parise\r\n");
    EXPECT_EQ(Set("City", "Paris", "City=  Rome\r\n"), "City=Parisme\r\n");
}

TEST(SetTextTag, AbsentTagIsAppended)
{
    EXPECT_EQ(Set("A", "1", ""), "A=1\r\n");
    EXPECT_EQ(Set("A", "1", "x"), "x\r\nA=1\r\n");
    EXPECT_EQ(Set("A", "1", "x\n"), "x\nA=1\r\n");
    EXPECT_EQ(Set("A", "1", "x\r\n"), "x\r\nA=1\r\n");
}

TEST(SetTextTag, TagWithAnEmptyValueGetsASecondLineThatLoses)
{
    const QString text = Set("A", "1", "A=\r\n");
    EXPECT_EQ(text, "A=\r\nA=1\r\n");
    EXPECT_EQ(Tag("A", text), "");
}

TEST(SetTextTag, NeverFailsOnAnyText)
{
    const char* const texts[] = {"",
                                 "=",
                                 "==",
                                 "\n",
                                 "\r",
                                 "a",
                                 "a=",
                                 "=a",
                                 "a=a",
                                 "A= a",
                                 "\na=\na=1",
                                 "NOT FOUND",
                                 "a\n=b",
                                 "aaa=aaaa",
                                 "a=b=c\r",
                                 "a =b",
                                 "b=a\na=bcdefgh"};
    for (const char* key : {"", "a", "A", "=", "\n", "b", "NOT FOUND"}) {
        for (const char* value : {"", "a", "b=c", "\n", "NOT FOUND"}) {
            for (const char* text : texts) {
                EXPECT_NO_THROW(Set(key, value, text)) << key << ',' << value << ',' << text;
            }
        }
    }
}

TEST(SetTextTag, OldValueLongerThanWhatFollowsLeavesNoTail)
{
    EXPECT_EQ(Set("b", "x", "bb=1\r\nb=a long value"), "bb=xvalue");
    EXPECT_EQ(Set("a", "x", "1234a=\n\na=123456789"), "1234a=x6789");
    EXPECT_EQ(Set("a", "x", "zzzzzzzzzzza=\na=12"), "zzzzzzzzzzza=x=12");
}

} // namespace quillane
