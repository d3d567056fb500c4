#include "imaging/carry/tiff_picture.h"
#include "core/failure.h"
#include "imaging/codecs/jpeg_header.h"
#include <algorithm>

namespace quillane::carry {

namespace {

/// Tags that describe how pixels are stored (TIFF 6.0 and its supplements); whatever else a
/// directory holds is about the picture.
constexpr quint16 kPictureTags[] = {
    0x0100, 0x0101,                                 // size
    0x0102, 0x0103, 0x0106, 0x0107, 0x0108, 0x0109, // bits, compression, colours, halftoning
    0x010a, 0x0115, 0x0116, 0x0118, 0x0119, 0x011c, // order, samples, rows, extremes, planes
    0x0120, 0x0121,                                 // free room
    0x0122, 0x0123, 0x0124, 0x0125, 0x012d,         // grey response, fax options, transfer
    0x013d, 0x0140, 0x0142, 0x0143,                 // predictor, colour map, tiles
    0x014c, 0x014d, 0x014e, 0x0150, 0x0151,         // inks
    0x0152, 0x0153, 0x0154, 0x0155, 0x0157, 0x015b, // extra samples, their format, JPEG tables
    0x0200, 0x0203, 0x0205, 0x0206, 0x0207, 0x0208, 0x0209, // JPEG of old
    0x0211, 0x0212, 0x0213, 0x0214,                         // YCbCr
};
/// Tags that the encoder decides where it writes them.
constexpr quint16 kPictureResolution[] = {exif::kTagXResolution, exif::kTagYResolution,
                                          exif::kTagResolutionUnit};
constexpr std::pair<quint16, quint16> kPicturePieces[] = {
    {exif::kTagStripOffsets, exif::kTagStripByteCounts},
    {exif::kTagTileOffsets, exif::kTagTileByteCounts},
    {exif::kTagJpegOffset, exif::kTagJpegLength}};

exif::TiffStructure PictureStructure(const QByteArray& encoded)
{
    const std::optional<exif::TiffStructure> structure = exif::TiffStructure::Open(encoded);
    if (!structure) {
        throw Failure(kFailureUnreadable, QStringLiteral("What was encoded is no TIFF file."));
    }
    return *structure;
}

int PictureTypeUnit(quint16 type)
{
    const int width = exif::FieldTypeBytes(type);
    return type == exif::kTypeRational || type == exif::kTypeSignedRational ? 4 : width;
}

} // namespace

TiffPicture::TiffPicture(const QByteArray& encoded) : mStructure(PictureStructure(encoded))
{
    mDirectory = mStructure.ReadDirectory(mStructure.FirstDirectory());
    const auto number = [this](quint16 tag, quint64 otherwise) {
        const exif::TiffField* field = exif::FindField(mDirectory, tag);
        return field ? mStructure.Number(*field).value_or(otherwise) : otherwise;
    };
    for (const auto& [offsets, lengths] : kPicturePieces) {
        if (mOffsets == 0 && exif::FindField(mDirectory, offsets)) {
            mOffsets = offsets;
            mLengths = lengths;
        }
    }
    if (mOffsets == 0) {
        throw Failure(kFailureUnreadable, QStringLiteral("What was encoded holds no picture."));
    }
    compression = number(exif::kTagCompression, 1);
    photometric = number(exif::kTagPhotometric, 0);
    // Grey in either direction and masks have one channel, CMYK has four, the rest three.
    channels = photometric <= 1 || photometric == 4 ? 1 : photometric == 5 ? 4 : 3;
    if (const exif::TiffField* icc = exif::FindField(mDirectory, exif::kTagIccProfile)) {
        profile = mStructure.Value(*icc).toByteArray();
    }
    if (const exif::TiffField* bits = exif::FindField(mDirectory, exif::kTagBitsPerSample)) {
        for (quint64 i = 0; i < std::min<quint64>(bits->count, 16); ++i) {
            mSampleBits = std::max(
                mSampleBits, int(std::min<quint64>(mStructure.Number(*bits, i).value_or(8), 64)));
        }
    }
}

QByteArray TiffPicture::Turned(QByteArray bytes, int width, const exif::TiffStructure& target) const
{
    if (width > 1 && target.IsBig() != mStructure.IsBig()) {
        for (qsizetype at = 0; at + width <= bytes.size(); at += width) {
            std::reverse(bytes.begin() + at, bytes.begin() + at + width);
        }
    }
    return bytes;
}

QList<QByteArray> TiffPicture::Pieces(const exif::TiffStructure& target) const
{
    const bool turn = mSampleBits > 8 && target.IsBig() != mStructure.IsBig();
    if (turn && (compression != 1 || mSampleBits % 8 != 0)) {
        throw Failure(
            kFailureGeneral,
            QStringLiteral("This TIFF file stores the highest byte of a number first, and "
                           "its compressed samples of 16 bits cannot be written so. Save "
                           "it without compression or under another name."));
    }
    std::vector<exif::ByteRange> ranges;
    exif::TiffClaims(mStructure).AddContents(mDirectory, mOffsets, mLengths, ranges);
    const exif::TiffField* offsets = exif::FindField(mDirectory, mOffsets);
    if (ranges.size() != offsets->count) {
        throw Failure(kFailureUnreadable, QStringLiteral("What was encoded is cut off."));
    }
    QList<QByteArray> pieces;
    pieces.reserve(qsizetype(ranges.size()));
    for (const exif::ByteRange& range : ranges) {
        pieces.append(Turned(mStructure.Bytes().sliced(range.from, range.Size()).toByteArray(),
                             turn ? mSampleBits / 8 : 1, target));
    }
    return pieces;
}

void TiffPicture::PutInto(exif::TiffEditor& editor) const
{
    const exif::TiffStructure& target = editor.Structure();
    const QList<QByteArray> pieces = Pieces(target);
    for (const auto& [offsets, lengths] : kPicturePieces) {
        editor.RemoveContents(exif::TiffEditor::First, offsets, lengths);
    }
    for (const quint16 tag : kPictureTags) {
        editor.Remove(exif::TiffEditor::First, tag);
    }
    const auto named = [](const auto& tags, quint16 tag) {
        return std::find(std::begin(tags), std::end(tags), tag) != std::end(tags);
    };
    for (const exif::TiffField& field : mDirectory.fields) {
        if (field.sound
            && (named(kPictureTags, field.tag) || named(kPictureResolution, field.tag))) {
            editor.Set(
                exif::TiffEditor::First, field.tag, field.type,
                Turned(mStructure.Value(field).toByteArray(), PictureTypeUnit(field.type), target));
        }
    }
    editor.SetContents(exif::TiffEditor::First, mOffsets, mLengths, pieces);
}

std::optional<JpegFrame> FrameOfJpeg(const QByteArray& jpeg)
{
    std::optional<JpegFrame> frame;
    ResumeNext([&] {
        MemorySource source(jpeg);
        const codecs::JpegHeader header = codecs::ReadJpegHeader(source, false);
        frame = {header.width, header.height, header.components, header.across, header.down};
    });
    return frame;
}

} // namespace quillane::carry
