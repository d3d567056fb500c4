#include "imaging/vector/gdi_objects.h"
#include "imaging/comments/text_bytes.h"
#include <QStringConverter>
#include <algorithm>

namespace quillane::drawing {

namespace {

struct GdiCharset {
    int number;
    const char* codec;
};
constexpr GdiCharset kGdiCharsets[] = {
    {128, "Shift_JIS"},    {129, "EUC-KR"},       {134, "GBK"},          {136, "Big5"},
    {161, "windows-1253"}, {162, "windows-1254"}, {163, "windows-1258"}, {177, "windows-1255"},
    {178, "windows-1256"}, {186, "windows-1257"}, {204, "windows-1251"}, {222, "windows-874"},
    {238, "windows-1250"},
};

} // namespace

void GdiTable::Add(GdiObject object)
{
    Set(mFree.empty() ? quint32(mObjects.size()) : *mFree.begin(), std::move(object));
}

void GdiTable::Set(quint32 number, GdiObject object)
{
    if (number >= kMostObjects) {
        return;
    }
    while (number >= mObjects.size()) {
        mFree.insert(quint32(mObjects.size()));
        mObjects.emplace_back();
    }
    mFree.erase(number);
    mObjects[number] = std::move(object);
}

void GdiTable::Delete(quint32 number)
{
    if (number < mObjects.size()) {
        mObjects[number] = std::monostate();
        mFree.insert(number);
    }
}

const GdiObject* GdiTable::At(quint32 number) const
{
    return number < mObjects.size() ? &mObjects[number] : nullptr;
}

Stroke GdiStroke(quint32 style)
{
    constexpr Qt::PenStyle kStyles[] = {Qt::SolidLine,   Qt::DashLine,       Qt::DotLine,
                                        Qt::DashDotLine, Qt::DashDotDotLine, Qt::NoPen,
                                        Qt::SolidLine,   Qt::DashLine,       Qt::DotLine};
    Stroke stroke;
    const quint32 kind = style & 0xf;
    stroke.style = kind < std::size(kStyles) ? kStyles[kind] : Qt::SolidLine;
    const quint32 cap = style >> 8 & 0xf;
    stroke.cap = cap == 0 ? Qt::RoundCap : cap == 1 ? Qt::SquareCap : Qt::FlatCap;
    const quint32 join = style >> 12 & 0xf;
    stroke.join = join == 0 ? Qt::RoundJoin : join == 1 ? Qt::BevelJoin : Qt::MiterJoin;
    return stroke;
}

Fill GdiFill(quint32 style, QRgb colour, quint32 hatch)
{
    constexpr Qt::BrushStyle kHatches[] = {Qt::HorPattern,   Qt::VerPattern,
                                           Qt::FDiagPattern, Qt::BDiagPattern,
                                           Qt::CrossPattern, Qt::DiagCrossPattern};
    Fill fill;
    fill.colour = colour;
    if (style == 0) {
        fill.style = Qt::SolidPattern;
    } else if (style == 2) {
        fill.style = kHatches[hatch < std::size(kHatches) ? hatch : 0];
    }
    return fill;
}

QRgb GdiColour(quint32 reference)
{
    return qRgb(int(reference & 255), int(reference >> 8 & 255), int(reference >> 16 & 255));
}

QString GdiText(QByteArrayView bytes, int charset)
{
    const auto* const found =
        std::find_if(std::begin(kGdiCharsets), std::end(kGdiCharsets),
                     [charset](const GdiCharset& row) { return row.number == charset; });
    if (found != std::end(kGdiCharsets)) {
        QStringDecoder decoder(found->codec);
        if (decoder.isValid()) {
            return decoder.decode(bytes);
        }
    }
    QString text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        text += CharacterFromByte(uchar(byte));
    }
    return text;
}

quint8 GdiRop2(int mode)
{
    if (mode < 1 || mode > 16) {
        return kRopPattern;
    }
    // Bit 2 P + D of mode - 1 is the result.
    quint8 rop = 0;
    for (int i = 0; i < 8; ++i) {
        const int index = (i >> 2 & 1) * 2 + (i & 1);
        rop = quint8(rop | ((mode - 1) >> index & 1) << i);
    }
    return rop;
}

} // namespace quillane::drawing
