#include "encode_support.h"
#include "imaging/exif/tiff_claims.h"
#include <QtEndian>
#include <algorithm>
#include <cmath>

namespace quillane::test {

namespace {

/// Grows from 0 to `most` along a direction.
int Ramp(int at, int size, int most)
{
    return size > 1 ? at * most / (size - 1) : 0;
}

QRgb SmoothColour(int x, int y, QSize size)
{
    const bool inside = x > size.width() / 3 && y > size.height() / 2;
    const int red = Ramp(x, size.width(), 255);
    const int green = Ramp(y, size.height(), 255);
    return inside ? qRgb(green, 255 - red, 40) : qRgb(red, green, 255 - (red + green) / 2);
}

QImage PaletteOf(QSize size, int colours)
{
    QImage image(size, QImage::Format_Indexed8);
    QList<QRgb> table;
    for (int i = 0; i < colours; ++i) {
        table.append(qRgb(i * 255 / std::max(colours - 1, 1), 255 - i, (i * 37) & 255));
    }
    image.setColorTable(table);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            image.scanLine(y)[x] = uchar((x / 2 + y * y / 7) % colours);
        }
    }
    return image;
}

Bitmap TwoColours(QSize size)
{
    QImage image(size, QImage::Format_Mono);
    image.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            image.setPixel(x, y, (x * x + 3 * y) % 11 < 4 || x / 20 % 2 == 0 ? 1u : 0u);
        }
    }
    return {image, ColourModel::BlackWhite, 1};
}

template <typename Colour> QImage Filled(QSize size, QImage::Format layout, Colour&& colour)
{
    QImage image(size, layout);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            colour(image.scanLine(y), x, y);
        }
    }
    return image;
}

Bitmap GreySteps(QSize size, bool wide)
{
    if (wide) {
        return {Filled(size, QImage::Format_Grayscale16,
                       [&](uchar* row, int x, int y) {
                           reinterpret_cast<quint16*>(row)[x] = quint16(x * 601 + y * 7);
                       }),
                ColourModel::Grey, 16};
    }
    return {
        Filled(size, QImage::Format_Grayscale8,
               [&](uchar* row, int x, int y) { row[x] = uchar(qGray(SmoothColour(x, y, size))); }),
        ColourModel::Grey, 8};
}

Bitmap Colours(QSize size, qint32 bits)
{
    const bool alpha = bits == 32;
    return {Filled(size, alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32,
                   [&](uchar* row, int x, int y) {
                       const QRgb c = SmoothColour(x, y, size);
                       reinterpret_cast<QRgb*>(row)[x] = alpha
                           ? qRgba(qRed(c), qGreen(c), qBlue(c), Ramp(x, size.width(), 255))
                           : c;
                   }),
            ColourModel::Rgb, bits};
}

Bitmap FiveBitColours(QSize size)
{
    return {Filled(size, QImage::Format_RGB32,
                   [&](uchar* row, int x, int y) {
                       const auto full = [](int i) { return (i % 32 * 255 + 15) / 31; };
                       reinterpret_cast<QRgb*>(row)[x] = qRgb(full(x), full(y), full(x + y));
                   }),
            ColourModel::Rgb, 16};
}

Bitmap Ink(QSize size)
{
    return {Filled(size, QImage::Format_RGBA8888,
                   [&](uchar* row, int x, int y) {
                       const QRgb c = SmoothColour(x, y, size);
                       row[4 * x] = uchar(qRed(c));
                       row[4 * x + 1] = uchar(qGreen(c));
                       row[4 * x + 2] = uchar(qBlue(c));
                       row[4 * x + 3] = uchar(Ramp(y, size.height(), 120));
                   }),
            ColourModel::Cmyk, 32};
}

Bitmap WideColours(QSize size, qint32 bits)
{
    const bool alpha = bits == 64;
    return {Filled(size, alpha ? QImage::Format_RGBA64 : QImage::Format_RGBX64,
                   [&](uchar* row, int x, int y) {
                       quint16* p = reinterpret_cast<quint16*>(row) + 4 * x;
                       p[0] = quint16(x * 611 + 5);
                       p[1] = quint16(y * 907 + 3);
                       p[2] = quint16(65535 - x * y);
                       p[3] = alpha ? quint16(65535 - y * 401) : quint16(65535);
                   }),
            ColourModel::Rgb, bits};
}

} // namespace

