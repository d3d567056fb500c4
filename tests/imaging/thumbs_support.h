#pragma once
// Pictures with embedded previews, and files as the thumbnail tests need them.
#include "core/temp_folder.h"
#include "picture_maker.h"
#include <QBuffer>
#include <QColor>
#include <sys/stat.h>
#include <utime.h>

namespace quillane::making {

/// A JPEG of one colour.
inline QByteArray MakePlainJpeg(QSize size, QRgb colour)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(colour));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "jpg", 95);
    return bytes;
}

/// An Exif block with orientation in the first directory and a preview in the second.
inline QByteArray MakePreviewExif(const QByteArray& preview, int orientation = 1,
                                  bool bigEndian = false)
{
    const auto number = [&](quint32 value, int bytes) {
        return bigEndian ? Big(value, bytes) : Little(value, bytes);
    };
    constexpr quint32 kSecond = 8 + 2 + 12 + 4;
    constexpr quint32 kPreviewAt = kSecond + 2 + 3 * 12 + 4;
    QByteArray exif = bigEndian ? QByteArray("MM\0*", 4) : QByteArray("II*\0", 4);
    exif += number(8, 4) + number(1, 2);
    exif += number(0x0112, 2) + number(3, 2) + number(1, 4) + number(quint32(orientation), 2)
        + number(0, 2) + number(kSecond, 4);
    exif += number(3, 2);
    exif += number(0x0103, 2) + number(3, 2) + number(1, 4) + number(6, 2) + number(0, 2);
    exif += number(0x0201, 2) + number(4, 2) + number(1, 4) + number(kPreviewAt, 4);
    exif += number(0x0202, 2) + number(4, 2) + number(1, 4) + number(quint32(preview.size()), 4);
    return exif + number(0, 4) + preview;
}

/// A green-and-red picture whose preview is blue, so that it shows which of them served.
inline QByteArray MakeJpegWithPreview(QSize size, QSize preview, int orientation = 1,
                                      bool bigEndian = false)
{
    JpegMake make;
    make.width = size.width();
    make.height = size.height();
    make.exif = MakePreviewExif(MakePlainJpeg(preview, qRgb(0, 0, 255)), orientation, bigEndian);
    return MakeJpeg(make);
}

/// Makes a file old enough to be known by its time.
inline void MakeOld(const TempFolder& folder, const QByteArray& name,
                    qint64 seconds = 1'000'000'000)
{
    const utimbuf times{time_t(seconds), time_t(seconds)};
    ASSERT_EQ(utime(folder.Bytes(name).constData(), &times), 0);
}

} // namespace quillane::making
