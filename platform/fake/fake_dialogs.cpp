#include "platform/fake/fake_dialogs.h"

#include "core/failure.h"

namespace quillane {

BoxAnswer FakeDialogs::Box(const QString& text, const QString& title, BoxIcon icon,
                           BoxButtons buttons)
{
    mBoxes.append({text, title, icon, buttons});
    if (!mAnswers.isEmpty()) {
        return mAnswers.takeFirst();
    }
    ++mUnexpected;
    qWarning("A message box came without a scripted answer: \"%s\" \"%s\"", qPrintable(title),
             qPrintable(text));
    if (mOnUnexpected) {
        mOnUnexpected(text);
    }
    switch (buttons) {
    case BoxButtons::Ok:
        return BoxAnswer::Ok;
    case BoxButtons::YesNo:
        return BoxAnswer::No;
    default:
        return BoxAnswer::Cancel;
    }
}

QString FakeDialogs::File(const FileDialogSpec& spec)
{
    mSpecs.append(spec);
    if (mFiles.isEmpty()) {
        throw Failure(kFailureCancelled, QStringLiteral("The dialog was cancelled."));
    }
    return mFiles.takeFirst();
}

} // namespace quillane