Bitmap PictureFor(const SaveVariant& variant, qint32 bits, QSize size)
{
    switch (bits) {
    case 1:
        return TwoColours(size);
    case 16:
        return (variant.traits & kColourIn16) != 0 ? FiveBitColours(size) : GreySteps(size, true);
    case 24:
        return Colours(size, bits);
    case 32:
        return variant.colour == StoredColour::Cmyk || (variant.traits & kInkIn32) != 0
            ? Ink(size)
            : Colours(size, bits);
    case 48:
    case 64:
        return WideColours(size, bits);
    default:
        if (variant.colour == StoredColour::Grey || (variant.traits & kGreyIn8) != 0) {
            return GreySteps(size, false);
        }
        return {PaletteOf(size, 1 << bits), ColourModel::Palette, bits};
    }
}

QSize SizeFor(const SaveVariant& variant)
{
    switch (variant.format) {
    case 51:
        return {576, 720};
    default:
        return {93, 61};
    }
}

bool SamePixels(const Bitmap& one, const Bitmap& other)
{
    const QImage& a = one.Pixels();
    const QImage& b = other.Pixels();
    if (a.size() != b.size()) {
        return false;
    }
    if (one.Model() == ColourModel::Cmyk || other.Model() == ColourModel::Cmyk) {
        return one.Model() == other.Model() && a == b;
    }
    const QImage x = a.convertToFormat(QImage::Format_RGBA64);
    const QImage y = b.convertToFormat(QImage::Format_RGBA64);
    for (int row = 0; row < x.height(); ++row) {
        if (!std::equal(x.constScanLine(row), x.constScanLine(row) + x.width() * 8,
                        y.constScanLine(row))) {
            return false;
        }
    }
    return true;
}

double Psnr(const Bitmap& one, const Bitmap& other)
{
    const bool ink = one.Model() == ColourModel::Cmyk;
    const QImage a = ink ? one.Pixels() : one.Pixels().convertToFormat(QImage::Format_RGB32);
    const QImage b = ink ? other.Pixels() : other.Pixels().convertToFormat(QImage::Format_RGB32);
    if (a.size() != b.size() || a.format() != b.format()) {
        return 0;
    }
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width() * 4; ++x) {
            const double difference = int(a.constScanLine(y)[x]) - int(b.constScanLine(y)[x]);
            sum += difference * difference;
        }
    }
    const double mean = sum / (double(a.width()) * a.height() * (ink ? 4 : 3));
    return mean > 0 ? 10 * std::log10(255.0 * 255.0 / mean) : 99;
}

QImage ReadByGraphicsMagick(const QString& path)
{
    const std::optional<QByteArray> ppm = RunTool(
        QStringLiteral("gm"),
        {"convert", "-density", "96x96", path, "-depth", "8", "-type", "TrueColor", "ppm:-"});
    return ppm ? QImage::fromData(*ppm, "PPM").convertToFormat(QImage::Format_RGB32) : QImage();
}

QImage ReadByFfmpeg(const QString& path)
{
    const std::optional<QByteArray> ppm = RunTool(
        QStringLiteral("ffmpeg"),
        {"-v", "error", "-i", path, "-frames:v", "1", "-f", "image2pipe", "-c:v", "ppm", "-"});
    return ppm ? QImage::fromData(*ppm, "PPM").convertToFormat(QImage::Format_RGB32) : QImage();
}

QImage ReadTiffJpeg2000(const QString& path)
{
    const QByteArray file = ReadWholeFile(path, 1 << 26);
    const std::optional<exif::TiffStructure> structure = exif::TiffStructure::Open(file);
    if (!structure) {
        return {};
    }
    std::vector<exif::ByteRange> strips;
    exif::TiffClaims(*structure)
        .AddContents(structure->ReadDirectory(structure->FirstDirectory()), strips);
    if (strips.size() != 1) {
        return {};
    }
    const QString stream = path + ".j2k";
    WriteWholeFile(stream, file.mid(strips[0].from, strips[0].Size()));
    return ReadByFfmpeg(stream);
}

QImage ReadFax(const QString& path, qint16 format, QSize size)
{
    const QString tiff = path + ".tif";
    QStringList arguments = {format == 66 ? "-3" : format == 67 ? "-3" : "-4"};
    if (format == 67) {
        arguments += "-2";
    }
    arguments += {"-M", "-B", "-X", QString::number(size.width()), "-o", tiff, path};
    if (!RunTool(QStringLiteral("fax2tiff"), arguments)) {
        return {};
    }
    // It takes the ends of lines that end the page for rows.
    return ReadByGraphicsMagick(tiff).copy(QRect(QPoint(), size));
}

