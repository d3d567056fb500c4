#include "comment_files.h"
#include "core/temp_folder.h"
#include "imaging/comments/comment_set.h"
#include "imaging/comments/slots.h"
#include "imaging/limits.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace quillane {

namespace {

using making::ExifMaker;

CommentSet CommentsOf(const QByteArray& content, const QByteArray& name = "file.jpg")
{
    const TempFolder folder;
    folder.Write(name, content);
    return ReadComments(folder.Path(name));
}

QString TextAt(const CommentSet& set, qint16 slot)
{
    return set.At(slot).IsEmpty() ? QString() : set.At(slot).Text();
}

ExifMaker::Directory DirectoryOf(SlotHome home)
{
    return home == SlotHome::TiffDirectory ? ExifMaker::Tiff
        : home == SlotHome::ExifDirectory  ? ExifMaker::Exif
                                           : ExifMaker::Gps;
}

bool IsInExif(const CommentSlot& slot)
{
    return slot.home != SlotHome::Dicom && slot.home != SlotHome::PngText;
}

/// What MakeAll writes for a slot.
CommentValue ExpectedOf(const CommentSlot& slot)
{
    switch (slot.shape) {
    case SlotShape::Text:
        return QStringLiteral("text of %1").arg(slot.slot);
    case SlotShape::Integer:
        return qint32(100 + slot.slot);
    case SlotShape::Rational:
        return QVector<double>{double(slot.slot), 7};
    case SlotShape::RationalTriple:
        return QVector<double>{double(slot.slot), 1, 26, 1, 4638, 100};
    case SlotShape::Bytes:
        break;
    }
    return QByteArray("0") + char(slot.slot) + QByteArray("\0z", 2);
}

/// An Exif block that holds every slot.
ExifMaker MakeAll(bool bigEndian, bool bigTiff = false)
{
    ExifMaker maker(bigEndian, bigTiff);
    for (const CommentSlot& slot : CommentSlots()) {
        if (!IsInExif(slot)) {
            continue;
        }
        const ExifMaker::Directory directory = DirectoryOf(slot.home);
        const auto tag = quint16(slot.tag);
        const CommentValue value = ExpectedOf(slot);
        switch (slot.shape) {
        case SlotShape::Text:
            maker.Ascii(directory, tag, value.Text().toUtf8());
            break;
        case SlotShape::Integer:
            maker.Short(directory, tag, {value.Integer()});
            break;
        case SlotShape::Rational:
        case SlotShape::RationalTriple: {
            QList<qint64> parts;
            for (const double part : value.Rationals()) {
                parts << qint64(part);
            }
            maker.Rational(directory, tag, parts);
            break;
        }
        case SlotShape::Bytes:
            maker.Bytes(directory, tag, value.Bytes());
            break;
        }
    }
    return maker;
}

void ExpectAll(const CommentSet& set)
{
    for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
        const CommentSlot* row = FindSlot(slot);
        EXPECT_EQ(set.At(slot), row && IsInExif(*row) ? ExpectedOf(*row) : CommentValue()) << slot;
    }
}

} // namespace

TEST(ReadComments, JpegGivesEverySlotOfItsExifBlockInEitherByteOrder)
{
    ExpectAll(CommentsOf(making::JpegWithExif(MakeAll(false).Block())));
    ExpectAll(CommentsOf(making::JpegWithExif(MakeAll(true).Block())));
}

TEST(ReadComments, TiffGivesEverySlotInEitherByteOrderAndWidth)
{
    ExpectAll(CommentsOf(MakeAll(false).Block(), "file.tif"));
    ExpectAll(CommentsOf(MakeAll(true).Block(), "file.tif"));
    ExpectAll(CommentsOf(MakeAll(false, true).Block(), "file.tif"));
    ExpectAll(CommentsOf(MakeAll(true, true).Block(), "file.tif"));
}

TEST(ReadComments, PngGivesEverySlotOfItsExifChunk)
{
    const QByteArray block = MakeAll(false).Block();
    ExpectAll(CommentsOf(making::PngWith(making::PngChunk("eXIf", block)), "file.png"));
    const QByteArray marked = QByteArray("Exif\0\0", 6) + block;
    ExpectAll(CommentsOf(making::PngWith({}, making::PngChunk("eXIf", marked)), "file.png"));
}

