#include "album/ui/album_preview_pane.h"

#include <QVBoxLayout>

namespace quillane {

namespace {

constexpr int kAlbumPreviewThreads = 3; // one that hangs on a slow disk does not stop the next
constexpr QSize kSmallestAlbumPreview(220, 160);
constexpr int kPreviewReserve = 2; // so many times the view's size, for a window made larger

void NameAlbumPart(QWidget* widget, const char* object, const QString& spoken)
{
    widget->setObjectName(QLatin1String(object));
    widget->setAccessibleName(spoken);
}

QLineEdit* AlbumFactBox(const char* object, const QString& spoken)
{
    auto* box = new QLineEdit;
    NameAlbumPart(box, object, spoken);
    box->setReadOnly(true);
    box->setFrame(false);
    QPalette palette = box->palette();
    palette.setColor(QPalette::Base, Qt::transparent);
    box->setPalette(palette);
    return box;
}

} // namespace

AlbumPreviewPane::AlbumPreviewPane(QWidget* parent)
    : QWidget(parent),
      mView(new EngineView),
      mSize(AlbumFactBox("txtImageSize", tr("Image size"))),
      mFormat(AlbumFactBox("txtImageFormat", tr("Image format"))),
      mTitle(new QLabel(QStringLiteral("Image Description Comments/Metadata"))),
      mTags(new QPlainTextEdit),
      mJobs(kAlbumPreviewThreads)
{
    NameAlbumPart(mView, "LEAD1", tr("Picture"));
    mView->SetPaintSizeMode(EngineView::kPaintFit);
    mView->setMinimumSize(kSmallestAlbumPreview);
    mView->setFocusPolicy(Qt::NoFocus);
    mView->viewport()->setAttribute(Qt::WA_TransparentForMouseEvents);
    // The words below keep their places while no picture is shown.
    for (QWidget* widget : {static_cast<QWidget*>(mView), static_cast<QWidget*>(mTitle),
                            static_cast<QWidget*>(mTags)}) {
        QSizePolicy policy = widget->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        widget->setSizePolicy(policy);
    }
    mTitle->setObjectName(QStringLiteral("Label1"));
    mTitle->setBuddy(mTags);
    NameAlbumPart(mTags, "txtTags", mTitle->text());
    mTags->setReadOnly(true);
    mTags->setTabChangesFocus(true);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(mView, 3);
    layout->addWidget(mSize);
    layout->addWidget(mFormat);
    layout->addWidget(mTitle);
    layout->addWidget(mTags, 2);
}

AlbumPreviewPane::~AlbumPreviewPane()
{
    Drop();
}

void AlbumPreviewPane::Drop()
{
    if (mCancel) {
        *mCancel = true;
        mCancel.reset();
    }
}

void AlbumPreviewPane::Preview(const QString& path)
{
    Blank();
    mCancel = std::make_shared<std::atomic<bool>>(false);
    auto picture = std::make_shared<AlbumPicture>();
    const QSize box = mView->size() * devicePixelRatioF() * kPreviewReserve;
    mJobs.Run(
        [picture, path, box, cancel = mCancel] { *picture = ReadAlbumPicture(path, box, *cancel); },
        [this, picture, cancel = mCancel] {
            if (cancel == mCancel) {
                mCancel.reset();
                Take(*picture);
            }
        });
}

void AlbumPreviewPane::Take(const AlbumPicture& picture)
{
    if (!picture.found) {
        ShowNotFound();
        return;
    }
    if (picture.shown.isNull()) {
        Q_EMIT Unreadable(picture.failure);
        return;
    }
    mView->ShowReduced(picture.shown, picture.pixels);
    mView->show();
    mSize->setText(picture.sizeText);
    mFormat->setText(picture.formatText);
    mTitle->setVisible(picture.hasDescription);
    mTags->setVisible(picture.hasDescription);
    mTags->setPlainText(picture.description);
}

void AlbumPreviewPane::ShowNotFound()
{
    Blank();
    mSize->setText(QStringLiteral("File Not Found!"));
}

void AlbumPreviewPane::Blank()
{
    Drop();
    mView->hide();
    mView->Clear();
    mSize->clear();
    mFormat->clear();
    mTags->clear();
}

} // namespace quillane
