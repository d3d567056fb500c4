#include "browser/folder_reading.h"
#include "core/folder_listing.h"
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace quillane {

namespace {

constexpr std::chrono::milliseconds kReadingWait{4};

struct FolderReading {
    std::mutex mutex;
    std::condition_variable read;
    std::optional<FolderFiles> files;
    std::atomic<bool> stop = false;
};

void ReadOnOtherThread(const FolderQuestion& question, FolderReading& reading)
{
    FolderListing listing;
    listing.Read(question.folder, question.deep, [&] { return !reading.stop; });
    FolderFiles files;
    files.folder = listing.Folder();
    files.names = listing.Names(question.filter);
    for (const QString& mask : question.masks) {
        files.filesOfMasks.push_back(listing.Paths(mask));
    }
    const std::lock_guard lock(reading.mutex);
    reading.files = std::move(files);
    reading.read.notify_all();
}

} // namespace

std::optional<FolderFiles> ReadFolderFiles(const FolderQuestion& question, UiLoop& loop,
                                           Generation generation)
{
    const auto reading = std::make_shared<FolderReading>();
    // It may hang on a dead disk, so nobody waits for its end.
    std::thread([reading, question] { ReadOnOtherThread(question, *reading); }).detach();
    for (;;) {
        {
            std::unique_lock lock(reading->mutex);
            if (reading->read.wait_for(lock, kReadingWait,
                                       [&] { return reading->files.has_value(); })) {
                return std::move(reading->files);
            }
        }
        if (!loop.Yield(generation)) {
            reading->stop = true;
            return {};
        }
    }
}

} // namespace quillane