TEST(ReadComments, ContentDecidesNotTheName)
{
    ExpectAll(CommentsOf(making::JpegWithExif(MakeAll(false).Block()), "wrong.gif"));
    EXPECT_TRUE(CommentsOf("no picture at all", "text.jpg").IsEmpty());
    EXPECT_TRUE(CommentsOf("", "empty.jpg").IsEmpty());
}

TEST(ReadComments, NameMayBeAnyBytes)
{
    ExpectAll(CommentsOf(making::JpegWithExif(MakeAll(false).Block()), "caf\xe9 \n\xff.jpg"));
}

TEST(ReadComments, MissingFileFails)
{
    EXPECT_THROW(ReadComments(QStringLiteral("/nowhere/a.jpg")), Failure);
}

TEST(ReadComments, FifoIsRefusedWithoutWaiting)
{
    const TempFolder folder;
    ASSERT_EQ(mkfifo(folder.Bytes("pipe.jpg").constData(), 0600), 0);
    EXPECT_THROW(ReadComments(folder.Path("pipe.jpg")), Failure);
}

TEST(ReadComments, EveryReadCounts)
{
    const TempFolder folder;
    folder.Write("a.jpg", making::JpegWith({}));
    const qint64 before = CommentParseCount();
    ReadComments(folder.Path("a.jpg"));
    ReadComments(folder.Path("a.jpg"));
    EXPECT_EQ(CommentParseCount(), before + 2);
}

TEST(ReadComments, TextLosesZerosAtItsEndAlone)
{
    ExifMaker maker;
    maker.Ascii(ExifMaker::Tiff, 0x010e, QByteArray("a\0b \0\0\0", 7));
    maker.Ascii(ExifMaker::Tiff, 0x010f, QByteArray(5, '\0'));
    const CommentSet set = CommentsOf(making::JpegWithExif(maker.Block()));
    EXPECT_EQ(TextAt(set, 3), QString::fromLatin1("a\0b ", 4));
    EXPECT_TRUE(set.At(5).IsEmpty());
}

TEST(ReadComments, TextIsUtf8OrElseWindows1252)
{
    ExifMaker maker;
    maker.Ascii(ExifMaker::Tiff, 0x010e, "Z\xc3\xbcrich \xe2\x82\xac");
    maker.Ascii(ExifMaker::Tiff, 0x013b, "Z\xfcrich \x80 \x9f \x81");
    const CommentSet set = CommentsOf(making::JpegWithExif(maker.Block()));
    EXPECT_EQ(TextAt(set, 3), QString::fromUtf16(u"Z\u00fcrich \u20ac"));
    EXPECT_EQ(TextAt(set, 0), QString::fromUtf16(u"Z\u00fcrich \u20ac \u0178 \u0081"));
}

TEST(ReadComments, NumbersOfAnotherWidthAreTaken)
{
    for (const bool big : {false, true}) {
        ExifMaker maker(big);
        maker.Long(ExifMaker::Exif, 0x8827, {400});                // integer as LONG
        maker.Bytes(ExifMaker::Exif, 0x9207, QByteArray("\5"), 1); // as BYTE
        maker.Rational(ExifMaker::Exif, 0x9208, {20, 10});         // as a whole rational
        maker.Short(ExifMaker::Exif, 0x9202, {4});                 // rational as SHORT
        maker.Rational(ExifMaker::Exif, 0x9204, {-1, 3}, 10);      // signed
        maker.Long(ExifMaker::Gps, 2, {40, 26, 46});               // triple as LONG
        const CommentSet set = CommentsOf(making::JpegWithExif(maker.Block()));
        EXPECT_EQ(set.At(162), CommentValue(400));
        EXPECT_EQ(set.At(30), CommentValue(5));
        EXPECT_EQ(set.At(31), CommentValue(2));
        EXPECT_EQ(set.At(25), CommentValue(QVector<double>{4, 1}));
        EXPECT_EQ(set.At(27), CommentValue(QVector<double>{-1, 3}));
        EXPECT_EQ(set.At(43), CommentValue(QVector<double>{40, 1, 26, 1, 46, 1}));
    }
}

