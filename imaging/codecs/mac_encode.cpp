#include "imaging/codecs/encoders.h"
#include "imaging/codecs/packbits.h"
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kMacOut[] = "MacPaint picture";
constexpr int kMacOutWidth = 576;
constexpr int kMacOutHeight = 720;
constexpr int kMacOutHeader = 512;

/// The 128 bytes that carry a Macintosh file's name and type over to other systems (MacBinary).
void MacPutWrapper(ByteWriter& file, quint32 dataBytes)
{
    constexpr char kName[] = "Picture";
    constexpr int kNameBytes = 63;
    file.Byte(0);
    file.Byte(int(sizeof(kName) - 1));
    file.Bytes(kName, sizeof(kName) - 1);
    file.Fill(kNameBytes - qint64(sizeof(kName) - 1));
    file.Text("PNTGMPNT"); // type and maker
    file.Fill(10);         // flags and place on the desktop
    file.Big32(dataBytes);
    file.Fill(128 - file.Size());
}

} // namespace

QByteArray MacEncode(const Bitmap& picture, const EncodeRequest&)
{
    CheckFits(kMacOut, picture, kMacOutWidth, kMacOutHeight);
    ByteWriter data;
    data.Big32(2); // version
    data.Fill(kMacOutHeader - 4);
    constexpr int kRow = kMacOutWidth / 8;
    std::vector<uchar> row;
    for (int y = 0; y < kMacOutHeight; ++y) {
        row.assign(kRow, 0); // white
        if (y < picture.Height()) {
            PackBilevel(picture.Pixels(), y, true, row.data());
        }
        PutPackBits(data, row.data(), kRow);
    }
    ByteWriter file;
    MacPutWrapper(file, quint32(data.Size()));
    const qint64 padding = (128 - data.Size() % 128) % 128;
    file.Text(data.Take());
    file.Fill(padding);
    return file.Take();
}

} // namespace quillane::codecs
