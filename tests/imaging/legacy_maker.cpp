#include "legacy_maker.h"
#include "picture_maker.h"

namespace quillane::making {

QMap<QString, QByteArray> MadeLegacyPictures()
{
    QMap<QString, QByteArray> files;
    for (const bool packed : {false, true}) {
        const auto add = [&](const QString& name, const QByteArray& bytes) {
            files.insert((packed ? "made packed " : "made ") + name, bytes);
        };
        for (const int bits : {1, 4, 8}) {
            const IndexMake make{21, 13, bits, packed};
            add(QString("%1.pcx").arg(bits), MakePcx(make));
            add(QString("%1.ras").arg(bits), MakeSun(make));
            add(QString("%1.iff").arg(bits), MakeIff(make));
        }
        const IndexMake make{21, 13, 8, packed};
        add("map.tga", MakeTga(make));
        add("2.wpg", MakeWpg({21, 13, 4, packed}, packed ? 1 : 2));
        add("rgb.wpg", MakeWpgFile(2, MakeWpgRgb(13, 7, packed)));
        add("map.pct", MakePictFile(21, 13, MakePictMap({21, 13, packed ? 4 : 1})));
        add("16.pct", MakePictFile(13, 7, MakePictColours(13, 7, 16, packed ? 3 : 1)));
        add("32.pct", MakePictFile(13, 7, MakePictColours(13, 7, 32, packed ? 4 : 2)));
        add("chunky.iff", MakeIff(make, true));
        add("ham.iff", MakeIff({21, 13, 6, packed}, false, 0x800));
        add("half.iff", MakeIff({21, 13, 6, packed}, false, 0x80));
        add("made.msp", MakeMsp({21, 13, 1, packed}));
        for (const int planes : {1, 2, 3, 4}) {
            add(QString("%1.sgi").arg(planes), MakeSgi(14, 6, planes, 1 + planes % 2, packed));
        }
        for (const int depth : {16, 24, 32}) {
            TgaMake tga;
            tga.depth = depth;
            tga.packed = packed;
            tga.alphaBits = depth == 32 ? 8 : 0;
            add(QString("%1.tga").arg(depth), MakeTgaRgb(tga));
        }
        for (const int mode : {0, 1, 2, 3, 4, 9}) {
            PsdMake psd;
            psd.mode = mode;
            psd.packed = packed;
            psd.depth = mode == 0 ? 1 : mode == 1 ? 16 : 8;
            psd.channels = mode >= 3 ? 5 : 1;
            psd.big = mode == 3;
            psd.transparency = mode == 3;
            psd.dotsPerInch = 240;
            add(QString("%1.psd").arg(mode), MakePsd(psd));
        }
    }
    files.insert("made 24.pcx", MakePcx24(13, 7));
    files.insert("made 32.ras", MakeSunRgb(13, 7, 32, false));
    files.insert("made 1.img", MakeGem({50, 13, 1, true}, false));
    files.insert("made 4.img", MakeGem({50, 13, 4, true}, true));
    files.insert("made 8.wpg", MakeWpg({21, 13, 8, true}, 2));
    files.insert("made old.pct",
                 MakePictFile(50, 13, MakePictMap({50, 13, 1}, PictMapMake(0x98, 1, false)), 1));
    JpegMake jpeg;
    jpeg.width = 64;
    jpeg.height = 48;
    files.insert("made jpeg.pct", MakePictFile(64, 48, MakePictJpeg(64, 48, MakeJpeg(jpeg))));
    files.insert("made.mac", MakeMac(false));
    files.insert("made wrapped.mac", MakeMac(true));
    return files;
}

} // namespace quillane::making
