// Photoshop files.
#include "legacy_bits.h"
#include "legacy_maker.h"
#include "picture_maker.h"
#include <bit>

namespace quillane::making {

QByteArray MakePsd(const PsdMake& make)
{
    const auto length = [&](qsizetype bytes) {
        return make.big ? Big(0, 4) + Big(quint32(bytes), 4) : Big(quint32(bytes), 4);
    };
    QByteArray file = "8BPS" + Big(make.big ? 2 : 1, 2) + LegacyBytes(6)
        + Big(quint32(make.channels), 2) + Big(quint32(make.height), 4)
        + Big(quint32(make.width), 4) + Big(quint32(make.depth), 2) + Big(quint32(make.mode), 2);
    QByteArray palette;
    for (int i = 0; i < 768 && make.mode == 2; ++i) {
        palette += char(i * 3);
    }
    file += Big(quint32(palette.size()), 4) + palette;
    QByteArray resources;
    const auto resource = [&](int number, const QByteArray& name, const QByteArray& body) {
        resources += "8BIM" + Big(quint32(number), 2) + char(name.size()) + name
            + LegacyBytes(name.size() % 2 ? 0 : 1) + Big(quint32(body.size()), 4) + body
            + LegacyBytes(int(body.size() & 1));
    };
    resource(1000, "abc", "odd");
    if (make.dotsPerInch > 0) {
        const QByteArray dots = Big(quint32(make.dotsPerInch) << 16, 4) + Big(1, 2) + Big(1, 2);
        resource(1005, "", dots + dots);
    }
    if (!make.icc.isEmpty()) {
        resource(1039, "", make.icc);
    }
    file += Big(quint32(resources.size()), 4) + resources;
    const QByteArray layers = make.transparency ? length(2) + Big(0xffff, 2) : QByteArray();
    file += length(layers.size()) + layers + Big(make.packed ? 1 : 0, 2);
    QByteArray rows, lengths;
    for (int channel = 0; channel < make.channels; ++channel) {
        for (int y = 0; y < make.height; ++y) {
            QByteArray row;
            for (int x = 0; x < make.width; ++x) {
                const int sample = LegacySample(x, y, channel);
                if (make.depth == 1) {
                    row += char((x / 3 + y) & 1);
                } else if (make.depth == 32) {
                    row += Big(std::bit_cast<quint32>(float(sample) / 255), 4);
                } else {
                    row += Big(quint32(sample) << (make.depth - 8), make.depth / 8);
                }
            }
            row = make.depth == 1 ? LegacyChunky(row, 1) : row;
            row = make.packed ? PackBitsCodes(row) : row;
            lengths += Big(quint32(row.size()), make.big ? 4 : 2);
            rows += row;
        }
    }
    return file + (make.packed ? lengths : QByteArray()) + rows;
}

} // namespace quillane::making
