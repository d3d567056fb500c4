// Renaming: the dialog, and what the views show afterwards.
#include "browser/ui/frmRename.h"
#include "file_operations_fixture.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace quillane {

namespace {

class RenameDialogTest : public FileOperationsTest {
protected:
    /// Types a name into the dialog that a command shows.
    void Rename(const std::function<void()>& ask, const char* name)
    {
        InDialog("frmRename", ask, [&](QDialog& dialog) {
            Retype(In<QLineEdit>(dialog, "txtNewName"), name);
            QTest::mouseClick(In<QPushButton>(dialog, "cmdOK"), Qt::LeftButton);
        });
    }
    QString In(const char* name) const { return folder + QLatin1String(name); }
    using FileOperationsTest::Exists;
    template <typename Kind> static Kind* In(QDialog& dialog, const char* name)
    {
        return quillane::In<Kind>(dialog, name);
    }
};

} // namespace

TEST_F(RenameDialogTest, HoldsTheLeafNameWithItsStemSelected)
{
    StartActive(2);
    ClickCell(1);
    InDialog(
        "frmRename", [&] { Click("mnuRename"); },
        [&](QDialog& dialog) {
            auto* box = In<QLineEdit>(dialog, "txtNewName");
            EXPECT_EQ(box->text(), Name(1));
            EXPECT_EQ(box->selectedText(), QStringLiteral("p1"));
            EXPECT_EQ(dialog.focusWidget(), box);
            EXPECT_TRUE(dialog.isModal());
            ExpectNamedByTab(dialog, {"txtNewName", "cmdOK", "cmdCancel"});
        });
    EXPECT_EQ(session.gsNewName, QString());
    EXPECT_TRUE(Exists(File(1)));
}

TEST_F(RenameDialogTest, ANameThatNoFileCanHaveIsNotAccepted)
{
    StartActive(1);
    InDialog(
        "frmRename", [&] { Click("mnuRename"); },
        [&](QDialog& dialog) {
            auto* box = In<QLineEdit>(dialog, "txtNewName");
            auto* ok = In<QPushButton>(dialog, "cmdOK");
            auto* advice = In<QLabel>(dialog, "lblAdvice");
            for (const char* name : {"3/4.bmp", "../p0.bmp", ".", ".."}) {
                Retype(box, name);
                EXPECT_FALSE(ok->isEnabled()) << name;
                EXPECT_FALSE(advice->text().isEmpty()) << name;
                QTest::keyClick(box, Qt::Key_Return);
                EXPECT_TRUE(dialog.isVisible()) << name;
            }
            box->clear();
            EXPECT_FALSE(ok->isEnabled());
            Retype(box, "fine.bmp");
            EXPECT_TRUE(ok->isEnabled());
            EXPECT_TRUE(advice->text().isEmpty());
        });
    EXPECT_TRUE(Exists(File(0)));
}

TEST_F(RenameDialogTest, TheMenuEntryRenamesAndTheCellKeepsItsText)
{
    StartActive(3);
    ClickCell(1);
    Rename([&] { Click("mnuRename"); }, "new.bmp");
    EXPECT_TRUE(Exists(In("new.bmp")));
    EXPECT_FALSE(Exists(File(1)));
    EXPECT_EQ(session.gsFileName, In("new.bmp"));
    EXPECT_EQ(session.gsNewName, In("new.bmp"));
    EXPECT_EQ(session.lbFilTiffs, (QList<QString>{File(0), In("new.bmp"), File(2)}));
    EXPECT_EQ(Grid()->PathAt(1), In("new.bmp"));
    EXPECT_EQ(Grid()->TextAt(1), Name(1));
    Click("mnuRefresh");
    EXPECT_TRUE(session.lbFilTiffs.contains(In("new.bmp")));
    const int at = int(session.lbFilTiffs.indexOf(In("new.bmp")));
    EXPECT_EQ(Grid()->TextAt(at), QStringLiteral("new.bmp"));
}

TEST_F(RenameDialogTest, ThePopupEntryRebuildsTheCell)
{
    StartActive(3);
    for (const int cell : {1, 2}) { // in the middle, and the last
        ClickCell(cell);
        const QByteArray name = "new" + QByteArray::number(cell) + ".bmp";
        Rename([&] { Click("mnuPopRename"); }, name.constData());
        EXPECT_TRUE(Exists(In(name.constData())));
        EXPECT_EQ(Grid()->Count(), 3);
        EXPECT_EQ(Grid()->PathAt(cell), In(name.constData()));
        EXPECT_EQ(Grid()->TextAt(cell), QLatin1String(name));
        EXPECT_TRUE(Grid()->HasThumbnail(cell));
        EXPECT_TRUE(Grid()->IsSelected(cell));
        EXPECT_EQ(Grid()->Current(), cell);
        EXPECT_EQ(session.lbFilTiffs.at(cell), In(name.constData()));
    }
}

TEST_F(RenameDialogTest, LargeIconsShowTheNewNameAndTheOtherStylesKeepTheOldUntilAScan)
{
    StartActive(2);
    const std::pair<const char*, bool> views[] = {{"mnuMainViewTileBoxTileFilename", true},
                                                  {"mnuMainViewTileBoxTileFilename1", false},
                                                  {"mnuMainViewTileBoxTileFilename2", false},
                                                  {"mnuMainViewTileBoxTileFilename3", false}};
    for (const char* entry : {"mnuRename", "mnuPopRename"}) {
        for (const auto& [view, shows] : views) {
            Click(view);
            ClickRow(0);
            const QString old = List()->TextAt(0, kColumnName);
            const QByteArray name = "0" + QByteArray(entry) + view + ".bmp";
            Rename([&, what = entry] { Click(what); }, name.constData());
            EXPECT_TRUE(Exists(In(name.constData()))) << view;
            EXPECT_EQ(List()->TextAt(0, kColumnName), shows ? QLatin1String(name) : old) << view;
            EXPECT_EQ(List()->PathAt(0), In(name.constData())) << view;
            Click("mnuRefresh");
            const int at = int(session.lbFilTiffs.indexOf(In(name.constData())));
            EXPECT_EQ(List()->TextAt(at, kColumnName), QLatin1String(name)) << view;
        }
    }
}

