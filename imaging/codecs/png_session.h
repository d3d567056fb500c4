#pragma once
#include "imaging/bitmap.h"
#include "imaging/byte_source.h"
#include <QList>
#include <atomic>
#include <memory>

namespace quillane::codecs {

/// How the pixels of a PNG come out.
struct PngLayout {
    int width = 0;
    int height = 0;
    int fileDepth = 0; ///< bits per pixel in the file
    QImage::Format format = QImage::Format_Invalid;
    ColourModel model = ColourModel::None;
    QList<QRgb> colours; ///< of Format_Indexed8, one for every index that can occur
};

/// One run of the PNG library over one picture.
class PngSession {
public:
    PngSession();
    ~PngSession();
    PngSession(const PngSession&) = delete;
    PngSession& operator=(const PngSession&) = delete;

    /// Reads everything before the pixels; false when that fails.
    bool Start(ByteSource& source);
    const PngLayout& Layout() const;
    QByteArray Icc() const;
    /// Decodes to memory, `line` bytes from one row to the next. False when the file is damaged,
    /// ends early or the work is cancelled; Rows then tells how many rows from the top hold
    /// pixels, be they coarse.
    bool DecodeRows(uchar* to, qint64 line, const std::atomic<bool>* cancelled);
    int Rows() const;
    /// What is wrong: begins small, has no full stop.
    QString Words() const;

private:
    struct Run;
    std::unique_ptr<Run> mRun;
};

} // namespace quillane::codecs
