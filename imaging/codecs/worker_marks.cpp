// How the formats that the decoding process reads are told by their beginning.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/codecs.h"
#include <algorithm>
#include <cstring>
#include <iterator>

namespace quillane::codecs {

namespace {

constexpr int kDicomMarkAt = 128; ///< behind the preamble (DICOM PS3.10, 7.1)

bool MarkIsTiff(QByteArrayView head)
{
    if (head.size() < 8) {
        return false;
    }
    constexpr char kMarks[][4] = {
        {'I', 'I', '*', 0}, {'M', 'M', 0, '*'}, {'I', 'I', '+', 0}, {'M', 'M', 0, '+'}};
    return std::any_of(std::begin(kMarks), std::end(kMarks),
                       [&](const char* mark) { return std::memcmp(head.data(), mark, 4) == 0; });
}

bool MarkHasExtension(QStringView extension, std::initializer_list<const char*> wanted)
{
    for (const char* one : wanted) {
        if (extension.compare(QLatin1String(one), Qt::CaseInsensitive) == 0) {
            return true;
        }
    }
    return false;
}

/// Whether this begins as a data set without preamble: an element of the file's own group or of
/// the identifying one, followed by a type or a length of moderate size.
bool MarkIsBareDicom(QByteArrayView head)
{
    if (head.size() < 16) {
        return false;
    }
    const uchar* p = reinterpret_cast<const uchar*>(head.data());
    const auto letter = [](uchar c) { return c >= 'A' && c <= 'Z'; };
    const bool typed = letter(p[4]) && letter(p[5]);
    for (const bool big : {false, true}) {
        const quint16 group = big ? Big16(p) : Little16(p);
        const quint16 element = big ? Big16(p + 2) : Little16(p + 2);
        const quint32 length = big ? Big32(p + 4) : Little32(p + 4);
        if ((group == 0x0002 || group == 0x0008) && element <= 0x0100
            && (typed || length <= 0x400)) {
            return true;
        }
    }
    return false;
}

} // namespace

bool TiffMatches(QByteArrayView head, QStringView)
{
    return MarkIsTiff(head);
}

bool Jpeg2000Matches(QByteArrayView head, QStringView)
{
    static constexpr char kFile[] = {0, 0, 0, 12, 'j', 'P', ' ', ' ', '\r', '\n', '\x87', '\n'};
    static constexpr char kStream[] = {'\xff', '\x4f', '\xff', '\x51'};
    const auto begins = [head](const char* mark, size_t bytes) {
        return size_t(head.size()) >= bytes && std::memcmp(head.data(), mark, bytes) == 0;
    };
    return begins(kFile, sizeof(kFile)) || begins(kStream, sizeof(kStream));
}

bool DicomMatches(QByteArrayView head, QStringView extension)
{
    if (head.size() >= kDicomMarkAt + 4
        && std::memcmp(head.data() + kDicomMarkAt, "DICM", 4) == 0) {
        // A file that is both is what its name says.
        return !(MarkIsTiff(head) && MarkHasExtension(extension, {"TIF", "TIFF"}));
    }
    return MarkHasExtension(extension, {"DIC", "DCM"}) && !MarkIsTiff(head)
        && MarkIsBareDicom(head);
}

} // namespace quillane::codecs
