// What DCMTK's own renderer makes of the DICOM files that are written here.
#include "encode_pictures.h"
#include "imaging/encode.h"
#include "worker_support.h"
#include <cmath>

namespace quillane::test {

namespace {

constexpr char kDicom[] = "DICOM";

struct RenderRow {
    qint16 format;
    int bits, quality;
    double psnr; ///< decibels at least; 99 for equal pixels
};
constexpr RenderRow kRows[] = {
    {89, 8, 2, 99},    {89, 16, 2, 99},   {90, 24, 2, 99},   {125, 8, 2, 99},    {125, 16, 2, 99},
    {126, 24, 2, 99},  {127, 8, 2, 99},   {127, 16, 2, 99},  {128, 24, 2, 99},   {127, 8, 30, 40},
    {127, 8, 120, 33}, {127, 16, 30, 99}, {128, 24, 30, 38}, {128, 24, 120, 30},
};

class DicomRender : public WorkerTest {
protected:
    QString EncodeTo(const Bitmap& picture, const RenderRow& row)
    {
        EncodeRequest request;
        request.format = row.format;
        request.bits = row.bits;
        request.quality = row.quality;
        return Write(QStringLiteral("out.dic"), worker::Encode(picture, request, kDicom));
    }
    static Bitmap Picture(const RenderRow& row, int width, int height)
    {
        return WavePicture(row.bits, width, height, row.bits == 8);
    }
    /// The samples of the rendered picture, sixteen bits each, row by row; empty when the program
    /// refuses the file or complains. `window`: through the window that the file tells.
    std::vector<quint16> Rendered(const QString& path, const RenderRow& row, QSize size,
                                  bool window) const
    {
        const QString out = mFolder.filePath(QStringLiteral("out.pnm"));
        QStringList arguments{QStringLiteral("-q")};
        if (window) {
            arguments += {QStringLiteral("+Wi"), QStringLiteral("1")};
        }
        if (row.bits == 16) {
            arguments += {QStringLiteral("+opn"), QStringLiteral("16")};
        } else {
            arguments.append(QStringLiteral("+opb")); // ASCII, 8 bits
        }
        if (!RunTool(QStringLiteral("dcmj2pnm"), arguments + QStringList{path, out})) {
            return {};
        }
        QList<QByteArray> words;
        for (const QByteArray& line : ReadWholeFile(out, 1 << 26).split('\n')) {
            if (!line.startsWith('#')) {
                for (const QByteArray& word : line.split(' ')) {
                    if (!word.isEmpty()) {
                        words.append(word);
                    }
                }
            }
        }
        const qsizetype channels = row.bits == 24 ? 3 : 1;
        const qsizetype count = channels * size.width() * size.height();
        const QByteArray kind = channels == 3 ? "P3" : "P2";
        if (words.size() != 4 + count || words[0] != kind || words[1].toInt() != size.width()
            || words[2].toInt() != size.height()
            || words[3].toInt() != (row.bits == 16 ? 65535 : 255)) {
            ADD_FAILURE() << words.mid(0, 4).join(' ').constData() << " and " << words.size();
            return {};
        }
        std::vector<quint16> samples;
        samples.reserve(size_t(count));
        for (qsizetype i = 4; i < words.size(); ++i) {
            samples.push_back(words[i].toUShort());
        }
        return samples;
    }
    static std::vector<quint16> SamplesOf(const Bitmap& bitmap, const RenderRow& row)
    {
        const QImage& image = bitmap.Pixels();
        std::vector<quint16> samples;
        samples.reserve(size_t(image.width()) * size_t(image.height()) * 3);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (row.bits == 24) {
                    const QRgb colour = image.pixel(x, y);
                    samples.push_back(quint16(qRed(colour)));
                    samples.push_back(quint16(qGreen(colour)));
                    samples.push_back(quint16(qBlue(colour)));
                } else if (row.bits == 16) {
                    samples.push_back(reinterpret_cast<const quint16*>(image.constScanLine(y))[x]);
                } else {
                    samples.push_back(image.constScanLine(y)[x]);
                }
            }
        }
        return samples;
    }
    static double Decibels(const std::vector<quint16>& one, const std::vector<quint16>& other)
    {
        if (one.size() != other.size() || one.empty()) {
            return 0;
        }
        double squares = 0;
        for (size_t i = 0; i < one.size(); ++i) {
            const double difference = double(one[i]) - double(other[i]);
            squares += difference * difference;
        }
        return squares == 0 ? 99 : 10 * std::log10(255.0 * 255.0 * double(one.size()) / squares);
    }
    void ExpectRendered(const QString& path, const Bitmap& picture, const RenderRow& row)
    {
        const std::vector<quint16> wanted = SamplesOf(picture, row);
        const QSize size = picture.Pixels().size();
        for (const bool window : {false, true}) {
            if (window && row.bits != 16) {
                continue; // only deep grey needs one and has it
            }
            SCOPED_TRACE(window ? "through the window" : "as stored");
            const std::vector<quint16> seen = Rendered(path, row, size, window);
            if (row.psnr == 99) {
                EXPECT_TRUE(seen == wanted) << Decibels(seen, wanted);
            } else {
                EXPECT_GE(Decibels(seen, wanted), row.psnr);
            }
        }
    }
};

} // namespace

