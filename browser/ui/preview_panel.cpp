#include "browser/ui/preview_panel.h"

#include "browser/panel_layout.h"

#include <QEvent>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <algorithm>

namespace quillane {

namespace {

constexpr int kHeaderHeight = 80; // banner and kind icon; the second background begins here
constexpr int kSmallestHeader = 48;
constexpr int kPictureTop = 95;
constexpr int kPictureSize = 210;
constexpr int kSmallestPicture = 96;
constexpr int kIconMargin = 20;
constexpr int kIconSize = 40;
constexpr int kTextMinimum = 110;
constexpr int kCommentHeight = 85;
constexpr int kCommentMinimum = 44;
constexpr int kEdge = 5;
constexpr int kSmallestGap = 2;
constexpr int kBannerPixels = 16 * 96 / 72; // size 16 in points

enum class PanelPart { Header, Picture, Line, Comment, Text };

struct PanelSlot {
    PanelPart part;
    int line;
    PanelBlock block;
};

QPlainTextEdit* MakeBox(QWidget* parent, const char* name, const QString& accessible)
{
    auto* box = new QPlainTextEdit(parent);
    box->setObjectName(QLatin1String(name));
    box->setAccessibleName(accessible);
    box->setReadOnly(true);
    box->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box->setTabChangesFocus(true);
    box->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    box->hide();
    return box;
}

} // namespace

PreviewPanel::PreviewPanel(QWidget* parent)
    : QWidget(parent),
      mTitle(new QLabel(this)),
      mPictureFrame(new QWidget(this)),
      mPicture(new QLabel(mPictureFrame)),
      mText(MakeBox(this, "txtImageDescriptionTags", tr("Description and metadata"))),
      mComment(MakeBox(this, "txtComment", tr("Photo album comments")))
{
    setObjectName(QStringLiteral("picPreview"));
    setAccessibleName(tr("Preview"));
    mTitle->setObjectName(QStringLiteral("lblPreviewTitle"));
    mTitle->setTextFormat(Qt::PlainText);
    mPictureFrame->setObjectName(QStringLiteral("picPreview1"));
    mPicture->setObjectName(QStringLiteral("LEAD1"));
    mPicture->setAccessibleName(tr("Picture"));
    mPicture->setAlignment(Qt::AlignCenter);
    mPicture->setWordWrap(true);
    mPictureFrame->hide();
    mText->setAccessibleDescription(tr("What the current file says of itself"));
}

int PreviewPanel::WantedHeight()
{
    constexpr int kTextTop = 430, kTextHeight = 220;
    return kTextTop + kTextHeight;
}

QSize PreviewPanel::PictureBox() const
{
    return QSize(kPictureSize, kPictureSize) * devicePixelRatioF();
}

QFont PreviewPanel::LineFont() const
{
    QFont small = font();
    if (small.pointSizeF() > 0) {
        small.setPointSizeF(std::max(7.0, small.pointSizeF() - 1));
    }
    return small;
}

void PreviewPanel::Blank()
{
    mContent = {};
    mImage = {};
    mFailure.clear();
    mIcon = 0;
    mText->clear();
    mText->hide();
    mComment->clear();
    mComment->hide();
    mPictureFrame->hide();
    Place();
}

void PreviewPanel::ShowBanner(const QString& text, int icon)
{
    Blank();
    mContent.banner = text;
    mIcon = icon;
    Place();
}

void PreviewPanel::ShowContent(const PanelContent& content)
{
    mContent = content;
    mIcon = content.icon;
    mImage = {};
    mFailure.clear();
    mText->setPlainText(content.boxText);
    mText->verticalScrollBar()->setValue(0);
    mText->setVisible(content.boxVisible);
    mComment->setPlainText(content.albumComment);
    mComment->setVisible(content.albumCommentVisible);
    mPictureFrame->setVisible(content.pictureWanted);
    mPicture->clear();
    Place();
}

void PreviewPanel::ShowPicture(const QImage& picture, const QString& failure)
{
    mImage = picture;
    mImage.setDevicePixelRatio(devicePixelRatioF());
    mFailure = failure;
    Place();
}

void PreviewPanel::Place()
{
    const QFontMetrics metrics(LineFont());
    QVector<PanelSlot> blocks;
    blocks.append({PanelPart::Header, -1, {0, kHeaderHeight, kSmallestHeader}});
    if (mContent.pictureWanted) {
        blocks.append({PanelPart::Picture, -1, {kPictureTop, kPictureSize, kSmallestPicture}});
    }
    for (int i = 0; i < mContent.lines.size(); ++i) {
        const int height = metrics.height();
        blocks.append({PanelPart::Line, i, {mContent.lines.at(i).y, height, height}});
    }
    if (mContent.albumCommentVisible) {
        const auto heading =
            std::find_if(mContent.lines.begin(), mContent.lines.end(), [](const PanelLine& line) {
                return line.text.startsWith(u"Photo Album Comments");
            });
        const int top = heading == mContent.lines.end() ? kPictureTop : heading->y + 18;
        blocks.append({PanelPart::Comment, -1, {top, kCommentHeight, kCommentMinimum}});
    }
    if (mContent.boxVisible) {
        blocks.append({PanelPart::Text, -1, {mContent.boxTop, kTextMinimum, kTextMinimum}});
    }
    std::stable_sort(blocks.begin(), blocks.end(), [](const PanelSlot& a, const PanelSlot& b) {
        return a.block.top < b.block.top;
    });
    QVector<PanelBlock> wanted;
    for (const PanelSlot& slot : blocks) {
        wanted.append(slot.block);
    }
    const QVector<PlacedBlock> placed = PlaceBlocks(wanted, height() - kEdge, kSmallestGap);

    mLineRects.fill({}, mContent.lines.size());
    const int inner = std::max(0, width() - 2 * kEdge);
    for (int i = 0; i < blocks.size(); ++i) {
        const PlacedBlock& at = placed.at(i);
        switch (blocks.at(i).part) {
        case PanelPart::Header: {
            const int iconSize = std::min(kIconSize, at.height - 8);
            const int iconTop = std::min(kIconMargin, (at.height - iconSize) / 2);
            mIconRect = QRect(std::min(kIconMargin, kIconMargin), iconTop, iconSize, iconSize);
            const int left = mIcon > 0 ? mIconRect.right() + 10 : kIconMargin;
            mBannerRect = QRect(left, at.top, std::max(0, width() - left - kEdge), at.height);
            break;
        }
        case PanelPart::Picture: {
            const int side = at.height;
            mPictureFrame->setGeometry((width() - kPictureSize) / 2, at.top, kPictureSize, side);
            mPicture->setGeometry(mPictureFrame->rect());
            break;
        }
        case PanelPart::Line: {
            const PanelLine& line = mContent.lines.at(blocks.at(i).line);
            mLineRects[blocks.at(i).line] = QRect(std::max(2, line.x), at.top,
                                                  std::max(0, width() - line.x - kEdge), at.height);
            break;
        }
        case PanelPart::Comment:
            mComment->setGeometry(kEdge, at.top, inner, at.height);
            break;
        case PanelPart::Text:
            mText->setGeometry(kEdge, at.top, inner,
                               std::max(kTextMinimum, height() - kEdge - at.top));
            break;
        }
    }

    QFont banner = font();
    banner.setBold(true);
    banner.setPixelSize(kBannerPixels);
    // A long name is set smaller before it is cut.
    while (banner.pixelSize() > 13
           && QFontMetrics(banner).horizontalAdvance(mContent.banner) > mBannerRect.width()) {
        banner.setPixelSize(banner.pixelSize() - 1);
    }
    mTitle->setFont(banner);
    mTitle->setGeometry(mBannerRect);
    mTitle->setText(
        QFontMetrics(banner).elidedText(mContent.banner, Qt::ElideMiddle, mBannerRect.width()));
    mTitle->setToolTip(mContent.banner);
    mTitle->setAccessibleName(mContent.banner);

    if (!mImage.isNull()) {
        const QSize box = mPicture->size() * devicePixelRatioF();
        QImage shown = mImage;
        if (shown.width() > box.width() || shown.height() > box.height()) {
            shown = shown.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
            shown.setDevicePixelRatio(devicePixelRatioF());
        }
        mPicture->setPixmap(QPixmap::fromImage(shown));
    } else {
        mPicture->setText(mFailure);
    }
    update();
}

void PreviewPanel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    // A quiet band behind the banner and one below it, from the palette so that it suits dark.
    QLinearGradient band(0, 0, 0, mBannerRect.bottom() + 1);
    QColor accent = palette().color(QPalette::Highlight);
    accent.setAlpha(46);
    band.setColorAt(0, accent);
    accent.setAlpha(16);
    band.setColorAt(1, accent);
    painter.fillRect(QRect(0, 0, width(), mBannerRect.bottom() + 1), band);
    if (mIcon > 0) {
        const QIcon icon(QStringLiteral(":/stock/%1.svg").arg(mIcon));
        icon.paint(&painter, mIconRect);
    }
    painter.setFont(LineFont());
    painter.setPen(palette().color(QPalette::WindowText));
    for (int i = 0; i < mLineRects.size(); ++i) {
        const QString text = painter.fontMetrics().elidedText(
            mContent.lines.at(i).text, Qt::ElideRight, mLineRects.at(i).width());
        painter.drawText(mLineRects.at(i), Qt::AlignLeft | Qt::AlignTop, text);
    }
}

void PreviewPanel::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Place();
}

void PreviewPanel::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange) {
        Place();
    }
}

} // namespace quillane
