#include "core/failure.h"
#include "imaging/worker_main/codecs/dicom_file.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <algorithm>
#include <dcmtk/dcmdata/dcdict.h>
#include <dcmtk/dcmdata/dcrledrg.h>
#include <dcmtk/dcmimage/diregist.h>
#include <dcmtk/dcmimgle/dcmimage.h>
#include <dcmtk/dcmjpeg/djdecode.h>
#include <dcmtk/dcmjpls/djdecode.h>
#include <dcmtk/oflog/oflog.h>

namespace quillane::worker {

namespace {

/// Chooses how grey values become brightness: as the file says, else all of a picture of up to
/// 8 bits as it is, else from its darkest to its brightest. Whether values stay the file's own.
bool ChooseDicomWindow(DicomImage& image, int bitsStored)
{
    constexpr int kShownBits = 8;
    if (image.getWindowCount() > 0) {
        image.setWindow(0);
    } else if (image.getVoiLutCount() > 0) {
        image.setVoiLut(0);
    } else if (bitsStored > kShownBits) {
        image.setMinMaxWindow();
    } else {
        return true;
    }
    return false;
}

/// `flip` is exclusive-ored into grey values.
void CopyDicomRow(const uchar* from, qint32 width, bool colour, uchar flip, uchar* to)
{
    if (!colour) {
        std::transform(from, from + width, to, [flip](uchar value) { return value ^ flip; });
        return;
    }
    auto* pixels = reinterpret_cast<quint32*>(to);
    for (qint32 x = 0; x < width; ++x, from += 3) {
        pixels[x] = 0xff000000u | quint32(from[0]) << 16 | quint32(from[1]) << 8 | from[2];
    }
}

} // namespace

void PrepareDicom()
{
    OFLog::configure(OFLogger::OFF_LOG_LEVEL);
    DcmRLEDecoderRegistration::registerCodecs();
    DJDecoderRegistration::registerCodecs();
    DJLSDecoderRegistration::registerCodecs();
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
    PictureShape shape;
    shape.width = qint32(image.getWidth());
    shape.height = qint32(image.getHeight());
    shape.layout = colour ? PixelLayout::Rgb32 : PixelLayout::Grey8;
    shape.fileDepth = facts.facts.bits;
    shape.exact = colour || ChooseDicomWindow(image, facts.bitsStored);

    // The library inverts with an error of rounding; values that stay as they are do not need it.
    uchar flip = 0;
    if (!colour && shape.exact && image.getPhotometricInterpretation() == EPI_Monochrome1) {
        image.setPolarity(EPP_Reverse);
        flip = 0xff;
    }

    constexpr int kOutputBits = 8;
    const auto* pixels = static_cast<const uchar*>(image.getOutputData(kOutputBits, 0, 0));
    const size_t rowBytes = size_t(shape.width) * (colour ? 3 : 1);
    if (!pixels || image.getOutputDataSize(kOutputBits) < rowBytes * size_t(shape.height)) {
        ThrowDicomDamaged();
    }
    sink.Begin(shape);
    for (qint32 y = 0; y < shape.height; ++y) {
        CopyDicomRow(pixels + size_t(y) * rowBytes, shape.width, colour, flip, sink.NextRow());
    }
    return facts.partial;
}

} // namespace quillane::worker
