#pragma once
// What a decoder inside the decoding process looks like.
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
};

/// Serves requests on kSocketDescriptor; ends the process when the other end closes. Returns
/// an exit status only when the process cannot lock itself.
int Serve(std::span<const WorkerCodec> codecs);

} // namespace quillane::worker
