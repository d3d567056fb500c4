#include "core/failure.h"
#include "imaging/worker_main/codecs/dicom_file.h"
#include "imaging/worker_main/codecs/dicom_rle.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <algorithm>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcdict.h>
#include <dcmtk/dcmdata/dcrledrg.h>
#include <dcmtk/dcmdata/dcrleerg.h>
#include <dcmtk/dcmimage/diregist.h>
#include <dcmtk/dcmimgle/dcmimage.h>
#include <dcmtk/dcmjpeg/djdecode.h>
#include <dcmtk/dcmjpeg/djencode.h>
#include <dcmtk/dcmjpls/djdecode.h>
#include <dcmtk/oflog/oflog.h>

namespace quillane::worker {

namespace {

constexpr int kShallowBits = 8;

/// Whether values of 16 bits are brightness as they are: none is rescaled, and the window is all
/// of them.
bool IsFullWindow(DcmDataset& dataset, const DicomImage& image, int bitsStored)
{
    const auto number = [&](const DcmTagKey& tag, double otherwise) {
        double value = 0;
        return dataset.findAndGetFloat64(tag, value).good() ? value : otherwise;
    };
    const double slope = number(DCM_RescaleSlope, 1), intercept = number(DCM_RescaleIntercept, 0);
    const double centre = number(DCM_WindowCenter, 0), width = number(DCM_WindowWidth, 0);
    Uint16 isSigned = 0;
    dataset.findAndGetUint16(DCM_PixelRepresentation, isSigned);
    constexpr double kValues = 65536;
    return bitsStored == 16 && isSigned == 0 && slope == 1 && intercept == 0
        && image.getWindowCount() == 1 && centre == kValues / 2 && width == kValues
        && !dataset.tagExists(DCM_ModalityLUTSequence);
}

/// Chooses how grey values become brightness: as the file says, else all of a picture of up to
/// 8 bits as it is, else from its darkest to its brightest. Whether values stay the file's own.
bool ChooseDicomWindow(DcmDataset& dataset, DicomImage& image, int bitsStored)
{
    if (IsFullWindow(dataset, image, bitsStored)) {
        image.setNoVoiTransformation();
        return true;
    }
    if (image.getWindowCount() > 0) {
        image.setWindow(0);
    } else if (image.getVoiLutCount() > 0) {
        image.setVoiLut(0);
    } else if (bitsStored > kShallowBits) {
        image.setMinMaxWindow();
    } else {
        return true;
    }
    return false;
}

/// `flip` is exclusive-ored into grey values.
void CopyDicomRow(const uchar* from, const PictureShape& shape, quint16 flip, uchar* to)
{
    switch (shape.layout) {
    case PixelLayout::Grey8:
        std::transform(from, from + shape.width, to,
                       [flip](uchar value) { return uchar(value ^ flip); });
        break;
    case PixelLayout::Grey16: {
        const auto* words = reinterpret_cast<const quint16*>(from);
        std::transform(words, words + shape.width, reinterpret_cast<quint16*>(to),
                       [flip](quint16 value) { return quint16(value ^ flip); });
        break;
    }
    default: {
        auto* pixels = reinterpret_cast<quint32*>(to);
        for (qint32 x = 0; x < shape.width; ++x, from += 3) {
            pixels[x] = 0xff000000u | quint32(from[0]) << 16 | quint32(from[1]) << 8 | from[2];
        }
        break;
    }
    }
}

} // namespace

void PrepareDicom()
{
    OFLog::configure(OFLogger::OFF_LOG_LEVEL);
    DcmRLEDecoderRegistration::registerCodecs();
    DJDecoderRegistration::registerCodecs();
    DJLSDecoderRegistration::registerCodecs();
    DcmRLEEncoderRegistration::registerCodecs();
    // A picture keeps its identity, for which the library would ask the network besides.
    DJEncoderRegistration::registerCodecs(ECC_lossyYCbCr, EUC_never);
    // The dictionary of fields is a file: it has to be in memory before files are out of reach.
    dcmDataDict.rdlock();
    dcmDataDict.rdunlock();
}

ImageFacts ProbeDicom(ByteSource& source)
{
    return DicomFile(source, DicomPart::BeforePixels).Facts().facts;
}

bool DecodeDicom(ByteSource& source, const PictureWish& wish, PictureSink& sink)
{
    DicomFile file(source, DicomPart::All);
    const DicomFacts facts = file.Facts();
    if (wish.page < 0 || wish.page >= facts.facts.pages) {
        throw Failure(kFailureGeneral, QStringLiteral("This DICOM file has no such frame."));
    }
    CheckDicomRuns(file.Dataset());
    const E_TransferSyntax syntax = file.Dataset().getOriginalXfer();
    DicomImage image(&file.Dataset(), syntax, CIF_UsePartialAccessToPixelData,
                     static_cast<unsigned long>(wish.page), 1);
    if (image.getStatus() == EIS_MemoryFailure) {
        throw std::bad_alloc();
    }
    if (image.getStatus() == EIS_MissingAttribute || image.getStatus() == EIS_NotSupportedValue) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("This DICOM file holds a kind of picture that cannot be "
                                     "shown (%1).")
                          .arg(facts.facts.compression));
    }
    if (image.getStatus() != EIS_Normal || image.getWidth() < 1 || image.getHeight() < 1) {
        ThrowDicomDamaged();
    }
    const bool colour = !image.isMonochrome();
    const bool deep = !colour && facts.bitsStored > kShallowBits;
    PictureShape shape;
    shape.width = qint32(image.getWidth());
    shape.height = qint32(image.getHeight());
    shape.layout = colour ? PixelLayout::Rgb32 : deep ? PixelLayout::Grey16 : PixelLayout::Grey8;
    shape.fileDepth = facts.facts.bits;
    shape.exact = colour || ChooseDicomWindow(file.Dataset(), image, facts.bitsStored);

    // The library inverts with an error of rounding; values that stay as they are do not need it.
    quint16 flip = 0;
    if (!colour && shape.exact && image.getPhotometricInterpretation() == EPI_Monochrome1) {
        image.setPolarity(EPP_Reverse);
        flip = 0xffff;
    }

    const int bits = deep ? 16 : kShallowBits;
    const auto* pixels = static_cast<const uchar*>(image.getOutputData(bits, 0, 0));
    const size_t rowBytes = size_t(shape.width) * (colour ? 3 : deep ? 2 : 1);
    if (!pixels || image.getOutputDataSize(bits) < rowBytes * size_t(shape.height)) {
        ThrowDicomDamaged();
    }
    sink.Begin(shape);
    for (qint32 y = 0; y < shape.height; ++y) {
        CopyDicomRow(pixels + size_t(y) * rowBytes, shape, flip, sink.NextRow());
    }
    return facts.partial;
}

} // namespace quillane::worker
