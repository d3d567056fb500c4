#include "gui/main_window_fixture.h"
#include "gui/modal_dialog.h"

#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>

namespace quillane {

namespace {

/// Chooses the menu entry and acts in the dialog as a person; ends it when the acting does not.
class ScanSourceTest : public MainWindowTest {
protected:
    void Choose(const std::function<void(QDialog&)>& act)
    {
        InDialog(
            "", [this] { Click("mnuSelectTwainSource"); }, act);
    }
    static bool Searched(QDialog& dialog)
    {
        auto* again = In<QPushButton>(dialog, "cmdLookAgain");
        return QTest::qWaitFor([&] { return again->isEnabled(); }, kWait);
    }
    void TwoScanners()
    {
        fakes.scanner.sources = {{QStringLiteral("a:0"), QStringLiteral("Maker"),
                                  QStringLiteral("One"), QStringLiteral("flatbed scanner")},
                                 {QStringLiteral("b:0"), {}, {}, {}}};
    }
};

} // namespace

TEST_F(ScanSourceTest, TheChosenSourceHoldsForTheRun)
{
    StartBare();
    TwoScanners();
    EXPECT_TRUE(Entry("mnuSelectTwainSource")->isEnabled());
    Choose([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Select Source"));
        ASSERT_TRUE(Searched(dialog));
        auto* list = In<QListWidget>(dialog, "lstSources");
        ASSERT_EQ(list->count(), 2);
        EXPECT_EQ(list->item(0)->text(), QStringLiteral("Maker One"));
        EXPECT_EQ(list->item(1)->text(), QStringLiteral("b:0"));
        EXPECT_EQ(list->currentRow(), 0);
        QTest::keyClick(list, Qt::Key_Down);
        QTest::mouseClick(In<QPushButton>(dialog, "cmdSelect"), Qt::LeftButton);
    });
    EXPECT_EQ(fakes.scanner.Selected(), QStringLiteral("b:0"));
    Choose([](QDialog& dialog) {
        ASSERT_TRUE(Searched(dialog));
        EXPECT_EQ(In<QListWidget>(dialog, "lstSources")->currentRow(), 1) << "chosen before";
        In<QListWidget>(dialog, "lstSources")->setCurrentRow(0);
        QTest::mouseClick(In<QPushButton>(dialog, "cmdCancel"), Qt::LeftButton);
    });
    EXPECT_EQ(fakes.scanner.Selected(), QStringLiteral("b:0"));
}

TEST_F(ScanSourceTest, TwoScannersOfTheSameMakeAreToldApart)
{
    StartBare();
    for (const char* name : {"usb:1", "usb:2"}) {
        fakes.scanner.sources.append(
            {QLatin1String(name), QStringLiteral("Maker"), QStringLiteral("One"), {}});
    }
    Choose([](QDialog& dialog) {
        ASSERT_TRUE(Searched(dialog));
        auto* list = In<QListWidget>(dialog, "lstSources");
        ASSERT_EQ(list->count(), 2);
        EXPECT_EQ(list->item(0)->text(), QStringLiteral("Maker One (usb:1)"));
        EXPECT_EQ(list->item(1)->text(), QStringLiteral("Maker One (usb:2)"));
        dialog.reject();
    });
}

TEST_F(ScanSourceTest, TheDialogIsThereWhileScannersAreLookedFor)
{
    StartBare();
    TwoScanners();
    fakes.scanner.waits = true;
    Choose([this](QDialog& dialog) {
        EXPECT_TRUE(In<QProgressBar>(dialog, "proSources")->isVisible());
        EXPECT_TRUE(In<QLabel>(dialog, "lblSources")->text().startsWith(QStringLiteral("Looking")));
        EXPECT_FALSE(In<QPushButton>(dialog, "cmdSelect")->isEnabled());
        EXPECT_FALSE(In<QPushButton>(dialog, "cmdLookAgain")->isEnabled());
        fakes.scanner.letGo.release();
        ASSERT_TRUE(Searched(dialog));
        EXPECT_FALSE(In<QProgressBar>(dialog, "proSources")->isVisible());
        EXPECT_TRUE(In<QPushButton>(dialog, "cmdSelect")->isEnabled());
    });
    // One that is left before there is an answer.
    Choose([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_TRUE(fakes.scanner.Selected().isEmpty());
    EXPECT_EQ(fakes.scanner.searches, 2);
}

TEST_F(ScanSourceTest, NoScannerAndAFailureAreSaidInWordsAndAnotherLookHelps)
{
    StartBare();
    Choose([this](QDialog& dialog) {
        ASSERT_TRUE(Searched(dialog));
        auto* words = In<QLabel>(dialog, "lblSources");
        EXPECT_TRUE(words->text().startsWith(QStringLiteral("No scanner was found.")));
        EXPECT_FALSE(In<QPushButton>(dialog, "cmdSelect")->isEnabled());

        fakes.scanner.trouble = QStringLiteral("Out of order.");
        QTest::mouseClick(In<QPushButton>(dialog, "cmdLookAgain"), Qt::LeftButton);
        ASSERT_TRUE(Searched(dialog));
        EXPECT_EQ(words->text(), QStringLiteral("Out of order."));

        fakes.scanner.trouble.clear();
        TwoScanners();
        QTest::mouseClick(In<QPushButton>(dialog, "cmdLookAgain"), Qt::LeftButton);
        ASSERT_TRUE(Searched(dialog));
        EXPECT_EQ(In<QListWidget>(dialog, "lstSources")->count(), 2);
        QTest::keyClick(In<QListWidget>(dialog, "lstSources"), Qt::Key_Return);
    });
    EXPECT_EQ(fakes.scanner.Selected(), QStringLiteral("a:0"));
}

TEST_F(ScanSourceTest, EveryControlIsReachedByTabAndHasAName)
{
    StartBare();
    TwoScanners();
    Choose([](QDialog& dialog) {
        ASSERT_TRUE(Searched(dialog));
        QStringList reached;
        for (int i = 0; i < 8; ++i) {
            const QWidget* focus = dialog.focusWidget();
            ASSERT_NE(focus, nullptr);
            if (!reached.contains(focus->objectName())) {
                reached.append(focus->objectName());
            }
            const auto* button = qobject_cast<const QPushButton*>(focus);
            EXPECT_FALSE(focus->accessibleName().isEmpty() && (!button || button->text().isEmpty()))
                << focus->objectName().toStdString();
            QTest::keyClick(&dialog, Qt::Key_Tab);
        }
        reached.sort();
        EXPECT_EQ(reached,
                  (QStringList{QStringLiteral("cmdCancel"), QStringLiteral("cmdLookAgain"),
                               QStringLiteral("cmdSelect"), QStringLiteral("lstSources")}));
    });
}

} // namespace quillane
