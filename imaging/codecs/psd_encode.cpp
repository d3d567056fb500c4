#include "imaging/codecs/encoders.h"
#include "imaging/codecs/packbits.h"
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kPsdOut[] = "Photoshop file";
constexpr int kPsdMostSide = 30000; ///< of version 1
constexpr quint32 kPsdOutResolution = 1005, kPsdOutProfile = 1039;
enum PsdOutMode : quint8 { kPsdBits = 0, kPsdGrey = 1, kPsdIndexes = 2, kPsdRgb = 3, kPsdInk = 4 };

struct PsdOutKind {
    PsdOutMode mode = kPsdRgb;
    int depth = 8; ///< of a sample
    int channels = 3;
    bool clear = false; ///< the fourth channel is how opaque it is
};

PsdOutKind PsdOutKindOf(const Bitmap& picture)
{
    switch (picture.Pixels().format()) {
    case QImage::Format_Mono:
        return {kPsdBits, 1, 1, false};
    case QImage::Format_Indexed8:
        return {kPsdIndexes, 8, 1, false};
    case QImage::Format_Grayscale8:
        return {kPsdGrey, 8, 1, false};
    case QImage::Format_Grayscale16:
        return {kPsdGrey, 16, 1, false};
    case QImage::Format_RGBX64:
        return {kPsdRgb, 16, 3, false};
    case QImage::Format_RGBA8888:
        return {kPsdInk, 8, 4, false};
    case QImage::Format_ARGB32:
        return {kPsdRgb, 8, 4, true};
    default:
        return {kPsdRgb, 8, 3, false};
    }
}

/// One channel of a row as the file has it. `paper` lays colours on white where they are clear.
void PsdTakeRow(const QImage& pixels, int y, const PsdOutKind& kind, int channel, bool paper,
                std::vector<uchar>& to)
{
    const uchar* row = pixels.constScanLine(y);
    const int width = pixels.width();
    if (kind.mode == kPsdBits) {
        PackBilevel(pixels, y, true, to.data());
    } else if (kind.depth == 16) {
        const quint16* in = reinterpret_cast<const quint16*>(row);
        const int step = kind.channels == 1 ? 1 : 4;
        for (int x = 0; x < width; ++x) {
            const quint16 value = in[x * step + channel];
            to[size_t(2 * x)] = uchar(value >> 8);
            to[size_t(2 * x) + 1] = uchar(value & 0xff);
        }
    } else if (kind.channels == 1) {
        PackIndexes(pixels, y, 8, to.data());
    } else if (kind.mode == kPsdInk) {
        for (int x = 0; x < width; ++x) {
            to[size_t(x)] = uchar(255 - row[4 * x + channel]); // how much paper is left
        }
    } else {
        const QRgb* in = reinterpret_cast<const QRgb*>(row);
        constexpr int kShifts[] = {16, 8, 0, 24};
        for (int x = 0; x < width; ++x) {
            int value = int(in[x] >> kShifts[channel] & 0xff);
            if (paper && channel < 3) {
                const int alpha = qAlpha(in[x]);
                value = (value * alpha + 255 * (255 - alpha) + 127) / 255;
            }
            to[size_t(x)] = uchar(value);
        }
    }
}

/// The packed rows of one channel, and their lengths.
struct PsdChannel {
    QByteArray bytes;
    std::vector<quint16> lengths;
};

PsdChannel PsdPackChannel(const QImage& pixels, const PsdOutKind& kind, int channel, bool paper)
{
    PsdChannel packed;
    ByteWriter data;
    std::vector<uchar> row((size_t(pixels.width()) * size_t(kind.depth) + 7) / 8);
    packed.lengths.reserve(size_t(pixels.height()));
    for (int y = 0; y < pixels.height(); ++y) {
        const qint64 before = data.Size();
        PsdTakeRow(pixels, y, kind, channel, paper, row);
        PutPackBits(data, row.data(), qint64(row.size()));
        packed.lengths.push_back(quint16(data.Size() - before));
    }
    packed.bytes = data.Take();
    return packed;
}

void PsdPutLengths(ByteWriter& file, const PsdChannel& channel)
{
    for (const quint16 length : channel.lengths) {
        file.Big16(length);
    }
}

void PsdPutResource(ByteWriter& file, quint32 number, const QByteArray& content)
{
    file.Text("8BIM");
    file.Big16(number);
    file.Big16(0); // no name
    file.Big32(quint32(content.size()));
    file.Text(content);
    file.Fill(content.size() % 2);
}

