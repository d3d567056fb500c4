// Reads a damaged photo album, and reads again what is written of it.
#include "album/album_file.h"

#include <cstdint>
#include <cstdlib>

QList<QByteArray> MetadataSeeds()
{
    using quillane::kMaxAlbumComment;
    return {"#\r\nSummer trip\r\n#\r\nC:\\Pics\\a.jpg\r\nD:\\Scans\\b.tif\r\n",
            "/p/a.jpg\r\n/p/b.jpg\r\n",
            "\xef\xbb\xbf#\nM\xc3\xbcnchen\n\n#\n/p/a.jpg\n\n/p/caf\xe9.jpg",
            "#\r\nM\xfcnchen\r\n#\r\n",
            "#",
            "\n\n\r\n\r",
            "#\rSummer trip\r#\r/p/a.jpg\r/p/b.jpg\r",
            "/p/a\rb.jpg\r\n/p/c.jpg\n/p/d.jpg",
            "#\n" + QByteArray("\xe2\x82\xac").repeated(kMaxAlbumComment / 2) + "\n#\n/p/a.jpg\n",
            QByteArray("/a\0b\r\n#\r\n", 9)};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quillane;
    const AlbumText album =
        ParseAlbum(QByteArrayView(reinterpret_cast<const char*>(data), qsizetype(size)));
    for (const QString& path : album.paths) {
        EightBitReading(path);
    }
    // With a comment in front no path can be taken for the mark.
    const AlbumText again = ParseAlbum(AlbumBytes(QStringLiteral("c"), album.paths));
    if (PathsWithLineEnds(album.paths) == 0 && again.paths != album.paths) {
        std::abort(); // an album that is saved and read is the same
    }
    return 0;
}
