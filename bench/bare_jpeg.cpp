#include "bare_jpeg.h"
#include <cstdio>
#include <jpeglib.h>

namespace quillane::bench {

BarePicture DecodeBarely(const QByteArray& bytes)
{
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(bytes.constData()),
                 static_cast<unsigned long>(bytes.size()));
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_EXT_BGRX;
    jpeg_start_decompress(&info);
    BarePicture picture{info.output_width, info.output_height, {}};
    picture.pixels = QImage(int(info.output_width), int(info.output_height), QImage::Format_RGB32);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = picture.pixels.scanLine(int(info.output_scanline));
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    return picture;
}

} // namespace quillane::bench
