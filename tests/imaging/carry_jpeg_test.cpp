// Metadata of a JPEG that is coded anew.
#include "carry_support_for_tests.h"
#include "imaging/carry/jpeg_parts.h"
#include "imaging/exif/exif_patcher.h"
#include "imaging/exif/xmp_patcher.h"
#include "imaging/thumbs/exif_preview.h"

namespace quillane {

namespace {

using making::ExifMaker;
using making::JpegSegment;
using making::PlanOf;
using making::SlotsOfFile;
using making::TextOf;

QByteArray Encoded(int width = 40, int height = 30, const QByteArray& icc = {}, int channels = 3)
{
    making::JpegMake make;
    make.width = width;
    make.height = height;
    make.icc = icc;
    make.channels = channels;
    return making::MakeJpeg(make);
}

/// A whole JPEG with these segments behind its beginning.
QByteArray Original(const QByteArray& segments, const QByteArray& icc = {})
{
    QByteArray jpeg = Encoded(64, 48, icc);
    return jpeg.insert(2, segments);
}

/// The segments that do not describe the picture, as "marker:beginning of content".
QStringList Heads(const QByteArray& jpeg)
{
    QStringList heads;
    for (const carry::JpegPart& part : carry::CutJpeg(jpeg).segments) {
        if (!carry::DescribesPixels(part.marker)) {
            heads.append(QString::number(part.marker, 16) + u':'
                         + QString::fromLatin1(part.content.left(4)).remove(QChar(0)));
        }
    }
    return heads;
}

QByteArray Xmp(const QByteArray& description, const QByteArray& orientation)
{
    return QByteArray("<?xpacket begin='' id='W5M0MpCehiHzreSzNTczkc9d'?>"
                      "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
                      "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
                      "<rdf:Description rdf:about='' xmlns:t='http://ns.adobe.com/tiff/1.0/' "
                      "xmlns:dc='http://purl.org/dc/elements/1.1/' t:Orientation='")
        + orientation
        + "'><dc:description><rdf:Alt><rdf:li xml:lang='de'>Bild</rdf:li>"
          "<rdf:li xml:lang='x-default'>"
        + description + "</rdf:li></rdf:Alt></dc:description></rdf:Description></rdf:RDF>"
        + "</x:xmpmeta>" + QByteArray(200, ' ') + "<?xpacket end='w'?>";
}

QByteArray XmpSegment(const QByteArray& packet)
{
    return JpegSegment(0xe1, QByteArray("http://ns.adobe.com/xap/1.0/\0", 29) + packet);
}

QByteArray ExifSegment(ExifMaker& maker)
{
    return JpegSegment(0xe1, QByteArray("Exif\0\0", 6) + maker.Block());
}

ExifMaker& Fill(ExifMaker& maker)
{
    return maker.Ascii(ExifMaker::Tiff, 0x010e, "old text")
        .Short(ExifMaker::Tiff, 0x0112, {6})
        .Bytes(ExifMaker::Exif, 0x927c, QByteArray(200, 'm'));
}

TEST(CarryIntoJpeg, SegmentsStayInTheirOrder)
{
    ExifMaker maker;
    const QByteArray original = Original(
        JpegSegment(0xe0, QByteArray("JFIF\0\1\2\1\0\x48\0\x48\0\0", 14)) + ExifSegment(Fill(maker))
        + JpegSegment(0xe0, "HEAPJPGM") + JpegSegment(0xed, QByteArray("Photoshop 3.0\0iptc", 18))
        + JpegSegment(0xfe, "comment") + JpegSegment(0xef, "unknown") + JpegSegment(0xe5, "RMETA")
        + JpegSegment(0xee, "not that one"));
    PlanOf with(original, ReadJpegComments);
    with.plan.width = 40;
    with.plan.height = 30;
    const QByteArray carried = CarryIntoJpeg(Encoded(), with.plan);
    const QStringList expected{"e0:JFIF", "e1:Exif", "e0:HEAP", "ed:Phot",
                               "fe:comm", "ef:unkn", "e5:RMET", "ee:not "};
    EXPECT_EQ(Heads(carried), expected);
    EXPECT_TRUE(carried.contains(QByteArray("Photoshop 3.0\0iptc", 18)));
    EXPECT_EQ(making::DecodedSize(carried), QSize(40, 30));
    EXPECT_EQ(SlotsOfFile(carried, "a.jpg"), with.before);
    EXPECT_EQ(making::OrientationOf(carried), 1);
}

TEST(CarryIntoJpeg, TheEncodersOwnSegmentsDescribeThePicture)
{
    // The original says Adobe and CMYK; the new picture is plain grey.
    making::JpegMake make;
    make.channels = 4;
    const QByteArray original = making::MakeJpeg(make);
    ASSERT_TRUE(original.contains("Adobe"));
    PlanOf with(original, ReadJpegComments);
    with.plan.exif = false;
    const QByteArray carried = CarryIntoJpeg(Encoded(40, 30, {}, 1), with.plan);
    EXPECT_FALSE(carried.contains("Adobe"));
    EXPECT_EQ(Heads(carried), QStringList{"e0:JFIF"});
    // And the other way round.
    PlanOf grey(Encoded(40, 30, {}, 1), ReadJpegComments);
    grey.plan.exif = false;
    EXPECT_TRUE(CarryIntoJpeg(original, grey.plan).contains("Adobe"));
}

TEST(CarryIntoJpeg, ColourProfilesFollowThePicture)
{
    const QByteArray wide = making::MakeWideProfile();
    const QByteArray original = Original({}, wide);
    PlanOf with(original, ReadJpegComments);
    with.plan.exif = false;
    const auto profile = [](const QByteArray& jpeg) { return making::DecodedProfile(jpeg); };
    EXPECT_EQ(profile(CarryIntoJpeg(Encoded(40, 30, wide), with.plan)), wide);
    EXPECT_EQ(profile(CarryIntoJpeg(Encoded(40, 30), with.plan)), wide);
    EXPECT_TRUE(profile(CarryIntoJpeg(Encoded(40, 30, {}, 1), with.plan)).isEmpty());
    QByteArray other = wide;
    other[8] = char(other[8] + 1);
    const QByteArray replaced = CarryIntoJpeg(Encoded(40, 30, other), with.plan);
    EXPECT_EQ(profile(replaced), other);
    EXPECT_EQ(replaced.count("ICC_PROFILE"), 1);
}

TEST(CarryIntoJpeg, PlainJpegHasItsDescriptionInTheFirstComment)
{
    const QByteArray original = Original(JpegSegment(0xfe, "one") + JpegSegment(0xfe, "two"));
    PlanOf with(original, ReadJpegComments);
    with.plan.exif = false;
    ASSERT_EQ(TextOf(with.before, 3), QStringLiteral("one"));
    EXPECT_EQ(CarryIntoJpeg(Encoded(), with.plan).count("\xff\xfe"), 2);
    with.plan.wanted.Set(3, QStringLiteral("\u00fc 1"));
    with.plan.wanted.Set(22, QStringLiteral("2003:01:05 13:07:09")); // has no place
    const QByteArray carried = CarryIntoJpeg(Encoded(), with.plan);
    EXPECT_EQ(TextOf(SlotsOfFile(carried, "a.jpg"), 3), QStringLiteral("\u00fc 1"));
    EXPECT_TRUE(carried.contains("two"));
    EXPECT_FALSE(carried.contains("one"));
    EXPECT_FALSE(carried.contains("Exif"));
    with.plan.wanted.Set(3, {});
    EXPECT_TRUE(SlotsOfFile(CarryIntoJpeg(Encoded(), with.plan), "a.jpg").IsEmpty());
    with.plan.wanted.Set(3, QString(66'000, u'l'));
    EXPECT_EQ(test::FailureOf([&] { CarryIntoJpeg(Encoded(), with.plan); }).Number(),
              kFailureLimit);
    // A file of another kind: there is no original.
    CarryPlan fresh;
    fresh.exif = false;
    fresh.wanted.Set(3, QStringLiteral("fresh"));
    EXPECT_EQ(TextOf(SlotsOfFile(CarryIntoJpeg(Encoded(), fresh), "a.jpg"), 3),
              QStringLiteral("fresh"));
}

TEST(CarryIntoJpeg, DescriptionMovesBetweenCommentAndExif)
{
    const QByteArray plain = Encoded(64, 48).insert(
        20, JpegSegment(0xfe, "one") + JpegSegment(0xfe, "two")); // behind the JFIF head
    PlanOf toExif(plain, ReadJpegComments);
    toExif.plan.width = 40;
    toExif.plan.height = 30;
    const QByteArray carried = CarryIntoJpeg(Encoded(), toExif.plan);
    const QStringList heads{"e0:JFIF", "e1:Exif", "fe:two"};
    EXPECT_EQ(Heads(carried), heads);
    EXPECT_EQ(TextOf(SlotsOfFile(carried, "a.jpg"), 3), QStringLiteral("one"));
    PlanOf back(carried, ReadJpegComments);
    back.plan.exif = false;
    const QByteArray again = CarryIntoJpeg(Encoded(), back.plan);
    const QStringList headsAgain{"e0:JFIF", "fe:one", "fe:two"};
    EXPECT_EQ(Heads(again), headsAgain);
    // Whatever the order of the segments was.
    ExifMaker maker;
    PlanOf behind(Original(JpegSegment(0xfe, "two") + ExifSegment(Fill(maker))), ReadJpegComments);
    behind.plan.exif = false;
    EXPECT_EQ(TextOf(SlotsOfFile(CarryIntoJpeg(Encoded(), behind.plan), "a.jpg"), 3),
              QStringLiteral("old text"));
    EXPECT_EQ(TextOf(SlotsOfFile(again, "a.jpg"), 3), QStringLiteral("one"));
}

TEST(CarryIntoJpeg, AnExifKindAlwaysGetsItsBlock)
{
    CarryPlan plan;
    plan.width = 40;
    plan.height = 30;
    const QByteArray empty = CarryIntoJpeg(Encoded(), plan);
    EXPECT_TRUE(empty.contains(QByteArray("Exif\0\0II*", 9)));
    for (const CommentSlot& slot : CommentSlots()) {
        plan.wanted.Set(slot.slot, making::ValueFor(slot));
    }
    const CommentSet read = SlotsOfFile(CarryIntoJpeg(Encoded(), plan), "a.jpg");
    for (const CommentSlot& slot : CommentSlots()) {
        EXPECT_EQ(read.At(slot.slot),
                  making::IsInExifBlock(slot) ? making::ValueFor(slot) : CommentValue())
            << slot.field;
    }
}

TEST(CarryIntoJpeg, BrokenExifIsCarriedAsItIs)
{
    const QByteArray broken = JpegSegment(0xe1, QByteArray("Exif\0\0broken", 12));
    PlanOf with(Original(broken), ReadJpegComments);
    with.plan.wanted.Set(3, QStringLiteral("text"));
    with.plan.exif = false;
    const QByteArray plain = CarryIntoJpeg(Encoded(), with.plan);
    EXPECT_TRUE(plain.contains(broken));
    EXPECT_EQ(TextOf(SlotsOfFile(plain, "a.jpg"), 3), QStringLiteral("text"));
    with.plan.exif = true;
    const QByteArray exif = CarryIntoJpeg(Encoded(), with.plan);
    EXPECT_TRUE(exif.contains(broken));
    EXPECT_EQ(TextOf(SlotsOfFile(exif, "a.jpg"), 3), QStringLiteral("text"));
}

TEST(CarryIntoJpeg, XmpIsKeptInStepInItsOwnLength)
{
    ExifMaker maker;
    const QByteArray packet = Xmp("old text", "6");
    PlanOf with(Original(ExifSegment(Fill(maker)) + XmpSegment(packet)), ReadJpegComments);
    with.plan.wanted.Set(3, QStringLiteral("a < b & c\r\nd"));
    const QByteArray carried = CarryIntoJpeg(Encoded(), with.plan);
    QByteArray expected = Xmp("a &lt; b &amp; c&#13;&#10;d", "1");
    EXPECT_TRUE(carried.contains(expected.replace(QByteArray(219, ' '), QByteArray(200, ' ')))
                || carried.contains("a &lt; b &amp; c&#13;&#10;d</rdf:li>"));
    EXPECT_TRUE(carried.contains("t:Orientation='1'"));
    EXPECT_TRUE(carried.contains(">Bild<"));
    EXPECT_FALSE(carried.contains("old text"));
    const carry::JpegParts parts = carry::CutJpeg(carried);
    for (const carry::JpegPart& part : parts.segments) {
        if (part.content.startsWith("http")) {
            EXPECT_EQ(part.content.size(), 29 + packet.size());
        }
    }
}

TEST(CarryIntoJpeg, PicturesBehindTheEndKeepTheirPlacesInTheTable)
{
    // CIPA DC-007: byte order, first directory at 8: version, number, entries of 16 bytes.
    const auto table = [](quint32 size, quint32 place, quint32 nextSize) {
        using making::Big;
        return QByteArray("MPF\0MM\0*\0\0\0\x08\0\3", 14)
            + QByteArray("\xb0\0\0\7\0\0\0\4"
                         "0100",
                         12)
            + QByteArray("\xb0\1\0\4\0\0\0\1\0\0\0\2", 12)
            + QByteArray("\xb0\2\0\7\0\0\0\x20\0\0\0\x32", 12) + QByteArray(4, '\0')
            + Big(0x030000, 4) + Big(size, 4) + Big(0, 4) + Big(0, 4) + Big(0x020002, 4)
            + Big(nextSize, 4) + Big(place, 4) + Big(0, 4);
    };
    const QByteArray second = Encoded(16, 16);
    QByteArray first = Original(JpegSegment(0xe2, table(0, 0, 0)));
    const qsizetype base = first.indexOf("MPF") + 4;
    first.replace(
        base - 4, table(0, 0, 0).size(),
        table(quint32(first.size()), quint32(first.size() - base), quint32(second.size())));
    PlanOf with(first + second + "trailer", ReadJpegComments);
    with.plan.wanted.Set(3, QStringLiteral("longer than before"));
    const QByteArray carried = CarryIntoJpeg(Encoded(100, 100), with.plan);
    ASSERT_TRUE(carried.endsWith(second + "trailer"));
    const qsizetype end = carried.size() - second.size() - 7;
    const qsizetype origin = carried.indexOf("MPF") + 4;
    EXPECT_EQ(carried.mid(origin - 4, table(0, 0, 0).size()),
              table(quint32(end), quint32(end - origin), quint32(second.size())));
    if (test::HasTool(QStringLiteral("exiftool"))) {
        EXPECT_TRUE(making::ExifTool(carried, "m.jpg", {"-s3", "-MPImage2"})
                        .contains(QString::number(second.size())));
    }
}

TEST(CarryIntoJpeg, PreviewIsRenewedKeptOrGone)
{
    ExifMaker maker;
    PlanOf first(Original(ExifSegment(Fill(maker))), ReadJpegComments);
    first.plan.preview = Encoded(16, 12);
    const QByteArray with = CarryIntoJpeg(Encoded(), first.plan);
    const auto preview = [](const QByteArray& jpeg) {
        MemorySource source(jpeg);
        return ReadEmbeddedPreview(source);
    };
    EXPECT_EQ(preview(with), Encoded(16, 12));
    PlanOf second(with, ReadJpegComments);
    second.plan.keepPreview = true;
    EXPECT_EQ(preview(CarryIntoJpeg(Encoded(), second.plan)), Encoded(16, 12));
    second.plan.keepPreview = false;
    const QByteArray gone = CarryIntoJpeg(Encoded(), second.plan);
    EXPECT_TRUE(preview(gone).isEmpty());
    EXPECT_FALSE(gone.contains(Encoded(16, 12)));
    second.plan.preview = Encoded(24, 18);
    EXPECT_EQ(preview(CarryIntoJpeg(Encoded(), second.plan)), Encoded(24, 18));
}

TEST(CarryIntoJpeg, FilesThatAreNoneAreRefused)
{
    const CarryPlan plan;
    for (const QByteArray& bytes :
         {QByteArray(), QByteArray("\xff\xd8"), QByteArray("\xff\xd8\xff\xe0\xff\xff"),
          Encoded().left(30), QByteArray("PNG")}) {
        EXPECT_EQ(test::FailureOf([&] { CarryIntoJpeg(bytes, plan); }).Number(),
                  kFailureUnreadable);
    }
}

TEST(PatchXmp, AnotherDescriptionStays)
{
    const QByteArray packet = Xmp("their own", "1");
    EXPECT_EQ(PatchXmp(packet, {true, XmpWishes::Description{"old", "new"}}), packet);
    const QByteArray same = Xmp("old", "1");
    EXPECT_EQ(PatchXmp(same, {true, {}}), same);
    const QByteArray changed = PatchXmp(same, {true, XmpWishes::Description{"old", "new"}});
    EXPECT_TRUE(changed.contains("'x-default'>new<"));
    EXPECT_EQ(changed.size(), same.size());
    const QByteArray cleared = PatchXmp(same, {true, XmpWishes::Description{"old", ""}});
    EXPECT_FALSE(cleared.contains("dc:description>"));
    EXPECT_EQ(cleared.size(), same.size());
    const QByteArray longer =
        PatchXmp(same, {true, XmpWishes::Description{"old", QString(500, u'n')}});
    EXPECT_TRUE(longer.contains(QByteArray(500, 'n')));
    EXPECT_GT(longer.size(), same.size());
}

TEST(PatchXmp, EveryFormOfTheProperties)
{
    const auto wrap = [](const QByteArray& attributes, const QByteArray& inner) {
        return "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\" "
               "xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
               "xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\"><rdf:Description"
            + attributes + ">" + inner + "</rdf:Description></rdf:RDF>";
    };
    const XmpWishes wishes{true, XmpWishes::Description{"old & so", "new"}};
    EXPECT_EQ(PatchXmp(wrap(" dc:description=\"old &amp; so\" tiff:Orientation='8'", ""), wishes),
              wrap(" dc:description=\"new\" tiff:Orientation='1'", ""));
    EXPECT_EQ(
        PatchXmp(wrap("",
                      "<tiff:Orientation>3</tiff:Orientation>"
                      "<dc:description>old &#38;  so</dc:description>"),
                 wishes),
        wrap("", "<tiff:Orientation>1</tiff:Orientation><dc:description>new</dc:description>"));
    EXPECT_EQ(PatchXmp(wrap("",
                            "<dc:description><rdf:Alt><rdf:li xml:lang=\"x-default\"/></rdf:Alt>"
                            "</dc:description>"),
                       wishes),
              wrap("",
                   "<dc:description><rdf:Alt><rdf:li xml:lang=\"x-default\">new</rdf:li>"
                   "</rdf:Alt></dc:description>"));
    // What hangs below a property belongs to another picture.
    const QByteArray nested =
        wrap("", "<x:Pantry><rdf:Description tiff:Orientation='6'/></x:Pantry>");
    EXPECT_EQ(PatchXmp(nested, wishes), nested);
    for (const char* odd :
         {"", "<", "<a", "<a b=", "<a b='", "</", "<!--", "<?x", "&&&;", "<a/><b>"}) {
        EXPECT_EQ(PatchXmp(odd, wishes), QByteArray(odd));
    }
    const QByteArray wide("\xff\xfe<\0a\0", 6);
    EXPECT_EQ(PatchXmp(wide, wishes), wide);
}

} // namespace

} // namespace quillane