TEST(ReadComments, UnsignedNumbersKeepTheirSign)
{
    ExifMaker maker;
    maker.Rational(ExifMaker::Exif, 0x9206, {4294967295, 4294967295});
    maker.Short(ExifMaker::Exif, 0x8827, {65535});
    const CommentSet set = CommentsOf(making::JpegWithExif(maker.Block()));
    EXPECT_EQ(set.At(29), CommentValue(QVector<double>{4294967295.0, 4294967295.0}));
    EXPECT_EQ(set.At(162), CommentValue(65535));
}

TEST(ReadComments, FloatsCountAsRationalsByOne)
{
    ExifMaker maker;
    maker.Field(ExifMaker::Exif, 0x829d, {11, 1, QByteArray::fromHex("00006040")}); // 3.5
    maker.Field(ExifMaker::Exif, 0x920a, {12, 1, QByteArray::fromHex("0000000000003940")});
    maker.Field(ExifMaker::Exif, 0x9202, {11, 1, QByteArray::fromHex("0000c07f")}); // no number
    const CommentSet set = CommentsOf(making::JpegWithExif(maker.Block()));
    EXPECT_EQ(set.At(35), CommentValue(QVector<double>{3.5, 1}));
    EXPECT_EQ(set.At(33), CommentValue(QVector<double>{25, 1}));
    EXPECT_TRUE(set.At(25).IsEmpty());
}

TEST(ReadComments, ValuesThatDoNotFitTheShapeAreAbsent)
{
    ExifMaker maker;
    maker.Ascii(ExifMaker::Exif, 0x8827, "400");
    maker.Ascii(ExifMaker::Exif, 0x829d, "f/4");
    maker.Rational(ExifMaker::Exif, 0x9207, {1, 3});
    maker.Rational(ExifMaker::Exif, 0x9208, {1, 0});
    maker.Short(ExifMaker::Tiff, 0x010f, {1, 2});
    maker.Long(ExifMaker::Exif, 0x9209, {4294967295});
    maker.Ascii(ExifMaker::Tiff, 0x0110, "still read");
    const CommentSet set = CommentsOf(making::JpegWithExif(maker.Block()));
    for (const qint16 slot : {162, 35, 30, 31, 5, 32}) {
        EXPECT_TRUE(set.At(slot).IsEmpty()) << slot;
    }
    EXPECT_EQ(TextAt(set, 6), QStringLiteral("still read"));
}

TEST(ReadComments, BytesOfWiderNumbersStandLowestFirst)
{
    for (const bool big : {false, true}) {
        ExifMaker maker(big);
        maker.Short(ExifMaker::Exif, 0xa217, {2}).Short(ExifMaker::Exif, 0xa214, {0x1234, 0x56});
        maker.Rational(ExifMaker::Exif, 0xa20e, {300, 1});
        const CommentSet set = CommentsOf(making::JpegWithExif(maker.Block()));
        EXPECT_EQ(set.At(171), CommentValue(QByteArray("\2\0", 2)));
        EXPECT_EQ(set.At(169), CommentValue(QByteArray("\x34\x12\x56\0", 4)));
        EXPECT_EQ(set.At(167), CommentValue(QByteArray("\x2c\1\0\0\1\0\0\0", 8)));
    }
}

TEST(ReadComments, ZeroDenominatorIsKeptAsItIs)
{
    ExifMaker maker;
    maker.Rational(ExifMaker::Exif, 0x829a, {1, 0});
    const CommentSet set = CommentsOf(making::JpegWithExif(maker.Block()));
    EXPECT_EQ(set.At(34), CommentValue(QVector<double>{1, 0}));
}

TEST(ReadComments, PlainJpegHasItsFirstCommentMarkerAsDescription)
{
    const QByteArray content = making::JpegWith(making::JpegSegment(0xe0, QByteArray(14, 'J'))
                                                + making::JpegSegment(0xfe, "first\r\nA=1")
                                                + making::JpegSegment(0xfe, "second"));
    const CommentSet set = CommentsOf(content);
    EXPECT_EQ(TextAt(set, 3), QStringLiteral("first\r\nA=1"));
    CommentSet alone;
    alone.Set(3, QStringLiteral("first\r\nA=1"));
    EXPECT_EQ(set, alone);
}

