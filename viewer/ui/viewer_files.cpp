// The viewer's roads to and from files, scanner and printer.
#include "viewer/ui/frmToolImageDisplay.h"

#include "core/paths.h"
#include "imaging/acquire.h"
#include "platform/run_aside.h"
#include "viewer/ui/picture_file_dialogs.h"
#include "widgets/ui/scan_settings_dialog.h"
#include "widgets/ui/scan_source_dialog.h"

namespace quillane {

void frmToolImageDisplay::OpenImage()
{
    const QPointer<frmToolImageDisplay> self(this);
    const QString path =
        FileOpenDialog(this, QStringLiteral("Open File"),
                       mHeld.file.isEmpty() ? mSession.gsPath : FolderOf(mHeld.file));
    if (!self || path.isEmpty() || !MayLeave() || !self) {
        return;
    }
    mHeld.file = path;
    LoadImage();
}

bool frmToolImageDisplay::MayLeave()
{
    if (!IsChanged()) {
        return true;
    }
    const BoxAnswer answer = mPlatform.dialogs.Box(
        tr("\"%1\" has changes that are not saved. Save them now?").arg(LeafName(mHeld.file)),
        mSession.gsAppTitle, BoxIcon::Question, BoxButtons::YesNoCancel);
    if (answer == BoxAnswer::Yes) {
        return TrySave();
    }
    return answer == BoxAnswer::No;
}

void frmToolImageDisplay::SaveImage()
{
    TrySave();
}

void frmToolImageDisplay::SaveImageAs()
{
    TrySaveAs();
}

void frmToolImageDisplay::GatherTexts()
{
    mHeld.tags = mPage->Tags();
    mHeld.tagsRead = mPage->TagsRead();
    mHeld.general = mPage->General();
    mHeld.generalRead = mPage->GeneralRead();
}

void frmToolImageDisplay::Saving(const std::function<void(EngineInstance&, ViewerPicture&)>& work)
{
    GatherTexts();
    const auto held = std::make_shared<ViewerPicture>(mHeld);
    OnCopy([&](EngineInstance& lead) { work(lead, *held); });
    mHeld = *held;
    mPage->SetDateCreated(mHeld.general.txtDateCreated);
    CountAsSaved();
}

bool frmToolImageDisplay::TrySave()
{
    if (mHeld.file.isEmpty()) {
        return TrySaveAs();
    }
    if (LEAD1.HasBitmap() && !LEAD1.Loaded() && StatPath(mHeld.file).type != FileType::Missing
        && mPlatform.dialogs.Box(tr("The picture in the window did not come from \"%1\". Replace "
                                    "that file by it?")
                                     .arg(LeafName(mHeld.file)),
                                 mSession.gsAppTitle, BoxIcon::Warning, BoxButtons::YesNo)
            != BoxAnswer::Yes) {
        return false;
    }
    bool saved = false;
    const QPointer<frmToolImageDisplay> self(this);
    Try([&] {
        Saving([this](EngineInstance& lead, ViewerPicture& held) {
            quillane::SaveImage(lead, held, mPlatform.loop);
        });
        saved = true;
    });
    if (saved && self) {
        AfterSave(mHeld.file);
    }
    return saved;
}

bool frmToolImageDisplay::TrySaveAs()
{
    bool saved = false;
    const QPointer<frmToolImageDisplay> self(this);
    SaveDialogChoice choice;
    Try([&] {
        SaveDialogStart start;
        start.title = QStringLiteral("Save File");
        start.filter = QStringLiteral("All Files|*.*");
        start.folder = mSession.gsPath;
        start.fileName = mHeld.file;
        start.format = mHeld.format;
        start.bits = mHeld.bits;
        start.quality = mSession.jpegQuality;
        start.picture = LEAD1.Bitmap();
        choice = FileSaveDialog(this, start);
        if (!self || choice.file.isEmpty()) {
            return;
        }
        Saving([this, choice](EngineInstance& lead, ViewerPicture& held) {
            quillane::SaveImageAs(lead, held, choice, mPlatform.loop);
        });
        saved = true;
    });
    if (saved && self) {
        AfterSave(choice.file);
    }
    return saved;
}

void frmToolImageDisplay::AfterSave(const QString& file)
{
    if (file == mHeld.file) {
        mStat = StatPath(file);
    }
    Tell(tr("Saved: %1").arg(file));
    if (mHost && file == mSession.gsFileName) {
        mHost->UpdateImageInImageList();
    }
}

void frmToolImageDisplay::Print()
{
    const auto path = std::make_shared<QString>();
    const auto held = std::make_shared<ViewerPicture>(mHeld);
    OnCopy([this, path, held](EngineInstance& lead) {
        *path = SavePrintCopy(lead, *held, mPlatform.places);
    });
    Tell(tr("The copy to print is ready. %1").arg(NotYetTip(tr("Print"))));
}

void frmToolImageDisplay::AcquireTwain()
{
    if (mBusy > 0) {
        mAcquireWanted = true;
        return;
    }
    const QPointer<frmToolImageDisplay> self(this);
    Try([&] {
        const auto copy = std::make_shared<EngineInstance>(LEAD1);
        const BusyScope busy(*this);
        AcquireHooks hooks;
        hooks.ask = [self](const ScanChoices& choices, ScanWishes& wishes) {
            return self && AskScanWishes(self, choices, wishes);
        };
        hooks.progress = [self](double part) {
            if (!self || self->mCloseWanted) {
                throw Failure(kFailureCancelled, QStringLiteral("The window is gone."));
            }
            self->mProgress->setRange(0, part < 0 ? 0 : 100);
            self->mProgress->setValue(int(part * 100));
        };
        const auto steady = [self] {
            if (self) {
                self->mProgress->setRange(0, 0);
            }
        };
        try {
            TwainAcquire(*copy, mPlatform.scanner, mPlatform.loop, hooks);
        } catch (const Failure&) {
            steady();
            throw;
        }
        steady();
        if (self) {
            LEAD1 = std::move(*copy);
            ShowPicture();
        }
    });
}

void frmToolImageDisplay::SelectTwainSource()
{
    ChooseScanSource(mPlatform.scanner, this);
}

} // namespace quillane
