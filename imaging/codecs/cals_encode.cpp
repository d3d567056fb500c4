#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/encoders.h"
#include "imaging/codecs/legacy_encoders.h"
#include <algorithm>

namespace quillane::codecs {

namespace {

constexpr char kCalsOut[] = "CALS raster";
constexpr int kCalsOutRecord = 128;
constexpr int kCalsOutHeader = 2048;
constexpr int kCalsOutUsualDots = 200; ///< per inch, where the picture tells none

} // namespace

QByteArray CalsEncode(const Bitmap& picture, const EncodeRequest& request)
{
    CheckFits(kCalsOut, picture, 999'999, 999'999); // six digits
    const auto number = [](int value, int digits) {
        return QByteArray::number(value).rightJustified(digits, '0');
    };
    const QByteArray records[] = {
        "srcdocid: NONE",
        "dstdocid: NONE",
        "txtfilid: NONE",
        "figid: NONE",
        "srcgph: NONE",
        "doccls: NONE",
        "rtype: 1",
        "rorient: 000,270",
        "rpelcnt: " + number(picture.Width(), 6) + "," + number(picture.Height(), 6),
        "rdensty: "
            + number(request.xResolution > 0 ? std::min(request.xResolution, 9999)
                                             : kCalsOutUsualDots,
                     4),
        "notes: NONE",
    };
    ByteWriter file;
    for (const QByteArray& record : records) {
        file.Text(record.leftJustified(kCalsOutRecord, ' '));
    }
    file.Fill(kCalsOutHeader - file.Size(), ' ');
    EncodeRequest codes = request;
    codes.format = 68; // Group 4
    file.Text(FaxEncode(picture, codes));
    return file.Take();
}

} // namespace quillane::codecs
