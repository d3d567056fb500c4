#include "core/deep_folder.h"
#include "core/temp_folder.h"
#include "gui/modal_dialog.h"
#include "gui/widgets_support.h"
#include "locator/ui/frmLocate.h"
#include "platform/fake/fake_platform.h"
#include "platform/file_list_mime.h"

#include <QClipboard>
#include <QGroupBox>
#include <QScreen>
#include <QScrollBar>
#include <gtest/gtest.h>

namespace quillane {
namespace {

class LocatorWindowTest : public testing::Test {
protected:
    LocatorWindowTest() { session.gsPath = folder.Path(); }

    void Open()
    {
        window = std::make_unique<frmLocate>(session, fakes.Services(), [this] { ++ends; });
        window->setAttribute(Qt::WA_DeleteOnClose, false);
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    template <typename Kind> Kind* Find(const char* name) const
    {
        Kind* found = window->findChild<Kind*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QPushButton* Button(const char* name) const { return Find<QPushButton>(name); }
    void Click(const char* name) const { QTest::mouseClick(Button(name), Qt::LeftButton); }
    void Type(const char* text) const
    {
        auto* edit = Find<QLineEdit>("Text1");
        edit->setFocus();
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, QString::fromUtf8(text));
    }
    void UntilRested() const
    {
        Until([this] { return !window->IsSearching(); });
    }
    void Search(const char* text) const
    {
        Type(text);
        Click("cmdAction(0)");
        UntilRested();
    }
    QStringList Rows() const
    {
        QStringList rows;
        const QAbstractItemModel* model = Find<QListView>("List1")->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            rows.append(model->index(row, 0).data().toString());
        }
        return rows;
    }
    QString Row(const QByteArray& name) const
    {
        const FileStat stat = StatPath(folder.Path(name));
        return folder.Path(name) + QStringLiteral("   %1   ").arg(stat.size)
            + fakes.loop.SystemDateText(QDateTime::fromSecsSinceEpoch(stat.modifiedSeconds));
    }
    QString Status() const { return Find<QLabel>("Status")->text(); }

