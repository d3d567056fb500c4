#include "core/failure.h"
#include "imaging/engine.h"
#include "imaging/resize.h"
#include "picture_maker.h"
#include <QColor>
#include <QTemporaryDir>
#include <algorithm>
#include <gtest/gtest.h>

namespace quillane {

namespace {

using making::ColourDistance;
using making::PlaceColour;

class EngineTest : public ::testing::Test {
protected:
    QString Write(const QString& name, const QByteArray& content)
    {
        const QString path = mFolder.filePath(name);
        WriteWholeFile(path, content);
        return path;
    }
    static Bitmap Picture(int width, int height)
    {
        QImage image(width, height, QImage::Format_RGB32);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                image.setPixel(x, y, PlaceColour(x, y, width, height));
            }
        }
        return Bitmap(image, ColourModel::Rgb, 24);
    }
    QTemporaryDir mFolder;
    EngineInstance mLead;
};

TEST_F(EngineTest, LoadShowsUprightPixelsAndTheFilesOwnFacts)
{
    making::JpegMake make;
    make.width = 200;
    make.height = 100;
    make.exif = making::MakeExif(6);
    const QByteArray bytes = making::MakeJpeg(make);
    mLead.Load(Write("a.jpg", bytes), 0, 0);
    EXPECT_EQ(mLead.BitmapWidth(), 100);
    EXPECT_EQ(mLead.BitmapHeight(), 200);
    EXPECT_EQ(mLead.BitmapBits(), 24);
    EXPECT_EQ(mLead.InfoWidth(), 200);
    EXPECT_EQ(mLead.InfoHeight(), 100);
    EXPECT_EQ(mLead.InfoBits(), 24);
    EXPECT_EQ(mLead.InfoFormat(), 101);
    EXPECT_EQ(mLead.InfoSizeDisk(), bytes.size());
    EXPECT_EQ(mLead.InfoSizeMemory(), 200 * 3 * 100);
    EXPECT_EQ(mLead.InfoPages(), 1);
    EXPECT_EQ(mLead.InfoCompression(), "JPEG");
}

TEST_F(EngineTest, InfoSizeMemoryCountsRowsPaddedToFourBytes)
{
    making::JpegMake make;
    make.width = 33;
    make.height = 10;
    mLead.GetFileInfo(Write("a.jpg", making::MakeJpeg(make)), 0, 0);
    EXPECT_EQ(mLead.InfoSizeMemory(), 100 * 10); // 99 bytes and one
    EXPECT_FALSE(mLead.HasBitmap());
}

TEST_F(EngineTest, AFailingLoadLeavesTheImageAsItWas)
{
    mLead.Load(Write("a.jpg", making::MakeJpeg({})), 0, 0);
    EXPECT_THROW(mLead.Load(mFolder.filePath("none.jpg"), 0, 0), Failure);
    EXPECT_THROW(mLead.Load(Write("b.jpg", "no picture"), 0, 0), Failure);
    EXPECT_EQ(mLead.BitmapWidth(), 64);
    EXPECT_EQ(mLead.InfoWidth(), 64);
}

TEST_F(EngineTest, WithMethodErrorsOffNothingIsRaised)
{
    EXPECT_TRUE(mLead.MethodErrors());
    mLead.Load(Write("a.jpg", making::MakeJpeg({})), 0, 0);
    mLead.SetMethodErrors(false);
    EXPECT_NO_THROW(mLead.Load(mFolder.filePath("none.jpg"), 0, 0));
    EXPECT_NO_THROW(mLead.GetFileInfo(mFolder.filePath("none.jpg"), 0, 0));
    EXPECT_NO_THROW(mLead.ReadComment(mFolder.filePath("none.jpg"), 0, 3));
    EXPECT_EQ(mLead.BitmapWidth(), 64);
    EXPECT_EQ(mLead.InfoWidth(), 64);
    mLead.SetMethodErrors(true);
    EXPECT_THROW(mLead.GetFileInfo(mFolder.filePath("none.jpg"), 0, 0), Failure);
}