TEST_F(RenameDialogTest, F2AsksAndEnterAccepts)
{
    StartActive(2);
    ClickCell(0);
    InDialog(
        "frmRename", [&] { Key(Qt::Key_F2); },
        [&](QDialog& dialog) {
            // The stem is selected: typing leaves the extension.
            QTest::keyClicks(dialog.focusWidget(), QStringLiteral("flower"));
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        });
    EXPECT_TRUE(Exists(In("flower.bmp")));
    EXPECT_EQ(session.lbFilTiffs.first(), In("flower.bmp"));
}

TEST_F(RenameDialogTest, EveryWayOutButOkRenamesNothing)
{
    StartActive(1);
    ClickCell(0);
    for (int way = 0; way < 3; ++way) {
        session.gsNewName = QStringLiteral("left over");
        InDialog(
            "frmRename", [&] { Click("mnuRename"); },
            [&](QDialog& dialog) {
                Retype(In<QLineEdit>(dialog, "txtNewName"), "other.bmp");
                if (way == 0) {
                    QTest::mouseClick(In<QPushButton>(dialog, "cmdCancel"), Qt::LeftButton);
                } else if (way == 1) {
                    QTest::keyClick(&dialog, Qt::Key_Escape);
                } else {
                    dialog.close();
                }
            });
        EXPECT_EQ(session.gsNewName, QString()) << way;
        EXPECT_TRUE(Exists(File(0))) << way;
        EXPECT_FALSE(Exists(In("other.bmp"))) << way;
    }
}

TEST_F(RenameDialogTest, ANameThatIsTakenIsAskedAbout)
{
    StartActive(2);
    const QByteArray other = ReadWholeFile(File(1), 1 << 20);
    WriteWholeFile(File(0), "BM the first");
    ClickCell(0);
    for (const char* button : {"cmdNo", "cmdYes"}) {
        // The box comes when the dialog has gone.
        Answer([&] { Rename([&] { Click("mnuRename"); }, "p1.bmp"); }, button);
        if (qstrcmp(button, "cmdNo") == 0) {
            EXPECT_EQ(ReadWholeFile(File(1), 1 << 20), other);
            EXPECT_TRUE(Exists(File(0)));
            EXPECT_EQ(session.lbFilTiffs, (QList<QString>{File(0), File(1)}));
            EXPECT_EQ(session.gsFileName, File(0));
        }
    }
    EXPECT_FALSE(Exists(File(0)));
    EXPECT_EQ(ReadWholeFile(File(1), 1 << 20), "BM the first");
    EXPECT_EQ(session.gsFileName, File(1));
}

TEST_F(RenameDialogTest, ARenameThatFailsSaysWhyAndChangesNothing)
{
    StartActive(2);
    ClickCell(0);
    ASSERT_TRUE(RemoveFile(File(0)));
    Rename([&] { Click("mnuRename"); }, "new.bmp");
    EXPECT_EQ(session.lbFilTiffs.first(), File(0));
    EXPECT_EQ(session.gsFileName, File(0));
    EXPECT_TRUE(Line().contains(QStringLiteral("\"p0.bmp\""))) << Line().toStdString();
}

TEST_F(RenameDialogTest, AFileOfASubFolderStaysInIt)
{
    StartActive(1);
    MakeFolder(In("sub"));
    Picture(QStringLiteral("sub/deep.bmp"));
    ASSERT_TRUE(Exists(In("sub/deep.bmp")));
    session.lbFilTiffs.append(In("sub/deep.bmp"));
    session.gsFileName = In("sub/deep.bmp");
    session.gImageListIndex = 1;
    Rename([&] { Click("mnuRename"); }, "new.bmp");
    EXPECT_TRUE(Exists(In("sub/new.bmp")));
    EXPECT_FALSE(Exists(In("new.bmp")));
    EXPECT_EQ(session.gsFileName, In("sub/new.bmp"));
    EXPECT_EQ(session.lbFilTiffs.last(), In("sub/new.bmp"));
}

TEST_F(RenameDialogTest, ANameThatIsNoTextStaysAsItIsWhereNobodyTypes)
{
    const QByteArray odd = BytesFromPath(folder) + "a\xff\n.bmp";
    Picture(Name(0));
    ASSERT_EQ(rename(BytesFromPath(File(0)).constData(), odd.constData()), 0);
    Start();
    session.gsFileName = PathFromBytes(odd);
    frmRename dialog(session);
    dialog.show();
    auto* box = In<QLineEdit>(dialog, "txtNewName");
    QTest::keyClick(box, Qt::Key_Home);
    QTest::keyClicks(box, QStringLiteral("b"));
    dialog.accept();
    EXPECT_EQ(BytesFromPath(session.gsNewName), BytesFromPath(folder) + "ba\xff\n.bmp");
    EXPECT_EQ(unlink(odd.constData()), 0); // the toolkit's temporary folder cannot
}

} // namespace quillane
