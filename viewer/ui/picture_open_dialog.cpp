#include "viewer/ui/picture_open_dialog.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "core/paths.h"
#include "imaging/format_table.h"
#include "imaging/reader.h"
#include "imaging/thumbs/thumbnailer.h"
#include "viewer/save_choices.h"
#include <QLocale>

namespace quillane {

namespace {

/// What another thread finds out about a file.
struct OpenPreview {
    QImage image;
    QString words;
};

QString PictureFactsWords(const ImageFacts& facts)
{
    const QString format = FormatDescription(facts.format);
    const QLocale locale;
    QString words = facts.bits == 1
        ? PictureOpenDialog::tr("%1 × %2 pixels, 1 bit").arg(facts.width).arg(facts.height)
        : PictureOpenDialog::tr("%1 × %2 pixels, %3 bits")
              .arg(facts.width)
              .arg(facts.height)
              .arg(facts.bits);
    if (!format.isEmpty()) {
        words += u'\n' + format;
    }
    if (facts.pages > 1) {
        words += u'\n' + PictureOpenDialog::tr("%1 pages").arg(facts.pages);
    }
    return words + u'\n' + locale.formattedDataSize(facts.sizeDisk);
}

OpenPreview LookAtPicture(const QString& path, QSize box)
{
    OpenPreview preview;
    if (StatPath(path).type != quillane::FileType::Regular) {
        return preview;
    }
    try {
        preview.words = PictureFactsWords(ProbeFile(path));
        const Thumbnail small = MakeThumbnail(path, box, {});
        preview.image = small.image;
        if (small.image.isNull() && !small.failure.isEmpty()) {
            preview.words += u'\n' + small.failure;
        }
    } catch (const Failure& failure) {
        preview.words = failure.Description();
    }
    return preview;
}

/// "All pictures (*.jpg ...)" of all that can be read.
QString PictureNameFilter()
{
    QStringList patterns;
    const QStringList extensions = ReadableExtensions();
    patterns.reserve(extensions.size());
    for (const QString& extension : extensions) {
        patterns.append(QStringLiteral("*.") + extension);
    }
    return PictureOpenDialog::tr("All pictures") + QStringLiteral(" (%1)").arg(patterns.join(u' '));
}

} // namespace

PictureOpenDialog::PictureOpenDialog(QWidget* owner, const QString& title, const QString& folder)
    : FileDialogWithPanel(owner, title, folder)
{
    setObjectName(QStringLiteral("FileOpenDialog"));
    setAcceptMode(QFileDialog::AcceptOpen);
    setFileMode(QFileDialog::ExistingFile);
    setOption(QFileDialog::HideNameFilterDetails);
    setNameFilters({PictureNameFilter(), tr("All files") + QStringLiteral(" (*)")});
    Words().setMinimumHeight(Words().fontMetrics().lineSpacing() * 5);
    Panel().addStretch();
    connect(this, &QFileDialog::currentChanged, this, &PictureOpenDialog::Mark);
    connect(&NameEdit(), &QLineEdit::textChanged, this, [this] { Mark(Target()); });
}

void PictureOpenDialog::Mark(const QString& path)
{
    mMarked = path;
    if (!mLooking) {
        LookAtMarked();
    }
}

void PictureOpenDialog::LookAtMarked()
{
    mLooking = true;
    const auto found = std::make_shared<OpenPreview>();
    mJobs.Run([path = mMarked, box = Well().Box(), found] { *found = LookAtPicture(path, box); },
              [this, path = mMarked, found] {
                  mLooking = false;
                  if (path != mMarked) {
                      LookAtMarked();
                      return;
                  }
                  Well().ShowImage(found->image);
                  Words().setText(found->words);
              });
}

void PictureOpenDialog::accept()
{
    const QString target = Target();
    if (target.isEmpty() || EnterFolder(target)) {
        return;
    }
    const quillane::FileType type = StatPath(target).type;
    if (type != quillane::FileType::Regular) {
        Hint(type == quillane::FileType::Missing
                 ? tr("There is no file \"%1\". Choose another one.").arg(LeafName(target))
                 : tr("\"%1\" is not a file. Choose another one.").arg(LeafName(target)));
        return;
    }
    mChosen = target;
    done(Accepted);
}

} // namespace quillane
