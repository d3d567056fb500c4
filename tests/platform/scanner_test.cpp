// Scanners through quillane-scan, with SANE's own test device.
#include "core/expect_failure.h"
#include "platform/scanner_support.h"
#include <QProcess>
#include <csignal>
#include <cstring>
#include <gmock/gmock.h>

namespace quillane {

namespace {

const QString kFirst = QStringLiteral("test:0");

// What SANE's own scanning program makes of the same device with the same options.
struct Reference {
    int width = 0, height = 0, most = 1;
    QByteArray magic, rows;
};

Reference ScanWithSane(const QStringList& options)
{
    // Once in some hundred runs that program waits for itself for ever; it is asked again then.
    constexpr int kPatience = 15'000;
    QProcess program;
    program.setStandardErrorFile(QProcess::nullDevice());
    bool ended = false;
    for (int tries = 0; tries < 3 && !ended; ++tries) {
        program.start(QStringLiteral("scanimage"),
                      QStringList{"-d", kFirst, "--format=pnm"} + options);
        ended = program.waitForFinished(kPatience);
        if (!ended) {
            program.kill();
            program.waitForFinished(kPatience);
        }
    }
    EXPECT_TRUE(ended);
    EXPECT_EQ(program.exitCode(), 0);
    const QByteArray all = program.readAllStandardOutput();
    // The header is lines: what it is, a comment, both sizes, and the largest value but for bits.
    Reference page;
    qsizetype at = 0;
    const auto line = [&] {
        const qsizetype end = all.indexOf('\n', at);
        const QByteArray text = all.sliced(at, end - at);
        at = end + 1;
        return text;
    };
    page.magic = line();
    EXPECT_TRUE(line().startsWith('#'));
    const QList<QByteArray> sizes = line().split(' ');
    page.width = sizes.value(0).toInt();
    page.height = sizes.value(1).toInt();
    if (page.magic != "P4")
        page.most = line().toInt();
    page.rows = all.sliced(at);
    return page;
}

// The rows without what may stand behind their pixels, samples in the order of a PNM file.
QByteArray PlainRows(const ScannedPage& page)
{
    const qsizetype line = (qsizetype(page.width) * page.channels * page.depth + 7) / 8;
    QByteArray rows;
    rows.reserve(line * page.height);
    for (qint32 y = 0; y < page.height; ++y)
        rows.append(page.rows.sliced(y * page.bytesPerLine, line));
    if (page.depth == 16) {
        for (qsizetype i = 0; i + 1 < rows.size(); i += 2)
            std::swap(rows[i], rows[i + 1]);
    }
    return rows;
}

QString WordsOfScan(const std::function<void()>& step)
{
    try {
        step();
    } catch (const Failure& failure) {
        return failure.Description();
    }
    return {};
}

QList<pid_t> ChildrenOfThread()
{
    QList<pid_t> pids;
    for (const QByteArray& pid : ReadWholeFile("/proc/thread-self/children", 100'000).split(' ')) {
        if (!pid.trimmed().isEmpty())
            pids.append(pid.trimmed().toInt());
    }
    return pids;
}

// Processes that were started since this was made and are not gone.
class NewChildren {
public:
    QList<pid_t> Now() const
    {
        QList<pid_t> pids = ChildrenOfThread();
        for (const pid_t before : mBefore)
            pids.removeAll(before);
        return pids;
    }

private:
    QList<pid_t> mBefore = ChildrenOfThread();
};

// A program in the place of quillane-scan.
class StandIn {
public:
    explicit StandIn(const QByteArray& script, const QByteArray& bytes = {})
    {
        mFolder.Write("stand-in.bytes", bytes);
        mFolder.Write("stand-in", "#!/bin/sh\n" + script);
        mFolder.Chmod("stand-in", 0755);
    }
    /// One that sends bytes and goes.
    static StandIn Sends(const QByteArray& bytes)
    {
        return StandIn("cat \"$0.bytes\" >&3\n", bytes);
    }
    DesktopScanner Scanner(ScanPatience patience = {}) const
    {
        return DesktopScanner(mFolder.Path("stand-in"), patience);
    }

private:
    TempFolder mFolder;
};

QByteArray Message(scan::Kind kind, const QByteArray& bytes)
{
    const scan::Head head{scan::kMark, kind, quint32(bytes.size())};
    return QByteArray(reinterpret_cast<const char*>(&head), sizeof head) + bytes;
}

QByteArray PageMessage(const scan::PageHead& head)
{
    return Message(scan::Kind::Page, QByteArray(reinterpret_cast<const char*>(&head), sizeof head));
}

} // namespace

TEST(DesktopScanner, ListsTheScannersThatAnswer)
{
    const TestScanners sane;
    const QList<ScanSource> sources = DesktopScanner(kScanProgram).Sources();
    ASSERT_EQ(sources.size(), 2);
    EXPECT_EQ(sources[0].name, "test:0");
    EXPECT_EQ(sources[1].name, "test:1");
    EXPECT_EQ(sources[0].vendor, "Noname");
    EXPECT_EQ(sources[0].Title(), "Noname frontend-tester");
    EXPECT_FALSE(sources[0].kind.isEmpty());
    EXPECT_EQ((ScanSource{"a:1", " ", "", ""}).Title(), "a:1");
}

TEST(DesktopScanner, TellsWhatCanBeChosen)
{
    const TestScanners sane;
    const ScanChoices choices = DesktopScanner(kScanProgram).Choices(kFirst);
    EXPECT_EQ(choices.modes, (QStringList{"Gray", "Color"}));
    EXPECT_EQ(choices.mode, "Gray");
    EXPECT_EQ(choices.feeds, (QStringList{"Flatbed", "Automatic Document Feeder"}));
    EXPECT_EQ(choices.feed, "Flatbed");
    EXPECT_TRUE(choices.resolutions.isEmpty());
    EXPECT_EQ(choices.leastResolution, 1);
    EXPECT_EQ(choices.mostResolution, 1200);
    EXPECT_EQ(choices.resolution, 50);
    EXPECT_EQ(choices.width, 200);
    EXPECT_EQ(choices.height, 200);
}

TEST(DesktopScanner, PagesArriveExactly)
{
    const TestScanners sane;
    struct Case {
        const char* mode;
        int depth, channels;
        const char* magic;
        int most;
    };
    const Case cases[] = {{"Gray", 1, 1, "P4", 1},
                          {"Gray", 8, 1, "P5", 255},
                          {"Gray", 16, 1, "P5", 65535},
                          {"Color", 8, 3, "P6", 255},
                          {"Color", 16, 3, "P6", 65535}};
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::Message() << row.mode << " " << row.depth);
        ScanWishes wishes;
        wishes.mode = row.mode;
        wishes.depth = row.depth;
        wishes.resolution = 73;
        const ScannedPage page = DesktopScanner(kScanProgram).Acquire(kFirst, wishes);
        const Reference reference = ScanWithSane(
            {"--mode", row.mode, "--depth", QString::number(row.depth), "--resolution", "73"});
        EXPECT_EQ(reference.magic, row.magic);
        EXPECT_EQ(reference.most, row.most);
        EXPECT_EQ(page.width, reference.width);
        EXPECT_EQ(page.height, reference.height);
        EXPECT_EQ(page.channels, row.channels);
        EXPECT_EQ(page.depth, row.depth);
        EXPECT_EQ(page.xResolution, 73);
        EXPECT_EQ(page.yResolution, 73);
        const QByteArray rows = PlainRows(page);
        ASSERT_EQ(rows.size(), reference.rows.size());
        EXPECT_TRUE(rows == reference.rows);
        EXPECT_NE(rows.count(rows[0]), rows.size()) << "the pattern is no plain colour";
    }
}

