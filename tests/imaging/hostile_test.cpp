// Damaged and malicious files: refused with words or shown in part, never a crash, a hang or a
// hunger for memory. What the decoding process reads has its own tests.
#include "codec_support_for_tests.h"
#include "core/native_path.h"
#include "imaging/limits.h"
#include "picture_maker.h"
#include <QMap>
#include <QStringList>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <iostream>
#include <limits>
#include <mutex>
#include <random>
#include <thread>

namespace quillane {

namespace {

const QString kHostileSamples = QStringLiteral(QUILLANE_SOURCE_FOLDER "/../shared/samples");
/// So long that only something that never ends is still at it.
constexpr std::chrono::seconds kHostilePatience{60};

/// Calls off what is still running when patience is at its end.
class HostileWatch {
public:
    HostileWatch() : mThread([this] { Watch(); }) { }
    ~HostileWatch()
    {
        {
            const std::lock_guard lock(mMutex);
            mDone = true;
        }
        mWake.notify_all();
        mThread.join();
    }
    std::atomic<bool> expired = false;

private:
    void Watch()
    {
        std::unique_lock lock(mMutex);
        if (!mWake.wait_for(lock, kHostilePatience, [this] { return mDone; })) {
            expired = true;
        }
    }
    std::mutex mMutex;
    std::condition_variable mWake;
    bool mDone = false;
    std::thread mThread;
};

/// Bytes of memory at its highest since ResetPeakMemory; 0 where the system does not tell.
qint64 PeakMemory()
{
    qint64 peak = 0;
    for (const QByteArray& line : ReadWholeFile("/proc/self/status", 1 << 20).split('\n')) {
        if (line.startsWith("VmHWM:")) {
            peak = line.mid(6).trimmed().split(' ').first().toLongLong() * 1024;
        }
    }
    return peak;
}

void ResetPeakMemory()
{
    if (std::FILE* file = std::fopen("/proc/self/clear_refs", "w")) {
        std::fputs("5", file);
        std::fclose(file);
    }
}

/// Under a sanitizer, whose own book-keeping takes memory, nothing is expected.
void ExpectModestMemory()
{
#ifdef QUILLANE_SANITIZED
    constexpr qint64 kMost = std::numeric_limits<qint64>::max();
#else
    constexpr qint64 kMost = qint64(512) << 20;
#endif
    EXPECT_LT(PeakMemory(), kMost);
}

struct HostileCount {
    int refused = 0, partial = 0, whole = 0;
};

/// Probes and decodes; anything but a Failure with words or a picture of sane size is a failure
/// of the test.
void HostileTry(const QByteArray& bytes, const QString& file, const std::string& name,
                HostileCount& count, const std::atomic<bool>* cancelled)
{
    const QString extension = file.section('.', -1);
    const Codec* codec =
        FindCodec(QByteArrayView(bytes).first(std::min<qsizetype>(512, bytes.size())), extension);
    if (!codec || codec->inWorker) {
        return;
    }
    MemorySource source(bytes);
    DecodeRequest request;
    request.cancelled = cancelled;
    const making::Refusal facts = making::RefusalOf([&] { codec->probe(source); });
    if (facts.number != 0) {
        EXPECT_TRUE(facts.words.startsWith("This ") && facts.words.endsWith("."))
            << name << ": " << facts.words.toStdString();
    }
    for (const QSize atLeast : {QSize(), QSize(64, 64)}) {
        request.atLeast = atLeast;
        Bitmap bitmap;
        const making::Refusal refusal =
            making::RefusalOf([&] { bitmap = codec->decode(source, request); });
        EXPECT_NE(refusal.number, kFailureCancelled) << name << " takes too long";
        if (refusal.number != 0) {
            ++count.refused;
            EXPECT_TRUE(refusal.words.startsWith("This ") && refusal.words.endsWith("."))
                << name << ": " << refusal.words.toStdString();
            continue;
        }
        ++(bitmap.IsPartial() ? count.partial : count.whole);
        EXPECT_FALSE(bitmap.IsNull()) << name;
        EXPECT_LE(qint64(bitmap.Width()) * bitmap.Height(), limits::kMaxPixels);
        const QImage shown = bitmap.ToDisplay();
        EXPECT_EQ(shown.size(), bitmap.Pixels().size()) << name;
    }
}

QMap<QString, QByteArray> HostileFiles(const QStringList& folders)
{
    QMap<QString, QByteArray> files;
    for (const QString& folder : folders) {
        const QString path = kHostileSamples + "/" + folder;
        if (StatPath(path).type != FileType::Folder) {
            continue;
        }
        ListFolder(path, [&](DirEntry&& entry) {
            if (entry.type == FileType::Regular) {
                files.insert(folder + "/" + entry.name,
                             ReadWholeFile(path + "/" + entry.name, 64 << 20));
            }
            return true;
        });
    }
    return files;
}

TEST(HostileFiles, EverySampleIsRefusedOrShownWithinItsLimits)
{
    const QMap<QString, QByteArray> files = HostileFiles({"hostile"});
    if (StatPath(kHostileSamples).type != FileType::Folder) {
        std::cout << "no folder of samples here: nothing to see\n";
        return;
    }
    ASSERT_GT(files.size(), 0);
    ResetPeakMemory();
    HostileCount count;
    const HostileWatch watch;
    for (auto i = files.begin(); i != files.end(); ++i) {
        HostileTry(i.value(), i.key(), i.key().toStdString(), count, &watch.expired);
    }
    std::cout << files.size() << " files: " << count.refused << " refused, " << count.partial
              << " partial, " << count.whole << " whole\n";
    EXPECT_GT(count.refused, 0);
    ExpectModestMemory();
}

TEST(HostileFiles, TruncationsOfEverySampleAtTwentyPlaces)
{
    QMap<QString, QByteArray> files = HostileFiles({"exif", "formats", "hostile"});
    files.insert(making::MadePictures());
    ASSERT_GT(files.size(), 0);
    ResetPeakMemory();
    HostileCount count;
    const HostileWatch watch;
    for (auto i = files.begin(); i != files.end(); ++i) {
        for (int part = 0; part < 20; ++part) {
            HostileTry(i.value().left(i.value().size() * part / 20), i.key(),
                       i.key().toStdString() + " cut at " + std::to_string(part) + "/20", count,
                       &watch.expired);
        }
    }
    std::cout << files.size() << " files: " << count.refused << " refused, " << count.partial
              << " partial, " << count.whole << " whole\n";
    EXPECT_GT(count.refused, 0);
    EXPECT_GT(count.partial, 0);
    ExpectModestMemory();
}

TEST(HostileFiles, DamagedBytesOfEveryMadePicture)
{
    const QMap<QString, QByteArray> files = making::MadePictures();
    HostileCount count;
    const HostileWatch watch;
    std::mt19937 chance(20240611); // the same damage at every run
    for (auto i = files.begin(); i != files.end(); ++i) {
        for (int round = 0; round < 60; ++round) {
            QByteArray bytes = i.value();
            const int wounds = 1 + int(chance() % 8);
            for (int wound = 0; wound < wounds; ++wound) {
                // The headers stand at the beginning, where half of the wounds go.
                const size_t reach = chance() % 2 ? size_t(bytes.size())
                                                  : size_t(std::min<qsizetype>(bytes.size(), 64));
                const qsizetype at = qsizetype(chance() % reach);
                bytes[at] = chance() % 3 == 0 ? '\xff' : char(chance());
            }
            HostileTry(bytes, i.key(), i.key().toStdString() + " round " + std::to_string(round),
                       count, &watch.expired);
        }
    }
    std::cout << count.refused << " refused, " << count.partial << " partial, " << count.whole
              << " whole\n";
    EXPECT_GT(count.refused, 0);
    EXPECT_GT(count.whole, 0);
}

} // namespace

} // namespace quillane