TEST_F(DicomRender, EveryCodeAndDepthShowsTheSamePixels)
{
    for (const RenderRow& row : kRows) {
        for (const QSize size : {QSize(67, 45), QSize(64, 48), QSize(2, 3)}) {
            SCOPED_TRACE(QStringLiteral("code %1, %2 bits, quality %3, %4 x %5")
                             .arg(row.format)
                             .arg(row.bits)
                             .arg(row.quality)
                             .arg(size.width())
                             .arg(size.height())
                             .toStdString());
            const Bitmap picture = Picture(row, size.width(), size.height());
            RenderRow asked = row;
            if (size.width() < 8 && row.psnr != 99) {
                asked.psnr = 20; // a block that is mostly padding
            }
            ExpectRendered(EncodeTo(picture, row), picture, asked);
        }
    }
}

TEST_F(DicomRender, ExtremesAreNotStretchedAndNotCut)
{
    for (const RenderRow& row : kRows) {
        if (row.bits == 24) {
            continue;
        }
        SCOPED_TRACE(row.format * 100 + row.bits);
        const bool deep = row.bits == 16;
        const int most = deep ? 65535 : 255;
        // From nothing to all there is, and a narrow range in the middle.
        for (const auto& [from, to] : {std::pair{0, most}, std::pair{most / 3, most / 3 + 40}}) {
            QImage image(64, 64, deep ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8);
            for (int y = 0; y < 64; ++y) {
                for (int x = 0; x < 64; ++x) {
                    const int value = from + (to - from) * (x + y) / 126;
                    if (deep) {
                        reinterpret_cast<quint16*>(image.scanLine(y))[x] = quint16(value);
                    } else {
                        image.scanLine(y)[x] = uchar(value);
                    }
                }
            }
            const Bitmap picture(image, ColourModel::Grey, row.bits);
            ExpectRendered(EncodeTo(picture, row), picture, row);
        }
    }
}

TEST_F(DicomRender, NewPixelsInAFileThatIsThereShowToo)
{
    for (const RenderRow& first : kRows) {
        const QString path = EncodeTo(Picture(first, 30, 20), first);
        const QByteArray old = ReadWholeFile(path, 1 << 24);
        for (const RenderRow& row : kRows) {
            if ((first.bits == 24) != (row.bits == 24)) {
                continue;
            }
            SCOPED_TRACE(QStringLiteral("code %1 of %2 bits in one of code %3 and %4 bits")
                             .arg(row.format)
                             .arg(row.bits)
                             .arg(first.format)
                             .arg(first.bits)
                             .toStdString());
            FileSource original(Write(QStringLiteral("old.dic"), old));
            EncodeRequest request;
            request.format = row.format;
            request.bits = row.bits;
            request.quality = row.quality;
            const Bitmap picture = Picture(row, 41, 37);
            const CommentChange change{3, QStringLiteral("a picture in another's place")};
            const QString after =
                Write(QStringLiteral("new.dic"),
                      worker::Rewrite(original, picture, request, {&change, 1}, kDicom));
            RenderRow asked = row;
            asked.psnr = row.psnr == 99 ? 99 : row.psnr - 3;
            ExpectRendered(after, picture, asked);
        }
    }
}

} // namespace quillane::test
