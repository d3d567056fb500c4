#pragma once
#include "platform/dialogs.h"
#include <QVector>
#include <optional>

namespace quillane {

/// Dialogs that a test answers beforehand and reads afterwards.
class FakeDialogs : public Dialogs {
public:
    struct ShownBox {
        QString text, title;
        BoxIcon icon = BoxIcon::None;
        BoxButtons buttons = BoxButtons::Ok;
    };
    /// Answers the next box that has no answer yet.
    void Answer(BoxAnswer answer) { mAnswers.append(answer); }
    /// The next file dialog returns this path; without one it is cancelled.
    void AnswerFile(const QString& path) { mFiles.append(path); }

    const QVector<ShownBox>& Boxes() const { return mBoxes; }
    const QVector<FileDialogSpec>& FileDialogs() const { return mSpecs; }
    /// Boxes that came without an answer; they were answered Ok, Cancel or No.
    int Unexpected() const { return mUnexpected; }

    BoxAnswer Box(const QString& text, const QString& title, BoxIcon icon,
                  BoxButtons buttons) override;
    QString File(const FileDialogSpec& spec) override;

private:
    QVector<BoxAnswer> mAnswers;
    QVector<QString> mFiles;
    QVector<ShownBox> mBoxes;
    QVector<FileDialogSpec> mSpecs;
    int mUnexpected = 0;
};

} // namespace quillane
