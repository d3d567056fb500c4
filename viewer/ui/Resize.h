#pragma once
#include <QDialog>

class QCheckBox;
class QGroupBox;
class QLabel;
class QRadioButton;
class QScrollBar;

namespace quillane {

class NumberBox;

/// The window that asks for a new size of a picture.
class Resize : public QDialog {
    Q_OBJECT
public:
    explicit Resize(QWidget* parent = nullptr);
    /// Size of the picture whose new size is asked; call before InitTheForm.
    void SetPictureSize(QSize size);
    /// Words, ranges and first values. kind: what the window is asked for; without one it is set
    /// to "Resize".
    void InitTheForm(QString& kind);
    /// Whether the person accepted, and what was chosen; method: flag of EngineInstance::Resize.
    void GetResults(bool& ok, float& width, float& height, qint32& method) const;

private:
    struct Side {
        QScrollBar* bar;
        NumberBox* box;
    };
    Side MakeSide(int number, QGroupBox*& frame);
    void WidthChanged(int width);
    void HeightChanged(int height);
    void ShowWords();

    QSize mPicture{1, 1};
    qint32 mRatio;
    bool mFollowing = false; ///< one side is set because the other was
    QGroupBox* mFrame1 = nullptr;
    QGroupBox* mFrame2 = nullptr;
    Side mWidth, mHeight;
    QCheckBox* mKeepsShape;
    QRadioButton* mPlain;
    QRadioButton* mBicubic;
    QRadioButton* mResample;
    QLabel* mWords;
};

} // namespace quillane
