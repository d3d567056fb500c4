#pragma once
#include "core/session.h"
#include "imaging/engine.h"
#include "metadata/tag_writer.h"
#include "platform/platform.h"
#include "widgets/ui/engine_view.h"
#include <QDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace quillane {

/// The tag editor: the whole description of the current image as plain text beside its picture.
class frmToolTagEdit : public QDialog {
    Q_OBJECT
public:
    frmToolTagEdit(Session& session, Platform platform, QWidget* parent = nullptr);

    /// Does nothing; kept for its callers.
    void OpenTiffAppend(const QString&) { }
    /// Does nothing; kept for its callers.
    void CloseTiffAppend() { }
    /// The text as it would be written: lines end in CR LF.
    QString GetTagText() const;
    /// Writes the text to the file. Failure when it cannot be written or was never read from it.
    void UpdateMetadata();
    /// UpdateMetadata, then closes the window.
    void UpdateAndClose();
    /// Loads the current file into the window. Failure when it cannot be read.
    void LoadFile();

    void setVisible(bool visible) override;
    void reject() override;

private:
    void LoadForm();
    void Build();
    void SetBusy(bool busy);

    Session& mSession;
    Platform mPlatform;
    EngineInstance LEAD1;
    ResaveSettings mSettings;
    QString mFile; ///< that the window was loaded with
    bool mFormLoaded = false;
    bool mTextRead = false; ///< txtTags was filled from the file
    bool mBusy = false;
    QLineEdit* txtPreviewFile;
    EngineView* mView;
    QPlainTextEdit* txtTags;
    QPushButton* cmdAddTag;
    QPushButton* cmdAddTagClose;
};

} // namespace quillane
