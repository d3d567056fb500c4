#include "picture_maker.h"
#include "drawn_maker.h"
#include "legacy_maker.h"
#include <QColorSpace>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <gif_lib.h>
#include <jpeglib.h>
#include <png.h>
#include <vector>

namespace quillane::making {

QRgb PlaceColour(int x, int y, int width, int height)
{
    return qRgb(x * 255 / std::max(width - 1, 1), y * 255 / std::max(height - 1, 1), 96);
}

int ColourDistance(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b))});
}

QByteArray Little(quint32 value, int bytes)
{
    QByteArray out;
    for (int i = 0; i < bytes; ++i) {
        out.append(i < 4 ? char(value >> (8 * i) & 255) : '\0');
    }
    return out;
}

QByteArray Big(quint32 value, int bytes)
{
    QByteArray out = Little(value, bytes);
    std::reverse(out.begin(), out.end());
    return out;
}

QByteArray MakeExif(int orientation, bool bigEndian, int resolution, int unit)
{
    const auto number = [&](quint32 value, int bytes) {
        return bigEndian ? Big(value, bytes) : Little(value, bytes);
    };
    const auto shortEntry = [&](int tag, int value) {
        return number(quint32(tag), 2) + number(3, 2) + number(1, 4) + number(quint32(value), 2)
            + QByteArray(2, '\0');
    };
    const int entries = resolution > 0 ? 4 : 1;
    const quint32 behind = quint32(8 + 2 + 12 * entries + 4);
    QByteArray block = bigEndian ? "MM" : "II";
    block += number(42, 2) + number(8, 4) + number(quint32(entries), 2);
    block += shortEntry(0x0112, orientation);
    if (resolution > 0) {
        block += number(0x011a, 2) + number(5, 2) + number(1, 4) + number(behind, 4);
        block += number(0x011b, 2) + number(5, 2) + number(1, 4) + number(behind + 8, 4);
        block += shortEntry(0x0128, unit);
    }
    block += number(0, 4);
    if (resolution > 0) {
        block += number(quint32(resolution), 4) + number(1, 4);
        block += number(quint32(resolution * 2), 4) + number(2, 4);
    }
    return block;
}

