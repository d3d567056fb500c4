#pragma once
// What the dialogs for opening and saving a picture have in common: the toolkit's file dialog with
// a panel beside it, in which a small picture is shown.
#include <QCoreApplication>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace quillane {

/// A picture in a frame, on a pattern of squares where it is clear.
class PreviewWell : public QLabel {
    Q_DECLARE_TR_FUNCTIONS(quillane::PreviewWell)
public:
    explicit PreviewWell(QWidget* parent = nullptr);
    /// Shows an image whose pixels are those of the screen; a null one blanks the frame.
    void ShowImage(const QImage& image);
    /// Room for an image, in pixels of the screen.
    QSize Box() const;
};

/// The toolkit's file dialog with room for a panel at its right and a line for a hint.
class FileDialogWithPanel : public QFileDialog {
    Q_DECLARE_TR_FUNCTIONS(quillane::FileDialogWithPanel)
public:
    FileDialogWithPanel(QWidget* owner, const QString& title, const QString& folder);
    ~FileDialogWithPanel() override;
    /// The path that the name in the dialog stands for; empty without a name.
    QString Target() const;

protected:
    QVBoxLayout& Panel() { return *mPanel; }
    QLineEdit& NameEdit() { return *mName; }
    PreviewWell& Well() { return *mWell; }
    QLabel& Words() { return *mWords; }
    /// Words below the names; empty text takes them away.
    void Hint(const QString& words);
    /// Leaves more room for the names in the list.
    void HideDates();
    /// Goes into the folder that the name stands for; false when it is none.
    bool EnterFolder(const QString& path);
    /// Has Tab go through the panel's controls behind those of the dialog, in this order.
    void OrderTabs(const QList<QWidget*>& controls);

private:
    void Arrange();

    QByteArray mHeaderBefore; ///< the list's columns as the toolkit had them
    QLineEdit* mName;
    QVBoxLayout* mPanel;
    PreviewWell* mWell;
    QLabel* mWords;
    QLabel* mHint;
};

} // namespace quillane
