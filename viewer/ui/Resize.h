#pragma once
#include <QDialog>

namespace quillane {

/// The window that asks for a new size of a picture.
class Resize : public QDialog {
    Q_OBJECT
public:
    explicit Resize(QWidget* parent = nullptr);
    /// Size of the picture whose new size is asked; call before InitTheForm.
    void SetPictureSize(QSize size);
    /// Words, ranges and first values. kind: set to what the window is asked for.
    void InitTheForm(QString& kind);
    /// Whether the person accepted, and what was chosen; method: flag of EngineInstance::Resize.
    void GetResults(bool& ok, float& width, float& height, qint32& method) const;
};

} // namespace quillane
