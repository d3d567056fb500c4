// Encapsulated PostScript: what it tells of itself, and how Ghostscript draws it.
#include "codec_support_for_tests.h"
#include "core/temp_folder.h"
#include "drawn_maker.h"
#include "imaging/codecs/codecs.h"
#include "imaging/eps/eps_file.h"
#include "imaging/eps/ghostscript.h"
#include "imaging/reader.h"
#include "picture_maker.h"
#include "worker_support.h"
#include <chrono>
#include <iostream>

namespace quillane {

namespace {

/// Programs are looked for in one folder alone.
class EpsPath {
public:
    explicit EpsPath(const QByteArray& folder) : mBefore(qgetenv("PATH"))
    {
        qputenv("PATH", folder);
    }
    ~EpsPath() { qputenv("PATH", mBefore); }
    EpsPath(const EpsPath&) = delete;
    EpsPath& operator=(const EpsPath&) = delete;

private:
    QByteArray mBefore;
};

/// A script of an inch square, unless its box says otherwise.
QByteArray EpsScript(const QByteArray& body, const QByteArray& box = "0 0 72 72")
{
    return "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: " + box + "\n%%EndComments\n" + body + "\n";
}

/// A script behind the header that puts a preview beside it.
QByteArray EpsWithPreview(const QByteArray& script, const QByteArray& preview, bool tiff)
{
    using making::Little;
    const quint32 previewAt = quint32(30 + script.size());
    const QByteArray place = Little(previewAt, 4) + Little(quint32(preview.size()), 4);
    const QByteArray nothing(8, '\0');
    return QByteArray("\xc5\xd0\xd3\xc6", 4) + Little(30, 4) + Little(quint32(script.size()), 4)
        + (tiff ? nothing + place : place + nothing) + Little(0xffff, 2) + script + preview;
}

eps::EpsFile EpsRead(const QByteArray& bytes)
{
    MemorySource source(bytes);
    return eps::ReadEps(source);
}

TEST(EpsFile, TheBoxIsThatOfTheComments)
{
    EXPECT_EQ(EpsRead("%!PS\n%%BoundingBox: 10 20 110 220\n").box, QRectF(10, 20, 100, 200));
    EXPECT_EQ(EpsRead("%!PS\r%%BoundingBox:\t-5 -6 5 6 \r%%EndComments\r").box,
              QRectF(-5, -6, 10, 12));
    EXPECT_EQ(EpsRead("%!PS\n%%BoundingBox: 0 0 3 3\n%%HiResBoundingBox: 0.5 0.5 2.5 2\n").box,
              QRectF(0.5, 0.5, 2, 1.5));
    EXPECT_EQ(EpsRead("%!PS\n%%BoundingBox: (atend)\nx\n%%Trailer\n%%BoundingBox: 1 1 3 4\n").box,
              QRectF(1, 1, 2, 3));
    // Far from both ends nothing is looked for.
    EXPECT_EQ(EpsRead("%!PS\n%%BoundingBox: (atend)\n" + QByteArray(300'000, '\n')
                      + "%%BoundingBox: 1 1 3 4\n")
                  .box,
              QRectF(1, 1, 2, 3));
}

TEST(EpsFile, ASheetOfPaperWhereNothingIsTold)
{
    for (const QByteArray& bytes :
         {QByteArray("%!PS\n"), QByteArray("%!PS\n%%BoundingBox: 0 0 0 0\n"),
          QByteArray("%!PS\n%%BoundingBox: 9 9 1 1\n"), QByteArray("%!PS\n%%BoundingBox: 1 2 3\n"),
          QByteArray("%!PS\n(%%BoundingBox: 0 0 3 3)\n"),
          QByteArray("%!PS\n%%BoundingBox: 0 0 nan 3\n"),
          QByteArray("%!PS\n%%BoundingBox: 0 0 inf 3\n")}) {
        EXPECT_EQ(EpsRead(bytes).box, QRectF(0, 0, 595, 842)) << bytes.constData();
    }
}

TEST(EpsFile, AHugeBoxIsRefused)
{
    for (const char* box : {"0 0 1e99 3", "-150000 0 150000 3", "0 0 3 200001"}) {
        const making::Refusal refusal =
            making::RefusalOf([&] { EpsRead("%!PS\n%%BoundingBox: " + QByteArray(box) + "\n"); });
        EXPECT_EQ(refusal.number, kFailureLimit) << box;
        EXPECT_TRUE(refusal.words.startsWith(u"This EPS has a bounding box of ")) << box;
    }
    EXPECT_EQ(EpsRead("%!PS\n%%BoundingBox: 0 0 200000 3\n").box.width(), 200'000);
}

TEST(Eps, ALargeBoxBecomesAPictureOfBoundedSize)
{
    const ImageFacts facts = making::ProbeBytes(EpsScript("showpage", "0 0 150000 150000"));
    EXPECT_EQ(facts.width, facts.height);
    EXPECT_LE(qint64(facts.width) * facts.height, 25'000'000);
    EXPECT_GE(facts.width, 1000);
}

TEST(EpsFile, TheHeaderBeforeItTellsScriptAndPreview)
{
    const QByteArray script = EpsScript("showpage", "0 0 36 18");
    for (const bool tiff : {false, true}) {
        const QByteArray bytes = EpsWithPreview(script, "II*", tiff);
        const eps::EpsFile file = EpsRead(bytes);
        EXPECT_EQ(file.preview, tiff ? eps::Preview::Tiff : eps::Preview::Wmf);
        EXPECT_EQ(bytes.mid(file.scriptAt, file.scriptSize), script);
        EXPECT_EQ(bytes.mid(file.previewAt, file.previewSize), "II*");
        EXPECT_EQ(file.box, QRectF(0, 0, 36, 18));
        const ImageFacts facts = making::ProbeBytes(bytes);
        EXPECT_EQ(facts.format, tiff ? 63 : 64);
        EXPECT_EQ(facts.width, 48);
        EXPECT_EQ(facts.height, 24);
    }
    QByteArray outside = EpsWithPreview(script, {}, true);
    EXPECT_EQ(EpsRead(outside).preview, eps::Preview::None);
    outside.replace(4, 4, making::Little(1'000'000, 4));
    EXPECT_EQ(making::RefusalOf([&] { EpsRead(outside); }).words,
              u"This EPS is damaged: its header points outside the file.");
}

TEST(EpsFile, DamageAnywhereStaysWithinTheFile)
{
    const QByteArray whole =
        EpsWithPreview(EpsScript("showpage", "(atend)") + "%%BoundingBox: 0 0 9 9\n", "II*", true);
    quint32 random = 99;
    const auto next = [&random] { return random = random * 1664525 + 1013904223, random >> 8; };
    for (int i = 0; i < 1000; ++i) {
        QByteArray damaged = i % 5 ? whole : whole.first(qsizetype(next() % quint32(whole.size())));
        for (int k = 0; k < i % 4 && !damaged.isEmpty(); ++k) {
            const quint32 reach = i % 2 ? quint32(damaged.size()) : 30;
            damaged[qsizetype(next() % qMin(reach, quint32(damaged.size())))] = char(next());
        }
        const making::Refusal refusal = making::RefusalOf([&] {
            const eps::EpsFile file = EpsRead(damaged);
            EXPECT_GE(file.scriptAt, 0);
            EXPECT_LE(file.scriptAt + file.scriptSize, damaged.size());
            EXPECT_LE(file.previewAt + file.previewSize, damaged.size());
            EXPECT_GT(file.box.width() * file.box.height(), 0);
        });
        EXPECT_TRUE(refusal.number == 0 || refusal.number == kFailureUnreadable
                    || refusal.number == kFailureLimit);
    }
}

TEST(EpsFile, OnlyPostScriptIsTaken)
{
    EXPECT_TRUE(eps::IsEps("%!PS-Adobe-2.0 EPSF-1.2\n"));
    EXPECT_TRUE(eps::IsEps("\x04%!PS-Adobe"));
    EXPECT_FALSE(eps::IsEps("%PDF-1.4"));
    EXPECT_FALSE(eps::IsEps(""));
}

TEST(Eps, FactsAreThoseOfTheBoxAtNinetySixDots)
{
    const ImageFacts facts = making::ProbeBytes(EpsScript("", "10 10 82 154"));
    EXPECT_EQ(facts.width, 96);
    EXPECT_EQ(facts.height, 192);
    EXPECT_EQ(facts.bits, 24);
    EXPECT_EQ(facts.format, 16);
    EXPECT_EQ(facts.pages, 1);
    EXPECT_EQ(facts.xResolution, 96);
    EXPECT_EQ(facts.yResolution, 96);
}

TEST(Eps, FactsNeedNoGhostscript)
{
    const TempFolder folder;
    folder.Write("gs", "#!/bin/sh\necho > " + folder.Bytes("started") + "\n");
    folder.Chmod("gs", 0755);
    const EpsPath path(folder.Bytes());
    EXPECT_EQ(making::ProbeBytes(EpsScript("showpage")).width, 96);
    EXPECT_EQ(folder.Entries(), QStringList({"gs"}));
}

TEST(Eps, CutShortAtAnyPlaceItIsRefusedOrShowsWhatThereIs)
{
    QByteArray body;
    for (int i = 0; i < 60; ++i) {
        body += "gsave " + QByteArray::number(i) + " 3 translate (word) pop 0 0 9 9 rectfill "
            + "grestore\n";
    }
    const QByteArray whole = EpsWithPreview(EpsScript(body + "showpage"), "II*", true);
    ASSERT_FALSE(making::DecodeBytes(whole).IsPartial());
    for (int i = 1; i <= 20; ++i) {
        SCOPED_TRACE(i);
        MemorySource source(whole.first(whole.size() * i / 21));
        const making::Refusal refusal = making::RefusalOf([&] {
            const Bitmap bitmap = codecs::EpsDecode(source, {});
            EXPECT_EQ(bitmap.Pixels().size(), QSize(96, 96));
        });
        EXPECT_TRUE(refusal.number == 0 || refusal.number == kFailureUnreadable);
        EXPECT_EQ(refusal.number == 0, refusal.words.isEmpty());
    }
}

TEST(Eps, ThePartInTheBoxIsDrawn)
{
    ASSERT_TRUE(eps::HasGhostscript());
    // Red below on the left, by the box's corner and not by the paper's.
    const QByteArray bytes =
        EpsScript("1 0 0 setrgbcolor 100 200 36 36 rectfill showpage", "100 200 172 272");
    const Bitmap bitmap = making::DecodeBytes(bytes);
    EXPECT_FALSE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Pixels().size(), QSize(96, 96));
    EXPECT_EQ(bitmap.Pixels().pixel(20, 80), qRgb(255, 0, 0));
    EXPECT_EQ(bitmap.Pixels().pixel(80, 80), qRgb(255, 255, 255));
    EXPECT_EQ(bitmap.Pixels().pixel(20, 20), qRgb(255, 255, 255));
    DecodeRequest request;
    request.atLeast = QSize(24, 24);
    const Bitmap reduced = making::DecodeBytes(bytes, request);
    EXPECT_EQ(reduced.Pixels().size(), QSize(24, 24));
    EXPECT_EQ(reduced.Pixels().pixel(5, 20), qRgb(255, 0, 0));
}

TEST(Eps, ThePageIsShownOnceHoweverTheScriptEnds)
{
    const QByteArray red = "1 0 0 setrgbcolor 0 0 72 72 rectfill ";
    for (const char* end :
         {"", "showpage", "quit", "showpage quit",
          "showpage 0 0 1 setrgbcolor 0 0 72 72 rectfill showpage", "/showpage {} def",
          "erasepage 1 0 0 setrgbcolor clippath fill showpage"}) {
        const Bitmap bitmap = making::DecodeBytes(EpsScript(red + end));
        EXPECT_EQ(bitmap.Pixels().pixel(48, 48), qRgb(255, 0, 0)) << end;
        EXPECT_FALSE(bitmap.IsPartial()) << end;
    }
}

TEST(Eps, AScriptThatFailsShowsWhatItHadDrawn)
{
    const Bitmap bitmap =
        making::DecodeBytes(EpsScript("1 0 0 setrgbcolor 0 0 72 36 rectfill 1 0 div 0 0 moveto"));
    EXPECT_TRUE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Pixels().pixel(48, 80), qRgb(255, 0, 0));
}

TEST(Eps, AScriptReachesNoFile)
{
    const TempFolder folder;
    folder.Write("secret", "secret");
    // Green where everything is refused.
    const QByteArray attempt = "/refused true def /try {stopped not {/refused false def} if clear} "
                               "bind def "
                               "{(%1) (r) file} try {(%2) (w) file} try "
                               "{(%pipe%true) (r) file} try {(%1) run} try {(%1) deletefile} try "
                               "{(%1) (%2) renamefile} try "
                               "(%3*) {pop /refused false def} 999 string filenameforall "
                               "refused {0 1 0 setrgbcolor} {1 0 0 setrgbcolor} ifelse "
                               "0 0 72 72 rectfill showpage";
    QByteArray body = attempt;
    body.replace("%1", folder.Bytes("secret")).replace("%2", folder.Bytes("new"));
    body.replace("%3", folder.Bytes());
    const Bitmap bitmap = making::DecodeBytes(EpsScript(body));
    EXPECT_EQ(bitmap.Pixels().pixel(48, 48), qRgb(0, 255, 0));
    EXPECT_EQ(folder.Entries(), QStringList({"secret"}));
    EXPECT_EQ(ReadWholeFile(folder.Path("secret"), 100), "secret");
    // Were one of them not refused, it would show.
    body.replace("{(%pipe%true) (r) file} try", "{1 pop} try");
    EXPECT_EQ(making::DecodeBytes(EpsScript(body)).Pixels().pixel(48, 48), qRgb(255, 0, 0));
}

TEST(Eps, AnEndlessScriptIsEnded)
{
    MemorySource script(EpsScript("{} loop"));
    eps::RenderJob job;
    job.script = &script;
    job.box = QRectF(0, 0, 72, 72);
    job.size = QSize(96, 96);
    job.seconds = 1;
    const making::Refusal refusal = making::RefusalOf([&] { eps::RenderPostScript(job); });
    EXPECT_EQ(refusal.number, kFailureLimit);
    EXPECT_EQ(refusal.words, u"This EPS takes too long to draw, which is more than can be read.");
    std::atomic<bool> cancelled = true;
    job.cancelled = &cancelled;
    job.seconds = 1000;
    EXPECT_EQ(making::RefusalOf([&] { eps::RenderPostScript(job); }).number, kFailureCancelled);
}

TEST(Eps, AGreedyScriptGetsNoMoreMemory)
{
    const making::Refusal refusal = making::RefusalOf(
        [] { making::DecodeBytes(EpsScript("[ 100000 { 60000 string } repeat ] showpage")); });
    // Either it is refused, or its page is shown without what it wanted.
    EXPECT_TRUE(refusal.number == 0 || refusal.number == kFailureUnreadable
                || refusal.number == kFailureLimit);
}

TEST(Eps, AScriptThatTalksWithoutEndIsHeardOut)
{
    const Bitmap bitmap = making::DecodeBytes(
        EpsScript("1 0 0 setrgbcolor 0 0 72 72 rectfill 20000 {(word after word) print} repeat"));
    EXPECT_EQ(bitmap.Pixels().pixel(48, 48), qRgb(255, 0, 0));
}

TEST(Eps, WithoutGhostscriptItIsRefusedInWordsOrThePreviewServes)
{
    const TempFolder folder;
    const EpsPath path(folder.Bytes());
    EXPECT_FALSE(eps::HasGhostscript());
    const QByteArray script = EpsScript("showpage");
    EXPECT_EQ(making::ProbeBytes(script).width, 96);
    const making::Refusal refusal = making::RefusalOf([&] { making::DecodeBytes(script); });
    EXPECT_EQ(refusal.number, kFailureUnreadable);
    EXPECT_EQ(refusal.words,
              u"This EPS can be shown only with Ghostscript, which is not installed.");
    making::WmfMaker wmf;
    wmf.Window(100, 100).Pen(0, 0, 5).Brush(0xff0000).Rectangle(0, 0, 50, 100);
    const Bitmap preview = making::DecodeBytes(EpsWithPreview(script, wmf.Plain(), false));
    EXPECT_EQ(preview.Pixels().size(), QSize(96, 96));
    EXPECT_EQ(preview.Pixels().pixel(20, 48), qRgb(0, 0, 255));
    EXPECT_EQ(preview.Pixels().pixel(70, 48), qRgb(255, 255, 255));
    // A preview that is damaged too leaves the first refusal.
    EXPECT_EQ(
        making::RefusalOf([&] { making::DecodeBytes(EpsWithPreview(script, "??", false)); }).words,
        refusal.words);
}

TEST(Eps, AProgramThatIsNoGhostscriptIsSeenThrough)
{
    const char* const programs[] = {
        "exit 0",
        "echo nonsense",
        "printf 'P6\\n97 96\\n255\\n'; cat /dev/zero",
        "printf 'P6\\n96 96\\n255\\n'",
        "cat /dev/zero",
        "kill -9 $$",
        "exec 1>&-; exec tail -f /dev/null",
    };
    for (const char* program : programs) {
        SCOPED_TRACE(program);
        const TempFolder folder;
        folder.Write("gs", "#!/bin/sh\n" + QByteArray(program) + "\n");
        folder.Chmod("gs", 0755);
        const EpsPath path(folder.Bytes());
        const making::Refusal refusal =
            making::RefusalOf([] { making::DecodeBytes(EpsScript("showpage")); });
        EXPECT_EQ(refusal.number, kFailureUnreadable);
        EXPECT_EQ(refusal.words, u"This EPS is damaged: Ghostscript draws no page from it.");
    }
    const TempFolder folder;
    folder.Write("gs", "#!/bin/sh\nprintf 'P6\\n96 96\\n255\\n'; head -c 14400 /dev/zero\n");
    folder.Chmod("gs", 0755);
    const EpsPath path(folder.Bytes());
    const Bitmap half = making::DecodeBytes(EpsScript("showpage"));
    EXPECT_TRUE(half.IsPartial());
    EXPECT_EQ(half.Pixels().pixel(10, 10), qRgb(0, 0, 0));
    EXPECT_EQ(half.Pixels().pixel(10, 90), qRgb(255, 255, 255));
}

class EpsSamples : public test::WorkerTest { };

TEST_F(EpsSamples, AreDrawnAndTheirPreviewsServe)
{
    const QString folder = QStringLiteral(QUILLANE_SOURCE_FOLDER "/../shared/samples/formats/");
    if (StatPath(folder).type != FileType::Folder) {
        std::cout << "no folder of samples here: nothing to see\n";
        return;
    }
    const LoadedImage petersen = LoadFile(folder + "petersen.eps");
    EXPECT_EQ(petersen.facts.format, 16);
    EXPECT_EQ(QSize(petersen.facts.width, petersen.facts.height), QSize(720, 960));
    EXPECT_EQ(petersen.bitmap.Pixels().size(), QSize(720, 960));
    EXPECT_FALSE(petersen.bitmap.IsPartial());
    const LoadedImage drawn = LoadFile(folder + "eps_tiff_preview.eps");
    EXPECT_EQ(drawn.facts.format, 63);
    EXPECT_FALSE(drawn.bitmap.IsPartial());
    const TempFolder empty;
    const EpsPath path(empty.Bytes());
    const LoadedImage preview = LoadFile(folder + "eps_tiff_preview.eps");
    EXPECT_EQ(preview.bitmap.Pixels().size(), drawn.bitmap.Pixels().size());
    const auto small = [](const LoadedImage& loaded) {
        return loaded.bitmap.Pixels().scaled(4, 4, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    for (int i = 0; i < 16; ++i) {
        EXPECT_LE(making::ColourDistance(small(drawn).pixel(i % 4, i / 4),
                                         small(preview).pixel(i % 4, i / 4)),
                  60)
            << i;
    }
    std::cout << "2 samples seen\n";
}

} // namespace

} // namespace quillane