TEST(ReadComments, JpegWithExifDoesNotUseItsCommentMarker)
{
    ExifMaker maker;
    maker.Ascii(ExifMaker::Tiff, 0x010f, "Maker");
    const QByteArray exif = QByteArray("Exif\0\0", 6) + maker.Block();
    const QByteArray comment = making::JpegSegment(0xfe, "comment");
    for (const QByteArray& segments :
         {comment + making::JpegSegment(0xe1, exif), making::JpegSegment(0xe1, exif) + comment}) {
        const CommentSet set = CommentsOf(making::JpegWith(segments));
        EXPECT_TRUE(set.At(3).IsEmpty());
        EXPECT_EQ(TextAt(set, 5), QStringLiteral("Maker"));
    }
}

TEST(ReadComments, ExifWithoutDirectoryLeavesAJpegPlain)
{
    const QByteArray empty = ExifMaker().Block();
    const QByteArray broken = QByteArray("Exif\0\0xx*\0rest", 14);
    const QByteArray comment = making::JpegSegment(0xfe, "comment");
    for (const QByteArray& exif : {QByteArray("Exif\0\0", 6) + empty, broken,
                                   QByteArray("Exif\0\0", 6), QByteArray("http://ns.adobe.com/")}) {
        const CommentSet set =
            CommentsOf(making::JpegWith(making::JpegSegment(0xe1, exif) + comment));
        EXPECT_EQ(TextAt(set, 3), QStringLiteral("comment"));
    }
}

TEST(ReadComments, PngKeywordsFillTheirSlots)
{
    const std::pair<const char*, qint16> keywords[] = {
        {"Author", 0},    {"Copyright", 1}, {"Creation Time", 2}, {"Description", 3},
        {"Source", 5},    {"Software", 9},  {"Title", 175},       {"Disclaimer", 176},
        {"Warning", 177}, {"Comment", 178},
    };
    QByteArray chunks;
    CommentSet expected;
    int way = 0;
    for (const auto& [keyword, slot] : keywords) {
        const QByteArray text = QByteArray("text of ") + keyword;
        switch (way++ % 4) {
        case 0:
            chunks += making::PngText(keyword, text);
            break;
        case 1:
            chunks += making::PngCompressedText(keyword, text);
            break;
        case 2:
            chunks += making::PngUtf8Text(keyword, text, false);
            break;
        default:
            chunks += making::PngUtf8Text(keyword, text, true);
        }
        expected.Set(slot, QString::fromLatin1(text));
    }
    EXPECT_EQ(CommentsOf(making::PngWith(chunks), "before.png"), expected);
    EXPECT_EQ(CommentsOf(making::PngWith({}, chunks), "behind.png"), expected);
}

TEST(ReadComments, PngTextGoesBeforeItsExifChunk)
{
    ExifMaker maker;
    maker.Ascii(ExifMaker::Tiff, 0x010e, "from Exif").Ascii(ExifMaker::Tiff, 0x0110, "Model");
    const QByteArray content = making::PngWith(making::PngChunk("eXIf", maker.Block()),
                                               making::PngText("Description", "from text"));
    const CommentSet set = CommentsOf(content, "a.png");
    EXPECT_EQ(TextAt(set, 3), QStringLiteral("from text"));
    EXPECT_EQ(TextAt(set, 6), QStringLiteral("Model"));
}

TEST(ReadComments, PngTextIsUtf8OrElseWindows1252InEveryKindOfChunk)
{
    const QByteArray content = making::PngWith(
        making::PngText("Title", "Z\xc3\xbcrich") + making::PngText("Author", "Z\xfcrich")
        + making::PngUtf8Text("Comment", "Z\xc3\xbcrich", true));
    const CommentSet set = CommentsOf(content, "a.png");
    for (const qint16 slot : {175, 0, 178}) {
        EXPECT_EQ(TextAt(set, slot), QString::fromUtf16(u"Z\u00fcrich")) << slot;
    }
}