TEST(DesktopScanner, TheAreaIsThatWhichIsWished)
{
    const TestScanners sane;
    ScanWishes wishes;
    wishes.mode = "Color";
    wishes.left = 10;
    wishes.top = 20;
    wishes.right = 60;
    wishes.bottom = 50;
    wishes.resolution = 100;
    const ScannedPage page = DesktopScanner(kScanProgram).Acquire(kFirst, wishes);
    const Reference reference = ScanWithSane(
        {"--mode", "Color", "--resolution", "100", "-l", "10", "-t", "20", "-x", "50", "-y", "30"});
    EXPECT_EQ(page.width, reference.width);
    EXPECT_EQ(page.height, reference.height);
    EXPECT_TRUE(PlainRows(page) == reference.rows);
}

TEST(DesktopScanner, ThreePassesBecomeOnePage)
{
    for (const char* order : {"RGB", "BRG", "GBR"}) {
        for (const int depth : {8, 16}) {
            SCOPED_TRACE(testing::Message() << order << depth);
            const TestScanners sane(QByteArray("three-pass true\nthree-pass-order ") + order);
            ScanWishes wishes;
            wishes.mode = "Color";
            wishes.depth = depth;
            const ScannedPage page = DesktopScanner(kScanProgram).Acquire(kFirst, wishes);
            // SANE's own program does not put three passes of 16 bits together.
            const Reference reference =
                ScanWithSane({"--mode", "Color", "--depth", QString::number(depth),
                              depth == 8 ? "--three-pass=yes" : "--three-pass=no"});
            EXPECT_EQ(page.channels, 3);
            EXPECT_EQ(page.height, reference.height);
            EXPECT_TRUE(PlainRows(page) == reference.rows);
        }
    }
}