void PsdPutResources(ByteWriter& file, const EncodeRequest& request)
{
    const qint64 lengthAt = file.Size();
    file.Big32(0);
    if (request.xResolution > 0 && request.yResolution > 0) {
        ByteWriter figures;
        for (const qint32 dots : {request.xResolution, request.yResolution}) {
            figures.Big32(quint32(std::min(dots, 0xffff)) << 16);
            figures.Big16(1); // an inch, shown so
            figures.Big16(1);
        }
        PsdPutResource(file, kPsdOutResolution, figures.Take());
    }
    if (!request.icc.isEmpty()) {
        PsdPutResource(file, kPsdOutProfile, request.icc);
    }
    file.PatchBig32(lengthAt, quint32(file.Size() - lengthAt - 4));
}

/// The picture as the one layer, whose colours are exact where they are clear too. The number of
/// layers is negative: the merged picture's fourth channel is how opaque it is.
void PsdPutLayer(ByteWriter& file, const QImage& pixels, const PsdOutKind& kind)
{
    constexpr int kIds[] = {0, 1, 2, -1};
    std::vector<PsdChannel> channels;
    channels.reserve(4);
    for (int i = 0; i < 4; ++i) {
        channels.push_back(PsdPackChannel(pixels, kind, i, false));
    }
    const qint64 sectionAt = file.Size();
    file.Big32(0);
    const qint64 layersAt = file.Size();
    file.Big32(0);
    file.Big16(0xffff); // minus one
    file.Big32(0);
    file.Big32(0);
    file.Big32(quint32(pixels.height()));
    file.Big32(quint32(pixels.width()));
    file.Big16(4);
    for (size_t i = 0; i < 4; ++i) {
        file.Big16(quint32(kIds[i]) & 0xffff);
        file.Big32(quint32(2 + 2 * channels[i].lengths.size() + size_t(channels[i].bytes.size())));
    }
    file.Text("8BIMnorm");
    file.Byte(255); // opaque
    file.Fill(3);
    const QByteArray name("\x07Picture", 8);
    file.Big32(quint32(8 + name.size()));
    file.Fill(8); // no mask, no blending ranges
    file.Text(name);
    for (const PsdChannel& channel : channels) {
        file.Big16(1); // packed
        PsdPutLengths(file, channel);
        file.Text(channel.bytes);
    }
    file.Fill((file.Size() - layersAt) % 2);
    file.PatchBig32(layersAt, quint32(file.Size() - layersAt - 4));
    file.Big32(0); // no mask of the whole
    file.PatchBig32(sectionAt, quint32(file.Size() - sectionAt - 4));
}

} // namespace

QByteArray PsdEncode(const Bitmap& picture, const EncodeRequest& request)
{
    CheckFits(kPsdOut, picture, kPsdMostSide, kPsdMostSide);
    const QImage& pixels = picture.Pixels();
    const PsdOutKind kind = PsdOutKindOf(picture);
    ByteWriter file;
    file.Text("8BPS");
    file.Big16(1);
    file.Fill(6);
    file.Big16(quint32(kind.channels));
    file.Big32(quint32(pixels.height()));
    file.Big32(quint32(pixels.width()));
    file.Big16(quint32(kind.depth));
    file.Big16(kind.mode);
    file.Big32(kind.mode == kPsdIndexes ? 768 : 0);
    if (kind.mode == kPsdIndexes) {
        const QList<QRgb> colours = EncodedColours(pixels, 8);
        for (const int shift : {16, 8, 0}) {
            for (const QRgb colour : colours) {
                file.Byte(int(colour >> shift & 0xff));
            }
        }
    }
    PsdPutResources(file, request);
    if (kind.clear) {
        PsdPutLayer(file, pixels, kind);
    } else {
        file.Big32(0);
    }
    file.Big16(1); // packed
    std::vector<PsdChannel> channels;
    channels.reserve(size_t(kind.channels));
    for (int i = 0; i < kind.channels; ++i) {
        channels.push_back(PsdPackChannel(pixels, kind, i, kind.clear));
        PsdPutLengths(file, channels.back());
    }
    for (const PsdChannel& channel : channels) {
        file.Text(channel.bytes);
    }
    CheckFileBytes(kPsdOut, file.Size());
    return file.Take();
}

} // namespace quillane::codecs
