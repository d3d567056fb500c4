#include "core/name_order.h"
#include <QRandomGenerator>
#include <algorithm>
#include <gtest/gtest.h>

namespace quillane {

QStringList SortedNames(QStringList names)
{
    SortNamesIgnoringCase(names);
    return names;
}

TEST(NameOrder, IgnoresCase)
{
    EXPECT_EQ(SortedNames({"b", "A", "C", "a", "B"}), (QStringList{"A", "a", "B", "b", "C"}));
}

TEST(NameOrder, AShorterNameComesFirst)
{
    EXPECT_EQ(SortedNames({"IMG_10.JPG", "IMG_1", "img_1.jpg", "IMG_"}),
              (QStringList{"IMG_", "IMG_1", "img_1.jpg", "IMG_10.JPG"}));
}

TEST(NameOrder, NoneOneAndEqualNames)
{
    EXPECT_EQ(SortedNames({}), QStringList());
    EXPECT_EQ(SortedNames({"a"}), QStringList{"a"});
    EXPECT_EQ(SortedNames({"a", "a"}), (QStringList{"a", "a"}));
    EXPECT_EQ(SortedNames({"", "a", ""}), (QStringList{"", "", "a"}));
}

TEST(NameOrder, LettersBeyondAsciiFoldToo)
{
    EXPECT_EQ(SortedNames({QStringLiteral("\u00E4b"), QStringLiteral("\u00C4a")}),
              (QStringList{QStringLiteral("\u00C4a"), QStringLiteral("\u00E4b")}));
    // Both letters are beyond a byte: the later units must not decide.
    EXPECT_EQ(SortedNames({QStringLiteral("\u0102a"), QStringLiteral("\u0100b")}),
              (QStringList{QStringLiteral("\u0100b"), QStringLiteral("\u0102a")}));
    // Deseret capitals lie beyond the first plane.
    EXPECT_EQ(SortedNames({QStringLiteral("\U00010428b"), QStringLiteral("\U00010400a")}),
              (QStringList{QStringLiteral("\U00010400a"), QStringLiteral("\U00010428b")}));
}

TEST(NameOrder, IsThatOfAPlainCaseFoldedComparison)
{
    QRandomGenerator random(11);
    const QString letters = QStringLiteral("aAbBzZ09_.-\u00E4\u00C4\u00FF\u0100\u03B1\u0391\u05D0");
    for (int round = 0; round < 200; ++round) {
        QStringList names;
        const QString prefix = round % 2 == 0 ? QStringLiteral("IMG_") : QString();
        for (int i = 0; i < 60; ++i) {
            QString name = prefix;
            for (int length = random.bounded(14); length > 0; --length)
                name += letters[random.bounded(int(letters.size()))];
            names.append(name);
        }
        QStringList expected = names;
        std::sort(expected.begin(), expected.end(), [](const QString& left, const QString& right) {
            const int order = left.compare(right, Qt::CaseInsensitive);
            return order != 0 ? order < 0 : left < right;
        });
        ASSERT_EQ(SortedNames(names), expected) << "round " << round;
    }
}

} // namespace quillane
