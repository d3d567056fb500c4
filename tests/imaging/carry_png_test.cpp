// Metadata of a PNG: chunks that are changed, and chunks that stay.
#include "carry_support_for_tests.h"
#include "imaging/carry/png_parts.h"

namespace quillane {

namespace {

using making::ExifMaker;
using making::PlanOf;
using making::PngChunk;
using making::PngText;
using making::PngUtf8Text;
using making::SlotsOfFile;
using making::TextOf;

QByteArray Encoded(int width = 12, int height = 7, int colourType = 2, const QByteArray& icc = {})
{
    making::PngMake make;
    make.width = width;
    make.height = height;
    make.colourType = colourType;
    make.icc = icc;
    return making::MakePng(make);
}

/// A picture with chunks before its pixels and behind them.
QByteArray With(const QByteArray& before, const QByteArray& behind = {}, QByteArray png = Encoded())
{
    png.insert(png.indexOf("IEND") - 4, behind);
    return png.insert(png.indexOf("IDAT") - 4, before);
}

QStringList Types(const QByteArray& png)
{
    QStringList types;
    for (const carry::PngPart& part : carry::CutPng(png).chunks) {
        types << QString::fromLatin1(part.Type());
    }
    return types;
}

QByteArray Replace(const QByteArray& png, qint16 slot, const CommentValue& value)
{
    MemorySource source(png);
    const CommentChange change{slot, value};
    return ReplaceCommentsInPng(source, {&change, 1});
}

bool PngIsSound(const QByteArray& png)
{
    EXPECT_NO_THROW(making::DecodedSize(png));
    if (!test::HasTool(QStringLiteral("exiftool"))) {
        return true;
    }
    const QString said = making::ExifTool(png, "a.png", {"-validate", "-warning", "-a", "-s3"});
    EXPECT_FALSE(said.contains("CRC") || said.contains("orrupt")) << said.toStdString();
    return !said.isEmpty();
}

TEST(CarryIntoPng, UnknownChunksStayInTheirPlacesWordForWord)
{
    const QByteArray before = PngChunk("vpAg", "virtual page") + PngText("Software", "old program")
        + PngText("Unknown Key", "stays") + PngChunk("tIME", QByteArray(7, '\1'))
        + PngChunk("prVt", "private") + PngChunk("iDOT", "places of rows");
    const QByteArray behind = PngUtf8Text("Title", "Titel", true) + PngChunk("prVt", "behind");
    PlanOf with(With(before, behind) + "trailer", ReadPngComments);
    const QByteArray same = CarryIntoPng(Encoded(), with.plan);
    const QStringList types{"IHDR", "vpAg", "tEXt", "tEXt", "tIME",
                            "prVt", "IDAT", "iTXt", "prVt", "IEND"};
    EXPECT_EQ(Types(same), types);
    EXPECT_TRUE(same.contains(PngUtf8Text("Title", "Titel", true)));
    with.plan.wanted.Set(9, QStringLiteral("new pr\u00f6gram"));
    with.plan.wanted.Set(175, {});
    const QByteArray after = CarryIntoPng(Encoded(30, 20), with.plan);
    const QStringList changed{"IHDR", "vpAg", "iTXt", "tEXt", "tIME",
                              "prVt", "IDAT", "prVt", "IEND"};
    EXPECT_EQ(Types(after), changed);
    EXPECT_EQ(SlotsOfFile(after, "a.png"), with.plan.wanted);
    EXPECT_TRUE(after.endsWith("trailer"));
    EXPECT_FALSE(after.contains("old program"));
    EXPECT_EQ(making::DecodedSize(after), QSize(30, 20));
    EXPECT_TRUE(PngIsSound(after));
}

TEST(CarryIntoPng, EverySlotIsReadBack)
{
    CarryPlan plan;
    plan.width = 12;
    plan.height = 7;
    for (const CommentSlot& slot : CommentSlots()) {
        if (slot.home != SlotHome::Dicom) {
            plan.wanted.Set(slot.slot, making::ValueFor(slot));
        }
    }
    const QByteArray png = CarryIntoPng(Encoded(), plan);
    EXPECT_EQ(SlotsOfFile(png, "a.png"), plan.wanted);
    EXPECT_TRUE(PngIsSound(png));
    // And each alone, in a file that has something else already.
    for (const CommentSlot& slot : CommentSlots()) {
        if (slot.home == SlotHome::Dicom) {
            continue;
        }
        const CommentValue other = making::ValueFor(slot, 5);
        const QByteArray changed = Replace(png, slot.slot, other);
        EXPECT_EQ(SlotsOfFile(changed, "a.png").At(slot.slot), other) << slot.field;
        EXPECT_TRUE(SlotsOfFile(Replace(changed, slot.slot, {}), "a.png").At(slot.slot).IsEmpty())
            << slot.field;
    }
    CarryPlan words;
    words.wanted.Set(3, QStringLiteral("only words"));
    EXPECT_FALSE(CarryIntoPng(Encoded(), words).contains("eXIf"));
}

TEST(CarryIntoPng, AFieldOfTheExifChunkIsChangedThere)
{
    ExifMaker maker;
    maker.Ascii(ExifMaker::Tiff, 0x010e, "in the block")
        .Ascii(ExifMaker::Tiff, 0x0110, "Model")
        .Short(ExifMaker::Tiff, 0x0112, {8})
        .Bytes(ExifMaker::Exif, 0x927c, "maker's note");
    const QByteArray only = With(PngChunk("eXIf", maker.Block()));
    const QByteArray changed = Replace(only, 3, QStringLiteral("other"));
    EXPECT_EQ(Types(changed), Types(only));
    EXPECT_EQ(TextOf(SlotsOfFile(changed, "a.png"), 3), QStringLiteral("other"));
    EXPECT_FALSE(changed.contains("in the block"));
    EXPECT_TRUE(changed.contains("maker's note"));
    // Where a text stands too, both are changed: the other one must not come to light.
    const QByteArray both = With(PngText("Description", "text") + PngChunk("eXIf", maker.Block()));
    const QByteArray cleared = Replace(both, 3, {});
    EXPECT_TRUE(SlotsOfFile(cleared, "a.png").At(3).IsEmpty());
    EXPECT_FALSE(cleared.contains("in the block"));
    EXPECT_EQ(TextOf(SlotsOfFile(cleared, "a.png"), 6), QStringLiteral("Model"));
    // A block with the mark of a JPEG's keeps it.
    const QByteArray marked = With(PngChunk("eXIf", QByteArray("Exif\0\0", 6) + maker.Block()));
    EXPECT_TRUE(Replace(marked, 3, QStringLiteral("x")).contains(QByteArray("eXIfExif\0\0II", 12)));
    PlanOf with(only, ReadPngComments);
    EXPECT_EQ(making::OrientationOf(CarryIntoPng(Encoded(), with.plan)), 1);
}

TEST(CarryIntoPng, OfSeveralTextsTheOneThatIsReadIsReplaced)
{
    const QByteArray png =
        With(PngText("Comment", "") + PngText("Comment", "first") + PngText("Comment", "second"));
    ASSERT_EQ(TextOf(SlotsOfFile(png, "a.png"), 178), QStringLiteral("first"));
    const QByteArray changed = Replace(png, 178, QStringLiteral("new"));
    EXPECT_EQ(TextOf(SlotsOfFile(changed, "a.png"), 178), QStringLiteral("new"));
    EXPECT_FALSE(changed.contains("first"));
    EXPECT_TRUE(changed.contains("second"));
    EXPECT_TRUE(SlotsOfFile(Replace(png, 178, {}), "a.png").IsEmpty());
}

TEST(CarryIntoPng, ColourProfilesFollowThePicture)
{
    const QByteArray wide = making::MakeWideProfile();
    PlanOf with(Encoded(12, 7, 2, wide), ReadPngComments);
    EXPECT_EQ(making::DecodedProfile(CarryIntoPng(Encoded(12, 7, 2, wide), with.plan)), wide);
    EXPECT_EQ(making::DecodedProfile(CarryIntoPng(Encoded(), with.plan)), wide);
    EXPECT_FALSE(CarryIntoPng(Encoded(12, 7, 0), with.plan).contains("iCCP"));
    PlanOf plain(Encoded(), ReadPngComments);
    EXPECT_EQ(making::DecodedProfile(CarryIntoPng(Encoded(12, 7, 2, wide), plain.plan)), wide);
    const QByteArray gamma = With(PngChunk("gAMA", QByteArray("\0\0\xb1\x8f", 4)));
    PlanOf light(gamma, ReadPngComments);
    EXPECT_TRUE(CarryIntoPng(Encoded(), light.plan).contains("gAMA"));
}

TEST(CarryIntoPng, PalettesAndWhatHangsOnThemAreTheNewPictures)
{
    making::PngMake make;
    make.colourType = 3;
    make.transparentColour = true;
    const QByteArray palette = making::MakePng(make);
    for (const int type : {0, 2, 3, 4, 6}) {
        for (const QByteArray& original :
             {palette, With(PngChunk("sBIT", QByteArray(3, '\5')), {}, Encoded(5, 5)),
              With(PngChunk("bKGD", QByteArray(6, '\0')), {}, Encoded(5, 5))}) {
            PlanOf with(original, ReadPngComments);
            const QByteArray encoded = type == 3 ? palette : Encoded(9, 9, type);
            const QByteArray after = CarryIntoPng(encoded, with.plan);
            EXPECT_EQ(making::DecodeBytes(after).Pixels(), making::DecodeBytes(encoded).Pixels());
            EXPECT_TRUE(PngIsSound(after));
        }
    }
}

/// An animation of two frames of the size of Encoded().
QByteArray Animation()
{
    using making::Big;
    const auto frame = [](quint32 number) {
        return PngChunk("fcTL",
                        Big(number, 4) + Big(12, 4) + Big(7, 4) + Big(0, 4) + Big(0, 4) + Big(1, 2)
                            + Big(10, 2) + QByteArray(2, '\0'));
    };
    const QByteArray png = Encoded();
    const qsizetype at = png.indexOf("IDAT");
    const QByteArray pixels = png.mid(at + 4, png.indexOf("IEND") - 12 - at);
    return With(PngChunk("acTL", Big(2, 4) + Big(0, 4)) + frame(0),
                frame(1) + PngChunk("fdAT", Big(2, 4) + pixels));
}

TEST(CarryIntoPng, FramesOfAnAnimationAreCarriedOrTheSaveIsRefused)
{
    PlanOf with(Animation(), ReadPngComments);
    with.plan.wanted.Set(3, QStringLiteral("moving"));
    const QByteArray after = CarryIntoPng(Encoded(), with.plan);
    const QStringList types{"IHDR", "acTL", "fcTL", "tEXt", "IDAT", "fcTL", "fdAT", "IEND"};
    EXPECT_EQ(Types(after), types);
    for (const QByteArray& other : {Encoded(13, 7), Encoded(12, 7, 6), Encoded(12, 7, 0)}) {
        const Failure failure = test::FailureOf([&] { CarryIntoPng(other, with.plan); });
        EXPECT_EQ(failure.Number(), kFailureGeneral);
        EXPECT_TRUE(failure.Description().contains("animation"));
    }
    EXPECT_EQ(Types(Replace(Animation(), 3, QStringLiteral("moving"))), types);
}

TEST(CarryIntoPng, XmpIsKeptInStep)
{
    const auto xmp = [](const QByteArray& text, char turn) {
        return "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\" "
               "xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
               "xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\"><rdf:Description tiff:Orientation=\""
            + QByteArray(1, turn) + "\" dc:description=\"" + text + "\"/></rdf:RDF>";
    };
    for (const bool packed : {false, true}) {
        const QByteArray png = With(PngText("Description", "old")
                                    + PngUtf8Text("XML:com.adobe.xmp", xmp("old", '3'), packed));
        EXPECT_TRUE(Replace(png, 3, QStringLiteral("new")).contains(xmp("new", '3')));
        PlanOf with(png, ReadPngComments);
        with.plan.wanted.Set(3, QStringLiteral("newer"));
        EXPECT_TRUE(CarryIntoPng(Encoded(), with.plan).contains(xmp("newer", '1')));
    }
}

TEST(ReplaceCommentsInPng, NothingElseChangesByAByte)
{
    const QByteArray png =
        With(PngText("Title", "a") + PngChunk("prVt", "b"), PngText("Warning", "c"));
    MemorySource source(png);
    EXPECT_EQ(ReplaceCommentsInPng(source, {}), png);
    const QByteArray there = Replace(png, 3, QStringLiteral("text"));
    EXPECT_EQ(Replace(there, 3, {}), png);
    QByteArray file = png;
    for (int round = 0; round < 50; ++round) {
        file = Replace(file, 3, QStringLiteral("text %1").arg(round % 10));
    }
    EXPECT_EQ(file.size(), png.size() + 12 + 12 + 6);
    EXPECT_EQ(test::FailureOf([&] { Replace(png, 3, QString(2 << 20, u'l')); }).Number(),
              kFailureLimit);
    EXPECT_EQ(test::FailureOf([&] { Replace("no PNG", 3, QStringLiteral("x")); }).Number(),
              kFailureUnreadable);
    EXPECT_EQ(
        TextOf(SlotsOfFile(Replace(png, 1, QStringLiteral("a") + QChar(u'\0') + u'b'), "a.png"), 1),
        QStringLiteral("a\nb"));
    // A file that is cut off keeps what it has.
    const QByteArray cut = With(PngText("Description", "old")).chopped(20);
    EXPECT_EQ(TextOf(SlotsOfFile(Replace(cut, 3, QStringLiteral("new")), "a.png"), 3),
              QStringLiteral("new"));
}

} // namespace

} // namespace quillane