QImage ReadPostScript(const QString& path)
{
    const QString page = path + ".ppm";
    const std::optional<QByteArray> done =
        RunTool(QStringLiteral("gs"),
                {"-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-dEPSCrop", "-r72", "-sDEVICE=ppmraw",
                 "-sOutputFile=" + page, path});
    return done ? QImage(page, "PPM").convertToFormat(QImage::Format_RGB32) : QImage();
}

QImage ReadPdf(const QString& path)
{
    const std::optional<QByteArray> done =
        RunTool(QStringLiteral("pdfimages"), {"-png", path, path});
    return done ? QImage(path + "-000.png").convertToFormat(QImage::Format_RGB32) : QImage();
}

namespace {

/// A bitmap without file header, read by GraphicsMagick with one before it.
QImage ReadBareBitmap(const QString& path, const QByteArray& bitmap)
{
    const int bits = qFromLittleEndian<quint16>(bitmap.constData() + 14);
    const quint32 pixelsAt = 14 + 40 + (bits <= 8 ? 4u << bits : 0u);
    QByteArray head(14, '\0');
    head[0] = 'B';
    head[1] = 'M';
    qToLittleEndian(quint32(14 + bitmap.size()), head.data() + 2);
    qToLittleEndian(pixelsAt, head.data() + 10);
    const QString bmp = path + ".bmp";
    WriteWholeFile(bmp, head + bitmap);
    return ReadByGraphicsMagick(bmp);
}

} // namespace

QImage ReadClipboardBitmap(const QString& path)
{
    const QByteArray file = ReadWholeFile(path, 1 << 24);
    const auto little = [&](qsizetype at) {
        return qFromLittleEndian<quint32>(file.constData() + at);
    };
    if (file.size() < 100 || qFromLittleEndian<quint16>(file.constData()) != 0xc350) {
        return {};
    }
    return ReadBareBitmap(path, file.mid(little(10), little(6)));
}

QImage ReadMetafileBitmap(const QString& path)
{
    const QImage drawn = ReadByGraphicsMagick(path);
    const QByteArray file = ReadWholeFile(path, 1 << 24);
    for (qsizetype at = 22 + 18; at + 6 < file.size();) {
        const qsizetype bytes = 2 * qFromLittleEndian<qint32>(file.constData() + at);
        if (qFromLittleEndian<quint16>(file.constData() + at + 4) == 0x0f43) {
            const QImage inside = ReadBareBitmap(path, file.mid(at + 6 + 22, bytes - 28));
            return inside.size() == drawn.size() ? inside : QImage();
        }
        at += std::max<qsizetype>(bytes, 6);
    }
    return {};
}

QImage ReadRaw(const QString& path, qint32 bits, QSize size)
{
    if (bits == 1) { // a portable bit map is the same with 1 for black
        QByteArray rows = ReadWholeFile(path, 1 << 24);
        std::transform(rows.begin(), rows.end(), rows.begin(), [](char c) { return char(~c); });
        const QString pbm = path + ".pbm";
        WriteWholeFile(pbm,
                       QStringLiteral("P4\n%1 %2\n").arg(size.width()).arg(size.height()).toLatin1()
                           + rows);
        return ReadByGraphicsMagick(pbm);
    }
    const char* kind = bits == 1   ? "mono"
        : bits <= 16               ? "gray"
        : bits == 24 || bits == 48 ? "rgb"
                                   : "rgba";
    const QString depth = QString::number(bits == 16 || bits >= 48 ? 16 : 8);
    const std::optional<QByteArray> ppm =
        RunTool(QStringLiteral("gm"),
                {"convert", "-size", QStringLiteral("%1x%2").arg(size.width()).arg(size.height()),
                 "-depth", depth, "-endian", "LSB", QString::fromLatin1(kind) + ":" + path,
                 "-depth", "8", "-type", "TrueColor", "ppm:-"});
    return ppm ? QImage::fromData(*ppm, "PPM").convertToFormat(QImage::Format_RGB32) : QImage();
}

QString ExifToolValue(const QString& path, const QString& tag)
{
    const std::optional<QByteArray> value =
        RunTool(QStringLiteral("exiftool"), {"-s3", "-n", "-" + tag, path});
    return value ? QString::fromUtf8(*value).trimmed() : QString();
}

} // namespace quillane::test
