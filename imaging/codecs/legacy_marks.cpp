// How older formats that the decoding process reads, and those that nobody reads, are told.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/legacy_codecs.h"
#include <algorithm>
#include <cstring>
#include <initializer_list>

namespace quillane::codecs {

namespace {

constexpr int kCalsRecord = 128; ///< characters of a record of a CALS header

bool LegacyIsNamed(QStringView extension, std::initializer_list<const char*> names)
{
    return std::any_of(names.begin(), names.end(), [&](const char* name) {
        return extension.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
    });
}

/// Refuses a file of a format that is known, but not read.
[[noreturn]] void NotRead(const char* format, const QString& words)
{
    throw Failure(kFailureUnreadable, words, QString::fromLatin1(format));
}

} // namespace

bool FaxMatches(QByteArrayView head, QStringView extension)
{
    return head.size() >= 2 && LegacyIsNamed(extension, {"FAX", "G3", "G4"});
}

bool CalsMatches(QByteArrayView head, QStringView)
{
    for (qsizetype at = 0; at + 6 <= head.size(); at += kCalsRecord) {
        const QByteArrayView record = head.sliced(at);
        for (const char* name : {"srcdocid:", "dstdocid:", "rtype:", "rorient:", "rpelcnt:"}) {
            if (record.startsWith(name)) {
                return true;
            }
        }
    }
    return false;
}

bool IocaMatches(QByteArrayView head, QStringView)
{
    if (head.size() < 9) {
        return false;
    }
    const uchar* p = reinterpret_cast<const uchar*>(head.data());
    if (p[0] == 0x5a) {
        return p[3] == 0xd3 && Big16(p + 1) >= 8;
    }
    // Begin segment, begin image content.
    return p[0] == 0x70 && p[1] <= 4 && p[2 + p[1]] == 0x91;
}

bool ItgMatches(QByteArrayView head, QStringView)
{
    if (head.size() < 512) {
        return false;
    }
    const uchar* p = reinterpret_cast<const uchar*>(head.data());
    return p[1] == 9 && (p[0] & 0x3f) == 8 && (Little16(p + 2) + 2) % 256 == 0;
}

bool CmpMatches(QByteArrayView head, QStringView extension)
{
    return LegacyIsNamed(extension, {"CMP"}) || head.startsWith(QByteArrayView("LEAD\0", 5));
}

ImageFacts CmpProbe(ByteSource&)
{
    NotRead("CMP",
            QStringLiteral("This is a picture in the CMP format, which is not publicly "
                           "described, so it cannot be read. Save it as JPEG or TIFF in "
                           "the program that made it."));
}

Bitmap CmpDecode(ByteSource& source, const DecodeRequest&)
{
    CmpProbe(source);
    return {};
}

bool AwdMatches(QByteArrayView head, QStringView extension)
{
    return LegacyIsNamed(extension, {"AWD"}) || head.startsWith("AWD\2");
}

ImageFacts AwdProbe(ByteSource&)
{
    NotRead("AWD",
            QStringLiteral("This is a Microsoft Fax document (AWD), a format that is not "
                           "publicly described, so it cannot be read. Save it as TIFF in "
                           "the program that made it."));
}

Bitmap AwdDecode(ByteSource& source, const DecodeRequest&)
{
    AwdProbe(source);
    return {};
}

bool DwgMatches(QByteArrayView head, QStringView extension)
{
    const bool marked = head.size() >= 6 && head.startsWith("AC1") && head[3] >= '0'
        && head[3] <= '9' && head[4] >= '0' && head[4] <= '9';
    return LegacyIsNamed(extension, {"DWG"}) || marked;
}

ImageFacts DwgProbe(ByteSource&)
{
    NotRead("DWG",
            QStringLiteral("This is an AutoCAD drawing (DWG), a format that is not "
                           "publicly described, so it cannot be read. Save it as DXF in "
                           "the program that made it."));
}

Bitmap DwgDecode(ByteSource& source, const DecodeRequest&)
{
    DwgProbe(source);
    return {};
}

bool DwfMatches(QByteArrayView head, QStringView extension)
{
    return LegacyIsNamed(extension, {"DWF"}) || head.startsWith("(DWF V");
}

ImageFacts DwfProbe(ByteSource&)
{
    NotRead("DWF",
            QStringLiteral("This is a published drawing (DWF), which this program does not "
                           "read. Save it as DXF or as a picture in the program that made "
                           "it."));
}

Bitmap DwfDecode(ByteSource& source, const DecodeRequest&)
{
    DwfProbe(source);
    return {};
}

} // namespace quillane::codecs
