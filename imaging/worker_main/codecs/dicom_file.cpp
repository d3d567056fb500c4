#include "imaging/worker_main/codecs/dicom_file.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker/protocol.h"
#include "imaging/worker_main/codecs/dicom_stream.h"
#include <algorithm>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcxfer.h>

namespace quillane::worker {

namespace {

/// Values longer than this stay in the file until they are asked for.
constexpr Uint32 kDicomKeptValue = 4096;

struct DicomSyntax {
    E_TransferSyntax syntax;
    const char* words;
};
constexpr DicomSyntax kDicomSyntaxes[] = {
    {EXS_RLELossless, "RLE"},
    {EXS_JPEGProcess1, "JPEG"},
    {EXS_JPEGProcess2_4, "JPEG extended"},
    {EXS_JPEGProcess14, "JPEG lossless"},
    {EXS_JPEGProcess14SV1, "JPEG lossless"},
    {EXS_JPEGLSLossless, "JPEG-LS lossless"},
    {EXS_JPEGLSLossy, "JPEG-LS"},
    {EXS_JPEG2000LosslessOnly, "JPEG 2000 lossless"},
    {EXS_JPEG2000, "JPEG 2000"},
    {EXS_DeflatedLittleEndianExplicit, "Deflate"},
};

/// Codes of grey and of colour pictures.
constexpr qint16 kDicomPlain[] = {89, 90};
constexpr qint16 kDicomRle[] = {125, 126};
constexpr qint16 kDicomJpeg[] = {127, 128};

qint16 DicomFormatCode(E_TransferSyntax syntax, bool colour)
{
    if (syntax == EXS_RLELossless) {
        return kDicomRle[colour];
    }
    return DcmXfer(syntax).isEncapsulated() ? kDicomJpeg[colour] : kDicomPlain[colour];
}

QString DicomCompression(E_TransferSyntax syntax)
{
    for (const DicomSyntax& row : kDicomSyntaxes) {
        if (row.syntax == syntax) {
            return QString::fromLatin1(row.words);
        }
    }
    return DcmXfer(syntax).isEncapsulated() ? QString::fromLatin1(DcmXfer(syntax).getXferName())
                                            : QStringLiteral("Uncompressed");
}

int DicomNumber(DcmDataset& dataset, const DcmTagKey& tag, int otherwise)
{
    Uint16 value = 0;
    return dataset.findAndGetUint16(tag, value).good() ? value : otherwise;
}

} // namespace

void ThrowDicomDamaged()
{
    throw Failure(kFailureUnreadable, QStringLiteral("This DICOM file is damaged."));
}

DicomFile::DicomFile(ByteSource& source, DicomPart part) : mBytes(source.Size())
{
    if (Read(source, part, 0)) {
        return;
    }
    // A file that was cut short: with zeros behind it, the picture's beginning can be read.
    // How many are missing follows from its own facts.
    mFile.clear();
    if (part != DicomPart::All || !Read(source, DicomPart::BeforePixels, 0)) {
        ThrowDicomDamaged();
    }
    const qint64 padding = Facts().facts.sizeMemory * Facts().facts.pages;
    mFile.clear();
    if (padding > limits::kMaxPictureBytes || !Read(source, part, padding)) {
        ThrowDicomDamaged();
    }
    mPartial = true;
}

bool DicomFile::Read(ByteSource& source, DicomPart part, qint64 padding)
{
    DicomStream stream(source, 0, padding);
    // What lies behind the picture does not matter, and may be missing. Reading up to the
    // picture needs no such end, and would stumble over it.
    const bool all = part != DicomPart::BeforePixels;
    dcmStopParsingAfterElement.set(part == DicomPart::All ? DCM_PixelData : DCM_UndefinedTagKey);
    mFile.transferInit();
    const OFCondition read = all
        ? mFile.read(stream, EXS_Unknown, EGL_noChange, kDicomKeptValue)
        : mFile.readUntilTag(stream, EXS_Unknown, EGL_noChange, kDicomKeptValue, DCM_PixelData);
    mFile.transferEnd();
    return read.good();
}

DicomFacts DicomFile::Facts()
{
    DcmDataset& dataset = Dataset();
    DicomFacts result;
    ImageFacts& facts = result.facts;
    facts.width = DicomNumber(dataset, DCM_Columns, 0);
    facts.height = DicomNumber(dataset, DCM_Rows, 0);
    const int samples = DicomNumber(dataset, DCM_SamplesPerPixel, 1);
    const int allocated = DicomNumber(dataset, DCM_BitsAllocated, 0);
    result.bitsStored = DicomNumber(dataset, DCM_BitsStored, allocated);
    OFString photometric;
    dataset.findAndGetOFString(DCM_PhotometricInterpretation, photometric);
    constexpr int kMostSamples = 4, kMostBits = 64;
    if (facts.width == 0 || facts.height == 0 || samples < 1 || samples > kMostSamples
        || allocated < 1 || allocated > kMostBits) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("This DICOM file is damaged or holds no picture."));
    }
    facts.bits = qint16(samples * allocated);
    facts.sizeMemory = RowBytes(facts.width, facts.bits) * facts.height;
    facts.sizeDisk = mBytes;
    if (qint64(facts.width) * facts.height > limits::kMaxPixels
        || facts.sizeMemory > limits::kMaxPictureBytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("This DICOM picture is too large: %1 by %2 "
                                     "pixels.")
                          .arg(facts.width)
                          .arg(facts.height));
    }
    Sint32 frames = 1;
    dataset.findAndGetSint32(DCM_NumberOfFrames, frames);
    facts.pages = std::clamp<qint32>(frames, 1, limits::kMaxPages);
    result.colour = samples >= 3 || photometric == "PALETTE COLOR";
    const E_TransferSyntax syntax = dataset.getOriginalXfer();
    facts.format = DicomFormatCode(syntax, result.colour);
    facts.compression = DicomCompression(syntax);
    result.partial = mPartial;
    return result;
}

} // namespace quillane::worker
