// Clipboard files, Dr. Halo pictures and raw samples.
#include "legacy_bits.h"
#include "picture_maker.h"

namespace quillane::making {

QByteArray MakeClp(quint32 format, const QByteArray& body, bool wide)
{
    const int entry = wide ? 172 : 89;
    const int number = wide ? 4 : 2;
    const quint32 at = quint32(4 + 2 * entry);
    QByteArray head = Little(wide ? 0xc351 : 0xc350, 2) + Little(2, 2);
    head += (Little(1, number) + Little(4, 4) + Little(at, 4)).leftJustified(entry, '\0');
    head += (Little(format, number) + Little(quint32(body.size()), 4) + Little(at + 4, 4))
                .leftJustified(entry, '\0');
    return head + "text" + body;
}

QByteArray MakeClpPlanes()
{
    return MakeClp(2,
                   Little(0, 2) + Little(9, 2) + Little(1, 2) + Little(2, 2) + "\4\1" + Little(0, 4)
                       + QByteArray("\x80\0\0\0\x80\0\x80\x80", 8));
}

QByteArray MakeCut()
{
    QByteArray cut = Little(5, 2) + Little(3, 2) + Little(0, 2);
    for (int y = 0; y < 3; ++y) {
        const QByteArray codes = QByteArray("\x83\2\2", 3) + char(y) + '\1' + '\0';
        cut += Little(quint32(codes.size()), 2) + codes;
    }
    return cut;
}

QMap<QString, QByteArray> MadeBarePictures()
{
    QByteArray samples;
    for (int i = 0; i < 6 * 6 * 3; ++i) {
        samples += char(i * 5);
    }
    const QByteArray bitmap = Little(40, 4) + Little(9, 4) + Little(2, 4) + Little(1, 2)
        + Little(1, 2) + LegacyBytes(16) + Little(2, 4) + Little(0, 4) + Little(0, 4)
        + Little(0xffffff, 4) + QByteArray("\xaa\x80\0\0\x55\0\0\0", 8);
    return {{"made.cut", MakeCut()},
            {"made.raw", samples},
            {"made.clp", MakeClp(8, bitmap)},
            {"made wide.clp", MakeClp(8, bitmap, true)},
            {"made planes.clp", MakeClpPlanes()}};
}

} // namespace quillane::making
