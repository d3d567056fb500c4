// Pictures that come from other programs by way of the clipboard, and those that go there.
#include "imaging/clipboard.h"

#include "core/expect_failure.h"
#include "core/temp_folder.h"
#include "imaging/encode.h"
#include "imaging/engine.h"
#include "imaging/limits.h"
#include "imaging/worker/worker_host.h"
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QUrl>
#include <QtEndian>

namespace quillane {
namespace {

class ClipboardTest : public testing::Test {
protected:
    ClipboardTest()
    {
        worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 1);
    }
    static Bitmap Picture()
    {
        QImage pixels(23, 17, QImage::Format_RGB32);
        for (int y = 0; y < pixels.height(); ++y) {
            for (int x = 0; x < pixels.width(); ++x) {
                pixels.setPixel(x, y, qRgb(x * 11, y * 15, 99));
            }
        }
        return {pixels, ColourModel::Rgb, 24};
    }
    static QByteArray Encoded(qint16 format)
    {
        EncodeRequest request;
        request.format = format;
        request.bits = 24;
        return EncodePicture(Picture(), request);
    }
    static void Offer(const QMap<QString, QByteArray>& kinds)
    {
        auto* const data = new QMimeData;
        for (auto kind = kinds.begin(); kind != kinds.end(); ++kind) {
            data->setData(kind.key(), kind.value());
        }
        QGuiApplication::clipboard()->setMimeData(data);
    }
    static Bitmap Pasted()
    {
        EngineInstance lead;
        lead.PasteFromClipboard(0);
        return lead.Bitmap();
    }
    /// Number of the Failure of a paste, which leaves the image as it was.
    static qint32 PasteFails()
    {
        EngineInstance lead;
        lead.SetBitmap(Picture());
        const qint64 before = lead.Bitmap().Pixels().cacheKey();
        const qint32 number = FailureOf([&] { lead.PasteFromClipboard(0); });
        EXPECT_EQ(lead.Bitmap().Pixels().cacheKey(), before);
        return number;
    }
};

TEST_F(ClipboardTest, EveryKindThatProgramsOfferIsRead)
{
    const QList<QPair<const char*, qint16>> kinds = {
        {"image/png", 75}, {"image/bmp", 6}, {"image/tiff", 3}, {"image/x-portable-pixmap", 107}};
    for (const auto& [kind, format] : kinds) {
        Offer({{QString::fromLatin1(kind), Encoded(format)}});
        EXPECT_EQ(Pasted().ToDisplay(), Picture().Pixels()) << kind;
    }
    Offer({{QStringLiteral("image/jpeg"), Encoded(10)}});
    EXPECT_EQ(Pasted().Pixels().size(), QSize(23, 17));
}

TEST_F(ClipboardTest, OfSeveralKindsOneThatLosesNothingIsTaken)
{
    Offer(
        {{QStringLiteral("image/jpeg"), Encoded(10)}, {QStringLiteral("image/png"), Encoded(75)}});
    EXPECT_EQ(Pasted().ToDisplay(), Picture().Pixels());
    Offer({{QStringLiteral("image/png"), "nonsense"}, {QStringLiteral("image/bmp"), Encoded(6)}});
    EXPECT_EQ(Pasted().ToDisplay(), Picture().Pixels());
}

TEST_F(ClipboardTest, ContentDecidesWhateverTheKindIsCalled)
{
    Offer({{QStringLiteral("image/png"), Encoded(6)}});
    EXPECT_EQ(Pasted().ToDisplay(), Picture().Pixels());
}

TEST_F(ClipboardTest, APictureTurnedForTheEyeIsPastedUpright)
{
    const QByteArray camera =
        ReadWholeFile(QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/AST_0102.JPG"), 1 << 26);
    Offer({{QStringLiteral("image/jpeg"), camera}});
    EngineInstance loaded;
    loaded.Load(QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/AST_0102.JPG"), 0, 0);
    EXPECT_EQ(Pasted().ToDisplay(), loaded.Bitmap().ToDisplay());
}

TEST_F(ClipboardTest, OneCopiedFileIsReadSeveralAreNot)
{
    const TempFolder folder;
    const QByteArray name = "a b\xff.png"; // a name that is no UTF-8
    folder.Write(name, Encoded(75));
    const QByteArray address = "file://" + folder.Bytes(name).toPercentEncoding("/");
    const QString kind = QStringLiteral("text/uri-list");
    for (const QByteArray& list : {QByteArray(address), QByteArray(address + "\r\n"),
                                   QByteArray("# one file\r\n" + address + "\r\n"),
                                   QByteArray(address).replace("file://", "file://localhost")}) {
        Offer({{kind, list}});
        EXPECT_EQ(Pasted().ToDisplay(), Picture().Pixels()) << list.constData();
    }
    for (const QByteArray& list :
         {QByteArray(address + "\r\n" + address), QByteArray("https://example.org/a.png"),
          QByteArray("file://"), QByteArray("\n\n"), QByteArray("a.png")}) {
        Offer({{kind, list}});
        EXPECT_EQ(PasteFails(), kFailureGeneral) << list.constData();
    }
    Offer({{kind, "file:///nowhere/a.png"}});
    EXPECT_EQ(PasteFails(), kFailureNoFile);
    Offer({{kind, "file:///dev/zero"}});
    EXPECT_NE(PasteFails(), 0);
}

TEST_F(ClipboardTest, NonsenseIsRefusedInWords)
{
    for (const char* kind : {"image/png", "image/bmp", "image/tiff", "image/jpeg", "image/x-odd"}) {
        for (const QByteArray& bytes :
             {QByteArray("nonsense"), QByteArray(), QByteArray(100'000, '\xff'),
              Encoded(75).left(40), Encoded(6).left(20), Encoded(3).left(30)}) {
            Offer({{QString::fromLatin1(kind), bytes}});
            const qint32 number = PasteFails();
            EXPECT_TRUE(number == kFailureUnreadable || number == kFailureLimit) << kind << number;
        }
    }
    Offer({{QStringLiteral("text/plain"), "words"}});
    EXPECT_EQ(PasteFails(), kFailureGeneral);
    Offer({});
    EXPECT_EQ(PasteFails(), kFailureGeneral);
}

TEST_F(ClipboardTest, PicturesBeyondTheLimitsAreRefused)
{
    QByteArray wide = Encoded(6);
    qToLittleEndian<qint32>(1'000'000, wide.data() + 18);
    qToLittleEndian<qint32>(1'000'000, wide.data() + 22);
    Offer({{QStringLiteral("image/bmp"), wide}});
    EXPECT_EQ(PasteFails(), kFailureLimit);
    Offer({{QStringLiteral("image/bmp"), QByteArray(limits::kMaxPictureBytes + 1, 'B')}});
    EXPECT_EQ(PasteFails(), kFailureLimit);
}

TEST_F(ClipboardTest, TheToolkitsReadersSeeNothingFromOutside)
{
    // A kind that only the toolkit would read.
    Offer({{QStringLiteral("image/svg+xml"),
            "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"}});
    EXPECT_EQ(PasteFails(), kFailureUnreadable);
}

TEST_F(ClipboardTest, OtherProgramsSeeEveryDepthInColours)
{
    QImage ink(4, 4, QImage::Format_RGBA8888);
    ink.fill(QColor(0, 255, 255, 0)); // no cyan, full magenta and yellow
    QImage deep(4, 4, QImage::Format_Grayscale16);
    deep.fill(QColor(Qt::gray));
    QImage mono(4, 4, QImage::Format_Mono);
    mono.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    mono.fill(1);
    for (const Bitmap& picture :
         {Bitmap(ink, ColourModel::Cmyk, 32), Bitmap(deep, ColourModel::Grey, 16),
          Bitmap(mono, ColourModel::BlackWhite, 1)}) {
        PutOnClipboard(picture);
        const QImage seen = QGuiApplication::clipboard()->image();
        EXPECT_EQ(seen.convertToFormat(QImage::Format_ARGB32),
                  picture.ToDisplay().convertToFormat(QImage::Format_ARGB32));
        EXPECT_EQ(Pasted().Model(), picture.Model());
        EXPECT_EQ(Pasted().Bits(), picture.Bits());
        EXPECT_EQ(Pasted().Pixels(), picture.Pixels());
    }
}

TEST_F(ClipboardTest, ARegionIsClearAroundItsShape)
{
    EngineInstance lead;
    lead.SetBitmap(Picture());
    lead.SetRegionEllipse(2, 3, 16, 12);
    lead.CopyToClipboard(0);
    const QImage seen = QGuiApplication::clipboard()->image();
    EXPECT_EQ(seen.size(), QSize(16, 12));
    EXPECT_EQ(qAlpha(seen.pixel(0, 0)), 0);
    EXPECT_EQ(seen.pixel(8, 6), Picture().Pixels().pixel(10, 9));
    lead.SetRegionRect(2, 3, 16, 12);
    lead.CopyToClipboard(0);
    EXPECT_EQ(QGuiApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32),
              Picture().Pixels().copy(2, 3, 16, 12));
}

TEST_F(ClipboardTest, APasteForgetsWhatWasLoaded)
{
    EngineInstance lead;
    lead.Load(QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/petals.png"), 0, 0);
    EXPECT_NE(lead.Loaded(), nullptr);
    Offer({{QStringLiteral("image/png"), Encoded(75)}});
    lead.PasteFromClipboard(0);
    EXPECT_EQ(lead.Loaded(), nullptr);
}

} // namespace
} // namespace quillane