QByteArray MakeJpeg(const JpegMake& make)
{
    jpeg_compress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = JDIMENSION(make.width);
    info.image_height = JDIMENSION(make.height);
    info.input_components = make.channels;
    info.in_color_space = make.channels == 1 ? JCS_GRAYSCALE
        : make.channels == 4                 ? JCS_CMYK
                                             : JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, make.quality, TRUE);
    info.arith_code = make.arithmetic;
    info.write_JFIF_header = make.channels != 4 && make.exif.isEmpty();
    info.density_unit = UINT8(make.densityUnit);
    info.X_density = UINT16(make.xDensity);
    info.Y_density = UINT16(make.yDensity);
    if (make.channels == 3) {
        info.comp_info[0].h_samp_factor = make.across;
        info.comp_info[0].v_samp_factor = make.down;
    }
    if (make.progressive) {
        jpeg_simple_progression(&info);
    }
    jpeg_start_compress(&info, TRUE);
    if (!make.exif.isEmpty()) {
        const QByteArray segment = QByteArray("Exif\0\0", 6) + make.exif;
        jpeg_write_marker(&info, JPEG_APP0 + 1,
                          reinterpret_cast<const JOCTET*>(segment.constData()),
                          unsigned(segment.size()));
    }
    if (!make.icc.isEmpty()) {
        jpeg_write_icc_profile(&info, reinterpret_cast<const JOCTET*>(make.icc.constData()),
                               unsigned(make.icc.size()));
    }
    std::vector<JSAMPLE> row(size_t(make.width * make.channels));
    for (int y = 0; y < make.height; ++y) {
        for (int x = 0; x < make.width; ++x) {
            const QRgb colour = PlaceColour(x, y, make.width, make.height);
            JSAMPLE* to = &row[size_t(x * make.channels)];
            if (make.channels == 1) {
                *to = JSAMPLE(qRed(colour));
                continue;
            }
            to[0] = JSAMPLE(qRed(colour));
            to[1] = JSAMPLE(qGreen(colour));
            to[2] = JSAMPLE(qBlue(colour));
            if (make.channels == 4) {
                to[3] = 255; // no black, in Adobe's sense
            }
        }
        JSAMPROW rows[] = {row.data()};
        jpeg_write_scanlines(&info, rows, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    QByteArray out(reinterpret_cast<const char*>(bytes), qsizetype(size));
    std::free(bytes);
    return out;
}

QByteArray MakePng(const PngMake& make)
{
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    QByteArray out;
    png_set_write_fn(
        png, &out,
        [](png_structp self, png_bytep bytes, size_t count) {
            static_cast<QByteArray*>(png_get_io_ptr(self))
                ->append(reinterpret_cast<const char*>(bytes), qsizetype(count));
        },
        nullptr);
    png_set_IHDR(png, info, png_uint_32(make.width), png_uint_32(make.height), make.depth,
                 make.colourType, make.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    std::vector<png_color> colours(size_t(1) << std::min(make.depth, 8));
    for (size_t i = 0; i < colours.size(); ++i) {
        colours[i] = {png_byte(i), png_byte(255 - i), png_byte(7)};
    }
    if (make.colourType == PNG_COLOR_TYPE_PALETTE) {
        png_set_PLTE(png, info, colours.data(), int(colours.size()));
    }
    if (make.transparentColour) {
        const png_byte alphas[] = {0, 128};
        const png_color_16 colour = {0, 0, 0, 0, 0};
        const bool palette = make.colourType == PNG_COLOR_TYPE_PALETTE;
        png_set_tRNS(png, info, palette ? alphas : nullptr, palette ? 2 : 0,
                     palette ? nullptr : &colour);
    }
    if (make.dotsPerMetre > 0) {
        png_set_pHYs(png, info, png_uint_32(make.dotsPerMetre), png_uint_32(make.dotsPerMetre),
                     PNG_RESOLUTION_METER);
    }
    QByteArray exif = make.exif;
    if (!exif.isEmpty()) {
        png_set_eXIf_1(png, info, png_uint_32(exif.size()),
                       reinterpret_cast<png_bytep>(exif.data()));
    }
    if (!make.icc.isEmpty()) {
        png_set_iCCP(png, info, "profile", 0,
                     reinterpret_cast<png_const_bytep>(make.icc.constData()),
                     png_uint_32(make.icc.size()));
    }
    QByteArray words = make.text;
    png_text text = {};
    if (!words.isEmpty()) {
        QByteArray key("Comment");
        text.compression = PNG_TEXT_COMPRESSION_zTXt;
        text.key = key.data();
        text.text = words.data();
        text.text_length = size_t(words.size());
        png_set_text(png, info, &text, 1);
    }
    png_write_info(png, info);

    // A sample's value is its place times the depth's range; palettes and few bits count up.
    const int channels = png_get_channels(png, info);
    const size_t line = png_get_rowbytes(png, info);
    std::vector<std::vector<png_byte>> rows(size_t(make.height), std::vector<png_byte>(line, 0));
    std::vector<png_bytep> pointers;
    for (int y = 0; y < make.height; ++y) {
        png_byte* row = rows[size_t(y)].data();
        for (int x = 0; x < make.width; ++x) {
            const QRgb colour = PlaceColour(x, y, make.width, make.height);
            const int values[] = {qRed(colour), qGreen(colour), qBlue(colour)};
            for (int c = 0; c < channels; ++c) {
                const bool alpha = (make.colourType & PNG_COLOR_MASK_ALPHA) && c == channels - 1;
                const int value = alpha ? 200 : values[c];
                const int at = x * channels + c;
                if (make.depth == 16) {
                    row[2 * at] = row[2 * at + 1] = png_byte(value);
                } else if (make.depth == 8) {
                    row[at] = png_byte(value);
                } else {
                    const int perByte = 8 / make.depth;
                    const int few = x % (1 << make.depth);
                    row[x / perByte] =
                        png_byte(row[x / perByte] | few << (8 - make.depth * (x % perByte + 1)));
                }
            }
        }
        pointers.push_back(row);
    }
    png_write_image(png, pointers.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return out;
}

QByteArray MakeGif(const GifMake& make)
{
    QByteArray out;
    int error = 0;
    GifFileType* file = EGifOpen(
        &out,
        [](GifFileType* self, const GifByteType* bytes, int count) {
            static_cast<QByteArray*>(self->UserData)
                ->append(reinterpret_cast<const char*>(bytes), count);
            return count;
        },
        &error);
    EGifSetGifVersion(file, true);
    ColorMapObject* map = GifMakeMapObject(make.colours, nullptr);
    for (int i = 0; i < make.colours; ++i) {
        map->Colors[i] = {GifByteType(i * 10), GifByteType(255 - i), GifByteType(i)};
    }
    EGifPutScreenDesc(file, make.width, make.height, 8, 0, map);
    for (int frame = 0; frame < make.frames; ++frame) {
        if (make.transparent >= 0) {
            GraphicsControlBlock control = {};
            control.TransparentColor = make.transparent;
            GifByteType block[4];
            EGifGCBToExtension(&control, block);
            EGifPutExtension(file, GRAPHICS_EXT_FUNC_CODE, 4, block);
        }
        EGifPutImageDesc(file, make.left, make.top, make.frameWidth, make.frameHeight,
                         make.interlaced, nullptr);
        std::vector<int> order;
        if (make.interlaced) {
            const int first[] = {0, 4, 2, 1};
            const int step[] = {8, 8, 4, 2};
            for (int pass = 0; pass < 4; ++pass) {
                for (int y = first[pass]; y < make.frameHeight; y += step[pass]) {
                    order.push_back(y);
                }
            }
        } else {
            for (int y = 0; y < make.frameHeight; ++y) {
                order.push_back(y);
            }
        }
        std::vector<GifPixelType> line(size_t(make.frameWidth));
        for (const int y : order) {
            for (int x = 0; x < make.frameWidth; ++x) {
                line[size_t(x)] = GifPixelType((x + y + frame) % make.colours);
            }
            EGifPutLine(file, line.data(), make.frameWidth);
        }
    }
    GifFreeMapObject(map);
    EGifCloseFile(file, &error);
    return out;
}

QByteArray MakeWideProfile()
{
    return QColorSpace(QColorSpace::AdobeRgb).iccProfile();
}

QMap<QString, QByteArray> MadePictures()
{
    QMap<QString, QByteArray> files;
    for (const int channels : {1, 3, 4}) {
        for (const bool progressive : {false, true}) {
            JpegMake make;
            make.channels = channels;
            make.progressive = progressive;
            make.exif = MakeExif(6, true, 300);
            make.icc = MakeWideProfile();
            files.insert(QString("made %1 %2.jpg").arg(channels).arg(progressive), MakeJpeg(make));
            make.arithmetic = true;
            files.insert(QString("made %1 %2 arithmetic.jpg").arg(channels).arg(progressive),
                         MakeJpeg(make));
        }
    }
    for (const int type : {0, 2, 3, 4, 6}) {
        for (const bool interlaced : {false, true}) {
            PngMake make;
            make.colourType = type;
            make.interlaced = interlaced;
            make.dotsPerMetre = 3000;
            make.exif = MakeExif(3);
            files.insert(QString("made %1 %2.png").arg(type).arg(interlaced), MakePng(make));
        }
    }
    GifMake gif;
    gif.frames = 3;
    gif.transparent = 1;
    gif.left = 2;
    files.insert("made.gif", MakeGif(gif));
    gif.interlaced = true;
    files.insert("made interlaced.gif", MakeGif(gif));
    files.insert("made.pgm", "P5 10 10 255\n" + QByteArray(100, 'x'));
    files.insert("made.ppm", "P3 2 2 255 1 2 3 4 5 6 7 8 9 10 11 12\n");
    const QByteArray info = Little(40, 4) + Little(16, 4) + Little(8, 4) + Little(1, 2)
        + Little(8, 2) + Little(1, 4) + QByteArray(20, '\0') + QByteArray(1024, 'c');
    files.insert("made.bmp",
                 "BM" + Little(0, 4) + Little(0, 4) + Little(1078, 4) + info
                     + QByteArray("\x10\x05\0\0\x08\x01\0\4abcd\0\2\1\1\0\1", 18));
    files.insert("made.ico",
                 QByteArray("\0\0\1\0\1\0\x10\x08\0\0\1\0\x08\0", 14) + Little(1200, 4)
                     + Little(22, 4) + Little(40, 4) + Little(16, 4) + Little(16, 4) + Little(1, 2)
                     + Little(8, 2) + QByteArray(24, '\0') + QByteArray(1024, 'c')
                     + QByteArray(16 * 8 + 4 * 8, '\3'));
    files.insert(MadeDrawings());
    files.insert(MadeLegacyPictures());
    files.insert(MadeBarePictures());
    return files;
}

} // namespace quillane::making
