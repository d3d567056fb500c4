// Changing fields of an Exif block without moving what must not move.
#include "carry_support_for_tests.h"
#include "imaging/exif/exif_patcher.h"
#include "imaging/exif/tiff_structure.h"

namespace quillane {

namespace {

using making::ExifMaker;
using making::SlotsOfBlock;
using making::TextOf;

constexpr qint64 kRoom = kMaxJpegExifBytes;

QByteArray MakerNote(int bytes = 300)
{
    QByteArray note("SECRET\0\1", 8);
    for (int i = 0; note.size() < bytes; ++i) {
        note += char(i * 7 + 3);
    }
    return note;
}

/// A block as a camera makes it: three directories, a MakerNote, and bytes that no field names.
QByteArray CameraBlock(bool big = false)
{
    ExifMaker maker(big);
    maker.Ascii(ExifMaker::Tiff, 0x010e, "a first description of some length")
        .Ascii(ExifMaker::Tiff, 0x010f, "Maker")
        .Short(ExifMaker::Tiff, 0x0112, {6})
        .Ascii(ExifMaker::Exif, 0x9003, "2003:01:05 13:07:09")
        .Bytes(ExifMaker::Exif, 0x927c, MakerNote())
        .Short(ExifMaker::Exif, 0xa002, {4000})
        .Long(ExifMaker::Exif, 0xa003, {3000})
        .Ascii(ExifMaker::Gps, 1, "N")
        .Rational(ExifMaker::Gps, 2, {52, 1, 31, 1, 1234, 100});
    return maker.Block() + "GAP: bytes that nobody owns";
}

QByteArray Patch(const QByteArray& block, const std::vector<CommentChange>& changes,
                 const ExifFacts& facts = {}, qint64 room = kRoom)
{
    return PatchExifBlock(block, changes, facts, room);
}

CommentChange Describe(const QString& text)
{
    return {kDescriptionSlot, text.isEmpty() ? CommentValue() : CommentValue(text)};
}

quint64 NumberIn(const QByteArray& block, bool exif, quint16 tag)
{
    const auto structure = exif::TiffStructure::Open(block);
    exif::TiffDirectory directory = structure->ReadDirectory(structure->FirstDirectory());
    if (exif) {
        const exif::TiffField* pointer = exif::FindField(directory, exif::kTagExifPointer);
        directory = structure->ReadDirectory(qint64(*structure->Number(*pointer)));
    }
    const exif::TiffField* field = exif::FindField(directory, tag);
    return field ? structure->Number(*field).value_or(0) : 0;
}

TEST(PatchExifBlock, NoChangeLeavesEveryByte)
{
    for (const bool big : {false, true}) {
        EXPECT_EQ(Patch(CameraBlock(big), {}), CameraBlock(big));
    }
}

TEST(PatchExifBlock, WhatDoesNotChangeStaysWhereItIs)
{
    // Nothing at all has to stay at this block's end, and still it does.
    ExifMaker maker;
    maker.Ascii(ExifMaker::Tiff, 0x010e, "description")
        .Ascii(ExifMaker::Tiff, 0x0132, "2003:01:05 13:07:09")
        .Ascii(ExifMaker::Exif, 0x9003, "2003:01:05 13:07:09")
        .Rational(ExifMaker::Gps, 2, {52, 1, 31, 1, 1234, 100});
    const QByteArray block = maker.Block();
    const QByteArray dated =
        Patch(block, {{kDateTakenSlot, QStringLiteral("2004:02:06 14:08:10")}});
    ASSERT_EQ(dated.size(), block.size());
    qsizetype differing = 0;
    for (qsizetype i = 0; i < block.size(); ++i) {
        differing += block[i] != dated[i] ? 1 : 0;
    }
    EXPECT_EQ(differing, 7); // the digits that differ
}

TEST(PatchExifBlock, MakerNoteAndUnknownBytesKeepBytesAndPlace)
{
    for (const bool big : {false, true}) {
        const QByteArray block = CameraBlock(big);
        std::vector<CommentChange> all;
        for (const CommentSlot& slot : CommentSlots()) {
            all.push_back({slot.slot, making::ValueFor(slot)});
        }
        for (const auto& changes : {std::vector<CommentChange>{Describe(QString(500, u'x'))},
                                    all,
                                    {Describe({}), {kDateTakenSlot, {}}, {43, {}}}}) {
            const QByteArray patched = Patch(block, changes);
            EXPECT_EQ(patched.indexOf(MakerNote()), block.indexOf(MakerNote()));
            EXPECT_EQ(patched.indexOf("GAP: bytes"), block.indexOf("GAP: bytes"));
            EXPECT_EQ(patched.count(MakerNote()), 1);
            EXPECT_EQ(patched.count("GAP: bytes"), 1);
        }
    }
}

TEST(PatchExifBlock, EverySlotIsReadBackAsItWasWritten)
{
    for (const bool big : {false, true}) {
        for (const CommentSlot& slot : CommentSlots()) {
            if (!making::IsInExifBlock(slot)) {
                continue;
            }
            SCOPED_TRACE(slot.field);
            const CommentSet before = SlotsOfBlock(CameraBlock(big));
            const CommentValue value = making::ValueFor(slot);
            const QByteArray patched = Patch(CameraBlock(big), {{slot.slot, value}});
            const CommentSet after = SlotsOfBlock(patched);
            EXPECT_EQ(after.At(slot.slot), value);
            for (const CommentSlot& other : CommentSlots()) {
                if (other.slot != slot.slot && other.slot != 21 && other.slot != 41) {
                    EXPECT_EQ(after.At(other.slot), before.At(other.slot)) << other.field;
                }
            }
            const QByteArray cleared = Patch(patched, {{slot.slot, {}}});
            EXPECT_TRUE(SlotsOfBlock(cleared).At(slot.slot).IsEmpty());
        }
    }
}

TEST(PatchExifBlock, OldTextAndPositionsDoNotStayReadable)
{
    const QByteArray block = CameraBlock();
    const QByteArray degrees = ExifMaker().Number(1234, 4) + ExifMaker().Number(100, 4);
    ASSERT_TRUE(block.contains("a first description") && block.contains(degrees));
    const QByteArray longer = Patch(block, {Describe(QString(200, u'y'))});
    EXPECT_FALSE(longer.contains("first"));
    EXPECT_FALSE(longer.contains("description"));
    const QByteArray shorter = Patch(block, {Describe("short")});
    EXPECT_FALSE(shorter.contains("descrip"));
    EXPECT_LE(shorter.size(), block.size());
    const QByteArray nowhere = Patch(block, {{42, {}}, {43, {}}});
    EXPECT_FALSE(nowhere.contains(degrees));
    EXPECT_EQ(nowhere.size(), block.size());
    EXPECT_TRUE(SlotsOfBlock(nowhere).At(43).IsEmpty());
    // Both tables stay where they are, so the block of a smaller set of fields is no shorter.
    EXPECT_EQ(nowhere.count("GAP"), 1);
}

TEST(PatchExifBlock, RepeatedSavesReuseTheirOwnRoom)
{
    QByteArray block = CameraBlock();
    qsizetype size = 0;
    for (int round = 0; round < 50; ++round) {
        const QString text = QString(100 + round % 7, QChar(u'a' + round % 26));
        block = Patch(block,
                      {Describe(text),
                       {1, QStringLiteral("(c) %1").arg(round % 10)},
                       {49, QStringLiteral("satellite %1").arg(round % 10)}});
        EXPECT_EQ(TextOf(SlotsOfBlock(block), 3), text);
        EXPECT_EQ(block.indexOf(MakerNote()), CameraBlock().indexOf(MakerNote()));
        if (round == 6) {
            size = block.size();
        }
        if (round > 6) {
            EXPECT_LE(block.size(), size + 8) << round;
        }
    }
    EXPECT_FALSE(block.contains("aaaa"));
}

TEST(PatchExifBlock, DirectoriesOutOfOrderAreReadAndKeepTheirOrder)
{
    // Tags 0x0132, 0x010e, 0x8298, in that order.
    const QByteArray entry("\x32\x01\x02\0\3\0\0\0D1\0\0\x0e\x01\x02\0\3\0\0\0ab\0\0"
                           "\x98\x82\x02\0\3\0\0\0me\0\0",
                           36);
    const QByteArray block = QByteArray("II*\0\x08\0\0\0\3\0", 10) + entry + QByteArray(4, '\0');
    const QByteArray patched = Patch(block, {Describe("xy")});
    EXPECT_EQ(patched.size(), block.size());
    EXPECT_EQ(patched.sliced(10, 2), QByteArray("\x32\x01", 2));
    EXPECT_EQ(patched.sliced(22, 2), QByteArray("\x0e\x01", 2));
    EXPECT_EQ(TextOf(SlotsOfBlock(patched), 3), QStringLiteral("xy"));
    EXPECT_EQ(TextOf(SlotsOfBlock(patched), 1), QStringLiteral("me"));
}

TEST(PatchExifBlock, OrientationAndDimensionsAreCorrected)
{
    ExifFacts facts;
    facts.upright = true;
    facts.width = 70'000;
    facts.height = 50;
    const QByteArray patched = Patch(CameraBlock(), {}, facts);
    EXPECT_EQ(NumberIn(patched, false, exif::kTagOrientation), 1u);
    EXPECT_EQ(NumberIn(patched, true, exif::kTagPixelXDimension), 70'000u);
    EXPECT_EQ(NumberIn(patched, true, exif::kTagPixelYDimension), 50u);
    EXPECT_EQ(patched.size(), CameraBlock().size());
}

TEST(PatchExifBlock, TheInteroperabilityDirectoryRepeatsTheSize)
{
    ExifMaker maker(true);
    maker.Long(ExifMaker::Exif, 0xa005, {0}).Long(ExifMaker::Exif, 0xa002, {4000});
    const QByteArray draft = maker.Block();
    maker.Long(ExifMaker::Exif, 0xa005, {draft.size()});
    const QByteArray interop = QByteArray("\0\3\0\1\0\2\0\0\0\4R98\0\x10\1\0\3\0\0\0\1\x0f\xa0\0\0"
                                          "\x10\2\0\4\0\0\0\1\0\0\x0b\xb8\0\0\0\0",
                                          42);
    ExifFacts facts;
    facts.width = 640;
    facts.height = 70'000;
    const QByteArray patched = Patch(maker.Block() + interop, {Describe(QString(50, u'i'))}, facts);
    QByteArray expected = interop;
    expected.replace(22, 2, "\x02\x80").replace(34, 4, QByteArray("\0\1\x11\x70", 4));
    EXPECT_EQ(patched.indexOf(expected), draft.size());
}

TEST(PatchExifBlock, TextWithUmlautsIsUtf8AndEndsInAZero)
{
    const QString text = QStringLiteral("\u00c4pfel \u4e2d\u6587 \U0001f600");
    const QByteArray patched = Patch(CameraBlock(), {Describe(text)});
    EXPECT_TRUE(patched.contains(text.toUtf8() + '\0'));
    EXPECT_EQ(TextOf(SlotsOfBlock(patched), 3), text);
}

TEST(PatchExifBlock, PreviewIsReplacedKeptOrRemoved)
{
    making::JpegMake small;
    small.width = small.height = 16;
    const QByteArray one = making::MakeJpeg(small);
    small.quality = 40;
    const QByteArray two = making::MakeJpeg(small);
    ExifFacts facts;
    facts.preview = ExifFacts::Preview::Replace;
    facts.previewJpeg = one;
    const QByteArray with = Patch(CameraBlock(), {}, facts);
    EXPECT_EQ(with.count(one), 1);
    const QByteArray kept = Patch(with, {Describe(QString(300, u'k'))});
    EXPECT_EQ(kept.count(one), 1);
    facts.previewJpeg = two;
    const QByteArray other = Patch(kept, {}, facts);
    EXPECT_EQ(other.count(two), 1);
    EXPECT_EQ(other.count(one), 0);
    facts.preview = ExifFacts::Preview::Remove;
    const QByteArray without = Patch(other, {}, facts);
    EXPECT_EQ(without.count("\xff\xd8\xff"), 0);
    EXPECT_LT(without.size(), CameraBlock().size() + 400);
    EXPECT_EQ(without.indexOf(MakerNote()), CameraBlock().indexOf(MakerNote()));
}

TEST(PatchExifBlock, APreviewThatStaysSaysHowItLies)
{
    ExifFacts facts;
    facts.preview = ExifFacts::Preview::Replace;
    facts.previewJpeg = making::MakeJpeg({});
    const QByteArray with = Patch(CameraBlock(), {}, facts);
    ExifFacts upright;
    upright.upright = true;
    const QByteArray kept = Patch(with, {}, upright);
    const auto structure = exif::TiffStructure::Open(kept);
    const exif::TiffDirectory first = structure->ReadDirectory(structure->FirstDirectory());
    const exif::TiffDirectory second = structure->ReadDirectory(first.next);
    const exif::TiffField* turned = exif::FindField(second, exif::kTagOrientation);
    ASSERT_TRUE(turned);
    EXPECT_EQ(structure->Number(*turned), 6u);
    EXPECT_EQ(kept.count(facts.previewJpeg), 1);
}

TEST(PatchExifBlock, WithoutRoomThePreviewGoesAndThenItRefuses)
{
    ExifFacts facts;
    facts.preview = ExifFacts::Preview::Replace;
    facts.previewJpeg = making::MakeJpeg({}) + QByteArray(40'000, 'p');
    const QByteArray with = Patch(CameraBlock(), {}, facts);
    ASSERT_GT(with.size(), 40'000);
    const QString text(30'000, u't');
    const QByteArray patched = Patch(with, {Describe(text)});
    EXPECT_LE(patched.size(), kRoom);
    EXPECT_FALSE(patched.contains("pppp"));
    EXPECT_EQ(TextOf(SlotsOfBlock(patched), 3), text);
    EXPECT_EQ(patched.indexOf(MakerNote()), with.indexOf(MakerNote()));
    const Failure refused =
        test::FailureOf([&] { Patch(with, {Describe(QString(66'000, u't'))}); });
    EXPECT_EQ(refused.Number(), kFailureLimit);
    EXPECT_TRUE(refused.Description().contains("64 KB")) << refused.what();
}

TEST(PatchExifBlock, ZerosAtTheEndGiveWayBeforeThePreview)
{
    const QByteArray padded = CameraBlock() + QByteArray(kRoom - CameraBlock().size(), '\0');
    const QByteArray patched = Patch(padded, {Describe(QString(20'000, u't'))});
    EXPECT_LE(patched.size(), kRoom);
    EXPECT_EQ(patched.indexOf("GAP: bytes"), padded.indexOf("GAP: bytes"));
}

TEST(PatchExifBlock, SharedValuesSurviveTheirTwin)
{
    // ImageDescription and Make point to the same text.
    const QByteArray head("II*\0\x08\0\0\0\2\0", 10);
    const QByteArray entries("\x0e\x01\x02\0\x08\0\0\0\x26\0\0\0\x0f\x01\x02\0\x08\0\0\0\x26\0\0\0",
                             24);
    const QByteArray block = head + entries + QByteArray(4, '\0') + QByteArray("sharing\0", 8);
    ASSERT_EQ(TextOf(SlotsOfBlock(block), 5), QStringLiteral("sharing"));
    const QByteArray patched = Patch(block, {Describe("another text")});
    EXPECT_EQ(TextOf(SlotsOfBlock(patched), 5), QStringLiteral("sharing"));
    EXPECT_EQ(TextOf(SlotsOfBlock(patched), 3), QStringLiteral("another text"));
}

TEST(PatchExifBlock, AFieldThatPointedBeyondTheEndStaysEmpty)
{
    const QByteArray block = QByteArray("II*\0\x08\0\0\0\2\0", 10)
        + QByteArray("\x0e\x01\x02\0\3\0\0\0ab\0\0\x98\x82\x02\0\x14\0\0\0\x30\0\0\0", 24)
        + QByteArray(4, '\0');
    ASSERT_TRUE(SlotsOfBlock(block).At(1).IsEmpty());
    const QByteArray patched = Patch(block, {Describe(QString(90, u'd'))});
    EXPECT_TRUE(SlotsOfBlock(patched).At(1).IsEmpty());
}

TEST(PatchExifBlock, HostileStructuresAreRefusedOrPatched)
{
    const auto attempt = [](const QByteArray& block) {
        const Failure failure = test::FailureOf([&] {
            Patch(block, {Describe(QString(80, u'h')), {43, {}}});
        });
        EXPECT_TRUE(failure.Number() == 0 || failure.Number() == kFailureUnreadable)
            << failure.what();
    };
    EXPECT_EQ(test::FailureOf([] { Patch("", {Describe("x")}); }).Number(), kFailureUnreadable);
    EXPECT_EQ(test::FailureOf([] { Patch("II*\0zzzzzzzz", {Describe("x")}); }).Number(),
              kFailureUnreadable);
    attempt(QByteArray("II*\0\xff\xff\xff\xff", 8));
    // The Exif and GPS directories are the first one again; it is its own next one.
    QByteArray cycle = QByteArray("II*\0\x08\0\0\0\2\0", 10)
        + QByteArray("\x69\x87\x04\0\1\0\0\0\x08\0\0\0\x25\x88\x04\0\1\0\0\0\x08\0\0\0", 24)
        + QByteArray("\x08\0\0\0", 4);
    attempt(cycle);
    // Counts of four billion, and a value that lies across its own table.
    for (const char* type : {"\2", "\5", "\7"}) {
        attempt(QByteArray("II*\0\x08\0\0\0\1\0\x0e\x01", 12) + type
                + QByteArray("\0\xff\xff\xff\xff\x08\0\0\0\0\0\0\0", 13));
        attempt(QByteArray("II*\0\x08\0\0\0\1\0\x0e\x01", 12) + type
                + QByteArray("\0\x10\0\0\0\0\0\0\0\0\0\0\0", 13));
    }
    // A table that is cut off.
    attempt(QByteArray("II*\0\x08\0\0\0\xff\xff\x0e\x01\2\0\2\0\0\0a\0\0\0", 22));
}

TEST(NewExifBlock, HoldsWhatTheStandardAsksFor)
{
    ExifFacts facts;
    facts.width = 640;
    facts.height = 480;
    std::vector<CommentChange> all;
    for (const CommentSlot& slot : CommentSlots()) {
        if (slot.slot != 21 && slot.slot != 158 && slot.slot != 41) {
            all.push_back({slot.slot, making::ValueFor(slot)});
        }
    }
    for (const auto& changes : {std::vector<CommentChange>(), {Describe("new")}, all}) {
        const QByteArray block = NewExifBlock(changes, facts, kRoom);
        for (const CommentChange& change : changes) {
            if (making::IsInExifBlock(*FindSlot(change.slot))) {
                EXPECT_EQ(SlotsOfBlock(block).At(change.slot), change.value) << change.slot;
            }
        }
        EXPECT_EQ(SlotsOfBlock(block).At(21), CommentValue(QByteArray("0230")));
        const QString said = making::ExifTool(making::JpegWithExif(block), "new.jpg",
                                              {"-validate", "-warning", "-a", "-s3"});
        EXPECT_EQ(said.isEmpty(), !test::HasTool(QStringLiteral("exiftool")));
        EXPECT_FALSE(said.contains("Missing")) << said.toStdString();
    }
}

TEST(StoredForms, ValuesOfAnotherShapeAreRefusedInWords)
{
    const Failure shape = test::FailureOf([] {
        Patch(CameraBlock(), {{33, QStringLiteral("50 mm")}});
    });
    EXPECT_EQ(shape.Number(), kFailureType);
    EXPECT_TRUE(shape.Description().contains("FocalLength"));
    EXPECT_EQ(test::FailureOf([] {
                  Patch(CameraBlock(), {{162, qint32(-5)}});
              }).Number(),
              kFailureOverflow);
    const QByteArray halves = Patch(CameraBlock(), {{33, QVector<double>{5.6, 1}}});
    const QVector<double> read = SlotsOfBlock(halves).At(33).Rationals();
    EXPECT_DOUBLE_EQ(read[0] / read[1], 5.6);
}

} // namespace

} // namespace quillane
