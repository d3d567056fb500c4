// Files that try to make the comment readers wait, read too much or fall over.
#include "comment_files.h"
#include "core/temp_folder.h"
#include "imaging/comments/carriers.h"
#include "imaging/comments/comment_set.h"
#include "imaging/comments/exif_lift.h"
#include "imaging/comments/exif_values.h"
#include "imaging/comments/slots.h"
#include "imaging/limits.h"

#include <gtest/gtest.h>
#include <vector>

namespace quillane {

namespace {

using making::ExifMaker;

CommentSet CommentsOfBytes(const QByteArray& content, const QByteArray& name = "file.jpg")
{
    const TempFolder folder;
    folder.Write(name, content);
    return ReadComments(folder.Path(name));
}

ExifMaker SmallExif(bool big = false)
{
    ExifMaker maker(big);
    maker.Ascii(ExifMaker::Tiff, 0x010f, "A maker of some length")
        .Ascii(ExifMaker::Tiff, 0x010e, "A description of some length")
        .Ascii(ExifMaker::Exif, 0x9003, "2003:01:05 13:07:09")
        .Rational(ExifMaker::Gps, 2, {40, 1, 26, 1, 4638, 100});
    return maker;
}

/// A memory source that counts what is read of it.
class MeteredSource : public MemorySource {
public:
    using MemorySource::MemorySource;
    qint64 ReadAt(qint64 position, void* to, qint64 count) override
    {
        const qint64 got = MemorySource::ReadAt(position, to, count);
        bytes += got;
        return got;
    }
    qint64 bytes = 0;
};

struct CarrierBytes {
    void (*read)(ByteSource& source, CommentSet& set);
    QByteArray content;
};
std::vector<CarrierBytes> CarriersToDamage()
{
    const QByteArray texts = making::PngText("Title", "a title")
        + making::PngCompressedText("Comment", "a comment")
        + making::PngChunk("eXIf", SmallExif().Block());
    return {
        {ReadJpegComments, making::JpegWithExif(SmallExif().Block())},
        {ReadJpegComments, making::JpegWith(making::JpegSegment(0xfe, "a comment"))},
        {ReadTiffComments, SmallExif(true).Block()},
        {ReadPngComments, making::PngWith(texts, making::PngUtf8Text("Author", "me", true))},
        {ReadGifComments, making::GifWith(making::GifExtension(0xfe, "a comment"))},
    };
}

/// Reads what a carrier makes of bytes; nothing but a Failure may come of it.
CommentSet SurvivedBy(const CarrierBytes& carrier, const QByteArray& bytes)
{
    CommentSet set;
    MemorySource source(bytes);
    ResumeNext([&] { carrier.read(source, set); });
    return set;
}

} // namespace

TEST(CommentDamage, DirectoriesThatPointAtOneAnotherEnd)
{
    for (const ExifMaker::Directory directory : {ExifMaker::Exif, ExifMaker::Gps}) {
        ExifMaker maker = SmallExif();
        maker.PointTo(directory, 8); // the first directory itself
        const CommentSet set = CommentsOfBytes(making::JpegWithExif(maker.Block()));
        EXPECT_EQ(set.At(5).Text(), QStringLiteral("A maker of some length"));
    }
}

TEST(CommentDamage, PointersOutOfTheBlockLeaveTheOtherDirectories)
{
    for (const quint32 to : {0u, 1u, 7u, 0x7fffffffu, 0xffffffffu}) {
        ExifMaker maker = SmallExif();
        maker.PointTo(ExifMaker::Exif, to);
        const CommentSet set = CommentsOfBytes(making::JpegWithExif(maker.Block()));
        EXPECT_EQ(set.At(5).Text(), QStringLiteral("A maker of some length"));
        EXPECT_TRUE(set.At(22).IsEmpty());
        EXPECT_FALSE(set.At(43).IsEmpty());
    }
}

TEST(CommentDamage, CountsThatCannotBeAreAbsent)
{
    for (const quint32 count : {0u, 0x10000000u, 0x20000001u, 0x7fffffffu, 0xffffffffu}) {
        ExifMaker maker = SmallExif();
        for (const quint16 type : {1, 2, 3, 4, 5, 7, 10, 12}) {
            maker.Field(ExifMaker::Exif, 0x8824, {type, count, QByteArray(16, 'x')});
            maker.Field(ExifMaker::Exif, 0x9202, {type, count, QByteArray(16, 'x')});
            const CommentSet set = CommentsOfBytes(making::JpegWithExif(maker.Block()));
            EXPECT_TRUE(set.At(161).IsEmpty()) << type << ' ' << count;
            EXPECT_EQ(set.At(22).Text(), QStringLiteral("2003:01:05 13:07:09"));
        }
    }
}

TEST(CommentDamage, UnknownTypesAreAbsent)
{
    ExifMaker maker = SmallExif();
    for (const quint16 type : {0, 14, 16, 0xffff}) {
        maker.Field(ExifMaker::Exif, 0x9202, {type, 1, QByteArray(4, 1)});
        EXPECT_TRUE(CommentsOfBytes(making::JpegWithExif(maker.Block())).At(25).IsEmpty()) << type;
    }
}

TEST(CommentDamage, ManyFieldsOverTheSameBytesDoNotAddUp)
{
    // A TIFF whose every text field claims the same megabyte.
    ExifMaker maker;
    QByteArray block;
    const quint32 claimed = quint32(limits::kMaxTextBytes);
    for (int round = 0; round < 2; ++round) {
        for (const quint16 tag :
             {0x010d, 0x010e, 0x010f, 0x0110, 0x011d, 0x0131, 0x0132, 0x013b, 0x013c, 0x8298}) {
            maker.Field(ExifMaker::Tiff, tag,
                        {2, claimed, maker.Number(round ? block.size() : 0, 4)});
        }
        block = maker.Block();
    }
    MeteredSource source(block + QByteArray(claimed, 'x'));
    const QByteArray lifted = LiftExif(source);
    EXPECT_GT(lifted.size(), claimed);
    EXPECT_LE(lifted.size(), limits::kMaxFieldBytes + 4096);
    EXPECT_LE(source.bytes, 2 * limits::kMaxFieldBytes);
    CommentSet set;
    AddExifValues(lifted, set);
    EXPECT_EQ(set.At(7).Text().size(), qsizetype(claimed));
}

TEST(CommentDamage, LargeFileIsNotReadForItsDirectories)
{
    const QByteArray block = SmallExif().Block();
    MeteredSource source(block + QByteArray(8 << 20, 'p'));
    EXPECT_FALSE(LiftExif(source).isEmpty());
    EXPECT_LT(source.bytes, 40'000);
}

TEST(CommentDamage, MakerNotesNeverReachTheMetadataLibrary)
{
    ExifMaker maker = SmallExif();
    maker.Bytes(ExifMaker::Exif, 0x927c, QByteArray(30'000, 'M'));
    MemorySource source(maker.Block());
    EXPECT_LT(LiftExif(source).size(), 1000);
}

TEST(CommentDamage, DirectoryWithMoreEntriesThanTheFileHasGivesWhatIsThere)
{
    QByteArray block = SmallExif().Block();
    block[8] = char(0xff);
    block[9] = char(0xff);
    const CommentSet set = CommentsOfBytes(making::JpegWithExif(block));
    EXPECT_EQ(set.At(5).Text(), QStringLiteral("A maker of some length"));
}

TEST(CommentDamage, EveryCutLeavesNoMoreThanTheWholeHas)
{
    for (const CarrierBytes& carrier : CarriersToDamage()) {
        const CommentSet whole = SurvivedBy(carrier, carrier.content);
        EXPECT_FALSE(whole.IsEmpty());
        for (qsizetype cut = 0; cut < carrier.content.size(); ++cut) {
            const CommentSet set = SurvivedBy(carrier, carrier.content.first(cut));
            for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
                EXPECT_TRUE(set.At(slot).IsEmpty() || !whole.At(slot).IsEmpty()) << cut;
            }
        }
    }
}

TEST(CommentDamage, EveryWrongByteIsSurvived)
{
    for (const CarrierBytes& carrier : CarriersToDamage()) {
        for (qsizetype at = 0; at < carrier.content.size(); ++at) {
            for (const char wrong : {'\0', '\1', '\x7f', '\xff'}) {
                QByteArray bytes = carrier.content;
                bytes[at] = wrong;
                EXPECT_NO_THROW(SurvivedBy(carrier, bytes)) << at;
            }
        }
    }
}

TEST(CommentDamage, PngChunkLongerThanTheFileEndsTheWalk)
{
    QByteArray chunk = making::PngText("Title", "text");
    chunk[0] = char(0x7f);
    const CommentSet set =
        CommentsOfBytes(making::PngWith(making::PngText("Comment", "before") + chunk), "a.png");
    EXPECT_EQ(set.At(178).Text(), QStringLiteral("before"));
    EXPECT_TRUE(set.At(175).IsEmpty());
}

TEST(CommentDamage, ManyPngTextsAreBounded)
{
    QByteArray chunks;
    const QByteArray damaged = making::PngCompressedText("Title", QByteArray(2 << 20, 'x'));
    for (int i = 0; i < 200; ++i) {
        chunks += damaged;
    }
    // Those that could be looked into are used up before the good one.
    const CommentSet set =
        CommentsOfBytes(making::PngWith(chunks + making::PngText("Title", "good")), "a.png");
    EXPECT_TRUE(set.At(175).IsEmpty());
}

TEST(CommentDamage, DamagedExifBlockIsAFailureOfTheAdapterAlone)
{
    CommentSet set;
    EXPECT_THROW(AddExifValues(QByteArray(64, '?'), set), Failure);
    EXPECT_TRUE(set.IsEmpty());
}

} // namespace quillane
