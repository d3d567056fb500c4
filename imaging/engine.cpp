#include "imaging/engine.h"
#include "core/failure.h"
#include "imaging/resize.h"

namespace quillane {

namespace {

/// Runs a method; with method errors off its Failure is passed over and it answers false.
template <typename Step> bool EngineStep(bool methodErrors, Step&& step)
{
    if (!methodErrors) {
        return ResumeNext(step);
    }
    step();
    return true;
}

} // namespace

void EngineInstance::Load(const QString& file, qint32 bits, qint32 page, qint32,
                          const DecodeRequest& request)
{
    EngineStep(mMethodErrors, [&] {
        DecodeRequest wanted = request;
        wanted.page = page;
        LoadedImage loaded = LoadFile(file, wanted);
        if (bits != 0) {
            loaded.bitmap = AtDepth(loaded.bitmap, bits);
        }
        Adopt(std::move(loaded));
    });
}

void EngineInstance::Adopt(LoadedImage loaded)
{
    mBitmap = std::move(loaded.bitmap);
    mInfo = std::move(loaded.facts);
    mPending.clear();
    mRegion = {};
}

void EngineInstance::SetBitmap(quillane::Bitmap bitmap)
{
    mBitmap = std::move(bitmap);
    mRegion = mRegion.ClippedTo(mBitmap.Pixels().size());
}

void EngineInstance::GetFileInfo(const QString& file, qint32 page, qint32)
{
    EngineStep(mMethodErrors, [&] {
        if (page != 0) {
            throw Failure(kFailureIndex,
                          QStringLiteral("Facts are read of a file's first page only."));
        }
        mInfo = ProbeFile(file);
    });
}

CommentValue EngineInstance::ReadComment(const QString& file, qint32 page, qint16 slot)
{
    CommentValue value;
    EngineStep(mMethodErrors, [&] { value = mReader.ReadComment(file, page, slot); });
    return value;
}

void EngineInstance::SetComment(qint16 slot, CommentValue value)
{
    if (value.IsEmpty()) {
        mPending.erase(slot);
    } else {
        mPending.insert_or_assign(slot, std::move(value));
    }
}

const CommentValue& EngineInstance::Comment(qint16 slot) const
{
    static const CommentValue none;
    const auto found = mPending.find(slot);
    return found == mPending.end() ? none : found->second;
}

} // namespace quillane
