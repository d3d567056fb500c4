#pragma once
#include "imaging/vector/gdi_context.h"
#include "imaging/vector/record_reader.h"

namespace quillane::codecs {

/// Plays the records of a Windows metafile, one at a time.
class WmfRecords {
public:
    explicit WmfRecords(drawing::Drawing& drawing) : mContext(drawing) { }
    /// One record without its size and function.
    void Play(quint16 function, QByteArrayView parameters);
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
    QPointF MeanSize(double width, double height) const;
    drawing::GdiContext mContext;
    drawing::GdiTable mObjects;
};

} // namespace quillane::codecs
