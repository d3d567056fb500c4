#pragma once
// What a decoder and an encoder inside the decoding process look like.
#include "imaging/byte_source.h"
#include "imaging/image_facts.h"
#include "imaging/worker/protocol.h"
#include <QByteArray>
#include <functional>
#include <span>
#include <vector>

namespace quillane::worker {

/// How a picture is wanted.
struct PictureWish {
    qint32 page = 0;
    qint32 atLeastWidth = 0, atLeastHeight = 0; ///< a hint; 0 for the full picture
};

/// A picture before its pixels.
struct PictureShape {
    qint32 width = 0, height = 0;
    PixelLayout layout = PixelLayout::Rgb32;
    qint32 fileDepth = 0;         ///< bits per pixel in the file
    bool exact = true;            ///< the pixels hold exactly what the file holds
    std::vector<quint32> colours; ///< of Indexed8, 0xAARRGGBB
    QByteArray profile;           ///< ICC
};

/// Where a decoder puts its rows, from the top, one after the other.
class PictureSink {
public:
    virtual ~PictureSink() = default;
    /// Announces the picture; once, before the first row.
    virtual void Begin(const PictureShape& shape) = 0;
    /// Memory of the next row, to be filled before the next call; all rows before it are done.
    /// Failure kFailureCancelled when nobody wants the picture any more.
    virtual uchar* NextRow() = 0;
};

/// The picture that an encoder gets: its rows from the top, one after the other.
class PictureRows {
public:
    virtual ~PictureRows() = default;
    /// Width 0: there is no picture, the original's pixels stay.
    virtual const PictureShape& Shape() const = 0;
    /// The next row in the shape's layout, valid until the next call. Failure kFailureGeneral
    /// behind the last one.
    virtual const uchar* NextRow() = 0;
};

/// Where an encoder puts its file.
class FileSink {
public:
    virtual ~FileSink() = default;
    /// Writes at a place that lies in what is written already, at its end, or a few bytes
    /// behind it (which are then zeros). Failure kFailureLimit beyond limits::kMaxEncodedBytes.
    virtual void WriteAt(qint64 position, const void* bytes, qint64 count) = 0;
    virtual qint64 Size() const = 0;
    void Append(const void* bytes, qint64 count) { WriteAt(Size(), bytes, count); }
};

/// A comment slot that changes in a file that is written anew.
struct TextChange {
    qint16 slot;
    QByteArray utf8; ///< empty: the field goes
};

/// How a file is wanted; EncodeRequest says what the numbers mean.
struct EncodeWish {
    qint16 format = 0;
    qint32 bits = 0; ///< per pixel in the file; 0: those of the picture
    qint32 quality = 2;
    qint32 xResolution = 0, yResolution = 0;
    SourceLayout layout;
    /// The file that the new one replaces, all of which stays that nobody changes; may be null.
    ByteSource* original = nullptr;
    std::vector<TextChange> texts;
};

using TextVisitor = std::function<void(qint16 slot, const QByteArray& utf8)>;

/// One format. Damaged content is a Failure that names it.
struct WorkerCodec {
    const char* name;
    /// Loads what the decoder needs from files, before the process locks itself; may be null.
    void (*prepare)();
    ImageFacts (*probe)(ByteSource& source);
    /// Gives every row of the picture; true when some of it was missing in the file.
    bool (*decode)(ByteSource& source, const PictureWish& wish, PictureSink& sink);
    /// Comment slots as text; may be null.
    void (*comments)(ByteSource& source, const TextVisitor& visit);
    /// Writes the whole file, after it has taken every row; may be null. The picture's profile
    /// is the one to embed. A variant that it cannot write is a Failure kFailureGeneral.
    void (*encode)(PictureRows& picture, const EncodeWish& wish, FileSink& file) = nullptr;
};

/// Serves requests on kSocketDescriptor; ends the process when the other end closes. Returns
/// an exit status only when the process cannot lock itself.
int Serve(std::span<const WorkerCodec> codecs);

} // namespace quillane::worker