TEST_F(EngineTest, ReadCommentLeavesTheImageAlone)
{
    const QString path = Write("a.jpg", making::MakeJpeg({}));
    mLead.SetBitmap(Picture(3, 2));
    mLead.SetMethodErrors(false);
    mLead.ReadComment(path, 0, 17);
    EXPECT_EQ(mLead.BitmapWidth(), 3);
    EXPECT_EQ(mLead.InfoWidth(), 0);
}

TEST_F(EngineTest, LoadClearsPendingCommentsAndAnEmptyValueClearsOne)
{
    mLead.SetComment(3, CommentValue(QStringLiteral("words")));
    mLead.SetComment(4, CommentValue(QStringLiteral("more")));
    mLead.SetComment(4, CommentValue());
    EXPECT_EQ(mLead.Comment(3).Text(), "words");
    EXPECT_TRUE(mLead.Comment(4).IsEmpty());
    mLead.Load(Write("a.jpg", making::MakeJpeg({})), 0, 0);
    EXPECT_TRUE(mLead.Comment(3).IsEmpty());
}

TEST_F(EngineTest, ABitmapAssignedIsAnIndependentCopyAndAnEmptyOneFrees)
{
    EngineInstance other;
    mLead.SetBitmap(Picture(20, 10));
    other.SetBitmap(mLead.Bitmap());
    mLead.Resize(5, 5, kResizePlain);
    EXPECT_EQ(mLead.BitmapWidth(), 5);
    EXPECT_EQ(other.BitmapWidth(), 20);
    other.SetBitmap({});
    EXPECT_FALSE(other.HasBitmap());
    EXPECT_EQ(other.BitmapWidth(), 0);
    EXPECT_TRUE(mLead.HasBitmap());
}

TEST_F(EngineTest, ResizeMakesTheSizesThatCellsAskFor)
{
    const struct {
        int width, height;
        float cell;
        int toWidth, toHeight;
    } rows[] = {{200, 100, 100, 100, 50},
                {100, 200, 100, 50, 100},
                {150, 150, 100, 100, 100},
                {300, 100, 100, 100, 33},
                {3000, 1, 100, 100, 1}};
    for (const auto& row : rows) {
        mLead.SetBitmap(Picture(row.width, row.height));
        const bool wide = row.height < row.width;
        const float width = wide ? row.cell : float(row.width) / float(row.height) * row.cell;
        const float height = wide ? float(row.height) / float(row.width) * row.cell : row.cell;
        mLead.Resize(width, height, kResizeResample);
        EXPECT_EQ(mLead.BitmapWidth(), row.toWidth);
        EXPECT_EQ(mLead.BitmapHeight(), row.toHeight);
    }
}

TEST_F(EngineTest, ResizeKeepsThePicturesPlaces)
{
    for (const qint32 flags : {kResizePlain, kResizeResample, kResizeBicubic}) {
        for (const QSize size : {QSize(50, 20), QSize(240, 130)}) {
            mLead.SetBitmap(Picture(100, 60));
            mLead.Resize(float(size.width()), float(size.height()), flags);
            const QImage& pixels = mLead.Bitmap().Pixels();
            for (int y = 2; y < size.height() - 2; y += 5) {
                for (int x = 2; x < size.width() - 2; x += 5) {
                    ASSERT_LE(ColourDistance(pixels.pixel(x, y),
                                             PlaceColour(x, y, size.width(), size.height())),
                              14)
                        << flags << " at " << x << "," << y;
                }
            }
        }
    }
}

TEST_F(EngineTest, ResizeWithoutAPictureOrBeyondTheLimitsFails)
{
    EXPECT_THROW(mLead.Resize(10, 10, kResizePlain), Failure);
    mLead.SetBitmap(Picture(10, 10));
    EXPECT_THROW(mLead.Resize(1e9f, 10, kResizePlain), Failure);
    EXPECT_THROW(mLead.Resize(65000, 65000, kResizePlain), Failure);
    EXPECT_EQ(mLead.BitmapWidth(), 10);
}

