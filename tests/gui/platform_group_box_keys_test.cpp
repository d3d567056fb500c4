#include "platform/ui/group_box_keys.h"

#include <QGroupBox>
#include <QKeyEvent>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

namespace quillane {
namespace {

/// A window that counts the keys nobody in it wanted.
class KeyCounter : public QWidget {
public:
    int presses = 0, releases = 0;

protected:
    void keyPressEvent(QKeyEvent*) override { ++presses; }
    void keyReleaseEvent(QKeyEvent*) override { ++releases; }
};

class GroupBoxKeysTest : public testing::Test {
protected:
    GroupBoxKeysTest() : box(new QGroupBox), control(new QWidget)
    {
        (new QVBoxLayout(&window))->addWidget(box);
        (new QVBoxLayout(box))->addWidget(control);
        window.show();
    }
    KeyCounter window;
    QGroupBox* box;
    QWidget* control;
};

TEST_F(GroupBoxKeysTest, KeysThatPressAButtonPassABoxThatCannotBeChecked)
{
    const GroupBoxKeys keys;
    QTest::keyClick(control, Qt::Key_Space);
    QTest::keyClick(control, Qt::Key_Return);
    EXPECT_EQ(window.presses, 2);
    EXPECT_EQ(window.releases, 2);
}

TEST_F(GroupBoxKeysTest, ABoxThatCanBeCheckedKeepsItsKey)
{
    const GroupBoxKeys keys;
    box->setCheckable(true);
    box->setChecked(false);
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Space);
    EXPECT_TRUE(box->isChecked());
    EXPECT_EQ(window.presses, 0);
}

} // namespace
} // namespace quillane
