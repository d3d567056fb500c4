#pragma once
// Runs one codec of the table on bytes in memory, and tells what it refused them with.
#include "core/failure.h"
#include "imaging/codec.h"
#include <gtest/gtest.h>

namespace quillane::making {

/// The codec that takes these bytes; fails the test when there is none in this process.
inline const Codec& CodecFor(const QByteArray& bytes, const QString& extension = {})
{
    const Codec* codec =
        FindCodec(QByteArrayView(bytes).first(std::min<qsizetype>(512, bytes.size())), extension);
    if (!codec || codec->inWorker) {
        throw Failure(kFailureGeneral, QStringLiteral("no codec of this process takes this"));
    }
    return *codec;
}

inline ImageFacts ProbeBytes(const QByteArray& bytes)
{
    MemorySource source(bytes);
    return CodecFor(bytes).probe(source);
}

inline Bitmap DecodeBytes(const QByteArray& bytes, const DecodeRequest& request = {})
{
    MemorySource source(bytes);
    return CodecFor(bytes).decode(source, request);
}

struct Refusal {
    qint32 number = 0; ///< 0 when nothing was refused
    QString words;
};

template <typename Step> Refusal RefusalOf(Step&& step)
{
    try {
        step();
    } catch (const Failure& failure) {
        return {failure.Number(), failure.Description()};
    }
    return {};
}

/// A source that counts what is read of it.
class CountingSource : public ByteSource {
public:
    explicit CountingSource(QByteArray content) : mInner(std::move(content)) { }
    qint64 Size() const override { return mInner.Size(); }
    qint64 ReadAt(qint64 position, void* to, qint64 count) override
    {
        ++reads;
        const qint64 got = mInner.ReadAt(position, to, count);
        bytes += got;
        return got;
    }
    int reads = 0;
    qint64 bytes = 0;

private:
    MemorySource mInner;
};

} // namespace quillane::making
