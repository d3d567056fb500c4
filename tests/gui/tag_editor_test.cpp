#include "imaging/comments/slots.h"
#include "imaging/worker/worker_host.h"
#include "main_window_fixture.h"
#include "metadata/ui/frmToolTagEdit.h"
#include "platform/fake/fake_platform.h"

#include <QGroupBox>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace quillane {
namespace {

class TagEditorTest : public testing::Test {
protected:
    TagEditorTest() : fakes(root.path() + QStringLiteral("/home"))
    {
        worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 1);
        session.gsAppTitle = QStringLiteral("Quillane");
    }
    /// A copy of a sample picture becomes the current file.
    void Take(const QString& sample, const QString& name = {})
    {
        session.gsFileName = root.filePath(name.isEmpty() ? sample : name);
        WriteWholeFile(session.gsFileName, ReadWholeFile(Sample(sample), 1 << 26));
    }
    static QString Sample(const QString& name)
    {
        return QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/") + name;
    }
    void Open()
    {
        window = std::make_unique<frmToolTagEdit>(session, fakes.Services(loop));
        window->setAttribute(Qt::WA_DeleteOnClose, false);
        window->show();
    }
    template <typename Kind> Kind* Find(const char* name) const
    {
        Kind* found = window->findChild<Kind*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QPlainTextEdit* Text() const { return Find<QPlainTextEdit>("txtTags"); }
    void Press(const char* name) const
    {
        QTest::mouseClick(Find<QPushButton>(name), Qt::LeftButton);
    }
    QByteArray Bytes() const { return ReadWholeFile(session.gsFileName, 1 << 26); }
    QString Description() const
    {
        const CommentSet set = ReadComments(session.gsFileName);
        const CommentValue& value = set.At(kDescriptionSlot);
        return value.IsEmpty() ? QString() : value.Text();
    }

    QTemporaryDir root;
    FakePlatform fakes;
    DesktopLoop loop;
    Session session;
    std::unique_ptr<frmToolTagEdit> window;
};

TEST_F(TagEditorTest, OpensNoLargerThanTheScreen)
{
    Take(QStringLiteral("AST_0101.JPG"));
    Open();
    const QSize room = window->screen()->availableSize();
    EXPECT_LE(window->width(), room.width());
    EXPECT_LT(window->height(), room.height());
}

TEST_F(TagEditorTest, ShowsTheDescriptionBesideThePicture)
{
    Take(QStringLiteral("AST_0101.JPG"));
    Open();
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Quillane  Edit Photo Metadata Tool"));
    EXPECT_EQ(Find<QLineEdit>("txtPreviewFile")->text(), session.gsFileName);
    EXPECT_TRUE(Text()->toPlainText().startsWith(QStringLiteral("Name=Tarn at noon\n")));
    EXPECT_TRUE(Find<EngineView>("LEAD1")->HasImage());
    EXPECT_EQ(Find<EngineView>("LEAD1")->PaintSizeMode(), 3);
    EXPECT_EQ(Find<QGroupBox>("Frame1")->title(), QStringLiteral("Photo Preview"));
    EXPECT_EQ(Find<QGroupBox>("Frame2")->title(), QStringLiteral("Photo Metadata Text Editor"));
    EXPECT_EQ(Find<QPushButton>("cmdAddTag")->text(), QStringLiteral("&Updata Metadata"));
    EXPECT_EQ(Find<QPushButton>("cmdAddTagClose")->text(), QStringLiteral("&Done"));
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(TagEditorTest, AFileThatCannotCarryTagsGetsTheMessageAndAnEmptyEditor)
{
    Take(QStringLiteral("chart.BMP"));
    fakes.dialogs.Answer(BoxAnswer::Ok);
    const QByteArray before = Bytes();
    Open();
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_EQ(fakes.dialogs.Boxes().first().text,
              QStringLiteral("Phot file type does not support Metadata"));
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(Text()->toPlainText(), QString());
    Text()->setPlainText(QStringLiteral("A=1"));
    window->UpdateMetadata();
    EXPECT_EQ(Bytes(), before);
}

TEST_F(TagEditorTest, DoneWithoutAnUpdateLeavesTheFileUntouched)
{
    Take(QStringLiteral("AST_0101.JPG"));
    const QByteArray before = Bytes();
    Open();
    Text()->appendPlainText(QStringLiteral("City=Rome"));
    Press("cmdAddTagClose");
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(Bytes(), before);
}

TEST_F(TagEditorTest, AnUpdateOfAJpegEncodesItAnewWithTheQualityOfTheProgram)
{
    qint64 sizes[2] = {};
    for (const qint32 quality : {2, 200}) {
        session.jpegQuality = quality;
        Take(QStringLiteral("AST_0101.JPG"));
        const CommentSet before = ReadComments(session.gsFileName);
        Open();
        Text()->setPlainText(QStringLiteral("Name=Ann\nCity=Rome\n"));
        Press("cmdAddTag");
        EXPECT_EQ(fakes.dialogs.Boxes().size(), 0);
        EXPECT_EQ(Description(), QStringLiteral("Name=Ann\r\nCity=Rome\r\n"));
        const CommentSet after = ReadComments(session.gsFileName);
        for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
            if (slot != kDescriptionSlot) {
                EXPECT_EQ(after.At(slot), before.At(slot)) << slot;
            }
        }
        sizes[quality == 2 ? 0 : 1] = Bytes().size();
    }
    EXPECT_GT(sizes[0], sizes[1]);
}

TEST_F(TagEditorTest, EveryKindOfFileThatCarriesTagsTakesANewText)
{
    for (const char* sample : {"AST_0101.JPG", "CHART.TIF", "sunrise.gif", "petals.png"}) {
        Take(QLatin1String(sample));
        const ImageFacts before = ProbeFile(session.gsFileName);
        Open();
        for (int round = 0; round < 3; ++round) {
            Text()->setPlainText(
                QStringLiteral("Round=%1\nPlace=Zürich \u05d0\u05d1\n").arg(round));
            Press("cmdAddTag");
        }
        EXPECT_EQ(fakes.dialogs.Boxes().size(), 0) << sample;
        EXPECT_EQ(Description(), QStringLiteral("Round=2\r\nPlace=Zürich \u05d0\u05d1\r\n"))
            << sample;
        const ImageFacts after = ProbeFile(session.gsFileName);
        EXPECT_EQ(after.format, before.format) << sample;
        EXPECT_EQ(after.width, before.width) << sample;
        EXPECT_EQ(after.bits, before.bits) << sample;
        EXPECT_EQ(after.pages, before.pages) << sample;
    }
}

TEST_F(TagEditorTest, ATextThatWasNotReadFromTheFileIsNotWrittenIntoIt)
{
    session.gsFileName = root.filePath(QStringLiteral("broken.jpg"));
    WriteWholeFile(session.gsFileName, "no picture at all");
    fakes.dialogs.Answer(BoxAnswer::Ok);
    Open();
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
    Text()->setPlainText(QStringLiteral("A=1"));
    EXPECT_THROW(window->UpdateMetadata(), Failure);
    EXPECT_EQ(Bytes(), QByteArray("no picture at all"));
}

TEST_F(TagEditorTest, UpdateAndCloseWritesAndCloses)
{
    Take(QStringLiteral("petals.png"));
    Open();
    Text()->setPlainText(QStringLiteral("A=1"));
    window->UpdateAndClose();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(Description(), QStringLiteral("A=1"));
}

TEST_F(TagEditorTest, TheEmptyMembersDoNothing)
{
    Take(QStringLiteral("petals.png"));
    const QByteArray before = Bytes();
    Open();
    window->OpenTiffAppend(session.gsFileName);
    window->CloseTiffAppend();
    EXPECT_EQ(Bytes(), before);
}

TEST_F(TagEditorTest, EveryControlIsReachedByTabAndHasAName)
{
    Take(QStringLiteral("petals.png"));
    Open();
    QSet<QString> reached;
    for (int i = 0; i < 12; ++i) {
        if (QWidget* focus = window->focusWidget()) {
            EXPECT_FALSE(focus->accessibleName().isEmpty()) << focus->objectName().toStdString();
            reached.insert(focus->objectName());
        }
        QTest::keyClick(window.get(), Qt::Key_Tab);
    }
    for (const char* name : {"txtPreviewFile", "txtTags", "cmdAddTag", "cmdAddTagClose"}) {
        EXPECT_TRUE(reached.contains(QLatin1String(name))) << name;
    }
}

TEST_F(MainWindowTest, TheTagEditorOpensFromThePopupForTheCurrentFile)
{
    Picture(QStringLiteral("one.png"), {8, 6}, "PNG");
    Start();
    QString caption;
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, &answer, [&] {
        if (auto* dialog = qobject_cast<QDialog*>(windows.Loaded(QStringLiteral("frmToolTagEdit")));
            dialog && dialog->isVisible()) {
            caption = dialog->windowTitle();
            dialog->reject();
        }
    });
    answer.start(5);
    Click("mnuPopEditTags");
    EXPECT_EQ(caption, QStringLiteral("Quillane  Edit Photo Metadata Tool"));
    EXPECT_EQ(windows.Loaded(QStringLiteral("frmToolTagEdit")), nullptr);
}

} // namespace
} // namespace quillane
