#pragma once
#include "album/album_picture.h"
#include "widgets/background_jobs.h"
#include "widgets/ui/engine_view.h"
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QWidget>
#include <memory>

namespace quillane {

/// Picture, facts and description of the album's current file. Files are read on another thread;
/// only the newest is shown.
class AlbumPreviewPane : public QWidget {
    Q_OBJECT
public:
    explicit AlbumPreviewPane(QWidget* parent = nullptr);
    ~AlbumPreviewPane() override;

    /// Shows a file, or the not-found state when it is not there.
    void Preview(const QString& path);
    /// LEAD1 hidden, the format emptied, the size reads "File Not Found!".
    void ShowNotFound();
    /// Hides the picture and empties the facts.
    void Blank();
    /// Hides the picture; what is on its way is shown all the same.
    void HidePicture() { mView->hide(); }
    bool IsReading() const { return mCancel != nullptr; } ///< a file is on its way

Q_SIGNALS:
    /// A file is there but cannot be shown, and why.
    void Unreadable(const QString& words);

private:
    void Drop();
    void Take(const AlbumPicture& picture);

    EngineView* mView;                          ///< LEAD1
    QLineEdit* mSize;                           ///< txtImageSize
    QLineEdit* mFormat;                         ///< txtImageFormat
    QLabel* mTitle;                             ///< Label1
    QPlainTextEdit* mTags;                      ///< txtTags
    std::shared_ptr<std::atomic<bool>> mCancel; ///< of the file on its way
    BackgroundJobs mJobs;
};

} // namespace quillane
