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
    mLoaded = std::move(loaded.file);
    mPending = {};
    mRegion = {};
    mFloater = {};
}

void EngineInstance::SetBitmap(quillane::Bitmap bitmap)
{
    const QSize before = mBitmap.Pixels().size();
    mBitmap = std::move(bitmap);
    KeepToImage(before);
    if (mBitmap.IsNull()) {
        mLoaded.reset();
    }
}

qint32 EngineInstance::Save(const QString& file, qint16 format, qint32 bits, qint32 quality,
                            qint32 mode)
{
    return SaveAs(file, format, bits, quality, mode, nullptr);
}

qint32 EngineInstance::SaveWithThumbnail(const QString& file, qint16 format, qint32 bits,
                                         qint32 quality, float stampWidth, float stampHeight,
                                         qint32 stampBits)
{
    const StampWish stamp{QSizeF(stampWidth, stampHeight), stampBits};
    return SaveAs(file, format, bits, quality, kSaveReplace, &stamp);
}

qint32 EngineInstance::SaveAs(const QString& file, qint16 format, qint32 bits, qint32 quality,
                              qint32 mode, const StampWish* stamp)
{
    SaveJob job;
    job.path = file;
    job.picture = mBitmap;
    job.request.format = format;
    job.request.bits = bits;
    job.request.quality = std::clamp(quality, kBestQuality, kLeastQuality);
    job.mode = mode;
    job.comments = mPending;
    job.loaded = mLoaded;
    if (stamp) {
        job.stamp = *stamp;
    }
    try {
        mLoaded = SavePicture(job);
    } catch (const Failure& failure) {
        if (mMethodErrors) {
            throw;
        }
        return failure.Number();
    }
    mReader.Revalidate();
    return 0;
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

} // namespace quillane
