// Damaged and malicious files through everything that a save does: loaded, their comments copied,
// saved over themselves and into other formats. Each is saved whole or refused in words, and what
// is refused is as it was.
#include "core/save_support.h"
#include "imaging/comments/slots.h"
#include "imaging/worker/worker_host.h"
#include "metadata/tag_writer.h"
#include <QRegularExpression>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <limits>
#include <mutex>
#include <thread>

namespace quillane {
namespace {

/// So long that only something that never ends is still at it.
constexpr std::chrono::seconds kPatience{120};

/// Calls off loading when patience is at its end.
class Patience {
public:
    Patience() : mThread([this] { Wait(); }) { }
    ~Patience()
    {
        {
            const std::lock_guard lock(mMutex);
            mDone = true;
        }
        mWake.notify_all();
        mThread.join();
    }
    Patience(const Patience&) = delete;
    Patience& operator=(const Patience&) = delete;
    std::atomic<bool> over = false;

private:
    void Wait()
    {
        std::unique_lock lock(mMutex);
        over = !mWake.wait_for(lock, kPatience, [this] { return mDone; });
    }
    std::mutex mMutex;
    std::condition_variable mWake;
    bool mDone = false;
    std::thread mThread;
};

struct Count {
    int files = 0, loaded = 0, saved = 0, refused = 0;
};

/// Number and words of a Failure; 0 when there was none.
template <typename Step> qint32 Attempt(Step&& step, QString& words)
{
    try {
        step();
        return 0;
    } catch (const Failure& failure) {
        words = failure.Description();
        EXPECT_GT(words.size(), 20) << words.toStdString();
        EXPECT_TRUE(words.endsWith(u'.')) << words.toStdString();
        EXPECT_NE(failure.Number(), kFailureCancelled) << "it takes too long";
        return failure.Number();
    }
}

/// Whether a file is a picture with this description (where it carries one at all).
void ExpectWhole(const QString& file, QSize size, const QString& text, bool comments)
{
    QString words;
    LoadedImage loaded;
    EXPECT_EQ(Attempt([&] { loaded = LoadFile(file); }, words), 0) << words.toStdString();
    EXPECT_EQ(loaded.bitmap.Pixels().size(), size);
    EXPECT_FALSE(loaded.bitmap.IsPartial());
    if (comments) {
        EXPECT_EQ(ReadComments(file).At(kDescriptionSlot).Text(), text);
    }
}

constexpr int kTargetCount = 6;

/// only: the one of the targets that is tried besides the file itself, -1 for all.
void SaveEverywhere(const SavePlace& place, const QByteArray& name, const Patience& patience,
                    Count& count, int only = -1)
{
    ++count.files;
    const QString file = place.Path(name);
    const QByteArray before = place.Whole(name);
    EngineInstance lead;
    DecodeRequest request;
    request.cancelled = &patience.over;
    QString words;
    if (Attempt([&] { lead.Load(file, 0, 0, 1, request); }, words) != 0) {
        EXPECT_FALSE(lead.HasBitmap());
        CopyComments(lead, file); // of a file that shows nothing either
        EXPECT_EQ(place.Whole(name), before);
        return;
    }
    ++count.loaded;
    const QSize size = lead.Bitmap().Pixels().size();
    const QString text = QStringLiteral("City=Rome\r\n");
    struct Target {
        const char* name;
        qint16 format;
        bool comments;
    };
    constexpr Target kTargets[kTargetCount] = {{"t.bmp", 6, false}, {"t.gif", 2, true},
                                               {"t.png", 75, true}, {"t.jpg", 98, true},
                                               {"t.tif", 17, true}, {"t.dic", 90, true}};
    for (int i = 0; i < kTargetCount; ++i) {
        if (only >= 0 && only != i) {
            continue;
        }
        const Target& target = kTargets[i];
        SCOPED_TRACE(target.name);
        CopyComments(lead, file);
        lead.SetComment(kDescriptionSlot, text);
        const QString to = place.Path(target.name);
        if (Attempt([&] { lead.Save(to, target.format, 0, 60, kSaveReplace); }, words) == 0) {
            ++count.saved;
            ExpectWhole(to, size, text, target.comments);
            EXPECT_TRUE(RemoveFile(to));
        } else {
            ++count.refused;
            EXPECT_EQ(StatPath(to).type, FileType::Missing);
        }
        EXPECT_EQ(place.Whole(name), before);
    }
    // Over itself, in its own format; the tag editor's way where its name carries tags.
    CopyComments(lead, file);
    lead.SetComment(kDescriptionSlot, text);
    const auto resave = [&] {
        lead.Save(file, lead.InfoFormat(), lead.InfoBits(), kBestQuality, kSaveReplace);
    };
    if (Attempt(resave, words) == 0) {
        ++count.saved;
        ExpectWhole(file, size, text, false);
        const auto tags = [&] {
            WriteTagText(lead, file, text,
                         {lead.InfoFormat(), lead.InfoBits(), kBestQuality, kSaveReplace});
        };
        EXPECT_EQ(Attempt(tags, words), 0) << words.toStdString();
        ExpectWhole(file, size, text, false);
    } else {
        ++count.refused;
        EXPECT_EQ(place.Whole(name), before) << words.toStdString();
    }
    EXPECT_EQ(place.Entries(), QStringList{QString::fromUtf8(name)});
    EXPECT_TRUE(place.Journals().isEmpty());
}

/// Bytes of memory at its highest since the last ResetPeak; 0 where the system does not tell.
qint64 PeakBytes()
{
    for (const QByteArray& line : ReadWholeFile("/proc/self/status", 1 << 20).split('\n')) {
        if (line.startsWith("VmHWM:")) {
            return line.mid(6).trimmed().split(' ').first().toLongLong() * 1024;
        }
    }
    return 0;
}

void ResetPeak()
{
    if (std::FILE* file = std::fopen("/proc/self/clear_refs", "w")) {
        std::fputs("5", file);
        std::fclose(file);
    }
}

void ExpectModest()
{
#ifdef QUILLANE_SANITIZED
    constexpr qint64 kMost = qint64(8) << 30; // its own book-keeping takes memory
#else
    constexpr qint64 kMost = qint64(1) << 30;
#endif
    EXPECT_LT(PeakBytes(), kMost);
}

void UseCodecs()
{
    worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 1);
}

/// Names and contents of the files of a folder.
std::map<QByteArray, QByteArray> FilesOf(const QString& folder)
{
    std::map<QByteArray, QByteArray> files;
    if (StatPath(folder).type == FileType::Folder) {
        ListFolder(folder, [&](DirEntry&& entry) {
            if (entry.type == FileType::Regular) {
                files[entry.name.toUtf8()] = ReadWholeFile(folder + u'/' + entry.name, 1 << 26);
            }
            return true;
        });
    }
    return files;
}

void Report(const Count& count)
{
    std::printf("%d files: %d loaded, %d saves made, %d refused\n", count.files, count.loaded,
                count.saved, count.refused);
}

TEST(HostileSave, EverySampleIsSavedWholeOrRefusedAndStaysAsItWas)
{
    const QString folder = QStringLiteral(QUILLANE_SOURCE_FOLDER "/../shared/samples/hostile");
    if (StatPath(folder).type != FileType::Folder) {
        std::printf("no folder of samples here: nothing to see\n");
        return;
    }
    UseCodecs();
    ResetPeak();
    Count count;
    for (const auto& [name, content] : FilesOf(folder)) {
        SCOPED_TRACE(name.constData());
        const SavePlace place(QuickFolder());
        place.Write(name, content);
        const Patience patience;
        SaveEverywhere(place, name, patience, count);
    }
    Report(count);
    EXPECT_GT(count.files, 0);
    EXPECT_GT(count.saved, 0);
    EXPECT_GT(count.refused, 0);
    ExpectModest();
}

TEST(HostileSave, TruncationsOfEverySampleAtTwentyPlaces)
{
    constexpr int kPlaces = 20;
    UseCodecs();
    ResetPeak();
    Count count;
    int turn = 0;
    for (const auto& [name, content] : FilesOf(QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples"))) {
        for (int part = 0; part < kPlaces; ++part, ++turn) {
            SCOPED_TRACE(testing::Message() << name.constData() << " cut at " << part << "/20");
            const SavePlace place(QuickFolder());
            place.Write(name, content.left(content.size() * part / kPlaces));
            const Patience patience;
            SaveEverywhere(place, name, patience, count, turn % kTargetCount);
        }
    }
    Report(count);
    EXPECT_GT(count.loaded, 0);
    EXPECT_GT(count.saved, 0);
    EXPECT_GT(count.refused, 0);
    ExpectModest();
}

} // namespace
} // namespace quillane
