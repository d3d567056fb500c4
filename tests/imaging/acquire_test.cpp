#include "core/expect_failure.h"
#include "imaging/acquire.h"
#include "imaging/limits.h"
#include "platform/fake/fake_loop.h"
#include "platform/fake/fake_scanner.h"
#include "platform/scanner_support.h"
#include <cstring>

namespace quillane {

namespace {

ScannedPage PageOf(qint32 channels, qint32 depth, qint32 width, qint32 height,
                   const QByteArray& rows)
{
    ScannedPage page;
    page.channels = channels;
    page.depth = depth;
    page.width = width;
    page.height = height;
    page.bytesPerLine = rows.size() / height;
    page.xResolution = 300;
    page.yResolution = 150;
    page.rows = rows;
    return page;
}

QByteArray Samples(std::initializer_list<quint16> values)
{
    return QByteArray(reinterpret_cast<const char*>(values.begin()),
                      qsizetype(values.size() * sizeof(quint16)));
}

} // namespace

TEST(BitmapFromScan, GreyStaysGrey)
{
    const Bitmap picture = BitmapFromScan(PageOf(1, 8, 2, 2, QByteArray("\x00\x7f#\xff\x01#", 6)));
    EXPECT_EQ(picture.Model(), ColourModel::Grey);
    EXPECT_EQ(picture.Bits(), 8);
    EXPECT_EQ(picture.FileDepth(), 8);
    EXPECT_EQ(picture.Pixels().constScanLine(0)[1], 0x7f);
    EXPECT_EQ(picture.Pixels().constScanLine(1)[0], 0xff);
    EXPECT_EQ(picture.Pixels().constScanLine(1)[1], 0x01);
    EXPECT_EQ(picture.Pixels().dotsPerMeterX(), 11811);
    EXPECT_EQ(picture.Pixels().dotsPerMeterY(), 5906);

    const Bitmap deep = BitmapFromScan(PageOf(1, 16, 2, 1, Samples({0x0102, 0xfffe})));
    EXPECT_EQ(deep.Bits(), 16);
    quint16 values[2];
    std::memcpy(values, deep.Pixels().constScanLine(0), sizeof values);
    EXPECT_EQ(values[0], 0x0102);
    EXPECT_EQ(values[1], 0xfffe);
}

TEST(BitmapFromScan, ColourStaysColour)
{
    const Bitmap picture =
        BitmapFromScan(PageOf(3, 8, 1, 2, QByteArray("\x10\x20\x30\xff\x00\x01", 6)));
    EXPECT_EQ(picture.Model(), ColourModel::Rgb);
    EXPECT_EQ(picture.Bits(), 24);
    EXPECT_EQ(picture.Pixels().pixel(0, 0), qRgb(0x10, 0x20, 0x30));
    EXPECT_EQ(picture.Pixels().pixel(0, 1), qRgb(0xff, 0x00, 0x01));

    const Bitmap deep = BitmapFromScan(PageOf(3, 16, 1, 1, Samples({0x1234, 0, 0xffff})));
    EXPECT_EQ(deep.Bits(), 48);
    EXPECT_EQ(deep.Pixels().pixelColor(0, 0).rgba64(), qRgba64(0x1234, 0, 0xffff, 0xffff));
}

TEST(BitmapFromScan, TheOnesOfLineArtAreBlack)
{
    const Bitmap picture = BitmapFromScan(PageOf(1, 1, 10, 1, QByteArray("\xa0\x40", 2)));
    EXPECT_EQ(picture.Model(), ColourModel::BlackWhite);
    EXPECT_EQ(picture.Bits(), 1);
    for (int x = 0; x < 10; ++x) {
        const bool black = x == 0 || x == 2 || x == 9;
        EXPECT_EQ(picture.Pixels().pixel(x, 0), black ? qRgb(0, 0, 0) : qRgb(255, 255, 255)) << x;
    }
}

TEST(BitmapFromScan, RowsThatDoNotHoldWhatTheyShouldAreRefused)
{
    const ScannedPage good = PageOf(3, 8, 2, 2, QByteArray(12, 'x'));
    EXPECT_EQ(FailureOf([&] { BitmapFromScan(good); }), 0);
    const auto with = [&](auto&& change) {
        ScannedPage page = good;
        change(page);
        return FailureOf([&] { BitmapFromScan(page); });
    };
    EXPECT_EQ(with([](auto& page) { page.rows.chop(1); }), kFailureUnreadable);
    EXPECT_EQ(with([](auto& page) { page.width = 3; }), kFailureUnreadable);
    EXPECT_EQ(with([](auto& page) { page.width = 0; }), kFailureUnreadable);
    EXPECT_EQ(with([](auto& page) { page.height = -1; }), kFailureUnreadable);
    EXPECT_EQ(with([](auto& page) { page.channels = 4; }), kFailureUnreadable);
    EXPECT_EQ(with([](auto& page) { page.depth = 1; }), kFailureUnreadable);
    EXPECT_EQ(FailureOf([] {
                  BitmapFromScan(PageOf(1, 1, limits::kMaxSide + 1, 1, QByteArray(10'000, '\0')));
              }),
              kFailureLimit);
}

TEST(TwainAcquire, BringsThePageIntoTheInstance)
{
    FakeScanner scanner;
    FakeLoop loop;
    EngineInstance LEAD1;
    scanner.sources = {{"first", "a", "b", "c"}, {"second", "a", "b", "c"}};
    scanner.page = PageOf(1, 8, 2, 1, "ab");
    LEAD1.SetComment(3, CommentValue(QStringLiteral("kept")));
    EXPECT_EQ(TwainAcquire(LEAD1, scanner, loop), 0);
    EXPECT_EQ(LEAD1.BitmapWidth(), 2);
    EXPECT_EQ(LEAD1.BitmapBits(), 8);
    EXPECT_FALSE(LEAD1.Comment(3).IsEmpty());
    EXPECT_EQ(scanner.acquiredFrom, "first") << "none was selected";
    EXPECT_LE(scanner.acquiredWith.mostPixels, limits::kMaxPixels);

    scanner.Select("second");
    EXPECT_EQ(TwainAcquire(LEAD1, scanner, loop), 0);
    EXPECT_EQ(scanner.acquiredFrom, "second");
    EXPECT_EQ(scanner.searches, 1);
}

TEST(TwainAcquire, TheDriversInterfaceSaysWhatIsWished)
{
    FakeScanner scanner;
    FakeLoop loop;
    EngineInstance LEAD1;
    scanner.Select("it");
    scanner.choices.modes = QStringList{"Color", "Gray"};
    scanner.page = PageOf(1, 8, 1, 1, "a");
    AcquireHooks hooks;
    hooks.ask = [](const ScanChoices& choices, ScanWishes& wishes) {
        wishes.mode = choices.modes.value(1);
        wishes.resolution = 200;
        return true;
    };
    EXPECT_EQ(TwainAcquire(LEAD1, scanner, loop, hooks), 0);
    EXPECT_EQ(scanner.acquiredWith.mode, "Gray");
    EXPECT_EQ(scanner.acquiredWith.resolution, 200);

    hooks.ask = [](const ScanChoices&, ScanWishes&) { return false; };
    EXPECT_EQ(FailureOf([&] { TwainAcquire(LEAD1, scanner, loop, hooks); }), kFailureCancelled);
}

TEST(TwainAcquire, AFailureLeavesTheImage)
{
    FakeScanner scanner;
    FakeLoop loop;
    EngineInstance LEAD1;
    scanner.Select("it");
    scanner.page = PageOf(1, 8, 1, 1, "a");
    TwainAcquire(LEAD1, scanner, loop);
    scanner.trouble = "The paper is jammed.";
    EXPECT_EQ(FailureOf([&] { TwainAcquire(LEAD1, scanner, loop); }), kFailureIo);
    LEAD1.SetMethodErrors(false);
    EXPECT_EQ(TwainAcquire(LEAD1, scanner, loop), kFailureIo);
    EXPECT_EQ(LEAD1.BitmapWidth(), 1);

    FakeScanner none;
    EXPECT_EQ(TwainAcquire(LEAD1, none, loop), kFailureNoFile);
    LEAD1.SetMethodErrors(true);
    EXPECT_EQ(FailureOf([&] { TwainAcquire(LEAD1, none, loop); }), kFailureNoFile);
}

TEST(TwainAcquire, EscCancelsAndProgressIsTold)
{
    FakeScanner scanner;
    FakeLoop loop;
    EngineInstance LEAD1;
    scanner.Select("it");
    scanner.waits = true;
    loop.PressEscAtPoll(3);
    QList<double> parts;
    AcquireHooks hooks;
    hooks.progress = [&](double part) { parts.append(part); };
    EXPECT_EQ(FailureOf([&] { TwainAcquire(LEAD1, scanner, loop, hooks); }), kFailureCancelled);
    EXPECT_GE(parts.size(), 3);
    EXPECT_TRUE(parts.contains(0.5));
    EXPECT_FALSE(LEAD1.HasBitmap());
}

TEST(TwainAcquire, ASecondOneMeanwhileIsRefused)
{
    FakeScanner scanner;
    FakeLoop loop;
    EngineInstance LEAD1, other;
    scanner.Select("it");
    scanner.waits = true;
    scanner.page = PageOf(1, 8, 1, 1, "a");
    qint32 second = 0;
    AcquireHooks hooks;
    hooks.progress = [&](double) {
        if (second == 0) {
            second = FailureOf([&] { TwainAcquire(other, scanner, loop); });
            scanner.letGo.release();
        }
    };
    EXPECT_EQ(TwainAcquire(LEAD1, scanner, loop, hooks), 0);
    EXPECT_EQ(second, kFailureGeneral);
    EXPECT_TRUE(LEAD1.HasBitmap());
    EXPECT_FALSE(other.HasBitmap());
}

TEST(TwainAcquire, AHookThatThrowsEndsTheScan)
{
    FakeScanner scanner;
    FakeLoop loop;
    EngineInstance LEAD1;
    scanner.Select("it");
    scanner.waits = true;
    AcquireHooks hooks;
    hooks.progress = [](double) { throw Failure(77, "Enough."); };
    EXPECT_EQ(FailureOf([&] { TwainAcquire(LEAD1, scanner, loop, hooks); }), 77);
    scanner.waits = false;
    scanner.page = PageOf(1, 8, 1, 1, "a");
    EXPECT_EQ(TwainAcquire(LEAD1, scanner, loop), 0);
}

TEST(TwainAcquire, APageOfTheTestDeviceComesThrough)
{
    const TestScanners sane("mode Color\n");
    DesktopScanner scanner(kScanProgram);
    FakeLoop loop;
    EngineInstance LEAD1;
    EXPECT_EQ(TwainAcquire(LEAD1, scanner, loop), 0);
    EXPECT_EQ(LEAD1.BitmapWidth(), 157);
    EXPECT_EQ(LEAD1.BitmapHeight(), 196);
    EXPECT_EQ(LEAD1.BitmapBits(), 24);
    EXPECT_EQ(LEAD1.Bitmap().Pixels().dotsPerMeterX(), 1969);
}

TEST(TwainSelect, TheChoiceHoldsForTheRun)
{
    FakeScanner scanner;
    FakeLoop loop;
    scanner.sources = {{"first", "a", "b", "c"}, {"second", "a", "b", "c"}};
    QList<ScanSource> shown;
    const auto choose = [&](std::optional<QString> answer) {
        return [&, answer](SourceSearch& search, const QString&) {
            shown.clear();
            QObject::connect(&search, &SourceSearch::Found,
                             [&](const QList<ScanSource>& sources) { shown = sources; });
            while (shown.isEmpty())
                loop.WaitForEvents(1000);
            return answer;
        };
    };
    EXPECT_EQ(TwainSelect(scanner, choose("second")), 0);
    EXPECT_EQ(shown, scanner.sources);
    EXPECT_EQ(scanner.Selected(), "second");
    EXPECT_EQ(TwainSelect(scanner, choose(std::nullopt)), kFailureCancelled);
    EXPECT_EQ(scanner.Selected(), "second");
}

TEST(SourceSearch, TellsWhyThereIsNoAnswerAndCanBeRepeated)
{
    FakeScanner scanner;
    FakeLoop loop;
    scanner.trouble = "Out of order.";
    SourceSearch search(scanner);
    QString failed;
    int found = 0;
    QObject::connect(&search, &SourceSearch::Failed, [&](const QString& words) { failed = words; });
    QObject::connect(&search, &SourceSearch::Found, [&] { ++found; });
    search.Start();
    search.Start();
    while (failed.isEmpty())
        loop.WaitForEvents(1000);
    EXPECT_EQ(failed, "Out of order.");
    EXPECT_FALSE(search.IsRunning());
    scanner.trouble.clear();
    search.Start();
    while (found == 0)
        loop.WaitForEvents(1000);
    EXPECT_EQ(scanner.searches, 2);
}

TEST(SourceSearch, IsCancelledByItsEnd)
{
    FakeScanner scanner;
    scanner.waits = true;
    {
        SourceSearch search(scanner);
        search.Start();
        EXPECT_TRUE(search.IsRunning());
    }
    SUCCEED() << "the search has ended with the object";
}

} // namespace quillane
