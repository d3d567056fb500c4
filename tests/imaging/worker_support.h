#pragma once
// What tests of the decoding processes share.
#include "core/failure.h"
#include "core/native_path.h"
#include "imaging/worker/worker_host.h"
#include <QDirIterator>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

namespace quillane::test {

inline const QString kShippedWorker = QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec");
inline const QString kBadWorker = QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-bad-codec");

/// Process numbers of this program's children.
std::vector<int> ChildProcesses();
/// Descriptors that are open in a process.
int OpenDescriptors(const QString& process = QStringLiteral("self"));
/// The failure of a call; number 0 when it did not fail.
template <typename Call> Failure FailureOf(Call&& call)
{
    try {
        call();
    } catch (const Failure& failure) {
        return failure;
    }
    return Failure(0, QString());
}

/// Runs a program and waits for it; its output, or nothing when it is not installed or fails.
std::optional<QByteArray> RunTool(const QString& program, const QStringList& arguments);
/// Whether a program can be found.
bool HasTool(const QString& program);

/// Pixels as 8-bit RGB, for comparisons with other readers.
QImage AsRgb(const Bitmap& bitmap);
/// The largest difference of any channel; 256 when the sizes differ.
int LargestDifference(const QImage& one, const QImage& other);

/// A row of the samples' manifest.
struct Sample {
    QString path; ///< whole
    QString file; ///< as in the manifest
    int width, height, bits, frames;
};
/// The samples in folders and with extensions that fit; empty where the folder is not there.
std::vector<Sample> Samples(const QString& folder, const QStringList& extensions);
/// Whether the folder of samples is there.
bool HasSamples();

/// Tests with the shipped decoder and a folder of their own.
class WorkerTest : public testing::Test {
protected:
    explicit WorkerTest(const QString& program = kShippedWorker, int processes = 2)
    {
        worker::Configure(program, processes);
    }
    ~WorkerTest() override { worker::Configure(kShippedWorker, 2); }
    /// Writes a file and returns its path.
    QString Write(const QString& name, const QByteArray& content)
    {
        const QString path = mFolder.filePath(name);
        WriteWholeFile(path, content);
        return path;
    }
    static ImageFacts Probe(const QString& path, const char* codec)
    {
        FileSource source(path);
        return worker::Probe(source, codec);
    }
    static Bitmap Decode(const QString& path, const char* codec, const DecodeRequest& request = {})
    {
        FileSource source(path);
        return worker::Decode(source, codec, request);
    }
    static CommentSet Comments(const QString& path, const char* codec)
    {
        FileSource source(path);
        return worker::Comments(source, codec);
    }
    QTemporaryDir mFolder;
};

} // namespace quillane::test
