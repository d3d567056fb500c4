// Loading and saving of photographs of 12 megapixels, and a tag written into 200 of them, against
// the bare codec on the same bytes.
//
//   bench_save [folder]   keeps its pictures below that folder and uses them again
#include "bare_jpeg.h"
#include "bench_support.h"
#include "core/native_path.h"
#include "imaging/comments/slots.h"
#include "imaging/quality.h"
#include "metadata/tag_writer.h"
#include <QGuiApplication>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>

using namespace quillane;
using bench::BarePicture;
using bench::DecodeBarely;

namespace {

constexpr int kPictures = 60; ///< of the folder that other benchmarks use too
constexpr int kTagged = 200;
constexpr int kRounds = 9;
constexpr qint32 kFactor = 10; ///< the program's quality factor
constexpr double kMostOverCodec = 1.1;

QByteArray EncodeBarely(const BarePicture& picture, int across, int down)
{
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &memory, &size);
    info.image_width = picture.width;
    info.image_height = picture.height;
    info.input_components = 4;
    info.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&info);
    jpeg_set_linear_quality(&info, JpegTableScale(kFactor), TRUE);
    info.comp_info[0].h_samp_factor = across;
    info.comp_info[0].v_samp_factor = down;
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        // The library does not write into its input.
        JSAMPROW row = const_cast<JSAMPROW>(picture.pixels.constScanLine(int(info.next_scanline)));
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    QByteArray bytes(reinterpret_cast<const char*>(memory), qsizetype(size));
    jpeg_destroy_compress(&info);
    std::free(memory);
    return bytes;
}

/// Encodes into a file as plainly as it goes: neither synced nor exchanged.
void SaveBarely(const BarePicture& picture, int across, int down, const QString& path)
{
    const QByteArray bytes = EncodeBarely(picture, across, down);
    std::FILE* file = std::fopen(BytesFromPath(path).constData(), "wb");
    if (!file
        || std::fwrite(bytes.constData(), 1, size_t(bytes.size()), file) != size_t(bytes.size())
        || std::fclose(file) != 0) {
        std::exit(2);
    }
}

/// What the codec alone does for one tag: the same file decoded and encoded again.
void RecodeBarely(const QString& path, int across, int down)
{
    const BarePicture picture = DecodeBarely(ReadWholeFile(path, qint64(1) << 30));
    if (EncodeBarely(picture, across, down).isEmpty()) {
        std::exit(2);
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QString root = bench::PicturesFolder(argc, argv);
    const std::vector<QString> paths =
        bench::FolderOfJpegs(root + QStringLiteral("/plain12"), kPictures, {});
    const QTemporaryDir own(root + QStringLiteral("/saveXXXXXX"));
    const QString copy = own.filePath(QStringLiteral("copy.jpg"));
    const QByteArray bytes = ReadWholeFile(paths.front(), qint64(1) << 30);
    WriteWholeFile(copy, bytes);
    const ImageFacts facts = ProbeFile(copy);
    const int across = facts.layout.horizontal, down = facts.layout.vertical;

    const bench::Pair load = bench::MeasureInTurn(
        kRounds, [&] { DecodeBarely(ReadWholeFile(copy, qint64(1) << 30)); },
        [&] { LoadFile(copy); });
    bool good = bench::PrintFigure("load of 12 megapixels", load.second.wall, load.first.wall, "ms",
                                   load.second.wall / load.first.wall, bench::Wanted::AtMost,
                                   kMostOverCodec);

    EngineInstance lead;
    lead.Load(copy, 0, 0);
    const BarePicture picture = DecodeBarely(bytes);
    const QString target = own.filePath(QStringLiteral("saved.jpg"));
    const bench::Pair save = bench::MeasureInTurn(
        kRounds,
        [&] { SaveBarely(picture, across, down, own.filePath(QStringLiteral("bare.jpg"))); },
        [&] { lead.Save(target, lead.InfoFormat(), lead.InfoBits(), kFactor, 0); });
    good &= bench::PrintFigure("save of 12 megapixels", save.second.wall, save.first.wall, "ms",
                               save.second.wall / save.first.wall, bench::Wanted::AtMost,
                               kMostOverCodec);

    std::vector<QString> tagged;
    tagged.reserve(kTagged);
    for (int i = 0; i < kTagged; ++i) {
        tagged.push_back(own.filePath(QStringLiteral("%1.jpg").arg(i)));
        WriteWholeFile(tagged.back(), ReadWholeFile(paths[size_t(i) % paths.size()], 1 << 30),
                       {.sync = false});
    }
    double bare = 0, ours = 0;
    for (const QString& path : tagged) {
        bare += bench::Measure([&] { RecodeBarely(path, across, down); }).wall;
        ours += bench::Measure([&] {
                    lead.Load(path, 0, 0);
                    WriteTagText(lead, path, QStringLiteral("City=Rome\r\n"),
                                 {lead.InfoFormat(), lead.InfoBits(), kFactor, 0});
                }).wall;
    }
    good &= bench::PrintFigure("tag into 200 files, a file", ours / kTagged, bare / kTagged, "ms",
                               ours / bare, bench::Wanted::AtMost, kMostOverCodec);
    return good ? 0 : 1;
}