TEST(Resized, AConstantPictureStaysConstantInEveryLayout)
{
    const struct {
        QImage::Format format;
        ColourModel model;
    } rows[] = {
        {QImage::Format_Mono, ColourModel::BlackWhite},
        {QImage::Format_Indexed8, ColourModel::Palette},
        {QImage::Format_Grayscale8, ColourModel::Grey},
        {QImage::Format_Grayscale16, ColourModel::Grey},
        {QImage::Format_RGB32, ColourModel::Rgb},
        {QImage::Format_ARGB32, ColourModel::Rgb},
        {QImage::Format_RGBA8888, ColourModel::Cmyk},
        {QImage::Format_RGBX64, ColourModel::Rgb},
        {QImage::Format_RGBA64, ColourModel::Rgb},
    };
    for (const auto& row : rows) {
        for (const ResizeWay way : {ResizeWay::Plain, ResizeWay::Resample, ResizeWay::Bicubic}) {
            const bool smooth = way != ResizeWay::Plain;
            QImage pixels(40, 30, row.format);
            if (row.format == QImage::Format_Indexed8) {
                pixels.setColorTable({qRgb(9, 8, 7), qRgb(200, 100, 50)});
                pixels.fill(1u);
            } else if (row.format == QImage::Format_Mono) {
                pixels.fill(1u);
            } else if (row.model == ColourModel::Cmyk) {
                // The bytes of four inks; a small last one must not swallow the others.
                pixels.reinterpretAsFormat(QImage::Format_RGB32);
                for (int y = 0; y < 30; ++y) {
                    std::fill_n(reinterpret_cast<quint32*>(pixels.scanLine(y)), 40, 0x05c86432u);
                }
                pixels.reinterpretAsFormat(QImage::Format_RGBA8888);
            } else {
                pixels.fill(QColor(200, 100, 50));
            }
            const Bitmap from(pixels, row.model, 8);
            const Bitmap to = Resized(from, QSize(13, 57), way);
            ASSERT_EQ(to.Width(), 13);
            ASSERT_EQ(to.Height(), 57);
            EXPECT_FALSE(to.IsExact());
            if (!smooth || row.model == ColourModel::Grey || row.model == ColourModel::Rgb) {
                EXPECT_EQ(to.Pixels().format(), row.format);
            }
            const QRgb before = from.ToDisplay().pixel(20, 15);
            for (const QPoint at : {QPoint(0, 0), QPoint(6, 28), QPoint(12, 56)}) {
                EXPECT_LE(ColourDistance(to.ToDisplay().pixel(at), before), 1)
                    << row.format << " smooth " << smooth;
            }
        }
    }
}

TEST(Resized, ABlackAndWhitePictureBecomesGreyWhenMixed)
{
    QImage pixels(8, 8, QImage::Format_Mono);
    pixels.fill(0u);
    for (int y = 0; y < 8; ++y) {
        pixels.scanLine(y)[0] = 0x55;
    }
    const Bitmap mixed =
        Resized(Bitmap(pixels, ColourModel::BlackWhite, 1), QSize(4, 4), ResizeWay::Resample);
    EXPECT_EQ(mixed.Model(), ColourModel::Grey);
    EXPECT_NEAR(qGray(mixed.Pixels().pixel(1, 1)), 128, 20);
    const Bitmap plain =
        Resized(Bitmap(pixels, ColourModel::BlackWhite, 1), QSize(4, 4), ResizeWay::Plain);
    EXPECT_EQ(plain.Model(), ColourModel::BlackWhite);
    EXPECT_EQ(plain.Bits(), 1);
}

TEST(AtDepth, GivesTheDepthAskedForOrRefuses)
{
    QImage pixels(6, 4, QImage::Format_RGB32);
    pixels.fill(qRgb(200, 100, 50));
    const Bitmap from(pixels, ColourModel::Rgb, 24);
    for (const int bits : {1, 8, 16, 24, 32}) {
        EXPECT_EQ(AtDepth(from, bits).Bits(), bits);
    }
    EXPECT_THROW(AtDepth(from, 7), Failure);
    QImage ink(1, 1, QImage::Format_RGBA8888);
    ink.fill(0);
    EXPECT_EQ(AtDepth(Bitmap(ink, ColourModel::Cmyk, 32), 24).Model(), ColourModel::Rgb);
}

} // namespace

} // namespace quillane
