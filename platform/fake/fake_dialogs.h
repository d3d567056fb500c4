#pragma once
#include "platform/dialogs.h"
#include <QVector>
#include <functional>

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
    /// Boxes that came without an answer; they were answered Ok, Cancel or No, and complained
    /// of on the standard error output.
    int Unexpected() const { return mUnexpected; }
    /// Runs with the text of such a box: a test lets itself fail here.
    void OnUnexpected(std::function<void(const QString&)> tell) { mOnUnexpected = std::move(tell); }
    /// Answers that no box or file dialog has asked for yet.
    qsizetype AnswersLeft() const { return mAnswers.size() + mFiles.size(); }

    BoxAnswer Box(const QString& text, const QString& title, BoxIcon icon,
                  BoxButtons buttons) override;
    QString File(const FileDialogSpec& spec) override;

private:
    QVector<BoxAnswer> mAnswers;
    QVector<QString> mFiles;
    QVector<ShownBox> mBoxes;
    QVector<FileDialogSpec> mSpecs;
    std::function<void(const QString&)> mOnUnexpected;
    int mUnexpected = 0;
};

} // namespace quillane
