#include "imaging/codec.h"
#include "imaging/codecs/codecs.h"

namespace quillane {

namespace {

// Formats with an unmistakable beginning stand first. A DICOM file may carry the beginning of a
// TIFF in its preamble, so it is asked before TIFF.
constexpr Codec kCodecTable[] = {
    {"JPEG", "JPG JPEG JPE JFIF", codecs::JpegMatches, codecs::JpegProbe, codecs::JpegDecode,
     false},
    {"DICOM", "DIC DCM", codecs::DicomMatches, nullptr, nullptr, true},
    {"TIFF", "TIF TIFF", codecs::TiffMatches, nullptr, nullptr, true},
};

} // namespace

std::span<const Codec> AllCodecs()
{
    return kCodecTable;
}

const Codec* FindCodec(QByteArrayView head, QStringView extension)
{
    for (const Codec& codec : kCodecTable) {
        if (codec.matches(head, extension)) {
            return &codec;
        }
    }
    return nullptr;
}

} // namespace quillane
