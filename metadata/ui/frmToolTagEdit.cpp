#include "metadata/ui/frmToolTagEdit.h"

#include "core/file_kinds.h"
#include "core/paths.h"
#include "core/strings.h"
#include "imaging/comments/slots.h"
#include "platform/run_aside.h"
#include "platform/ui/command_connector.h"
#include "platform/ui/window_room.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QSplitter>
#include <QVBoxLayout>

namespace quillane {

namespace {

constexpr QSize kTagEditSize(820, 520); // logical pixels

} // namespace

frmToolTagEdit::frmToolTagEdit(Session& session, Platform platform, QWidget* parent)
    : QDialog(parent),
      mSession(session),
      mPlatform(platform),
      txtPreviewFile(new QLineEdit),
      mView(new EngineView),
      txtTags(new QPlainTextEdit),
      cmdAddTag(new QPushButton(QStringLiteral("&Updata Metadata"))),
      cmdAddTagClose(new QPushButton(QStringLiteral("&Done")))
{
    setObjectName(QStringLiteral("frmToolTagEdit"));
    setModal(true);
    setAttribute(Qt::WA_DeleteOnClose);
    Build();
    ConnectCommand(cmdAddTag, &QPushButton::clicked, this, mPlatform.dialogs,
                   [this] { UpdateMetadata(); });
    connect(cmdAddTagClose, &QPushButton::clicked, this, &frmToolTagEdit::reject);
}

void frmToolTagEdit::Build()
{
    const auto name = [](QWidget* widget, const char* object, const QString& spoken) {
        widget->setObjectName(QLatin1String(object));
        widget->setAccessibleName(spoken);
    };
    name(txtPreviewFile, "txtPreviewFile", tr("File"));
    txtPreviewFile->setReadOnly(true);
    name(mView, "LEAD1", tr("Picture"));
    mView->SetPaintSizeMode(EngineView::kPaintFit);
    mView->setMinimumSize(160, 120);
    name(txtTags, "txtTags", tr("Metadata text"));
    txtTags->setTabChangesFocus(true);
    name(cmdAddTag, "cmdAddTag", tr("Update metadata"));
    name(cmdAddTagClose, "cmdAddTagClose", tr("Done"));
    cmdAddTag->setAutoDefault(false);
    cmdAddTagClose->setAutoDefault(false);

    auto* preview = new QGroupBox(QStringLiteral("Photo Preview"));
    preview->setObjectName(QStringLiteral("Frame1"));
    auto* previewLayout = new QVBoxLayout(preview);
    previewLayout->addWidget(txtPreviewFile);
    previewLayout->addWidget(mView, 1);
    auto* editor = new QGroupBox(QStringLiteral("Photo Metadata Text Editor"));
    editor->setObjectName(QStringLiteral("Frame2"));
    auto* editorLayout = new QVBoxLayout(editor);
    editorLayout->addWidget(txtTags);

    auto* halves = new QSplitter;
    halves->setChildrenCollapsible(false);
    halves->addWidget(preview);
    halves->addWidget(editor);
    halves->setStretchFactor(0, 1);
    halves->setStretchFactor(1, 1);
    halves->setSizes({kTagEditSize.width() / 2, kTagEditSize.width() / 2});
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdAddTag);
    buttons->addWidget(cmdAddTagClose);
    auto* all = new QVBoxLayout(this);
    all->addWidget(halves, 1);
    all->addLayout(buttons);
    resize(kTagEditSize.boundedTo(WindowRoom(*this)));
    txtTags->setFocus();
}

void frmToolTagEdit::setVisible(bool visible)
{
    if (visible && !mFormLoaded) {
        mFormLoaded = true;
        RunCommand(mPlatform.dialogs, [this] { LoadForm(); });
    }
    QDialog::setVisible(visible);
}

void frmToolTagEdit::LoadForm()
{
    setWindowTitle(mSession.gsAppTitle + QStringLiteral("  Edit Photo Metadata Tool"));
    if (IsImageFile(mSession.gsFileName) != kTrue) {
        mPlatform.dialogs.Box(QStringLiteral("Phot file type does not support Metadata"),
                              mSession.gsAppTitle);
    }
    LoadFile();
}

void frmToolTagEdit::LoadFile()
{
    mFile = mSession.gsFileName;
    txtPreviewFile->setText(mFile); // the end of a long path is in sight
    txtPreviewFile->setToolTip(mFile);
    mTextRead = false;
    txtTags->clear();
    if (IsImageFile(mFile) != kTrue) {
        return;
    }
    const Hourglass busy(mPlatform.loop);
    QString text;
    SetBusy(true);
    try {
        RunAside(mPlatform.loop, [&] {
            LEAD1.Load(mFile, 0, 0);
            LEAD1.Comments().Revalidate();
            const CommentValue description = LEAD1.ReadComment(mFile, 0, kDescriptionSlot);
            text = description.IsEmpty() ? QString() : description.Text();
        });
    } catch (...) {
        SetBusy(false);
        throw;
    }
    SetBusy(false);
    mSettings.mode = 0;
    mSettings.quality = mSession.jpegQuality;
    mSettings.format = LEAD1.InfoFormat();
    mSettings.bits = LEAD1.InfoBits();
    mView->Show(LEAD1);
    txtTags->setPlainText(text.isEmpty() ? text : NormaliseLineEnds(text));
    mTextRead = true;
}

QString frmToolTagEdit::GetTagText() const
{
    return txtTags->toPlainText().replace(u'\n', QStringLiteral("\r\n"));
}

void frmToolTagEdit::UpdateMetadata()
{
    if (IsImageFile(mFile) != kTrue) {
        return;
    }
    if (!mTextRead) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("The description of \"%1\" could not be read, so nothing is "
                                     "written into it.")
                          .arg(LeafName(mFile)));
    }
    const Hourglass busy(mPlatform.loop);
    const QString text = GetTagText();
    SetBusy(true);
    try {
        RunAside(mPlatform.loop, [&] { WriteTagText(LEAD1, mFile, text, mSettings); });
    } catch (...) {
        SetBusy(false);
        throw;
    }
    SetBusy(false);
}

void frmToolTagEdit::UpdateAndClose()
{
    UpdateMetadata();
    reject();
}

void frmToolTagEdit::SetBusy(bool busy)
{
    mBusy = busy;
    const bool carries = IsImageFile(mFile) == kTrue;
    cmdAddTag->setEnabled(!busy && carries);
    cmdAddTagClose->setEnabled(!busy);
    txtTags->setReadOnly(busy || !carries);
}

void frmToolTagEdit::reject()
{
    // Nothing that a running save uses goes away under it.
    if (!mBusy) {
        QDialog::reject();
    }
}

} // namespace quillane
