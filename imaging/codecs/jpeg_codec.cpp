#include "imaging/codecs/codecs.h"
#include "imaging/codecs/jpeg_header.h"
#include "imaging/codecs/jpeg_session.h"
#include <QtEndian>
#include <algorithm>

namespace quillane::codecs {

namespace {

constexpr char kJpegName[] = "JPEG";

/// The codes nearest to a picture's sampling; a code stands for all that is sampled as coarsely.
qint16 JpegFormatCode(const JpegHeader& header)
{
    const int shared = header.components >= 3 ? header.across * header.down : 1;
    if (header.exif.directory) {
        return shared > 2 ? 101 : 98;
    }
    return shared > 2 ? 21 : shared == 2 ? 23 : 10;
}

/// The largest reduction by a power of two whose result still covers what is asked for. The ones
/// between are no faster to decode than the next larger one.
int JpegReduction(const JpegHeader& header, const QSize& atLeast)
{
    if (atLeast.isEmpty()) {
        return 1;
    }
    int reduction = 8;
    while (reduction > 1
           && ((header.width + reduction - 1) / reduction < atLeast.width()
               || (header.height + reduction - 1) / reduction < atLeast.height())) {
        reduction /= 2;
    }
    return reduction;
}

void JpegRefuseKind(const JpegHeader& header)
{
    switch (header.frame) {
    case 0xc3:
    case 0xcb:
        Unsupported(kJpegName, QStringLiteral("is of the lossless kind"));
    case 0xc0:
    case 0xc1:
    case 0xc2:
    case 0xc9:
    case 0xca:
        break;
    default:
        Unsupported(kJpegName, QStringLiteral("is of the hierarchical kind"));
    }
    if (header.precision != 8) {
        Unsupported(kJpegName, QStringLiteral("has %1 bits per sample").arg(header.precision));
    }
    if (header.components != 1 && header.components != 3 && header.components != 4) {
        Unsupported(kJpegName, QStringLiteral("has %1 colour channels").arg(header.components));
    }
}

[[noreturn]] void JpegFail(const JpegSession& session)
{
    switch (session.Trouble()) {
    case JpegTrouble::Cancelled:
        Cancelled();
    case JpegTrouble::Scans:
        TooMuch(kJpegName, QStringLiteral("is stored in an absurd number of scans"));
    case JpegTrouble::Memory:
        TooMuch(kJpegName, QStringLiteral("needs a lot of memory to put its scans together"));
    default:
        Damaged(kJpegName, session.Words());
    }
}

/// A few bytes can claim any size, and every block of it takes its time even where the picture is
/// decoded smaller; arithmetic codes take four times as long.
void JpegRefuseSize(const JpegHeader& header)
{
    constexpr qint64 kMost = 1'000'000'000, kMostArithmetic = 100'000'000;
    if (qint64(header.width) * header.height > (header.IsArithmetic() ? kMostArithmetic : kMost)) {
        TooMuch(kJpegName,
                QStringLiteral("has %1 x %2 pixels").arg(header.width).arg(header.height));
    }
}

/// Middle grey in the rows that are missing.
void JpegFillRest(QImage& image, int rows)
{
    const qint64 decoded = qint64(rows) * image.bytesPerLine();
    const qint64 missing = image.sizeInBytes() - decoded;
    uchar* const from = image.bits() + decoded;
    if (image.format() == QImage::Format_Grayscale8) {
        std::fill_n(from, missing, uchar(0x80));
        return;
    }
    const bool cmyk = image.format() == QImage::Format_RGBA8888;
    std::fill_n(reinterpret_cast<quint32*>(from), missing / 4,
                cmyk ? qFromBigEndian(quint32(0x7f)) : 0xff808080u);
}

} // namespace

bool JpegMatches(QByteArrayView head, QStringView)
{
    return head.size() >= 3 && head[0] == char(0xff) && head[1] == char(0xd8)
        && head[2] == char(0xff);
}

ImageFacts JpegProbe(ByteSource& source)
{
    const JpegHeader header = ReadJpegHeader(source, false);
    ImageFacts facts;
    facts.width = header.width;
    facts.height = header.height;
    facts.bits = qint16(header.components * header.precision);
    facts.format = JpegFormatCode(header);
    facts.orientation = header.exif.orientation;
    if (header.components > 1) {
        facts.layout.horizontal = quint8(header.across);
        facts.layout.vertical = quint8(header.down);
    }
    facts.layout.progressive = header.IsProgressive();
    const bool exif = header.exif.xResolution > 0 && header.exif.yResolution > 0;
    facts.xResolution = exif ? header.exif.xResolution : header.xResolution;
    facts.yResolution = exif ? header.exif.yResolution : header.yResolution;
    facts.compression =
        header.IsProgressive() ? QStringLiteral("JPEG, progressive") : QStringLiteral("JPEG");
    return facts;
}

Bitmap JpegDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    JpegHeader header = ReadJpegHeader(source, true);
    JpegRefuseKind(header);
    JpegRefuseSize(header);

    JpegStart start;
    start.bytes = &source;
    start.cancelled = request.cancelled;
    start.reduction = JpegReduction(header, request.atLeast);
    JpegSession session;
    if (!session.Start(start)) {
        JpegFail(session);
    }
    const bool cmyk = session.Pixels() == JpegPixels::Cmyk;
    const bool grey = session.Pixels() == JpegPixels::Grey;
    QImage image = NewImage(kJpegName, session.Width(), session.Height(),
                            grey       ? QImage::Format_Grayscale8
                                : cmyk ? QImage::Format_RGBA8888
                                       : QImage::Format_RGB32);
    session.DecodeRows(image.bits(), image.bytesPerLine());
    if (session.Rows() == 0 || session.Trouble() == JpegTrouble::Cancelled) {
        JpegFail(session);
    }
    if (session.HasInvertedInk()) {
        uchar* const pixels = image.bits();
        std::transform(pixels, pixels + session.Rows() * image.bytesPerLine(), pixels,
                       [](uchar ink) { return uchar(~ink); });
    }
    JpegFillRest(image, session.Rows());

    Bitmap bitmap(std::move(image),
                  cmyk       ? ColourModel::Cmyk
                      : grey ? ColourModel::Grey
                             : ColourModel::Rgb,
                  header.components * 8);
    bitmap.SetIcc(std::move(header.icc));
    bitmap.SetExact(start.reduction == 1);
    bitmap.SetPartial(session.IsPartial());
    return bitmap;
}

} // namespace quillane::codecs