TEST(ReadComments, FirstPngTextThatCanBeReadWins)
{
    QByteArray damaged = making::PngText("Title", "damaged");
    damaged[damaged.size() - 1] = char(damaged.back() ^ 1);
    const QByteArray content =
        making::PngWith(damaged + making::PngText("Title", "") + making::PngText("Title", "good")
                        + making::PngText("Title", "late"));
    EXPECT_EQ(TextAt(CommentsOf(content, "a.png"), 175), QStringLiteral("good"));
}

TEST(ReadComments, PngTextThatInflatesWithoutEndIsPassedOver)
{
    const QByteArray bomb = making::PngCompressedText("Title", QByteArray(64 << 20, 'a'));
    ASSERT_LT(bomb.size(), 200'000);
    const QByteArray longest(limits::kMaxTextBytes - 100, 'b');
    const QByteArray content = making::PngWith(bomb + making::PngCompressedText("Comment", longest)
                                               + making::PngText("Warning", "end"));
    const CommentSet set = CommentsOf(content, "a.png");
    EXPECT_TRUE(set.At(175).IsEmpty());
    EXPECT_EQ(TextAt(set, 178).size(), longest.size());
    EXPECT_EQ(TextAt(set, 177), QStringLiteral("end"));
}

TEST(ReadComments, GifHasItsFirstCommentExtensionAsDescription)
{
    const QByteArray text(1000, 'x');
    const QByteArray comment = making::GifExtension(0xfe, "Name=Ann\r\n" + text);
    const QByteArray control = making::GifExtension(0xf9, QByteArray(4, '\0'));
    const QString expected = QStringLiteral("Name=Ann\r\n") + QString::fromLatin1(text);
    EXPECT_EQ(TextAt(CommentsOf(making::GifWith(control + comment), "a.gif"), 3), expected);
    EXPECT_EQ(TextAt(CommentsOf(making::GifWith(control, comment), "a.gif"), 3), expected);
    const QByteArray second = making::GifExtension(0xfe, "second");
    EXPECT_EQ(TextAt(CommentsOf(making::GifWith(comment + second), "a.gif"), 3), expected);
    const QByteArray empty = making::GifExtension(0xfe, "");
    EXPECT_EQ(TextAt(CommentsOf(making::GifWith(empty, second), "a.gif"), 3),
              QStringLiteral("second"));
    EXPECT_TRUE(CommentsOf(making::GifWith(control), "a.gif").IsEmpty());
}

TEST(ReadComments, ThreadsReadAtTheSameTime)
{
    const TempFolder folder;
    folder.Write("a.jpg", making::JpegWithExif(MakeAll(false).Block()));
    folder.Write("b.png", making::PngWith(making::PngCompressedText("Title", "a title")));
    const CommentSet jpeg = ReadComments(folder.Path("a.jpg"));
    const CommentSet png = ReadComments(folder.Path("b.png"));
    std::atomic<int> same = 0;
    std::vector<std::thread> threads;
    constexpr int kThreads = 4, kRounds = 100;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < kRounds; ++i) {
                same += ReadComments(folder.Path("a.jpg")) == jpeg ? 1 : 0;
                same += ReadComments(folder.Path("b.png")) == png ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(same, 2 * kThreads * kRounds);
}

TEST(CommentSetTest, SettingAnEmptyValueClears)
{
    CommentSet set;
    EXPECT_TRUE(set.IsEmpty());
    set.Set(22, QStringLiteral("b"));
    set.Set(3, QStringLiteral("a"));
    set.Set(22, QStringLiteral("c"));
    EXPECT_EQ(set.At(22).Text(), QStringLiteral("c"));
    EXPECT_EQ(set.At(3).Text(), QStringLiteral("a"));
    EXPECT_TRUE(set.At(4).IsEmpty());
    set.Set(3, {});
    set.Set(22, {});
    set.Set(5, {});
    EXPECT_TRUE(set.IsEmpty());
}

TEST(CommentValueTest, AskedInAnotherShapeItFails)
{
    const CommentValue text(QStringLiteral("a"));
    EXPECT_THROW(text.Integer(), Failure);
    EXPECT_THROW(text.Rationals(), Failure);
    EXPECT_THROW(text.Bytes(), Failure);
    EXPECT_THROW(CommentValue(1).Text(), Failure);
    EXPECT_THROW(CommentValue().Text(), Failure);
}

} // namespace quillane
