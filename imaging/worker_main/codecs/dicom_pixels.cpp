#include "imaging/worker_main/codecs/dicom_pixels.h"
#include "core/failure.h"
#include "imaging/quality.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcpixel.h>
#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>
#include <dcmtk/dcmdata/dcrlerp.h>
#include <dcmtk/dcmjpeg/djrplol.h>
#include <memory>
#include <new>
#include <turbojpeg.h>

namespace quillane::worker {

namespace {

constexpr qint16 kDicomGreyPlain = 89, kDicomColourPlain = 90;
constexpr qint16 kDicomGreyRle = 125, kDicomColourRle = 126;
constexpr qint16 kDicomGreyJpeg = 127, kDicomColourJpeg = 128;

[[noreturn]] void RefuseDicom(const QString& words)
{
    throw Failure(kFailureGeneral, words);
}

/// What described pixels that are gone: how values became brightness, other pictures of them.
const DcmTagKey kDicomStale[] = {
    DCM_NumberOfFrames,
    DCM_FrameIncrementPointer,
    DCM_PlanarConfiguration,
    DCM_SmallestImagePixelValue,
    DCM_LargestImagePixelValue,
    DCM_PixelPaddingValue,
    DCM_PixelPaddingRangeLimit,
    DCM_WindowCenter,
    DCM_WindowWidth,
    DCM_WindowCenterWidthExplanation,
    DCM_VOILUTFunction,
    DCM_RescaleIntercept,
    DCM_RescaleSlope,
    DCM_RescaleType,
    DCM_ModalityLUTSequence,
    DCM_VOILUTSequence,
    DCM_PresentationLUTShape,
    DCM_PresentationLUTSequence,
    DCM_RedPaletteColorLookupTableDescriptor,
    DCM_GreenPaletteColorLookupTableDescriptor,
    DCM_BluePaletteColorLookupTableDescriptor,
    DCM_RedPaletteColorLookupTableData,
    DCM_GreenPaletteColorLookupTableData,
    DCM_BluePaletteColorLookupTableData,
    DCM_SegmentedRedPaletteColorLookupTableData,
    DCM_SegmentedGreenPaletteColorLookupTableData,
    DCM_SegmentedBluePaletteColorLookupTableData,
    DCM_PaletteColorLookupTableUID,
    DCM_ICCProfile,
    DCM_IconImageSequence,
    DCM_ExtendedOffsetTable,
    DCM_ExtendedOffsetTableLengths,
    DCM_FloatPixelData,
    DCM_DoubleFloatPixelData,
    DCM_PixelData,
};

void Need(const OFCondition& condition)
{
    if (condition == EC_MemoryExhausted) {
        throw std::bad_alloc();
    }
    if (condition.bad()) {
        RefuseDicom(QStringLiteral("The pixels of this DICOM file cannot be written: %1.")
                        .arg(QString::fromLatin1(condition.text())));
    }
}

void PutShort(DcmItem& item, const DcmTagKey& tag, int value)
{
    Need(item.putAndInsertUint16(DcmTag(tag), Uint16(value)));
}

/// The elements that describe samples of a kind.
void DescribeDicomPixels(DcmItem& item, const PictureShape& shape, SampleKind kind)
{
    constexpr int kMostSide = 65535;
    if (shape.width > kMostSide || shape.height > kMostSide) {
        RefuseDicom(
            QStringLiteral("A DICOM file holds at most %1 pixels on a side.").arg(kMostSide));
    }
    const int bits = SampleBitsOf(kind);
    const bool colour = kind == SampleKind::Rgb8;
    PutShort(item, DCM_SamplesPerPixel, SamplesOf(kind));
    Need(item.putAndInsertString(DcmTag(DCM_PhotometricInterpretation),
                                 colour ? "RGB" : "MONOCHROME2"));
    if (colour) {
        PutShort(item, DCM_PlanarConfiguration, 0);
    }
    PutShort(item, DCM_Rows, shape.height);
    PutShort(item, DCM_Columns, shape.width);
    PutShort(item, DCM_BitsAllocated, bits);
    PutShort(item, DCM_BitsStored, bits);
    PutShort(item, DCM_HighBit, bits - 1);
    PutShort(item, DCM_PixelRepresentation, 0);
    if (bits > 8) {
        // Without a window readers choose one of their own.
        Need(item.putAndInsertString(DcmTag(DCM_WindowCenter), "32768"));
        Need(item.putAndInsertString(DcmTag(DCM_WindowWidth), "65536"));
    }
}

std::vector<uchar> AllSamples(PictureRows& picture, SampleKind kind)
{
    SampleRows rows(picture, kind);
    const auto rowBytes = size_t(rows.RowBytes());
    const auto height = size_t(picture.Shape().height);
    std::vector<uchar> samples(rowBytes * height);
    for (size_t y = 0; y < height; ++y) {
        std::memcpy(samples.data() + y * rowBytes, rows.Next(), rowBytes);
    }
    return samples;
}

/// The pixels as they are, or compressed by the library without loss.
void PutLossless(DcmDataset& dataset, std::vector<uchar> samples, const DicomVariant& variant)
{
    if (SampleBitsOf(variant.kind) > 8) {
        Need(dataset.putAndInsertUint16Array(DcmTag(DCM_PixelData),
                                             reinterpret_cast<const Uint16*>(samples.data()),
                                             samples.size() / 2));
    } else {
        Need(dataset.putAndInsertUint8Array(DcmTag(DCM_PixelData), samples.data(), samples.size()));
    }
    samples = {};
    if (variant.syntax == EXS_RLELossless) {
        const DcmRLERepresentationParameter parameter;
        Need(dataset.chooseRepresentation(variant.syntax, &parameter));
    } else if (variant.syntax == EXS_JPEGProcess14SV1) {
        const DJ_RPLossless parameter;
        Need(dataset.chooseRepresentation(variant.syntax, &parameter));
    }
    if (DcmXfer(variant.syntax).isEncapsulated()) {
        DcmElement* element = nullptr;
        Need(dataset.findAndGetElement(DCM_PixelData, element));
        static_cast<DcmPixelData*>(element)->removeAllButCurrentRepresentations();
    }
}

struct JpegCompressor {
    tjhandle handle = tjInitCompress();
    unsigned char* bytes = nullptr;
    unsigned long count = 0;
    JpegCompressor() = default;
    JpegCompressor(const JpegCompressor&) = delete;
    JpegCompressor& operator=(const JpegCompressor&) = delete;
    ~JpegCompressor()
    {
        tjFree(bytes);
        if (handle) {
            tjDestroy(handle);
        }
    }
};

/// Compressed by ourselves: the library's own way would first stretch grey values to all that the
/// picture does not use.
void PutLossyJpeg(DcmDataset& dataset, std::vector<uchar> samples, const PictureShape& shape,
                  const DicomVariant& variant, qint32 quality)
{
    const bool colour = variant.kind == SampleKind::Rgb8;
    const int percent = std::max(1, int(std::lround(QualityPercent(quality))));
    JpegCompressor jpeg;
    if (!jpeg.handle
        || tjCompress2(jpeg.handle, samples.data(), shape.width, 0, shape.height,
                       colour ? TJPF_RGB : TJPF_GRAY, &jpeg.bytes, &jpeg.count,
                       colour ? TJSAMP_444 : TJSAMP_GRAY, percent, TJFLAG_ACCURATEDCT)
            != 0) {
        RefuseDicom(QStringLiteral("The pixels of this DICOM file cannot be written as JPEG."));
    }
    const double ratio = double(samples.size()) / double(std::max(1ul, jpeg.count));
    samples = {};
    auto sequence = std::make_unique<DcmPixelSequence>(DCM_PixelSequenceTag);
    Need(sequence->insert(new DcmPixelItem(DCM_PixelItemTag)));
    DcmOffsetList offsets;
    Need(sequence->storeCompressedFrame(offsets, jpeg.bytes, Uint32(jpeg.count), 0));
    auto pixels = std::make_unique<DcmPixelData>(DCM_PixelData);
    pixels->putOriginalRepresentation(variant.syntax, nullptr, sequence.release());
    Need(dataset.insert(pixels.get(), OFTrue));
    pixels.release();
    if (colour) {
        Need(dataset.putAndInsertString(DcmTag(DCM_PhotometricInterpretation), "YBR_FULL"));
    }
    Need(dataset.putAndInsertString(DcmTag(DCM_LossyImageCompression), "01"));
    Need(dataset.putAndInsertString(DcmTag(DCM_LossyImageCompressionRatio),
                                    QByteArray::number(ratio, 'f', 2).constData()));
    Need(dataset.putAndInsertString(DcmTag(DCM_LossyImageCompressionMethod), "ISO_10918_1"));
}

} // namespace

DicomVariant ChooseDicomVariant(const PictureShape& shape, const EncodeWish& wish)
{
    DicomVariant variant;
    bool colour = false;
    switch (wish.format) {
    case kDicomColourPlain:
        colour = true;
        [[fallthrough]];
    case kDicomGreyPlain:
        break;
    case kDicomColourRle:
        colour = true;
        [[fallthrough]];
    case kDicomGreyRle:
        variant.syntax = EXS_RLELossless;
        break;
    case kDicomColourJpeg:
        colour = true;
        [[fallthrough]];
    case kDicomGreyJpeg:
        variant.lossy = wish.quality > kBestQuality;
        variant.syntax = variant.lossy ? EXS_JPEGProcess1 : EXS_JPEGProcess14SV1;
        break;
    default:
        RefuseDicom(QStringLiteral("DICOM files of format %1 cannot be written.").arg(wish.format));
    }
    const bool deep = shape.layout == PixelLayout::Grey16;
    const qint32 bits = wish.bits > 0 ? wish.bits : colour ? 24 : deep ? 16 : 8;
    if (colour ? bits != 24 : bits != 8 && bits != 16) {
        RefuseDicom(
            QStringLiteral("A DICOM file of this kind does not hold %1 bits a pixel.").arg(bits));
    }
    variant.kind = colour ? SampleKind::Rgb8 : bits == 16 ? SampleKind::Grey16 : SampleKind::Grey8;
    if (variant.kind == SampleKind::Grey16 && variant.lossy) {
        // The lossy process holds 8 bits, which would lose more than anybody asked for.
        variant.lossy = false;
        variant.syntax = EXS_JPEGProcess14SV1;
    }
    return variant;
}

void PutDicomPixels(DcmDataset& dataset, PictureRows& picture, const DicomVariant& variant,
                    qint32 quality)
{
    // In a data set of their own, because the library's encoders add to the one they work on.
    DcmDataset pixels;
    DescribeDicomPixels(pixels, picture.Shape(), variant.kind);
    std::vector<uchar> samples = AllSamples(picture, variant.kind);
    if (variant.lossy) {
        PutLossyJpeg(pixels, std::move(samples), picture.Shape(), variant, quality);
    } else {
        PutLossless(pixels, std::move(samples), variant);
        pixels.findAndDeleteElement(DCM_DerivationDescription);
        pixels.findAndDeleteElement(DCM_ImageType);
    }
    for (const DcmTagKey& tag : kDicomStale) {
        dataset.findAndDeleteElement(tag);
    }
    while (pixels.card() > 0) {
        DcmElement* element = pixels.remove(0ul);
        if (const OFCondition put = dataset.insert(element, OFTrue); put.bad()) {
            delete element;
            Need(put);
        }
    }
}

} // namespace quillane::worker