    QTemporaryDir root;
    FakePlatform fakes{root.path()};
    TempFolder folder;
    Session session;
    int ends = 0; ///< how often the program would have ended
    std::unique_ptr<frmLocate> window;
};

TEST_F(LocatorWindowTest, HasItsWordsAndBeginsInTheBrowsersFolder)
{
    Open();
    EXPECT_EQ(window->windowTitle(), "Find Files");
    EXPECT_EQ(Button("cmdAction(0)")->text(), "&Find Files");
    EXPECT_EQ(Button("cmdAction(1)")->text(), "Cancel");
    EXPECT_EQ(Find<QCheckBox>("Check1(0)")->text(), "Include Sub Directories");
    EXPECT_TRUE(Find<QCheckBox>("Check1(0)")->isChecked());
    EXPECT_EQ(Find<QGroupBox>("Frame1")->title(), "Files Found");
    EXPECT_TRUE(Find<QGroupBox>("Frame1")->isVisible());
    EXPECT_EQ(Find<QAction>("mnuFileSub")->text(), "E&xit");
    EXPECT_EQ(Find<DirList>("Dir1")->Path() + u'/', folder.Path());
    EXPECT_EQ(Find<QComboBox>("Drive1")->itemData(0).toString(), "/");
    EXPECT_EQ(Find<QComboBox>("Drive1")->currentIndex(), 0);
    QStringList labels;
    for (const QLabel* label : window->findChildren<QLabel*>()) {
        labels.append(label->text());
    }
    for (const char* text : {"Search String:", "Drive to Search:", "Folders to Search:"}) {
        EXPECT_TRUE(labels.contains(QLatin1String(text))) << text;
    }
    EXPECT_EQ(Status(), QString());
    EXPECT_EQ(window->focusWidget(), Find<QLineEdit>("Text1"));
    EXPECT_FALSE(window->IsSearching());
    EXPECT_EQ(fakes.loop.HourglassDepth(), 0);
}

TEST_F(LocatorWindowTest, OpensNoLargerThanTheScreen)
{
    Open();
    const QSize room = window->screen()->availableSize();
    EXPECT_LE(window->width(), room.width());
    EXPECT_LT(window->height(), room.height());
}

TEST_F(LocatorWindowTest, TheCaptionGetsItsLetterWhenTheWindowOpens)
{
    const frmLocate closed(session, fakes.Services(), [] {});
    EXPECT_EQ(closed.findChild<QPushButton*>(QStringLiteral("cmdAction(0)"))->text(), "Find Files");
    Open();
    EXPECT_EQ(Button("cmdAction(0)")->text(), "&Find Files");
}

TEST_F(LocatorWindowTest, EachLetterOfTheKeyboardLeadsToOneControl)
{
    Open();
    ExpectOwnMnemonics(*window);
}

TEST_F(LocatorWindowTest, NamesAreShownAsTheyAreWhateverMarksAreInThem)
{
    folder.MakeFolder("<b>bold<b>");
    folder.Write("<b>bold<b>/x\n<i>1");
    folder.Write("x\xFF");
    session.gsPath = folder.Path("<b>bold<b>/");
    Open();
    EXPECT_EQ(Find<QLabel>("Status")->textFormat(), Qt::PlainText);
    auto* dirs = Find<DirList>("Dir1");
    EXPECT_EQ(dirs->currentItem()->text(0), "<b>bold<b>");
    EXPECT_TRUE(dirs->currentItem()->toolTip(0).contains(QStringLiteral("&lt;b&gt;bold")));
    Search("x*");
    ASSERT_EQ(Rows().size(), 1);
    EXPECT_TRUE(Rows().first().contains(QStringLiteral("/x\uFFFD<i>1   1   ")));
    auto* list = Find<FoundList>("List1");
    list->setFocus();
    list->setCurrentIndex(list->model()->index(0, 0));
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(fakes.launcher.opened, QStringList{folder.Path("<b>bold<b>/x\n<i>1")});
}

TEST_F(LocatorWindowTest, AFolderOfThousandsOfFoldersIsListedWhole)
{
    for (int i = 0; i < 1300; ++i) {
        folder.MakeFolder("f" + QByteArray::number(i).rightJustified(4, '0'));
    }
    Open();
    auto* dirs = Find<DirList>("Dir1");
    EXPECT_TRUE(dirs->IsReading());
    Until([dirs] { return !dirs->IsReading(); });
    const QTreeWidgetItem* own = dirs->currentItem();
    ASSERT_EQ(own->childCount(), 1300);
    for (int i = 0; i < 1300; ++i) {
        EXPECT_EQ(own->child(i)->text(0), QStringLiteral("f%1").arg(i, 4, 10, QChar(u'0')));
    }
}

TEST_F(LocatorWindowTest, AFolderDeepBelowOthersShowsTheNearestOfThem)
{
    const DeepFolder deep(1500, "d");
    session.gsPath = deep.Path();
    Open();
    auto* dirs = Find<DirList>("Dir1");
    EXPECT_EQ(dirs->Path() + u'/', deep.Path());
    EXPECT_EQ(dirs->topLevelItem(0)->text(0), "/");
    int ancestors = 0;
    for (const QTreeWidgetItem* item = dirs->currentItem(); item; item = item->parent()) {
        ++ancestors;
    }
    EXPECT_EQ(ancestors, 100);
    Search("*bottom*");
    EXPECT_EQ(Rows().size(), 1);
    EXPECT_EQ(Status(), "1  Files Found      bottom - 1");
    EXPECT_EQ(ends, 0);
}

TEST_F(LocatorWindowTest, APatternOfAnyLengthHasItsPlaceInTheStatus)
{
    folder.Write("x1");
    Open();
    const QString line = QStringLiteral("q;").repeated(10'000);
    Find<QLineEdit>("Text1")->setText(line);
    Click("cmdAction(0)");
    UntilRested();
    EXPECT_TRUE(Status().startsWith(QStringLiteral("0  Files Found      q - 0    q - 0")));
    EXPECT_EQ(Find<QLabel>("Status")->minimumSizeHint().width(), 0);
    EXPECT_FALSE(Grabbed(*window).isNull());
}

TEST_F(LocatorWindowTest, TypingEnablesTheSearch)
{
    Open();
    EXPECT_FALSE(Button("cmdAction(0)")->isEnabled());
    Type("a");
    EXPECT_TRUE(Button("cmdAction(0)")->isEnabled());
    EXPECT_FALSE(Button("cmdAction(1)")->isEnabled());
}

TEST_F(LocatorWindowTest, ListsFilesWithSizeAndDateAndCounts)
{
    folder.MakeFolder("sub");
    folder.Write("a.jpg", "12345");
    folder.Write("B.JPG", "1");
    folder.Write("sub/c.bmp", "");
    folder.Write("sub/d.txt");
    Open();
    Search("*.jpg;*.bmp");
    EXPECT_EQ(Rows(), QStringList({Row("a.jpg"), Row("B.JPG"), Row("sub/c.bmp")}));
    EXPECT_EQ(Status(), "3  Files Found      .jpg - 2    .bmp - 1");
    EXPECT_EQ(fakes.loop.HourglassBegins(), 2); // one for the empty search of the opening
    EXPECT_EQ(fakes.loop.HourglassDepth(), 0);
    EXPECT_EQ(ends, 0);
}

TEST_F(LocatorWindowTest, SubfoldersAreLeftOutWhenNotTicked)
{
    folder.MakeFolder("sub");
    folder.Write("x1");
    folder.Write("sub/x2");
    Open();
    QTest::mouseClick(Find<QCheckBox>("Check1(0)"), Qt::LeftButton, {}, QPoint(8, 8));
    ASSERT_FALSE(Find<QCheckBox>("Check1(0)")->isChecked());
    Search("x*");
    EXPECT_EQ(Rows(), QStringList{Row("x1")});
}

TEST_F(LocatorWindowTest, EnterInTheSearchStringSearches)
{
    folder.Write("x1");
    Open();
    Type("x*");
    QTest::keyClick(Find<QLineEdit>("Text1"), Qt::Key_Return);
    EXPECT_TRUE(window->IsSearching());
    EXPECT_EQ(fakes.loop.HourglassDepth(), 1);
    UntilRested();
    EXPECT_EQ(Rows(), QStringList{Row("x1")});
}

TEST_F(LocatorWindowTest, AnEmptySearchStringDoesNothingAndTheHourglassGoes)
{
    folder.Write("x1");
    Open();
    Search("x*");
    const QString before = Status();
    Type("");
    QTest::keyClick(Find<QLineEdit>("Text1"), Qt::Key_Return);
    EXPECT_FALSE(window->IsSearching());
    EXPECT_EQ(fakes.loop.HourglassDepth(), 0);
    EXPECT_TRUE(Rows().isEmpty());
    EXPECT_EQ(Status(), before);
}

TEST_F(LocatorWindowTest, AChangeOfFolderSearchesThere)
{
    folder.MakeFolder("sub");
    folder.Write("x1");
    folder.Write("sub/x2");
    Open();
    Type("x*");
    auto* dirs = Find<DirList>("Dir1");
    Until([dirs] { return !dirs->IsReading(); });
    const QList<QTreeWidgetItem*> subs =
        dirs->findItems(QStringLiteral("sub"), Qt::MatchExactly | Qt::MatchRecursive);
    ASSERT_EQ(subs.size(), 1);
    dirs->scrollToItem(subs.first());
    const QPoint at = dirs->visualItemRect(subs.first()).center();
    QTest::mouseClick(dirs->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(dirs->viewport(), Qt::LeftButton, {}, at);
    EXPECT_EQ(dirs->Path(), folder.Path("sub"));
    UntilRested();
    EXPECT_EQ(Rows(), QStringList{Row("sub/x2")});
    // With the keyboard back to the folder above.
    Until([dirs] { return !dirs->IsReading(); });
    dirs->setFocus();
    QTest::keyClick(dirs, Qt::Key_Up);
    QTest::keyClick(dirs, Qt::Key_Return);
    UntilRested();
    EXPECT_EQ(dirs->Path() + u'/', folder.Path());
    EXPECT_EQ(Rows(), QStringList({Row("x1"), Row("sub/x2")}));
}

TEST_F(LocatorWindowTest, AChangeOfDriveGoesToItsFolderAndSearchesThere)
{
    folder.MakeFolder("drive");
    folder.Write("drive/x1");
    Open();
    Type("x*");
    auto* drives = Find<QComboBox>("Drive1");
    drives->addItem(QStringLiteral("card"), folder.Path("drive"));
    drives->setFocus();
    QTest::keyClick(drives, Qt::Key_End);
    EXPECT_EQ(Find<DirList>("Dir1")->Path(), folder.Path("drive"));
    UntilRested();
    EXPECT_EQ(Rows(), QStringList{Row("drive/x1")});
}

TEST_F(LocatorWindowTest, CancelLeavesTheFoldersPathAndRestoresThePointer)
{
    for (int i = 0; i < 300; ++i) {
        folder.MakeFolder("sub" + QByteArray::number(i));
        folder.Write("sub" + QByteArray::number(i) + "/other");
    }
    Open();
    Type("x*");
    Click("cmdAction(0)");
    EXPECT_TRUE(Button("cmdAction(1)")->isEnabled());
    Click("cmdAction(1)");
    EXPECT_FALSE(window->IsSearching());
    EXPECT_EQ(fakes.loop.HourglassDepth(), 0);
    EXPECT_FALSE(Status().contains(QStringLiteral("Files Found")));
    EXPECT_TRUE(Status().isEmpty() || Status().startsWith(folder.Path()));
    EXPECT_FALSE(Button("cmdAction(1)")->isEnabled());
    EXPECT_TRUE(Button("cmdAction(0)")->isEnabled());
}

TEST_F(LocatorWindowTest, EscCancels)
{
    folder.MakeFolder("sub");
    Open();
    Type("x*");
    QTest::keyClick(Find<QLineEdit>("Text1"), Qt::Key_Return);
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_FALSE(window->IsSearching());
    EXPECT_FALSE(Status().contains(QStringLiteral("Files Found")));
}

TEST_F(LocatorWindowTest, AnExactNameIsOneRowWithoutSizeAndDate)
{
    for (const char* name : {"a", "b"}) {
        folder.MakeFolder(name);
        folder.Write(QByteArray(name) + "/abc");
    }
    Open();
    Search("abc");
    EXPECT_EQ(Rows(), QStringList{folder.Path("a/abc")});
    EXPECT_EQ(Status(), "1  Files Found      abc - 1");
}

TEST_F(LocatorWindowTest, AStarAloneFindsAll)
{
    folder.Write("a");
    folder.Write("b");
    Open();
    Search("*");
    EXPECT_EQ(Status(), "2  Files Found       - 2");
}

TEST_F(LocatorWindowTest, AStarInTheMiddleIsPlain)
{
    folder.Write("a*b");
    folder.Write("axb");
    Open();
    Search("a*b");
    EXPECT_EQ(Rows(), QStringList{folder.Path("a*b")});
    EXPECT_EQ(Status(), "1  Files Found      a*b - 1");
}

TEST_F(LocatorWindowTest, TheTailMayStandOnePlaceBeforeTheEnd)
{
    folder.Write("ax");
    folder.Write("axy");
    folder.Write("axyz");
    Open();
    Search("*x");
    EXPECT_EQ(Rows(), QStringList({Row("ax"), Row("axy")}));
}

TEST_F(LocatorWindowTest, AShortNameIsNotTestedAgainstLaterPatterns)
{
    folder.Write("a.c");
    Open();
    Search("*.jpeg;*.c");
    EXPECT_EQ(Status(), "0  Files Found      .jpeg - 0    .c - 0");
}

TEST_F(LocatorWindowTest, ExitEndsTheWholeProgram)
{
    Open();
    Find<QAction>("mnuFileSub")->trigger();
    EXPECT_EQ(ends, 1);
}

TEST_F(LocatorWindowTest, ClosingByTheFrameEndsTheWindowAlone)
{
    folder.Write("x1");
    Open();
    Type("x*");
    Click("cmdAction(0)");
    EXPECT_TRUE(window->close());
    window.reset();
    EXPECT_EQ(ends, 0);
    EXPECT_EQ(fakes.loop.HourglassDepth(), 0);
}

TEST_F(LocatorWindowTest, AFolderThatCannotBeReadEndsTheProgramWithoutAWord)
{
    session.gsPath = folder.Path("none");
    Open();
    Search("x*");
    EXPECT_EQ(ends, 1);
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
    EXPECT_EQ(fakes.loop.HourglassDepth(), 0);
}

TEST_F(LocatorWindowTest, RowsScrollAsFarAsTheWidest)
{
    folder.Write("x" + QByteArray(200, 'w'));
    folder.Write("x1");
    Open();
    Search("x*");
    auto* list = Find<FoundList>("List1");
    EXPECT_EQ(list->HorizontalExtent(), list->WidestText() * 9);
    int widest = 0;
    for (const QString& row : Rows()) {
        widest = std::max(widest, list->fontMetrics().horizontalAdvance(row));
    }
    EXPECT_GE(list->HorizontalExtent(), widest);
    EXPECT_LT(list->HorizontalExtent(), widest * 5 / 4);
    Until([list] { return list->horizontalScrollBar()->maximum() > 0; });
    EXPECT_GE(list->horizontalScrollBar()->maximum() + list->viewport()->width(), widest);
    Search("x1*");
    EXPECT_EQ(list->WidestText(), 0); // no row
}

TEST_F(LocatorWindowTest, FilesFoundAreOpenedAndCopied)
{
    folder.Write("x1");
    folder.Write("x2");
    Open();
    Search("x*");
    auto* list = Find<FoundList>("List1");
    list->setFocus();
    list->setCurrentIndex(list->model()->index(1, 0));
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(fakes.launcher.opened, QStringList{folder.Path("x2")});
    list->selectAll();
    QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(FilesOfMimeData(*QApplication::clipboard()->mimeData()),
              QStringList({folder.Path("x1"), folder.Path("x2")}));
}

TEST_F(LocatorWindowTest, TabReachesEveryControlAndEachHasASpokenName)
{
    Open();
    Type("x");
    QSet<const QWidget*> reached;
    for (int i = 0; i < 20; ++i) {
        reached.insert(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    for (const char* name : {"Text1", "Check1(0)", "cmdAction(0)", "Drive1", "Dir1", "List1"}) {
        const auto* control = Find<QWidget>(name);
        EXPECT_TRUE(reached.contains(control)) << name;
        EXPECT_FALSE(control->accessibleName().isEmpty()) << name;
    }
}

} // namespace
} // namespace quillane
