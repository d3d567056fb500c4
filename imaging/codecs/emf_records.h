#pragma once
#include "imaging/vector/gdi_context.h"
#include "imaging/vector/metafile_bitmap.h"
#include "imaging/vector/record_reader.h"

namespace quillane::codecs {

/// Plays the records of an enhanced metafile, one at a time.
class EmfRecords {
public:
    explicit EmfRecords(drawing::Drawing& drawing) : mContext(drawing) { }
    /// One record with its type and size, which positions inside count from.
    void Play(quint32 type, QByteArrayView record);
    /// A picture was left out.
    bool IsCutShort() const { return mBitmaps.IsCutShort(); }
    /// Comments hold a second drawing in another language, and it is said to be the only one.
    bool IsPlusAlone() const { return mPlus && !mDual; }
    drawing::GdiContext& Context() { return mContext; }

private:
    using Reader = drawing::RecordReader;
    bool PlayState(quint32 type, Reader& in);
    bool PlayMapping(quint32 type, Reader& in);
    bool PlayLines(quint32 type, Reader& in);
    bool PlayFigure(quint32 type, Reader& in);
    bool PlayPath(quint32 type, Reader& in);
    bool PlayObject(quint32 type, Reader& in);
    bool PlayRegion(quint32 type, Reader& in);
    bool PlayText(quint32 type, Reader& in);
    bool PlayBitmap(quint32 type, Reader& in);
    void PlayStretchDib(quint32 type, Reader& in);
    void PlayParallelogram(Reader& in);
    void PlayGradient(Reader& in);
    void PlayComment(Reader& in);
    void DrawPoly(Reader& in, bool wide);
    void CreateFont(Reader& in);
    void CreatePen(Reader& in);
    void CreatePattern(quint32 type, Reader& in);
    QImage BitmapOf(Reader& in, bool premultiplied = false);
    drawing::Path Region(QByteArrayView data, bool logical);
    drawing::GdiContext mContext;
    drawing::GdiTable mObjects;
    drawing::MetafileBitmaps mBitmaps;
    bool mPlus = false;
    bool mDual = false;
};

} // namespace quillane::codecs
