// Saves of whole pictures onto disks that fail.
#include "save_fault_support.h"
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <sys/resource.h>

namespace quillane {
namespace {

/// A device that takes so many bytes and then fails.
SaveProbe FaultDevice(qint64 room, int error)
{
    auto left = std::make_shared<qint64>(room);
    return [left, error](SaveStep step, qint64& bytes) {
        if (step != SaveStep::Write) {
            return 0;
        }
        bytes = std::min(bytes, *left);
        *left -= bytes;
        return bytes == 0 ? error : 0;
    };
}

/// Bytes that a save of this picture writes, all told, and how often it asks the disk for
/// something.
struct FaultMeasure {
    qint64 bytes = 0;
    int steps = 0;
};
FaultMeasure MeasureSave(const FaultKind& kind, bool linked)
{
    const FaultPlace place(kind);
    if (linked) {
        place.HardLink(place.Name(), "second");
    }
    ChangedPicture picture(kind, place.File());
    FaultMeasure measure;
    const SaveProbeScope scope([&](SaveStep step, qint64& bytes) {
        ++measure.steps;
        measure.bytes += step == SaveStep::Write ? bytes : 0;
        return 0;
    });
    QString words;
    EXPECT_EQ(picture.Save(words), 0) << words.toStdString();
    return measure;
}

/// Places where something of a file begins or ends: marks, headers, pages of memory, the last
/// bytes.
std::vector<qint64> TellingPlaces(qint64 size)
{
    std::vector<qint64> places = {0, 1, 2, 4, 8, 14, 20, 33, 54, 128, 132, 512, 1024};
    constexpr qint64 kPage = 4096;
    const qint64 last = size / kPage * kPage;
    for (const qint64 edge : {kPage, size / 2 / kPage * kPage, last}) {
        places.insert(places.end(), {edge - 1, edge, edge + 1});
    }
    places.push_back(size - 1);
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    std::erase_if(places, [size](qint64 at) { return at < 0 || at >= size; });
    return places;
}

class SaveFaultEach : public testing::TestWithParam<FaultKind> { };

TEST_P(SaveFaultEach, AfterHoweverManyBytesTheDeviceFailsTheOldFileStandsAndTheWordsHelp)
{
    const FaultKind& kind = GetParam();
    const qint64 size = MeasureSave(kind, false).bytes;
    const FaultPlace place(kind);
    const QByteArray old = place.FileBytes();
    const FileStat before = StatPath(place.File());
    ChangedPicture picture(kind, place.File());
    const QSize shape = picture.lead.Bitmap().Pixels().size();
    struct Case {
        int error;
        const char* words;
    };
    constexpr Case kCases[] = {
        {ENOSPC, "the disk is full. Make room there, or save it in another place."},
        {EIO, "the system reports an error of reading or writing (5). Save it in another place."},
    };
    for (const Case& one : kCases) {
        for (const qint64 room : TellingPlaces(size)) {
            SCOPED_TRACE(testing::Message() << room << " of " << size << " bytes");
            const SaveProbeScope scope(FaultDevice(room, one.error));
            QString words;
            EXPECT_EQ(picture.Save(words), kFailureIo);
            EXPECT_EQ(words,
                      QStringLiteral("Cannot write \"%1\": %2")
                          .arg(QString::fromUtf8(place.Name()), QLatin1String(one.words)));
            ExpectHelpful(words, place.Name());
            EXPECT_EQ(place.FileBytes(), old);
            EXPECT_TRUE(SameFileState(StatPath(place.File()), before));
            ExpectAlone(place, {QString::fromUtf8(place.Name())});
        }
    }
    // The picture in memory has come to no harm: with room for all of it, it is saved.
    const SaveProbeScope scope(FaultDevice(size, ENOSPC));
    QString words;
    EXPECT_EQ(picture.Save(words), 0) << words.toStdString();
    ExpectSaved(kind, place.File(), shape);
    ExpectAlone(place, {QString::fromUtf8(place.Name())});
}

TEST_P(SaveFaultEach, WhicheverStepFailsTheOldFileOrTheNewOneStandsWhole)
{
    const FaultKind& kind = GetParam();
    for (const bool linked : {false, true}) {
        const int steps = MeasureSave(kind, linked).steps;
        ASSERT_GE(steps, 4);
        for (int failing = 0; failing < steps; ++failing) {
            for (const bool forGood : {false, true}) {
                SCOPED_TRACE(testing::Message() << "step " << failing << (linked ? " linked" : "")
                                                << (forGood ? " for good" : ""));
                const FaultPlace place(kind);
                QStringList names{QString::fromUtf8(place.Name())};
                if (linked) {
                    place.HardLink(place.Name(), "second");
                    names.append(QStringLiteral("second"));
                }
                const QByteArray old = place.FileBytes();
                ChangedPicture picture(kind, place.File());
                const QSize shape = picture.lead.Bitmap().Pixels().size();
                qint32 failure = 0;
                QString words;
                {
                    int step = 0;
                    const SaveProbeScope scope([&](SaveStep, qint64&) {
                        const int now = step++;
                        return now == failing || (forGood && now > failing) ? EIO : 0;
                    });
                    failure = picture.Save(words);
                }
                const CrashCleanUp done = CleanUpAfterCrash();
                EXPECT_TRUE(done.kept.isEmpty());
                ExpectAlone(place, names);
                if (failure != 0) {
                    EXPECT_TRUE(words.contains(QString::fromUtf8(place.Name())));
                }
                if (failure != 0 && done.finished == 0) {
                    EXPECT_EQ(place.FileBytes(), old);
                } else {
                    ExpectSaved(kind, place.File(), shape);
                }
                if (linked) {
                    EXPECT_EQ(place.Whole("second"), place.FileBytes());
                    EXPECT_EQ(place.LinkCount(place.Name()), 2u);
                }
            }
        }
    }
}

TEST_P(SaveFaultEach, WithoutTheLastByteOfASaveOverAFileOfTwoNamesBothAreAsTheyWere)
{
    const FaultKind& kind = GetParam();
    const qint64 size = MeasureSave(kind, true).bytes;
    for (const qint64 room : {qint64(0), size / 3, size / 2, size - 4097, size - 1}) {
        SCOPED_TRACE(testing::Message() << room << " of " << size << " bytes");
        const FaultPlace place(kind);
        place.HardLink(place.Name(), "second");
        const QByteArray old = place.FileBytes();
        ChangedPicture picture(kind, place.File());
        {
            const SaveProbeScope scope(FaultDevice(room, ENOSPC));
            QString words;
            EXPECT_EQ(picture.Save(words), kFailureIo);
            EXPECT_TRUE(words.contains(QStringLiteral("the disk is full"))) << words.toStdString();
            EXPECT_TRUE(words.contains(QString::fromUtf8(place.Name())));
        }
        CleanUpAfterCrash(); // on a disk that has room again
        EXPECT_EQ(place.FileBytes(), old);
        EXPECT_EQ(place.Whole("second"), old);
        EXPECT_EQ(place.LinkCount(place.Name()), 2u);
        ExpectAlone(place, {QString::fromUtf8(place.Name()), QStringLiteral("second")});
    }
}

TEST_P(SaveFaultEach, ANewFileThatDoesNotFitLeavesNothing)
{
    const FaultKind& kind = GetParam();
    const qint64 size = MeasureSave(kind, false).bytes;
    const FaultPlace place(kind);
    ChangedPicture picture(kind, place.File());
    for (const qint32 mode : {kSaveReplace, kSaveAppend, kSaveCreate}) {
        for (const qint64 room : {qint64(0), size / 2}) {
            const SaveProbeScope scope(FaultDevice(room, ENOSPC));
            QString words;
            EXPECT_EQ(picture.Save(words, place.Path("new"), mode), kFailureIo);
            ExpectHelpful(words, "new");
            ExpectAlone(place, {QString::fromUtf8(place.Name())});
        }
    }
}

std::string FaultKindName(const testing::TestParamInfo<FaultKind>& info)
{
    std::string name = info.param.sample;
    std::erase_if(name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
    return name;
}
INSTANTIATE_TEST_SUITE_P(Kinds, SaveFaultEach, testing::ValuesIn(kFaultKinds), FaultKindName);

/// Files of this process grow no larger while it lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        mOldSignal = std::signal(SIGXFSZ, SIG_IGN);
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &mBefore), 0);
        const rlimit now{bytes, mBefore.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &now), 0);
    }
    ~FileSizeLimit()
    {
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &mBefore), 0);
        std::signal(SIGXFSZ, mOldSignal);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit mBefore{};
    void (*mOldSignal)(int) = nullptr;
};

