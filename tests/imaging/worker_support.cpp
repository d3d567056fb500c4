#include "worker_support.h"
#include "imaging/limits.h"
#include <QProcess>
#include <QStandardPaths>
#include <algorithm>
#include <cstdio>

namespace quillane::test {

std::vector<int> ChildProcesses()
{
    std::vector<int> children;
    ListFolder(QStringLiteral("/proc/self/task"), [&](DirEntry&& entry) {
        const QString path = QStringLiteral("/proc/self/task/%1/children").arg(entry.name);
        if (std::FILE* file = std::fopen(BytesFromPath(path).constData(), "re")) {
            int pid;
            while (std::fscanf(file, "%d", &pid) == 1) {
                children.push_back(pid);
            }
            std::fclose(file);
        }
        return true;
    });
    return children;
}

int OpenDescriptors(const QString& process)
{
    int count = 0;
    // A process that has just ended has none.
    ResumeNext([&] {
        ListFolder(QStringLiteral("/proc/%1/fd").arg(process), [&](DirEntry&&) {
            ++count;
            return true;
        });
    });
    return count;
}

bool HasTool(const QString& program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

std::optional<QByteArray> RunTool(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0) {
        return {};
    }
    return process.readAllStandardOutput();
}

QImage AsRgb(const Bitmap& bitmap)
{
    return bitmap.Pixels().convertToFormat(QImage::Format_RGB888);
}

int LargestDifference(const QImage& one, const QImage& other)
{
    if (one.size() != other.size()) {
        return 256;
    }
    int most = 0;
    for (int y = 0; y < one.height(); ++y) {
        const uchar* a = one.constScanLine(y);
        const uchar* b = other.constScanLine(y);
        for (int i = 0; i < one.width() * 3; ++i) {
            most = std::max(most, std::abs(a[i] - b[i]));
        }
    }
    return most;
}

bool HasSamples()
{
    return StatPath(QStringLiteral(QUILLANE_SOURCE_FOLDER "/../shared/samples/MANIFEST.tsv")).type
        == FileType::Regular;
}

std::vector<Sample> Samples(const QString& folder, const QStringList& extensions)
{
    std::vector<Sample> samples;
    if (!HasSamples()) {
        return samples;
    }
    const QString root = QStringLiteral(QUILLANE_SOURCE_FOLDER "/../shared/samples/");
    const QString manifest = QString::fromUtf8(
        ReadWholeFile(root + QStringLiteral("MANIFEST.tsv"), limits::kMaxFieldBytes));
    const QStringList lines = manifest.split(u'\n');
    const QStringList heads = lines.value(0).split(u'\t');
    const auto column = [&](const QStringList& cells, const char* name) {
        return cells.value(heads.indexOf(QLatin1String(name)));
    };
    for (const QString& line : lines) {
        const QStringList cells = line.split(u'\t');
        const QString file = cells.value(0);
        if (!file.startsWith(folder) || !extensions.contains(file.section(u'.', -1).toLower())) {
            continue;
        }
        samples.push_back({root + file, file, column(cells, "width").toInt(),
                           column(cells, "height").toInt(), column(cells, "bits_per_pixel").toInt(),
                           column(cells, "frames").toInt()});
    }
    return samples;
}

} // namespace quillane::test
