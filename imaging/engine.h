#pragma once
// The seam to the imaging engine: one image with its facts, as LEAD1 (shown) and LEAD2
// (scratch) of the windows. No widget; EngineView paints one.
#include "imaging/comments/comment_reader.h"
#include "imaging/reader.h"
#include <map>

namespace quillane {

/// Ways of Resize.
enum ResizeFlag : qint32 { kResizePlain = 0, kResizeResample = 2, kResizeBicubic = 4 };

class EngineInstance {
public:
    /// Replaces the image: first page of the file at `bits` per pixel, 0 for the file's own.
    /// Pixels stand upright; the information values are the file's own. Clears the pending
    /// comments. Failure (unless MethodErrors is off) leaves the image as it was.
    void Load(const QString& file, qint32 bits, qint32 page, qint32 pages = 1,
              const DecodeRequest& request = {});
    /// Takes over what another thread has loaded, as Load would.
    void Adopt(LoadedImage loaded);
    /// Fills the information values below without loading pixels.
    void GetFileInfo(const QString& file, qint32 page, qint32 flags);
    void SetInfo(const ImageFacts& facts) { mInfo = facts; }

    const ImageFacts& Info() const { return mInfo; }
    qint32 InfoWidth() const { return mInfo.width; }
    qint32 InfoHeight() const { return mInfo.height; }
    qint32 InfoBits() const { return mInfo.bits; }
    qint16 InfoFormat() const { return mInfo.format; }
    qint64 InfoSizeDisk() const { return mInfo.sizeDisk; }
    qint64 InfoSizeMemory() const { return mInfo.sizeMemory; }
    QString InfoCompression() const { return mInfo.compression; }
    qint32 InfoXResolution() const { return mInfo.xResolution; }
    qint32 InfoYResolution() const { return mInfo.yResolution; }
    qint32 InfoPages() const { return mInfo.pages; }

    qint32 BitmapWidth() const { return mBitmap.Width(); }
    qint32 BitmapHeight() const { return mBitmap.Height(); }
    qint32 BitmapBits() const { return mBitmap.Bits(); }

    /// The image; a copy of it is O(1) and independent.
    const quillane::Bitmap& Bitmap() const { return mBitmap; }
    /// Gives this instance its own copy of a picture; an empty one frees the image.
    void SetBitmap(quillane::Bitmap bitmap) { mBitmap = std::move(bitmap); }
    bool HasBitmap() const { return !mBitmap.IsNull(); }

    /// One metadata field read from the file, the image untouched. See CommentReader.
    CommentValue ReadComment(const QString& file, qint32 page, qint16 slot);
    CommentReader& Comments() { return mReader; }
    /// Pending comment of the next save; an empty value clears it.
    void SetComment(qint16 slot, CommentValue value);
    const CommentValue& Comment(qint16 slot) const;

    /// When off, a failing Load, GetFileInfo or ReadComment raises nothing and returns as if
    /// it had not been called.
    bool MethodErrors() const { return mMethodErrors; }
    void SetMethodErrors(bool on) { mMethodErrors = on; }

    /// Changes the size of the image; sizes are rounded to whole pixels, at least 1.
    void Resize(float width, float height, qint32 flags);

private:
    quillane::Bitmap mBitmap;
    ImageFacts mInfo;
    CommentReader mReader;
    std::map<qint16, CommentValue> mPending;
    bool mMethodErrors = true;
};

} // namespace quillane
