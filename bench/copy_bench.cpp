// Copying 1,000 files of the sizes that photographs have, by the walk of "Copy To...", against `cp`
// of the same files on the same volume.
//
//   bench_copy [folder [count]]   keeps its files below that folder and uses them again
#include "bench_support.h"
#include "browser/file_walk.h"
#include "core/native_path.h"
#include "platform/desktop/file_service.h"
#include "platform/desktop/spawn.h"
#include <QCoreApplication>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

using namespace quillane;

namespace {

constexpr int kFiles = 1000;
constexpr int kRounds = 5;
constexpr double kMostOverCp = 1.1;

/// From a small JPEG of a telephone to a large one of a camera: 100 KB to 2.5 MB, 0.9 MB on
/// average.
qsizetype SizeOfPhoto(int number)
{
    const qsizetype step = (number * 37) % 97;
    return 100'000 + step * step * 260;
}

QVector<WalkFile> MakePhotos(const QString& folder, int count)
{
    MakeFolder(folder);
    QByteArray content(SizeOfPhoto(96) + 3'000'000, Qt::Uninitialized);
    quint32 random = 1;
    for (char& byte : content) {
        random = random * 1664525 + 1013904223;
        byte = char(random >> 24);
    }
    QVector<WalkFile> files;
    files.reserve(count);
    for (int i = 0; i < count; ++i) {
        const QString path = folder + QStringLiteral("/photo%1.jpg").arg(i, 4, 10, QChar(u'0'));
        if (StatPath(path).size != SizeOfPhoto(i)) {
            WriteWholeFile(path, content.sliced(i, SizeOfPhoto(i)), {.sync = false});
        }
        files.append({i, path});
    }
    return files;
}

[[noreturn]] void Stop(const char* why)
{
    std::fprintf(stderr, "%s\n", why);
    std::exit(2);
}

void CopyByCp(const QVector<WalkFile>& files, const QString& target)
{
    QList<QByteArray> arguments{"-t", BytesFromPath(target)};
    arguments.reserve(files.size() + 2);
    for (const WalkFile& file : files) {
        arguments.append(BytesFromPath(file.path));
    }
    int status = -1;
    const pid_t child = Spawn(QStringLiteral("/bin/cp"), arguments, {}, {});
    if (waitpid(child, &status, 0) != child || status != 0) {
        Stop("cp failed");
    }
}

void CopyByWalk(const QVector<WalkFile>& files, const QString& target)
{
    DesktopFileService service;
    std::atomic<int> progress = 0;
    const WalkResult result = RunWalk(service, WalkKind::Copy, files, target, progress);
    if (result.done != files.size()) {
        Stop(qPrintable(WalkLine(WalkKind::Copy, result)));
    }
}

/// The next copy begins with an empty target and nothing left to be written.
void Empty(const QVector<WalkFile>& files, const QString& target)
{
    for (const WalkFile& file : files) {
        RemoveFile(target + file.path.sliced(file.path.lastIndexOf(u'/') + 1));
    }
    sync();
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int count = argc > 2 ? std::max(1, std::atoi(argv[2])) : kFiles;
    const QString root = bench::PicturesFolder(argc, argv);
    const QVector<WalkFile> files =
        MakePhotos(root + QStringLiteral("/copied%1").arg(count), count);
    const QString target = root + QStringLiteral("/copies/");
    MakeFolder(target);

    double walk = 0, cp = 0;
    for (int round = 0; round < 2 * kRounds; ++round) {
        const bool ours = round % 2 == 1;
        Empty(files, target);
        const double spent =
            bench::Measure([&] { (ours ? CopyByWalk : CopyByCp)(files, target); }).wall;
        double& least = ours ? walk : cp;
        least = round < 2 ? spent : std::min(least, spent);
    }
    Empty(files, target);
    rmdir(BytesFromPath(target).constData());
    const bool good = bench::PrintFigure("copying of photographs", walk, cp, "ms", walk / cp,
                                         bench::Wanted::AtMost, kMostOverCp);
    return good ? 0 : 1;
}