TEST(DesktopScanner, APageWhoseHeightIsNotKnownEndsWithItsRows)
{
    const TestScanners sane("hand-scanner true\n");
    ScanWishes wishes;
    wishes.mode = "Color";
    double last = 0;
    const ScannedPage page = DesktopScanner(kScanProgram).Acquire(kFirst, wishes, [&](double part) {
        last = part;
        return true;
    });
    EXPECT_EQ(last, -1);
    const Reference reference = ScanWithSane({"--mode", "Color", "--hand-scanner=yes"});
    EXPECT_EQ(page.width, reference.width);
    EXPECT_EQ(page.height, reference.height);
    EXPECT_TRUE(PlainRows(page) == reference.rows);
}

TEST(DesktopScanner, LinesWithBytesBehindThePixelsAreUnderstood)
{
    const TestScanners sane("ppl-loss 7\n");
    ScanWishes wishes;
    wishes.mode = "Color";
    const ScannedPage page = DesktopScanner(kScanProgram).Acquire(kFirst, wishes);
    const Reference reference = ScanWithSane({"--mode", "Color", "--ppl-loss", "7"});
    EXPECT_EQ(page.width, reference.width);
    EXPECT_GT(page.bytesPerLine, page.width * 3);
    EXPECT_TRUE(PlainRows(page).size() == reference.width * reference.height * 3);
}

TEST(DesktopScanner, ProgressGrowsToTheEnd)
{
    const TestScanners sane;
    ScanWishes wishes;
    wishes.mode = "Color";
    wishes.resolution = 300;
    QList<double> parts;
    DesktopScanner(kScanProgram).Acquire(kFirst, wishes, [&](double part) {
        parts.append(part);
        return true;
    });
    ASSERT_GT(parts.size(), 2);
    parts.removeAll(-1);
    EXPECT_TRUE(std::is_sorted(parts.cbegin(), parts.cend()));
    EXPECT_DOUBLE_EQ(parts.constLast(), 1);
}

TEST(DesktopScanner, ASourceThatFailsSaysSo)
{
    const NewChildren children;
    struct Case {
        const char* status;
        qint32 number;
        const char* words;
    };
    const Case cases[] = {
        {"SANE_STATUS_DEVICE_BUSY", kFailureIo, "busy"},
        {"SANE_STATUS_JAMMED", kFailureIo, "jammed"},
        {"SANE_STATUS_NO_DOCS", kFailureIo, "no paper"},
        {"SANE_STATUS_COVER_OPEN", kFailureIo, "cover"},
        {"SANE_STATUS_IO_ERROR", kFailureIo, "connection"},
        {"SANE_STATUS_NO_MEM", kFailureLimit, "memory"},
        {"SANE_STATUS_ACCESS_DENIED", kFailureDenied, "permission"},
        {"SANE_STATUS_UNSUPPORTED", kFailureIo, "driver says"},
        {"SANE_STATUS_INVAL", kFailureIo, "driver says"},
        {"SANE_STATUS_CANCELLED", kFailureCancelled, "cancelled"},
        {"SANE_STATUS_EOF", kFailureIo, "no picture"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.status);
        const TestScanners sane(QByteArray("read-status-code \"") + row.status + "\"\n");
        DesktopScanner scanner(kScanProgram);
        EXPECT_EQ(FailureOf([&] { scanner.Acquire(kFirst, {}); }), row.number);
        EXPECT_TRUE(WordsOfScan([&] { scanner.Acquire(kFirst, {}); }).contains(row.words));
        EXPECT_TRUE(children.Now().isEmpty());
    }
}

