#include "imaging/codec.h"
#include "imaging/codecs/codecs.h"
#include "imaging/codecs/encoders.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/legacy_encoders.h"

namespace quillane {

namespace {

// Formats with an unmistakable beginning stand first. A DICOM file may carry the beginning of a
// TIFF in its preamble, so it is asked before TIFF. At the end stand those that only their name
// tells, and those that are known and not read.
constexpr Codec kCodecTable[] = {
    {"JPEG", "JPG JPEG JPE JFIF", codecs::JpegMatches, codecs::JpegProbe, codecs::JpegDecode, false,
     codecs::JpegEncode},
    {"PNG", "PNG", codecs::PngMatches, codecs::PngProbe, codecs::PngDecode, false,
     codecs::PngEncode},
    {"GIF", "GIF", codecs::GifMatches, codecs::GifProbe, codecs::GifDecode, false,
     codecs::GifEncode},
    {"JPEG 2000", "JP2 J2K JPC J2C", codecs::Jpeg2000Matches, nullptr, nullptr, true, nullptr,
     true},
    {"DICOM", "DIC DCM", codecs::DicomMatches, nullptr, nullptr, true, nullptr, true},
    {"TIFF", "TIF TIFF", codecs::TiffMatches, nullptr, nullptr, true, nullptr, true},
    {"WMF", "WMF", codecs::WmfMatches, codecs::WmfProbe, codecs::WmfDecode, false,
     codecs::WmfEncode},
    {"EMF", "EMF", codecs::EmfMatches, codecs::EmfProbe, codecs::EmfDecode, false},
    {"DXF", "DXF", codecs::DxfMatches, codecs::DxfProbe, codecs::DxfDecode, false},
    {"FlashPix", "FPX", codecs::FpxMatches, codecs::FpxProbe, codecs::FpxDecode, false},
    {"EPS", "EPS PS AI", codecs::EpsMatches, codecs::EpsProbe, codecs::EpsDecode, false,
     codecs::EpsEncode},
    {"MOV", "MOV QT MP4 M4V", codecs::MovMatches, nullptr, nullptr, true},
    {"AVI", "AVI", codecs::AviMatches, nullptr, nullptr, true},
    {"MPEG", "MPG MPEG MPE TS", codecs::MpegMatches, nullptr, nullptr, true},
    {"BMP", "BMP DIB RLE", codecs::BmpMatches, codecs::BmpProbe, codecs::BmpDecode, false,
     codecs::BmpEncode},
    {"ICO", "ICO CUR", codecs::IcoMatches, codecs::IcoProbe, codecs::IcoDecode, false,
     codecs::IcoEncode},
    {"PNM", "PBM PGM PPM PNM", codecs::PnmMatches, codecs::PnmProbe, codecs::PnmDecode, false,
     codecs::PnmEncode},
    {"PSD", "PSD PSB", codecs::PsdMatches, codecs::PsdProbe, codecs::PsdDecode, false,
     codecs::PsdEncode},
    {"IFF", "IFF LBM ILBM", codecs::IffMatches, codecs::IffProbe, codecs::IffDecode, false,
     codecs::IffEncode},
    {"Sun raster", "RAS SUN IM1 IM8 IM24", codecs::SunMatches, codecs::SunProbe, codecs::SunDecode,
     false, codecs::SunEncode},
    {"SGI", "SGI RGB BW RGBA", codecs::SgiMatches, codecs::SgiProbe, codecs::SgiDecode, false,
     codecs::SgiEncode},
    {"CALS", "CAL CALS", codecs::CalsMatches, nullptr, nullptr, true, codecs::CalsEncode},
    {"IOCA", "ICA IOCA", codecs::IocaMatches, nullptr, nullptr, true},
    {"Intergraph", "ITG CIT RLE", codecs::ItgMatches, nullptr, nullptr, true},
    {"CLP", "CLP", codecs::ClpMatches, codecs::ClpProbe, codecs::ClpDecode, false,
     codecs::ClpEncode},
    {"WPG", "WPG", codecs::WpgMatches, codecs::WpgProbe, codecs::WpgDecode, false,
     codecs::WpgEncode},
    {"MSP", "MSP", codecs::MspMatches, codecs::MspProbe, codecs::MspDecode, false,
     codecs::MspEncode},
    {"PCX", "PCX", codecs::PcxMatches, codecs::PcxProbe, codecs::PcxDecode, false,
     codecs::PcxEncode},
    {"MacPaint", "MAC PNTG", codecs::MacMatches, codecs::MacProbe, codecs::MacDecode, false,
     codecs::MacEncode},
    {"GEM image", "IMG", codecs::GemMatches, codecs::GemProbe, codecs::GemDecode, false},
    {"PICT", "PCT PICT PIC", codecs::PictMatches, codecs::PictProbe, codecs::PictDecode, false,
     codecs::PictEncode},
    {"TARGA", "TGA ICB VDA VST TARGA", codecs::TgaMatches, codecs::TgaProbe, codecs::TgaDecode,
     false, codecs::TgaEncode},
    {"Dr. Halo", "CUT", codecs::CutMatches, codecs::CutProbe, codecs::CutDecode, false},
    {"CMP", "CMP", codecs::CmpMatches, codecs::CmpProbe, codecs::CmpDecode, false},
    {"AWD", "AWD", codecs::AwdMatches, codecs::AwdProbe, codecs::AwdDecode, false},
    {"DWG", "DWG", codecs::DwgMatches, codecs::DwgProbe, codecs::DwgDecode, false},
    {"DWF", "DWF", codecs::DwfMatches, codecs::DwfProbe, codecs::DwfDecode, false},
    {"XBM", "XBM", codecs::NoFileMatches, nullptr, nullptr, false, codecs::XbmEncode},
    {"XPM", "XPM", codecs::NoFileMatches, nullptr, nullptr, false, codecs::XpmEncode},
    {"PDF", "PDF", codecs::NoFileMatches, nullptr, nullptr, false, codecs::PdfEncode},
    {"FAX", "FAX G3 G4", codecs::FaxMatches, nullptr, nullptr, true, codecs::FaxEncode},
    {"RAW", "RAW", codecs::RawMatches, codecs::RawProbe, codecs::RawDecode, false,
     codecs::RawEncode},
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
