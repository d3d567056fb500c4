#include "imaging/reader.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker/worker_host.h"

namespace quillane {

namespace {

constexpr int kReaderMarkBytes = 512; ///< that the codecs tell a format by

QStringView ReaderExtension(const QString& path)
{
    const qsizetype dot = path.lastIndexOf(u'.');
    const qsizetype separator = path.lastIndexOf(u'/');
    return dot > separator ? QStringView(path).mid(dot + 1) : QStringView();
}

QString ReaderLeaf(const QString& path)
{
    return path.mid(path.lastIndexOf(u'/') + 1);
}

const Codec& ReaderCodec(FileSource& source, const QString& path)
{
    if (source.Size() > limits::kMaxFileBytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("\"%1\" is too large: it has %2 MB, and at most %3 MB can be "
                                     "read.")
                          .arg(ReaderLeaf(path))
                          .arg(source.Size() >> 20)
                          .arg(limits::kMaxFileBytes >> 20),
                      path);
    }
    char head[kReaderMarkBytes];
    const qint64 got = source.ReadAt(0, head, kReaderMarkBytes);
    const Codec* codec = FindCodec(QByteArrayView(head, got), ReaderExtension(path));
    if (!codec) {
        throw Failure(kFailureUnreadable,
                      got > 0 ? QStringLiteral("\"%1\" is not a picture this program reads.")
                                    .arg(ReaderLeaf(path))
                              : QStringLiteral("\"%1\" is empty.").arg(ReaderLeaf(path)),
                      path);
    }
    return *codec;
}

ImageFacts ReaderFacts(const Codec& codec, FileSource& source)
{
    ImageFacts facts = codec.inWorker ? worker::Probe(source, codec.name) : codec.probe(source);
    facts.sizeDisk = source.Size();
    const qint64 rowBytes = (qint64(facts.width) * facts.bits + 31) / 32 * 4;
    facts.sizeMemory = rowBytes * facts.height;
    return facts;
}

} // namespace

ImageFacts ProbeFile(const QString& path)
{
    FileSource source(path);
    return ProbeSource(source, path);
}

ImageFacts ProbeSource(FileSource& source, const QString& path)
{
    return ReaderFacts(ReaderCodec(source, path), source);
}

LoadedImage LoadFile(const QString& path, const DecodeRequest& request)
{
    const auto source = std::make_shared<FileSource>(path);
    const Codec& codec = ReaderCodec(*source, path);
    LoadedImage loaded;
    loaded.facts = ReaderFacts(codec, *source);
    const Bitmap stored = codec.inWorker ? worker::Decode(*source, codec.name, request)
                                         : codec.decode(*source, request);
    loaded.bitmap = stored.Upright(loaded.facts.orientation);
    const bool whole = request.page == 0
        && (stored.Width() == loaded.facts.width && stored.Height() == loaded.facts.height);
    const qint64 pixels = whole ? loaded.bitmap.Pixels().cacheKey() : 0;
    loaded.file = std::make_shared<LoadedFile>(path, source, &codec, loaded.facts, pixels,
                                               loaded.bitmap.IsExact());
    return loaded;
}

} // namespace quillane
