#include "browser/filter.h"
#include "core/folder_listing.h"
#include "core/strings.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace quillane {

TEST(BrowseMask, Is257CharactersOf43PatternsWithoutATrailingSemicolon)
{
    const QString mask = QString::fromUtf16(kBrowseMask);
    EXPECT_EQ(mask.size(), 257);
    EXPECT_EQ(mask.count(u';'), 42);
    EXPECT_FALSE(mask.endsWith(u';'));
    EXPECT_EQ(PatternsOf(mask).size(), 43);
}

TEST(BrowseMask, StandsInItsOrder)
{
    EXPECT_EQ(QString::fromUtf16(kBrowseMask),
              QStringLiteral("*.AWD;*.BMP;*.CAL;*.CLP;*.CMP;*.CUR;*.CUT;*.DIC;*.DWF;*.DWG;*.DXF;"
                             "*.EMF;*.EPS;*.FAX;*.FPX;*.GIF;*.ICA;*.ICO;*.IFF;*.IMG;*.ITG;*.JPG;"
                             "*.MAC;*.MSP;*.PBM;*.PCT;*.FPX;*.PCX;*.PGM;*.PNG;*.PPM;*.PSD;*.RAS;"
                             "*.RAW;*.MOV;*.TGA;*.TIF;*.WMF;*.WPG;*.IFL;*.LY2;*.AVI;*.MPG"));
}

TEST(BrowseMask, HoldsFlashPixTwice)
{
    EXPECT_EQ(PatternsOf(QString::fromUtf16(kBrowseMask)).count(QStringLiteral("*.FPX")), 2);
}

TEST(LastPatternIndex, RoundsASixthOfTheLengthLessOne)
{
    EXPECT_EQ(LastPatternIndex(QString::fromUtf16(kBrowseMask)), 42);
    EXPECT_EQ(LastPatternIndex(QStringLiteral("*.JPG")), 0);
    EXPECT_EQ(LastPatternIndex(QStringLiteral("*.JPG;*.TIF")), 1);
}

} // namespace quillane