TEST(DesktopScanner, AScannerThatIsNotThereAndAWishItDoesNotTakeAreTold)
{
    const TestScanners sane;
    DesktopScanner scanner(kScanProgram);
    EXPECT_EQ(FailureOf([&] { scanner.Acquire("test:7", {}); }), kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { scanner.Choices("nosuch:0"); }), kFailureNoFile);
    EXPECT_TRUE(WordsOfScan([&] { scanner.Acquire("test:7", {}); }).contains("\"test:7\""));
    ScanWishes wishes;
    wishes.mode = "Sepia";
    EXPECT_EQ(FailureOf([&] { scanner.Acquire(kFirst, wishes); }), kFailureGeneral);
    EXPECT_TRUE(WordsOfScan([&] { scanner.Acquire(kFirst, wishes); }).contains("\"mode\""));
}

TEST(DesktopScanner, APageComesFromTheFeeder)
{
    const TestScanners sane;
    ScanWishes wishes;
    wishes.feed = "Automatic Document Feeder";
    wishes.resolution = 10;
    EXPECT_GT(DesktopScanner(kScanProgram).Acquire(kFirst, wishes).height, 0);
}

TEST(DesktopScanner, CancellingEndsTheScan)
{
    const NewChildren children;
    const TestScanners sane("read-delay true\nread-delay-duration 1000\n");
    ScanWishes wishes;
    wishes.mode = "Color";
    wishes.resolution = 600;
    int told = 0;
    const auto progress = [&](double part) { return part <= 0 || ++told < 3; };
    EXPECT_EQ(FailureOf([&] { DesktopScanner(kScanProgram).Acquire(kFirst, wishes, progress); }),
              kFailureCancelled);
    EXPECT_EQ(told, 3);
    EXPECT_TRUE(children.Now().isEmpty());
    // And the next one finds a scanner.
    EXPECT_GT(DesktopScanner(kScanProgram).Acquire(kFirst, {}).height, 0);
}

TEST(DesktopScanner, AProgramThatIsKilledInMidScanCostsAMessage)
{
    const NewChildren children;
    const TestScanners sane("read-delay true\nread-delay-duration 1000\n");
    ScanWishes wishes;
    wishes.mode = "Color";
    wishes.resolution = 600;
    DesktopScanner scanner(kScanProgram);
    QString words;
    qint32 number = 0;
    try {
        scanner.Acquire(kFirst, wishes, [&](double part) {
            if (part > 0) {
                for (const pid_t child : children.Now())
                    kill(child, SIGKILL);
            }
            return true;
        });
    } catch (const Failure& failure) {
        words = failure.Description();
        number = failure.Number();
    }
    EXPECT_EQ(number, kFailureWorker);
    EXPECT_TRUE(words.contains("crashed (signal 9)")) << words.toStdString();
    EXPECT_TRUE(children.Now().isEmpty());
    EXPECT_GT(scanner.Acquire(kFirst, {}).height, 0);
}

TEST(DesktopScanner, ADriverThatCrashesEndsOrHangsCostsAMessage)
{
    const NewChildren children;
    const ScanPatience little{200, 200};
    const StandIn crashes("kill -SEGV $$\n"), ends("exit 0\n"), hangs("exec tail -f /dev/null\n"),
        leavesAChild("tail -f /dev/null & kill -SEGV $$\n");
    DesktopScanner crashing = crashes.Scanner(), ending = ends.Scanner(),
                   hanging = hangs.Scanner(little), leaving = leavesAChild.Scanner();
    for (DesktopScanner* scanner : {&crashing, &ending, &hanging, &leaving}) {
        EXPECT_EQ(FailureOf([&] { scanner->Sources(); }), kFailureWorker);
        EXPECT_EQ(FailureOf([&] { scanner->Choices("a"); }), kFailureWorker);
        EXPECT_EQ(FailureOf([&] { scanner->Acquire("a", {}); }), kFailureWorker);
        EXPECT_TRUE(children.Now().isEmpty());
    }
    EXPECT_TRUE(WordsOfScan([&] { crashing.Sources(); }).contains("signal 11"));
    EXPECT_TRUE(WordsOfScan([&] { hanging.Sources(); }).contains("does not answer"));
    EXPECT_EQ(FailureOf([&] { hanging.Sources([](double) { return false; }); }), kFailureCancelled);
    DesktopScanner missing("/nowhere/quillane-scan");
    EXPECT_EQ(FailureOf([&] { missing.Sources(); }), kFailureWorker);
    EXPECT_TRUE(WordsOfScan([&] { missing.Sources(); }).contains("not there"));
}

