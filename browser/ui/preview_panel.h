#pragma once
#include "metadata/description.h"
#include <QHash>
#include <QImage>
#include <QPixmap>
#include <QWidget>

class QLabel;
class QPlainTextEdit;

namespace quillane {

/// The preview under the folder tree (picPreview): banner, kind icon, printed lines, the
/// picture, and the two text boxes. It shows what it is given and reads nothing itself.
class PreviewPanel : public QWidget {
    Q_OBJECT
public:
    explicit PreviewPanel(QWidget* parent = nullptr);

    /// Blanks the panel: no picture, no lines, no boxes.
    void Blank();
    /// The banner text, alone on the panel, with picture `icon` of the stock pictures.
    void ShowBanner(const QString& text, int icon);
    void ShowContent(const PanelContent& content);
    /// The current file's picture; a null one with `failure` shows why there is none.
    void ShowPicture(const QImage& picture, const QString& failure);

    /// Largest picture the panel shows, in device pixels.
    QSize PictureBox() const;
    /// Height at which every block stands where it belongs.
    static int WantedHeight();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void Place();
    QFont LineFont() const;

    QLabel* mTitle;           ///< lblPreviewTitle
    QWidget* mPictureFrame;   ///< picPreview1
    QLabel* mPicture;         ///< LEAD1
    QPlainTextEdit* mText;    ///< txtImageDescriptionTags
    QPlainTextEdit* mComment; ///< txtComment
    PanelContent mContent;
    int mIcon = 0;
    QImage mImage;
    QString mFailure;
    QVector<QRect> mLineRects; ///< where the printed lines stand now
    QRect mIconRect, mBannerRect;
};

} // namespace quillane
