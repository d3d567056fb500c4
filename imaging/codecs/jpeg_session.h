#pragma once
#include "imaging/byte_source.h"
#include <QString>
#include <atomic>
#include <memory>

namespace quillane::codecs {

/// A picture and the scans it is put together from, in one memory: bytes at most.
inline constexpr qint64 kJpegMemory = 500ll << 20;

enum class JpegTrouble : quint8 { None, Damage, Cancelled, Scans, Memory };
enum class JpegPixels : quint8 { Grey, Bgra, Cmyk };

struct JpegStart {
    ByteSource* bytes = nullptr;
    const std::atomic<bool>* cancelled = nullptr;
    int reduction = 1; ///< 1, 2, 4 or 8
};

/// One run of the JPEG library over one picture, from its header to its last row.
class JpegSession {
public:
    JpegSession();
    ~JpegSession();
    JpegSession(const JpegSession&) = delete;
    JpegSession& operator=(const JpegSession&) = delete;

    /// Reads the header. False with the trouble; else Width, Height (of the reduced picture) and
    /// Pixels hold.
    bool Start(const JpegStart& start);
    /// Decodes rows to memory, `line` bytes from one to the next, until the picture or the file
    /// ends or something is wrong; then Rows and Trouble hold.
    void DecodeRows(uchar* to, qint64 line);

    int Width() const;           ///< of the reduced picture
    int Height() const;          ///< of the reduced picture
    JpegPixels Pixels() const;   ///< how DecodeRows writes them
    bool HasInvertedInk() const; ///< 255 is no ink, as Adobe's programs write it
    int Rows() const;            ///< decoded, from the top
    JpegTrouble Trouble() const;
    QString Words() const; ///< what the library says of damage; begins small, has no full stop
    /// Part of the picture is missing or made up.
    bool IsPartial() const;

private:
    struct Run;
    std::unique_ptr<Run> mRun;
};

} // namespace quillane::codecs
