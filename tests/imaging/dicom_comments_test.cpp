#include "dicom_maker.h"
#include "imaging/comments/slots.h"
#include "worker_support.h"

namespace quillane::test {

namespace {

class DicomComments : public WorkerTest {
protected:
    CommentSet Read(const DicomMaker& maker)
    {
        return Comments(Write(QStringLiteral("texts.dic"), maker.File()), "DICOM");
    }
    /// A patient's name in character sets.
    QString Name(const QByteArray& sets, const QByteArray& bytes)
    {
        DicomMaker maker;
        if (!sets.isNull()) {
            maker.Text(0x00080005, "CS", sets);
        }
        maker.Text(0x00100010, "PN", bytes);
        const CommentValue& value = mLast = Read(maker).At(10);
        return value.IsEmpty() ? QString() : value.Text();
    }
    CommentValue mLast;
};

} // namespace

TEST_F(DicomComments, EverySlotReadsTheFieldOfItsTag)
{
    DicomMaker maker;
    std::vector<std::pair<qint16, QString>> expected;
    for (const CommentSlot& slot : CommentSlots()) {
        if (slot.home == SlotHome::Dicom) {
            const QString text = QStringLiteral("text of %1").arg(slot.slot);
            maker.Text(slot.tag, "LO", text.toLatin1());
            expected.emplace_back(slot.slot, text);
        }
    }
    maker.Text(0x00204000, "LT", "a picture of an arm");
    expected.emplace_back(kDescriptionSlot, QStringLiteral("a picture of an arm"));
    EXPECT_EQ(expected.size(), 12u);
    const CommentSet set = Read(maker);
    for (const auto& [slot, text] : expected) {
        EXPECT_EQ(set.At(slot), CommentValue(text)) << slot;
    }
    EXPECT_TRUE(set.At(0).IsEmpty());
    EXPECT_TRUE(set.At(21).IsEmpty());
}

TEST_F(DicomComments, AbsentAndEmptyFieldsAreEmptyValues)
{
    DicomMaker maker;
    maker.Text(0x00100010, "PN", "").Text(0x00100020, "LO", "17");
    const CommentSet set = Read(maker);
    EXPECT_TRUE(set.At(10).IsEmpty());
    EXPECT_EQ(set.At(11).Text(), QStringLiteral("17"));
    EXPECT_TRUE(set.At(12).IsEmpty());
}

TEST_F(DicomComments, OnlyThePaddingBehindATextIsDropped)
{
    DicomMaker maker;
    maker.Text(0x00100020, "LO", "  17 b");
    maker.Element(0x0020000d, "UI", QByteArray("1.2.3\0", 6));
    maker.Text(0x00204000, "LT", "two\r\nlines\\and more");
    const CommentSet set = Read(maker);
    EXPECT_EQ(set.At(11).Text(), QStringLiteral("  17 b"));
    EXPECT_EQ(set.At(14).Text(), QStringLiteral("1.2.3"));
    EXPECT_EQ(set.At(3).Text(), QStringLiteral("two\r\nlines\\and more"));
}

TEST_F(DicomComments, CharacterSetsBecomeUnicode)
{
    EXPECT_EQ(Name(QByteArray(), "Mueller^Ilse"), QStringLiteral("Mueller^Ilse"));
    EXPECT_EQ(Name("ISO_IR 100",
                   "\xc4neas^R\xfc"
                   "diger"),
              QStringLiteral("Äneas^Rüdiger"));
    EXPECT_EQ(Name("ISO_IR 101",
                   "W\xb3"
                   "adys\xb3"
                   "aw"),
              QStringLiteral("Władysław"));
    EXPECT_EQ(Name("ISO_IR 126", "\xc4\xe9\xef\xed\xf5\xf3\xe9\xef\xf2"),
              QStringLiteral("Διονυσιος"));
    EXPECT_EQ(Name("ISO_IR 144", "\xbb\xee\xda\x63\xd5\xdc\x62\x79\xe0\xd3"),
              QStringLiteral("Люкcемbyрг"));
    EXPECT_EQ(Name("ISO_IR 138", "\xf9\xf8\xe5\xef^\xe3\xe1\xe5\xf8\xe4"),
              QStringLiteral("שרון^דבורה"));
    EXPECT_EQ(Name("ISO_IR 127", "\xe2\xc8\xc7\xe6\xea"), QStringLiteral("قباني"));
    EXPECT_EQ(Name("ISO_IR 166", "\xb9\xd2\xc1"), QStringLiteral("นาม"));
    EXPECT_EQ(Name("ISO_IR 192", "Wang^XiaoDong=\xe7\x8e\x8b^\xe5\xb0\x8f\xe6\x9d\xb1="),
              QStringLiteral("Wang^XiaoDong=王^小東="));
    EXPECT_EQ(Name("GB18030", "Wang^XiaoDong=\xcd\xf5^\xd0\xa1\xb6\xab="),
              QStringLiteral("Wang^XiaoDong=王^小东="));
}

TEST_F(DicomComments, EscapesSwitchCharacterSetsInTheMiddleOfAText)
{
    EXPECT_EQ(Name("\\ISO 2022 IR 87",
                   "Yamada^Tarou=\x1b$B;3ED\x1b(B^\x1b$BB@O:\x1b(B="
                   "\x1b$B$d$^$@\x1b(B^\x1b$B$?$m$&\x1b(B"),
              QStringLiteral("Yamada^Tarou=山田^太郎=やまだ^たろう"));
    EXPECT_EQ(Name("ISO 2022 IR 13\\ISO 2022 IR 87",
                   "\xd4\xcf\xc0\xde^\xc0\xdb\xb3=\x1b$B;3ED\x1b(J^\x1b$BB@O:\x1b(J"),
              QStringLiteral("ﾔﾏﾀﾞ^ﾀﾛｳ=山田^太郎"));
    EXPECT_EQ(Name("\\ISO 2022 IR 149",
                   "Hong^Gildong=\x1b$)C\xfb\xf3^\x1b$)C\xd1\xce\xd4\xd7="
                   "\x1b$)C\xc8\xab^\x1b$)C\xb1\xe6\xb5\xbf"),
              QStringLiteral("Hong^Gildong=洪^吉洞=홍^길동"));
    EXPECT_EQ(Name("\\ISO 2022 IR 58", "Zhang^XiaoDong=\x1b$)A\xd5\xc5^\x1b$)A\xd0\xa1\xb6\xab="),
              QStringLiteral("Zhang^XiaoDong=张^小东="));
    EXPECT_EQ(Name("ISO 2022 IR 6\\ISO 2022 IR 100\\ISO 2022 IR 126", "\x1b-A\xfc=\x1b-F\xc4\xe9"),
              QStringLiteral("ü=Δι"));
}

TEST_F(DicomComments, BrokenTextsAndUnknownSetsAreStillShown)
{
    EXPECT_EQ(Name("ISO_IR 999", "M\xfcller"), QStringLiteral("Müller"));
    EXPECT_EQ(Name("\\ISO 2022 IR 87", "a\x1b$B;"), QStringLiteral("a;"));
    EXPECT_TRUE(Name("ISO_IR 192", "ab\xff\xfe").startsWith(QStringLiteral("ab")));
    EXPECT_EQ(Name("\\ISO 2022 IR 87", "a\x1bQb"), QStringLiteral("a\x1bQb"));
}

} // namespace quillane::test