TEST(DesktopScanner, NothingThatADriverSendsIsBelieved)
{
    scan::PageHead good;
    good.channels = 3;
    good.depth = 8;
    good.width = 2;
    good.lines = 1;
    good.bytesPerLine = 6;
    const auto with = [&](auto&& change) {
        scan::PageHead head = good;
        change(head);
        return PageMessage(head);
    };
    const QByteArray rows = Message(scan::Kind::Rows, "123456");
    const QByteArray done = Message(scan::Kind::Done, {});
    scan::Head huge;
    huge.kind = scan::Kind::Rows;
    huge.size = 0xFFFFFFFF;
    const QByteArray bad[] = {
        "garbage that is longer than a head",
        QByteArray(reinterpret_cast<const char*>(&huge), sizeof huge),
        with([](auto& head) { head.channels = 2; }) + rows + done,
        with([](auto& head) { head.depth = 1; }) + rows + done,
        with([](auto& head) { head.depth = 12; }) + rows + done,
        with([](auto& head) { head.width = -1; }) + rows + done,
        with([](auto& head) { head.width = 0x7FFFFFFF; }) + rows + done,
        with([](auto& head) { head.bytesPerLine = 5; }) + rows + done,
        with([](auto& head) { head.bytesPerLine = -6; }) + rows + done,
        with([](auto& head) { head.bytesPerLine = qint64(1) << 62; }) + rows + done,
        with([](auto& head) { head.lines = 0x7FFFFFFF; }) + rows + done,
        PageMessage(good) + PageMessage(good) + rows + done,
        PageMessage(good) + done,
        PageMessage(good) + rows,
        rows + done,
        done,
        Message(scan::Kind::Page, "short") + done,
        Message(scan::Kind::Failed, "x"),
        Message(scan::Kind::Source, "a") + done,
        Message(scan::Kind(99), {}) + done,
    };
    for (const QByteArray& bytes : bad) {
        SCOPED_TRACE(std::size_t(&bytes - bad));
        EXPECT_NE(FailureOf([&] { StandIn::Sends(bytes).Scanner().Acquire("a", {}); }), 0);
    }
    const ScannedPage page =
        StandIn::Sends(PageMessage(good) + rows + done).Scanner().Acquire("a", {});
    EXPECT_EQ(page.rows, "123456");
    EXPECT_EQ(page.height, 1);

    // More rows than were announced, without end.
    ScanWishes few;
    few.mostPixels = 10;
    const QByteArray endless =
        with([](auto& head) { head.lines = -1; }) + rows + rows + rows + rows + rows + rows + done;
    EXPECT_EQ(FailureOf([&] { StandIn::Sends(endless).Scanner().Acquire("a", few); }),
              kFailureLimit);
    for (const QByteArray& texts : {QByteArray("a"), QByteArray("a\0b\0c\0", 6)}) {
        EXPECT_EQ(FailureOf([&] {
                      StandIn::Sends(Message(scan::Kind::Source, texts) + done).Scanner().Sources();
                  }),
                  kFailureWorker);
    }
}

TEST(DesktopScanner, APageThatIsTooLargeIsRefusedBeforeItIsScanned)
{
    const TestScanners sane;
    ScanWishes wishes;
    wishes.resolution = 1200;
    wishes.mostPixels = 1'000'000;
    bool any = false;
    EXPECT_EQ(FailureOf([&] {
                  DesktopScanner(kScanProgram).Acquire(kFirst, wishes, [&](double part) {
                      any = any || part > 0;
                      return true;
                  });
              }),
              kFailureLimit);
    EXPECT_FALSE(any);
}

} // namespace quillane
