// Every format code at every depth, saved with comments through the engine and read back by the
// program and by independent readers.
#include "imaging/comments/slots.h"
#include "imaging/engine.h"
#include "imaging/format_table.h"
#include "imaging/resize.h"
#include "worker_support.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QTemporaryDir>
#include <cstring>
#include <gtest/gtest.h>
#include <iostream>

namespace quillane {
namespace {

constexpr qint16 kArtist = 0;
constexpr qint16 kGreyJpeg = 10, kGreyExifJpeg = 98; ///< codes

/// A picture of ramps and edges, of odd sizes.
Bitmap MatrixPicture()
{
    QImage image(61, 47, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixel(x, y, qRgb(x * 4, y * 5, (x + y) * 2));
        }
    }
    QPainter painter(&image);
    painter.fillRect(8, 8, 20, 12, Qt::white);
    painter.fillRect(30, 20, 16, 16, Qt::black);
    return Bitmap(image, ColourModel::Rgb, 24);
}

class SaveMatrix : public testing::TestWithParam<SaveVariant> { };

TEST_P(SaveMatrix, IsReadBackWithItsComments)
{
    const SaveVariant& variant = GetParam();
    worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 1);
    const QTemporaryDir folder;
    const QString text = QStringLiteral("Name=Ann\r\nCity=Zürich\r\n");
    bool readable = false;
    for (const Codec& codec : AllCodecs()) {
        readable |= std::strcmp(codec.name, variant.codec) == 0 && (codec.probe || codec.inWorker);
    }
    // Bare samples and bare fax codes tell nothing of their size, MacPaint's pages have one, and
    // those of PostScript are drawn.
    for (const char* without : {"RAW", "FAX", "MacPaint", "EPS"}) {
        readable = readable && std::strcmp(variant.codec, without) != 0;
    }
    for (const qint32 bits : variant.depths) {
        if (bits == 0) {
            break;
        }
        const QString file = folder.filePath(
            QStringLiteral("a_%1_61x47%2").arg(bits).arg(QLatin1String(variant.extension)));
        EngineInstance lead;
        lead.SetBitmap(MatrixPicture());
        lead.SetComment(kDescriptionSlot, text);
        lead.SetComment(kArtist, QStringLiteral("Somebody"));
        ASSERT_NO_THROW(lead.Save(file, variant.format, bits, 2, 0)) << bits;
        if (!readable) {
            continue;
        }
        const ImageFacts facts = ProbeFile(file);
        // A grey JPEG has one channel, and so no sampling that its code could tell.
        const bool grey = variant.carrier == CommentCarrier::Jpeg && bits == 8;
        EXPECT_EQ(facts.format,
                  !grey                              ? variant.format
                      : IsExifFormat(variant.format) ? kGreyExifJpeg
                                                     : kGreyJpeg)
            << bits;
        EXPECT_EQ(facts.width, 61) << bits;
        EXPECT_EQ(facts.height, 47) << bits;
        EXPECT_NO_THROW(LoadFile(file)) << bits;
        if (variant.carrier == CommentCarrier::None) {
            continue;
        }
        const CommentValue description = ReadComments(file).At(kDescriptionSlot);
        ASSERT_FALSE(description.IsEmpty()) << bits;
        EXPECT_EQ(description.Text(), text) << bits;
        if (!test::HasTool(QStringLiteral("exiftool"))) {
            continue;
        }
        const auto said = test::RunTool(QStringLiteral("exiftool"),
                                        {QStringLiteral("-j"), QStringLiteral("-b"), file});
        ASSERT_TRUE(said.has_value()) << bits;
        const QJsonObject fields = QJsonDocument::fromJson(*said).array().first().toObject();
        bool found = false;
        for (const char* name : {"ImageDescription", "Description", "Comment", "ImageComments"}) {
            const QString value = fields.value(QLatin1String(name)).toString();
            found |= value.contains(QStringLiteral("City=Zürich"));
        }
        EXPECT_TRUE(found) << bits << ": " << said->toStdString();
        EXPECT_FALSE(fields.contains(QStringLiteral("Error"))) << said->toStdString();
        EXPECT_FALSE(fields.contains(QStringLiteral("Warning"))) << said->toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(EveryCode, SaveMatrix,
                         testing::ValuesIn(SaveVariants().begin(), SaveVariants().end()),
                         [](const testing::TestParamInfo<SaveVariant>& row) {
                             return std::to_string(row.param.format);
                         });

} // namespace
} // namespace quillane
