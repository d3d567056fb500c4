// Metadata of a GIF: extensions and the frames behind the first.
#include "carry_support_for_tests.h"
#include "imaging/carry/gif_parts.h"

namespace quillane {

namespace {

using making::GifExtension;
using making::PlanOf;
using making::SlotsOfFile;
using making::TextOf;

QByteArray Encoded(int width = 20, int height = 10, int colours = 4, int transparent = -1)
{
    making::GifMake make;
    make.width = make.frameWidth = width;
    make.height = make.frameHeight = height;
    make.colours = colours;
    make.transparent = transparent;
    return making::MakeGif(make);
}

/// A GIF with these extensions before its first frame (and that frame's own control block).
QByteArray With(const QByteArray& extensions, int frames = 1)
{
    making::GifMake make;
    make.frames = frames;
    carry::GifParts parts = carry::CutGif(making::MakeGif(make));
    parts.blocks.insert(parts.blocks.begin(), {carry::GifPart::Kind::OtherExtension, extensions});
    parts.head.replace(0, 6, "GIF89a");
    return parts.Joined();
}

QByteArray Replace(const QByteArray& gif, const QString& text)
{
    MemorySource source(gif);
    const CommentChange change{kDescriptionSlot, text.isEmpty() ? CommentValue() : text};
    return ReplaceCommentsInGif(source, {&change, 1});
}

QString Described(const QByteArray& gif)
{
    return TextOf(SlotsOfFile(gif, "a.gif"), 3);
}

const QByteArray kLoop = QByteArray("\x21\xff\x0bNETSCAPE2.0\3\1\0\0\0", 19);
const QByteArray kControl = QByteArray("\x21\xf9\4\x08\x32\0\0\0", 8); // half a second

TEST(CarryIntoGif, ExtensionsStayAndTheCommentIsReplaced)
{
    const QByteArray private_ = QByteArray("\x21\xff\x0bPRIVATE 1.0\3abc\0", 19);
    PlanOf with(
        With(kLoop + GifExtension(0xfe, "old") + private_ + GifExtension(0xfe, "second") + kControl)
            + "trailer",
        ReadGifComments);
    with.plan.wanted.Set(3, QStringLiteral("n\u00e9w"));
    const QByteArray after = CarryIntoGif(Encoded(33, 44, 16), with.plan);
    EXPECT_EQ(Described(after), QStringLiteral("n\u00e9w"));
    for (const QByteArray& stays :
         {kLoop, private_, GifExtension(0xfe, "second"), QByteArray("\x21\xf9\4\x08\x32\0", 6)}) {
        EXPECT_EQ(after.count(stays), 1);
    }
    EXPECT_FALSE(after.contains("old"));
    EXPECT_TRUE(after.endsWith("trailer"));
    EXPECT_EQ(making::DecodeBytes(after).Pixels(),
              making::DecodeBytes(Encoded(33, 44, 16)).Pixels());
}

TEST(CarryIntoGif, TransparencyIsTheNewPictures)
{
    PlanOf with(With(kControl), ReadGifComments);
    for (const int transparent : {-1, 2}) {
        const QByteArray encoded = Encoded(20, 10, 4, transparent);
        const QByteArray after = CarryIntoGif(encoded, with.plan);
        EXPECT_EQ(making::DecodeBytes(after).Pixels(), making::DecodeBytes(encoded).Pixels());
        EXPECT_EQ(after.count("\x21\xf9"), 1);
    }
    PlanOf none(Encoded(), ReadGifComments);
    const QByteArray clear = Encoded(20, 10, 4, 1);
    EXPECT_EQ(making::DecodeBytes(CarryIntoGif(clear, none.plan)).Pixels(),
              making::DecodeBytes(clear).Pixels());
    PlanOf wasClear(clear, ReadGifComments);
    EXPECT_EQ(making::DecodeBytes(CarryIntoGif(Encoded(), wasClear.plan)).Pixels(),
              making::DecodeBytes(Encoded()).Pixels());
}

TEST(CarryIntoGif, FurtherFramesAreCarriedWhereSizesAgree)
{
    const QByteArray original = With(kLoop, 3);
    ASSERT_EQ(making::FactsOfFile(original).pages, 3);
    PlanOf with(original, ReadGifComments);
    with.plan.wanted.Set(3, QStringLiteral("three"));
    const QByteArray encoded = Encoded(20, 10, 128);
    const QByteArray after = CarryIntoGif(encoded, with.plan);
    EXPECT_EQ(making::FactsOfFile(after).pages, 3);
    EXPECT_EQ(making::DecodeBytes(after).Pixels(), making::DecodeBytes(encoded).Pixels());
    const auto frames = [](const QByteArray& gif) {
        QList<QByteArray> found;
        for (const carry::GifPart& part : carry::CutGif(gif).blocks) {
            if (part.kind == carry::GifPart::Kind::Frame) {
                found.append(part.bytes);
            }
        }
        return found;
    };
    EXPECT_EQ(frames(after).sliced(1), frames(original).sliced(1));
    EXPECT_EQ(carry::CutGif(after).palette, carry::CutGif(original).palette);
    if (test::HasTool(QStringLiteral("gm"))) {
        const TempFolder folder;
        folder.Write("after.gif", after);
        folder.Write("original.gif", original);
        const auto second = [&](const QByteArray& name) {
            return test::RunTool(QStringLiteral("gm"),
                                 {"convert", folder.Path(name) + "[2]", "-depth", "8", "ppm:-"});
        };
        EXPECT_TRUE(second("after.gif").has_value());
        EXPECT_EQ(second("after.gif"), second("original.gif"));
    }
    EXPECT_EQ(Described(after), QStringLiteral("three"));
    const Failure failure = test::FailureOf([&] { CarryIntoGif(Encoded(21, 10), with.plan); });
    EXPECT_EQ(failure.Number(), kFailureGeneral);
    EXPECT_TRUE(failure.Description().contains("3 frames"));
}

TEST(CarryIntoGif, OfAFileOfAnotherKindTheDescriptionIsTaken)
{
    CarryPlan plan;
    plan.wanted.Set(3, QStringLiteral("from elsewhere"));
    plan.wanted.Set(5, QStringLiteral("has no place"));
    const QByteArray after = CarryIntoGif(Encoded(), plan);
    EXPECT_EQ(Described(after), QStringLiteral("from elsewhere"));
    EXPECT_FALSE(after.contains("has no place"));
    EXPECT_TRUE(after.startsWith("GIF89a"));
}

TEST(ReplaceCommentsInGif, NothingElseChangesByAByte)
{
    const QByteArray gif = With(kLoop + kControl, 2);
    MemorySource source(gif);
    EXPECT_EQ(ReplaceCommentsInGif(source, {}), gif);
    const QString text = QString(700, u'x') + QStringLiteral("\u4e2d");
    const QByteArray there = Replace(gif, text);
    EXPECT_EQ(Described(there), text);
    EXPECT_EQ(Replace(there, {}), gif);
    QByteArray file = there;
    for (int round = 0; round < 50; ++round) {
        file = Replace(file, QStringLiteral("text %1").arg(round % 10));
    }
    EXPECT_EQ(file.size(), gif.size() + 4 + 6);
    const QByteArray several =
        With(GifExtension(0xfe, "") + GifExtension(0xfe, "one") + GifExtension(0xfe, "two"));
    carry::GifParts parts = carry::CutGif(several);
    EXPECT_EQ(Described(Replace(several, QStringLiteral("new"))), QStringLiteral("new"));
    EXPECT_TRUE(Replace(several, QStringLiteral("new")).contains("two"));
    EXPECT_TRUE(SlotsOfFile(Replace(several, {}), "a.gif").IsEmpty());
    EXPECT_EQ(test::FailureOf([&] { Replace(gif, QString(2 << 20, u'l')); }).Number(),
              kFailureLimit);
    EXPECT_EQ(test::FailureOf([&] { Replace("GIF89a", QStringLiteral("x")); }).Number(),
              kFailureUnreadable);
}

TEST(ReplaceCommentsInGif, ACommentThatIsCutOffCannotBeTakenAway)
{
    const QByteArray text = QByteArray(200, 't');
    const QByteArray gif = With(GifExtension(0xfe, text));
    // Of two pieces the first is whole, and it is read.
    const QByteArray cut = gif.left(gif.indexOf(text) + text.size()) + "\x20tt";
    EXPECT_EQ(test::FailureOf([&] { Replace(cut, {}); }).Number(), kFailureUnreadable);
    EXPECT_TRUE(Described(Replace(gif, {})).isEmpty());
}

TEST(ReplaceCommentsInGif, XmpIsKeptInStepInItsOwnExtension)
{
    const auto xmp = [](const QByteArray& text) {
        QByteArray extension = "\x21\xff\x0bXMP DataXMP"
                               "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\" "
                               "xmlns:dc=\"http://purl.org/dc/elements/1.1/\"><rdf:Description "
                               "dc:description=\""
            + text + "\"/></rdf:RDF>\1";
        for (int i = 255; i >= 0; --i) {
            extension += char(i);
        }
        return extension + '\0';
    };
    const QByteArray gif = With(GifExtension(0xfe, "old") + xmp("old"));
    ASSERT_EQ(Described(gif), QStringLiteral("old"));
    const QByteArray after = Replace(gif, QStringLiteral("a longer text"));
    EXPECT_TRUE(after.contains(xmp("a longer text")));
    EXPECT_EQ(making::DecodeBytes(after).Pixels(), making::DecodeBytes(gif).Pixels());
    if (test::HasTool(QStringLiteral("exiftool"))) {
        EXPECT_EQ(making::ExifTool(after, "a.gif", {"-s3", "-XMP:Description"}),
                  QStringLiteral("a longer text"));
    }
}

} // namespace

} // namespace quillane
