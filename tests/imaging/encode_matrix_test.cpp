// Every format code that can be written, at every depth that it holds: written, read back by this
// program and read by others.
#include "encode_support.h"
#include "imaging/codec.h"
#include "imaging/format_table.h"
#include "imaging/reader.h"
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

std::vector<EncodeCase> EncodeCases()
{
    std::vector<EncodeCase> cases;
    for (const SaveVariant& variant : SaveVariants()) {
        for (const qint32* bits = variant.depths; *bits != 0; ++bits) {
            cases.push_back({&variant, *bits});
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

/// The program of others that reads a variant. GraphicsMagick takes colours of OS/2 2.x for three
/// bytes each, while that system has four.
QImage (*OtherReader(qint16 format))(const QString&)
{
    return format == 74 ? test::ReadByFfmpeg : test::ReadByGraphicsMagick;
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

TEST_P(EncodeMatrix, ReadsBackAsWritten)
{
    const Bitmap picture = Picture();
    const LoadedImage loaded = LoadFile(Encoded(picture));
    EXPECT_EQ(loaded.facts.format, CodeReadBack(Variant(), GetParam().bits));
    EXPECT_EQ(loaded.facts.bits, GetParam().bits);
    EXPECT_EQ(loaded.facts.width, picture.Width());
    EXPECT_EQ(loaded.facts.height, picture.Height());
    EXPECT_EQ(loaded.facts.pages, 1);
    EXPECT_FALSE(loaded.bitmap.IsPartial());
    if (Variant().lossy) {
        EXPECT_GE(Psnr(picture, loaded.bitmap), LeastPsnr(Variant(), GetParam().bits));
    } else {
        EXPECT_TRUE(SamePixels(picture, loaded.bitmap));
    }
}

TEST_P(EncodeMatrix, IsReadByOthers)
{
    const Bitmap picture = Picture();
    const QString path = Encoded(picture);
    const QImage seen = OtherReader(Variant().format)(path);
    ASSERT_EQ(seen.size(), picture.Pixels().size());
    if (GetParam().bits > 24 || GetParam().bits == 16) {
        return; // what others make of transparency and ink is their own
    }
    const Bitmap other(seen, ColourModel::Rgb, 24);
    const Bitmap full(picture.Pixels().convertToFormat(QImage::Format_RGB32), ColourModel::Rgb, 24);
    if (Variant().lossy) {
        EXPECT_GE(Psnr(full, other), LeastPsnr(Variant(), GetParam().bits));
    } else {
        EXPECT_TRUE(SamePixels(full, other));
    }
}

INSTANTIATE_TEST_SUITE_P(All, EncodeMatrix, testing::ValuesIn(EncodeCases()), EncodeCaseName);

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
