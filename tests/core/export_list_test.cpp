#include "core/export_list.h"

#include <gtest/gtest.h>

namespace quillane {

TEST(AddNewPaths, LeavesOutExactDuplicates)
{
    QList<QString> list{QStringLiteral("/a")};
    AddNewPaths(
        list,
        {QStringLiteral("/b"), QStringLiteral("/a"), QStringLiteral("/A"), QStringLiteral("/b")});
    EXPECT_EQ(list,
              (QList<QString>{QStringLiteral("/a"), QStringLiteral("/b"), QStringLiteral("/A")}));
}

} // namespace quillane
