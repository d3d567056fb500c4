#include "viewer/paste_road.h"

#include "core/expect_failure.h"
#include "platform/desktop/desktop_loop.h"
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <gtest/gtest.h>

namespace quillane {
namespace {

QString PasteSample()
{
    return QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/petals.png");
}

TEST(PastePicture, BringsThePictureOfAnotherProgramAndForgetsTheFile)
{
    DesktopLoop loop;
    EngineInstance LEAD1;
    LEAD1.Load(QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/chart.BMP"), 0, 0);
    LEAD1.SetComment(3, CommentValue(QStringLiteral("text")));
    LEAD1.SetRegionRect(1, 1, 5, 5);
    const qint16 format = LEAD1.InfoFormat();
    auto* const data = new QMimeData;
    data->setData(QStringLiteral("image/png"), ReadWholeFile(PasteSample(), 1 << 24));
    QGuiApplication::clipboard()->setMimeData(data);
    PastePicture(LEAD1, loop);
    EngineInstance loaded;
    loaded.Load(PasteSample(), 0, 0);
    EXPECT_EQ(LEAD1.Bitmap().ToDisplay(), loaded.Bitmap().ToDisplay());
    EXPECT_EQ(LEAD1.Loaded(), nullptr);
    EXPECT_FALSE(LEAD1.HasRegion());
    EXPECT_TRUE(LEAD1.Comment(3).IsEmpty());
    EXPECT_EQ(LEAD1.InfoFormat(), format);
}

TEST(PastePicture, NonsenseLeavesThePicture)
{
    DesktopLoop loop;
    EngineInstance LEAD1;
    LEAD1.Load(PasteSample(), 0, 0);
    const qint64 before = LEAD1.Bitmap().Pixels().cacheKey();
    for (const QByteArray& bytes :
         {QByteArray("nonsense"), QByteArray("\x89PNG\r\n\x1a\n no more")}) {
        auto* const data = new QMimeData;
        data->setData(QStringLiteral("image/png"), bytes);
        QGuiApplication::clipboard()->setMimeData(data);
        EXPECT_EQ(FailureOf([&] { PastePicture(LEAD1, loop); }), kFailureUnreadable);
        EXPECT_EQ(LEAD1.Bitmap().Pixels().cacheKey(), before);
        EXPECT_NE(LEAD1.Loaded(), nullptr);
    }
}

} // namespace
} // namespace quillane
