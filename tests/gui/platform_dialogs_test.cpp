#include "platform/ui/desktop_dialogs.h"

#include "core/expect_failure.h"
#include "core/temp_folder.h"
#include "platform/desktop/desktop_loop.h"
#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace quillane {

/// Runs as soon as the next dialog has its own message loop.
template <typename Dialog, typename Act> void WhenShown(Act act)
{
    QMetaObject::invokeMethod(
        qApp,
        [act] {
            auto* const dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            act(*dialog);
        },
        Qt::QueuedConnection);
}

struct ButtonCase {
    const char* name;
    BoxButtons buttons;
    const char* button;
    BoxAnswer answer;
};

class BoxAnswers : public testing::TestWithParam<ButtonCase> { };

TEST_P(BoxAnswers, AreThoseOfTheButtonPressed)
{
    DesktopDialogs dialogs;
    WhenShown<QMessageBox>([](QMessageBox& box) {
        auto* const button = box.findChild<QAbstractButton*>(GetParam().button);
        ASSERT_NE(button, nullptr);
        QTest::mouseClick(button, Qt::LeftButton);
    });
    EXPECT_EQ(dialogs.Box("Go on?", "Test", BoxIcon::Question, GetParam().buttons),
              GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Dialogs, BoxAnswers,
    testing::Values(ButtonCase{"Ok", BoxButtons::Ok, "cmdOK", BoxAnswer::Ok},
                    ButtonCase{"OkOfTwo", BoxButtons::OkCancel, "cmdOK", BoxAnswer::Ok},
                    ButtonCase{"CancelOfTwo", BoxButtons::OkCancel, "cmdCancel", BoxAnswer::Cancel},
                    ButtonCase{"YesOfTwo", BoxButtons::YesNo, "cmdYes", BoxAnswer::Yes},
                    ButtonCase{"NoOfTwo", BoxButtons::YesNo, "cmdNo", BoxAnswer::No},
                    ButtonCase{"YesOfThree", BoxButtons::YesNoCancel, "cmdYes", BoxAnswer::Yes},
                    ButtonCase{"NoOfThree", BoxButtons::YesNoCancel, "cmdNo", BoxAnswer::No},
                    ButtonCase{"CancelOfThree", BoxButtons::YesNoCancel, "cmdCancel",
                               BoxAnswer::Cancel}),
    [](const auto& which) { return which.param.name; });

struct EscCase {
    BoxButtons buttons;
    BoxAnswer answer;
};

TEST(MessageBox, EscIsTheAnswerThatChangesNothing)
{
    DesktopDialogs dialogs;
    for (const EscCase& one :
         {EscCase{BoxButtons::Ok, BoxAnswer::Ok}, EscCase{BoxButtons::OkCancel, BoxAnswer::Cancel},
          EscCase{BoxButtons::YesNo, BoxAnswer::No},
          EscCase{BoxButtons::YesNoCancel, BoxAnswer::Cancel}}) {
        WhenShown<QMessageBox>([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); });
        EXPECT_EQ(dialogs.Box("Go on?", {}, BoxIcon::None, one.buttons), one.answer);
    }
}

TEST(MessageBox, ShowsTheWordsAsTheyAre)
{
    DesktopDialogs dialogs;
    const QString text = "<b>a & b</b>\nsecond line";
    WhenShown<QMessageBox>([&](QMessageBox& box) {
        EXPECT_EQ(box.objectName(), "messageBox");
        EXPECT_EQ(box.windowTitle(), "Search");
        EXPECT_EQ(box.text(), text);
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.icon(), QMessageBox::Critical);
        box.accept();
    });
    dialogs.Box(text, "Search", BoxIcon::Critical, BoxButtons::Ok);
}

TEST(MessageBox, WithoutATitleBearsTheProgramsName)
{
    DesktopDialogs dialogs;
    WhenShown<QMessageBox>([](QMessageBox& box) {
        EXPECT_EQ(box.windowTitle(), "Quillane");
        EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
        box.accept();
    });
    dialogs.Box("text", {}, BoxIcon::None, BoxButtons::Ok);
}

TEST(MessageBox, StandsOverTheActiveWindow)
{
    QWidget window;
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    DesktopDialogs dialogs;
    WhenShown<QMessageBox>([&](QMessageBox& box) {
        EXPECT_EQ(box.parentWidget(), &window);
        box.accept();
    });
    dialogs.Box("text", {}, BoxIcon::None, BoxButtons::Ok);
}

TEST(MessageBox, GoesWithItsWindowAndAnswersSafely)
{
    auto window = std::make_unique<QWidget>();
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    DesktopDialogs dialogs;
    WhenShown<QMessageBox>([&](QMessageBox&) { window.reset(); });
    EXPECT_EQ(dialogs.Box("Replace?", {}, BoxIcon::None, BoxButtons::YesNo), BoxAnswer::No);
}

TEST(MessageBox, PressOfEscThatClosesItIsUsedUpByIt)
{
    DesktopLoop loop;
    DesktopDialogs dialogs;
    WhenShown<QMessageBox>([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); });
    dialogs.Box("text", {}, BoxIcon::None, BoxButtons::Ok);
    EXPECT_FALSE(loop.PollEsc());
}

TEST(FileDialog, ReturnsTheChosenFile)
{
    const TempFolder folder;
    folder.Write("a.jpg");
    DesktopDialogs dialogs;
    WhenShown<QFileDialog>([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.objectName(), "fileDialog");
        EXPECT_EQ(dialog.windowTitle(), "Open File");
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
        EXPECT_EQ(dialog.nameFilters(), QStringList({"Pictures (*.jpg *.png)", "All Files (*)"}));
        auto* const name = dialog.findChild<QLineEdit*>("fileNameEdit");
        ASSERT_NE(name, nullptr);
        name->setText("a.jpg");
        static_cast<QDialog&>(dialog).accept();
    });
    EXPECT_EQ(
        dialogs.File({"Open File", folder.Path(), {}, "Pictures|*.jpg;*.png|All Files|*.*", false}),
        folder.Path("a.jpg"));
}

TEST(FileDialog, CancelledIsAFailure)
{
    DesktopDialogs dialogs;
    WhenShown<QFileDialog>([](QFileDialog& dialog) { static_cast<QDialog&>(dialog).reject(); });
    EXPECT_EQ(FailureOf([&] {
                  dialogs.File({"Open File", "/", {}, {}, false});
              }),
              kFailureCancelled);
}

TEST(FileDialog, SavesUnderThePrefilledNameAndAsksBeforeItReplaces)
{
    const TempFolder folder;
    DesktopDialogs dialogs;
    WhenShown<QFileDialog>([](QFileDialog& dialog) {
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
        EXPECT_FALSE(dialog.testOption(QFileDialog::DontConfirmOverwrite));
        static_cast<QDialog&>(dialog).accept();
    });
    EXPECT_EQ(dialogs.File({"Save", folder.Path(), "new.ly2", {}, true}), folder.Path("new.ly2"));
}

} // namespace quillane
