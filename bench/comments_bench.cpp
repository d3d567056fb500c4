// 179 slots of 1,000 files through the comment reader, against one parse of each file by the
// metadata library alone. Warm: every file is read once before.
#include "camera_jpeg.h"
#include "core/native_path.h"
#include "imaging/comments/comment_reader.h"
#include "imaging/comments/slots.h"

#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exiv2/exiv2.hpp>
#include <vector>

namespace quillane {

namespace {

constexpr int kBenchFiles = 1000;
constexpr int kBenchRounds = 5;

template <typename Step> double SecondsOf(Step&& step)
{
    const auto begin = std::chrono::steady_clock::now();
    step();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

qint64 ReadAllSlots(const std::vector<QString>& paths)
{
    CommentReader reader;
    qint64 found = 0;
    for (const QString& path : paths) {
        reader.Revalidate();
        for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
            found += reader.ReadComment(path, 0, slot).IsEmpty() ? 0 : 1;
        }
    }
    return found;
}

qint64 ParseAll(const std::vector<std::string>& names)
{
    qint64 found = 0;
    for (const std::string& name : names) {
        const auto image = Exiv2::ImageFactory::open(name);
        image->readMetadata();
        found += qint64(image->exifData().count());
    }
    return found;
}

int Run()
{
    const QTemporaryDir folder;
    std::vector<QString> paths;
    std::vector<std::string> names;
    WriteOptions quick;
    quick.sync = false;
    for (int i = 0; i < kBenchFiles; ++i) {
        const QString path = folder.filePath(QStringLiteral("%1.jpg").arg(i));
        WriteWholeFile(path,
                       bench::CameraJpeg(i,
                                         "Name=Ann\r\nCity=Rome\r\nEvent=Number "
                                             + QByteArray::number(i) + "\r\n"),
                       quick);
        paths.push_back(path);
        names.push_back(BytesFromPath(path).toStdString());
    }
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    qint64 slots = ReadAllSlots(paths), fields = ParseAll(names);
    double ours = 1e9, reference = 1e9;
    for (int round = 0; round < kBenchRounds; ++round) {
        ours = std::min(ours, SecondsOf([&] { slots = ReadAllSlots(paths); }));
        reference = std::min(reference, SecondsOf([&] { fields = ParseAll(names); }));
    }
    std::printf("comments: 179 slots of %d files %.1f ms (%lld values), one parse each by the "
                "library %.1f ms (%lld fields), ratio %.2f (at most 1.5)\n",
                kBenchFiles, ours * 1e3, slots, reference * 1e3, fields, ours / reference);
    return ours / reference <= 1.5 ? 0 : 1;
}

} // namespace

} // namespace quillane

int main()
{
    return quillane::Run();
}
