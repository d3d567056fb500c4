#pragma once
#include "imaging/vector/gdi_context.h"
#include "imaging/vector/metafile_bitmap.h"
#include "imaging/vector/record_reader.h"

namespace quillane::codecs {

/// Plays the records of a Windows metafile, one at a time.
class WmfRecords {
public:
    explicit WmfRecords(drawing::Drawing& drawing) : mContext(drawing) { }
    /// One record without its size and function.
    void Play(quint16 function, QByteArrayView parameters);
    /// A picture was left out.
    bool IsCutShort() const { return mBitmaps.IsCutShort(); }
    drawing::GdiContext& Context() { return mContext; }

private:
    bool PlayState(quint16 function, drawing::RecordReader& in);
    bool PlayMapping(quint16 function, drawing::RecordReader& in);
    bool PlayFigure(quint16 function, drawing::RecordReader& in);
    bool PlayObject(quint16 function, drawing::RecordReader& in);
    bool PlayBitmap(quint16 function, drawing::RecordReader& in);
    void PlayText(quint16 function, drawing::RecordReader& in);
    void PlayRegion(quint16 function, drawing::RecordReader& in);
    void CreateFont(drawing::RecordReader& in);
    void CreateRegion(drawing::RecordReader& in);
    void CreatePattern(drawing::RecordReader& in, bool independent);
    void SelectNumber(quint16 number);
    drawing::GdiContext mContext;
    drawing::GdiTable mObjects;
    drawing::MetafileBitmaps mBitmaps;
    int mRegionBoxes = 0;
};

} // namespace quillane::codecs
