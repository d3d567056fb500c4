#include "imaging/worker/picture_memory.h"
#include <gtest/gtest.h>

namespace quillane::worker {

TEST(PictureMemory, SmallAndLargePicturesHaveTheSameLayout)
{
    struct Row {
        int width, height;
        QImage::Format format;
    };
    for (const Row& row :
         {Row{3, 5, QImage::Format_RGB32}, Row{2000, 1501, QImage::Format_RGB32},
          Row{9001, 5000, QImage::Format_Mono}, Row{5001, 2000, QImage::Format_Grayscale8},
          Row{1001, 1000, QImage::Format_RGBX64}, Row{2501, 1001, QImage::Format_Grayscale16}}) {
        QImage made = NewPicture(row.width, row.height, row.format);
        const QImage plain(row.width, row.height, row.format);
        EXPECT_EQ(made.size(), plain.size());
        EXPECT_EQ(made.bytesPerLine(), plain.bytesPerLine());
        EXPECT_EQ(made.format(), plain.format());
    }
}

TEST(PictureMemory, CopiesShareThePixelsUntilOneIsWritten)
{
    QImage first = NewPicture(2000, 2000, QImage::Format_RGB32);
    first.fill(0xff112233u);
    QImage second = first;
    EXPECT_EQ(second.constBits(), first.constBits());
    second.setPixel(7, 7, 0xff000000u);
    EXPECT_EQ(first.pixel(7, 7), 0xff112233u);
    first = QImage();
    EXPECT_EQ(second.pixel(1999, 1999), 0xff112233u);
}

TEST(PictureMemory, APictureThatDoesNotFitIsNull)
{
    EXPECT_TRUE(NewPicture(0, 0, QImage::Format_RGB32).isNull());
    EXPECT_TRUE(NewPicture(-5, 7, QImage::Format_RGB32).isNull());
}

TEST(RecycledPicture, TakesTheMemoryThatAnEarlierOneLeft)
{
    QImage first = RecycledPicture(3000, 2000, QImage::Format_RGB32);
    first.fill(0xff112233u);
    const uchar* const place = first.constBits();
    const QImage copy = first;
    first = QImage();
    EXPECT_EQ(copy.pixel(2999, 1999), 0xff112233u);
    QImage other = RecycledPicture(3000, 2000, QImage::Format_RGB32);
    EXPECT_NE(other.constBits(), place); // the copy still has it
    other = QImage();
    {
        const QImage last = copy;
    }
    EXPECT_EQ(copy.constBits(), place);
}

TEST(RecycledPicture, GivesMemoryOfTheRightSizeBack)
{
    const uchar* place = nullptr;
    {
        const QImage first = RecycledPicture(3000, 2000, QImage::Format_RGB32);
        place = first.constBits();
    }
    // A little smaller does, a much smaller or larger one has its own.
    {
        const QImage smaller = RecycledPicture(2800, 1900, QImage::Format_RGB32);
        EXPECT_EQ(smaller.constBits(), place);
    }
    const QImage small = RecycledPicture(1200, 1000, QImage::Format_RGB32);
    EXPECT_NE(small.constBits(), place);
    const QImage large = RecycledPicture(5000, 3000, QImage::Format_RGB32);
    EXPECT_NE(large.constBits(), place);
    EXPECT_TRUE(RecycledPicture(0, 5, QImage::Format_RGB32).isNull());
    EXPECT_EQ(RecycledPicture(3, 5, QImage::Format_RGB32).size(), QSize(3, 5));
}

} // namespace quillane::worker
