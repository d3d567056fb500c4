#include "browser/preferences.h"

#include "core/numbers.h"

namespace quillane {

QString PreferencesCaption(const QString& appTitle)
{
    return appTitle + QStringLiteral("  Preferences");
}

PreferencesForm LoadPreferences(const Session& session, const PreferencesTarget& target)
{
    PreferencesForm form;
    form.txtKeyword = session.gsFileKeyword;
    form.txtThumbX = TextOf(qint32(session.gThumbnailWidth));
    form.txtThumbY = TextOf(qint32(session.gThumbnailHeight));
    form.txtJPEGValue = TextOf(session.jpegQuality);
    form.optVideoTool = session.gsVideoTool == 0 ? 0 : 1;
    form.chkGridlines = target.GridLines();
    form.chkSorted = target.Sorted();
    form.chkSubDirectory = target.IncludeSubDirectories();
    const int style = target.ListStyle();
    if (style >= 0 && style < int(form.optFileOptions.size())) {
        form.optFileOptions[size_t(style)] = true;
    }
    form.customSlots = target.LoadCustomToolPrefs();
    return form;
}

void ApplyPreferences(const PreferencesForm& form, Session& session, PreferencesTarget& target)
{
    session.gsFileKeyword = form.txtKeyword;
    target.SetGridLines(form.chkGridlines);
    target.SetSorted(form.chkSorted);
    for (int i = 0; i < int(form.optFileOptions.size()); ++i) {
        if (form.optFileOptions[size_t(i)]) {
            target.SetListStyle(i);
        }
    }
    target.SetIncludeSubDirectories(form.chkSubDirectory);
    session.gThumbnailWidth = Int16FromText(form.txtThumbX);
    session.gThumbnailHeight = Int16FromText(form.txtThumbY);
    session.jpegQuality = Int32FromText(form.txtJPEGValue);
    target.SaveCustomToolPrefs(form.customSlots);
}

} // namespace quillane
