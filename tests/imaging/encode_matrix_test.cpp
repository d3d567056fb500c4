// Every format code that can be written, at every depth that it holds: written, read back by this
// program and read by others.
#include "codec_support_for_tests.h"
#include "encode_support.h"
#include "imaging/codec.h"
#include "imaging/codecs/encoders.h"
#include "imaging/format_table.h"
#include "imaging/reader.h"
#include <algorithm>
#include <cstring>
#include <ostream>

namespace quillane {

namespace {

using test::PictureFor;
using test::Psnr;
using test::SamePixels;
using test::SizeFor;

struct EncodeCase {
    const SaveVariant* variant;
    qint32 bits;
};

void PrintTo(const EncodeCase& one, std::ostream* to)
{
    *to << FormatDescription(one.variant->format).toStdString() << " at " << one.bits << " bits";
}

bool IsReadHere(const SaveVariant& variant);

/// Every row at every depth; `readHere`: those that this program reads again.
std::vector<EncodeCase> EncodeCases(bool readHere)
{
    std::vector<EncodeCase> cases;
    for (const SaveVariant& variant : SaveVariants()) {
        for (const qint32* bits = variant.depths; *bits != 0; ++bits) {
            // DICOM files are given to their own tools in tests of their own.
            const bool others = std::strcmp(variant.codec, "DICOM") != 0;
            if (readHere ? IsReadHere(variant) : others) {
                cases.push_back({&variant, *bits});
            }
        }
    }
    return cases;
}

std::string EncodeCaseName(const testing::TestParamInfo<EncodeCase>& info)
{
    return "Code" + std::to_string(info.param.variant->format) + "At"
        + std::to_string(info.param.bits) + "Bits";
}

/// The code that a file tells, written without metadata: Exif files lack their block, and neither
/// grey nor ink of one size is sampled.
qint16 CodeReadBack(const SaveVariant& variant, qint32 bits)
{
    if (std::string(variant.codec) == "JPEG" && bits == 8) {
        return 10;
    }
    switch (variant.format) {
    case 96:
        return 3;
    case 97:
        return 93;
    case 98:
        return 23;
    case 101:
        return 21;
    default:
        return variant.format;
    }
}

/// Decibels that a lossy variant keeps at its best quality, by what it does to colours.
double LeastPsnr(const SaveVariant& variant, qint32 bits)
{
    if (bits == 8) {
        return 50;
    }
    switch (variant.format) {
    case 10:
    case 11:
        return 45;
    case 23:
    case 24:
    case 93:
    case 94:
    case 95:
    case 97:
    case 98:
        return 35;
    default:
        return 30;
    }
}

/// What another program reads of a file. Which one is asked is told by what each can: the colours
/// of OS/2 2.x have four bytes, which GraphicsMagick takes for three.
QImage ReadByOthers(const QString& path, const SaveVariant& variant, qint32 bits, QSize size)
{
    switch (variant.format) {
    case 53:
    case 74:
    case 76:
    case 111:
    case 163:
    case 164:
        return test::ReadByFfmpeg(path);
    case 166:
        return test::ReadTiffJpeg2000(path);
    case 15:
        return test::ReadMetafileBitmap(path);
    case 66:
    case 67:
    case 68:
        return test::ReadFax(path, variant.format, size);
    case 114:
        return test::ReadClipboardBitmap(path);
    case 146:
        return test::ReadPdf(path);
    case 16:
        return test::ReadPostScript(path);
    case 153:
        return test::ReadRaw(path, bits, size);
    default:
        return test::ReadByGraphicsMagick(path);
    }
}

/// Whether this program reads what it writes under a code.
bool IsReadHere(const SaveVariant& variant)
{
    // Bare samples and bare fax codes tell nothing of their size; a page of PostScript is drawn.
    const char* const without[] = {"RAW", "FAX", "EPS"};
    if (std::any_of(std::begin(without), std::end(without),
                    [&](const char* name) { return std::strcmp(variant.codec, name) == 0; })) {
        return false;
    }
    const std::span<const Codec> all = AllCodecs();
    return std::any_of(all.begin(), all.end(), [&](const Codec& codec) {
        return std::strcmp(codec.name, variant.codec) == 0
            && codec.matches != codecs::NoFileMatches;
    });
}

/// Bits that a file tells: a drawing has those of the screen.
qint32 BitsReadBack(const SaveVariant& variant, qint32 bits)
{
    return variant.format == 15 ? 24 : bits;
}

/// Colours on white, as a merged picture has them.
Bitmap OnWhite(const Bitmap& picture)
{
    EncodeRequest request;
    request.format = 107;
    request.bits = 24;
    return making::DecodeBytes(EncodePicture(picture, request));
}

class EncodeMatrix : public test::WorkerTest, public testing::WithParamInterface<EncodeCase> {
protected:
    const SaveVariant& Variant() const { return *GetParam().variant; }
    Bitmap Picture() const { return PictureFor(Variant(), GetParam().bits, SizeFor(Variant())); }
    QString Encoded(const Bitmap& picture)
    {
        EncodeRequest request;
        request.format = Variant().format;
        request.bits = GetParam().bits;
        return Write(QStringLiteral("written") + Variant().extension,
                     EncodePicture(picture, request));
    }
};

class EncodeMatrixHere : public EncodeMatrix { };

TEST_P(EncodeMatrixHere, ReadsBackAsWritten)
{
    const Bitmap picture = Picture();
    const LoadedImage loaded = LoadFile(Encoded(picture));
    EXPECT_EQ(loaded.facts.format, CodeReadBack(Variant(), GetParam().bits));
    EXPECT_EQ(loaded.facts.bits, BitsReadBack(Variant(), GetParam().bits));
    EXPECT_EQ(loaded.facts.width, picture.Width());
    EXPECT_EQ(loaded.facts.height, picture.Height());
    EXPECT_EQ(loaded.facts.pages, 1);
    EXPECT_FALSE(loaded.bitmap.IsPartial());
    if (Variant().lossy) {
        EXPECT_GE(Psnr(picture, loaded.bitmap), LeastPsnr(Variant(), GetParam().bits));
    } else if (Variant().format == 76 && GetParam().bits == 32) {
        // The merged picture that is read lies on white; the layer beside it is exact.
        EXPECT_GE(Psnr(OnWhite(picture), OnWhite(loaded.bitmap)), 50);
        EXPECT_EQ(picture.Pixels().convertToFormat(QImage::Format_Alpha8),
                  loaded.bitmap.Pixels().convertToFormat(QImage::Format_Alpha8));
    } else {
        EXPECT_TRUE(SamePixels(picture, loaded.bitmap));
    }
}

TEST_P(EncodeMatrix, IsReadByOthers)
{
    const Bitmap picture = Picture();
    const QString path = Encoded(picture);
    const QImage seen = ReadByOthers(path, Variant(), GetParam().bits, picture.Pixels().size());
    ASSERT_EQ(seen.size(), picture.Pixels().size());
    if (GetParam().bits > 24 || GetParam().bits == 16) {
        return; // what others make of transparency and ink is their own
    }
    const Bitmap other(seen, ColourModel::Rgb, 24);
    const Bitmap full(picture.Pixels().convertToFormat(QImage::Format_RGB32), ColourModel::Rgb, 24);
    if (Variant().lossy) {
        EXPECT_GE(Psnr(full, other), LeastPsnr(Variant(), GetParam().bits));
    } else {
        EXPECT_TRUE(SamePixels(full, other)) << Psnr(full, other);
    }
}

INSTANTIATE_TEST_SUITE_P(All, EncodeMatrix, testing::ValuesIn(EncodeCases(false)), EncodeCaseName);
INSTANTIATE_TEST_SUITE_P(All, EncodeMatrixHere, testing::ValuesIn(EncodeCases(true)),
                         EncodeCaseName);

TEST(SaveVariants, StandInOrderWithCodecsThatWrite)
{
    qint16 last = 0;
    for (const SaveVariant& variant : SaveVariants()) {
        EXPECT_GT(variant.format, last);
        last = variant.format;
        EXPECT_FALSE(FormatDescription(variant.format).isEmpty()) << variant.format;
        EXPECT_EQ(variant.extension[0], '.');
        EXPECT_GT(variant.depths[0], 0);
        bool writes = false;
        for (const Codec& codec : AllCodecs()) {
            writes = writes
                || (std::string(codec.name) == variant.codec
                    && (codec.encode || codec.encodesInWorker));
        }
        EXPECT_TRUE(writes) << variant.format;
        EXPECT_EQ(FindSaveVariant(variant.format), &variant);
    }
    EXPECT_EQ(FindSaveVariant(0), nullptr);
}

} // namespace

} // namespace quillane