TEST(SaveFault, TheSystemsOwnLimitOfAFilesSizeIsADeviceThatFails)
{
    for (const FaultKind& kind : kFaultKinds) {
        if (QByteArray(kind.sample).endsWith("TIF") || QByteArray(kind.sample).endsWith("dic")) {
            continue; // their pictures travel in memory that the limit holds for too
        }
        SCOPED_TRACE(kind.sample);
        const qint64 size = MeasureSave(kind, false).bytes;
        const FaultPlace place(kind);
        const QByteArray old = place.FileBytes();
        ChangedPicture picture(kind, place.File());
        for (const qint64 room : {qint64(1), qint64(1000), size - 1}) {
            QString words;
            qint32 failure = 0;
            {
                const FileSizeLimit limit{rlim_t(room)};
                failure = picture.Save(words);
            }
            EXPECT_EQ(failure, kFailureIo);
            EXPECT_TRUE(words.contains(QStringLiteral("takes no file of that size")))
                << words.toStdString();
            ExpectHelpful(words, place.Name());
            EXPECT_EQ(place.FileBytes(), old);
            ExpectAlone(place, {QString::fromUtf8(place.Name())});
        }
    }
}

TEST(SaveFault, TheInnermostProbeCountsAndOnlyWhileItLives)
{
    const SavePlace place(QuickFolder());
    int outer = 0, inner = 0;
    const auto count = [](int& to) {
        return [&to](SaveStep, qint64&) {
            ++to;
            return 0;
        };
    };
    {
        const SaveProbeScope first(count(outer));
        {
            const SaveProbeScope second(count(inner));
            WriteWholeFile(place.Path("a"), "x");
            EXPECT_EQ(outer, 0);
            EXPECT_GT(inner, 0);
        }
        inner = 0;
        WriteWholeFile(place.Path("a"), "y");
        EXPECT_GT(outer, 0);
    }
    outer = 0;
    WriteWholeFile(place.Path("a"), "z");
    EXPECT_EQ(outer + inner, 0);
}

} // namespace
} // namespace quillane
