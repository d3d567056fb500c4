#include "viewer/ui/Resize.h"
#include "imaging/engine.h"
#include "viewer/resize_choice.h"
#include "viewer/ui/number_box.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QVBoxLayout>

namespace quillane {

namespace {

constexpr int kResizeLargeChange = 100;
constexpr int kResizeSmallChange = 10;
constexpr int kResizeBarWidth = 220; // logical pixels, at least

void SetResizeRange(QScrollBar& bar, NumberBox& box, int most, int value)
{
    bar.setRange(1, most);
    box.setRange(1, most);
    bar.setValue(value);
    box.setValue(bar.value());
}

} // namespace

Resize::Side Resize::MakeSide(int number, QGroupBox*& frame)
{
    frame = new QGroupBox;
    frame->setObjectName(QStringLiteral("Frame%1").arg(number));
    Side side{new QScrollBar(Qt::Horizontal), new NumberBox};
    side.bar->setObjectName(QStringLiteral("Value%1Bar").arg(number));
    side.bar->setFocusPolicy(Qt::StrongFocus);
    side.bar->setInvertedControls(false); // the right arrow key means more
    side.bar->setMinimumWidth(kResizeBarWidth);
    side.bar->setPageStep(kResizeLargeChange);
    side.bar->setSingleStep(kResizeSmallChange);
    side.box->setObjectName(QStringLiteral("Value%1Box").arg(number));
    side.box->SetPageStep(kResizeLargeChange);
    side.box->setSuffix(tr(" px"));
    auto* line = new QHBoxLayout(frame);
    line->addWidget(side.bar, 1);
    line->addWidget(side.box);
    connect(side.bar, &QScrollBar::valueChanged, side.box, [box = side.box](int value) {
        // A number that is being typed keeps its text.
        if (box->value() != value) {
            box->setValue(value);
        }
    });
    connect(side.box, &QSpinBox::valueChanged, side.bar, &QScrollBar::setValue);
    return side;
}

Resize::Resize(QWidget* parent)
    : QDialog(parent),
      mRatio(kResizeUnit),
      mWidth(MakeSide(1, mFrame1)),
      mHeight(MakeSide(2, mFrame2)),
      mKeepsShape(new QCheckBox(tr("Maintain &Aspect-Ratio"))),
      mPlain(new QRadioButton(tr("&Resize"))),
      mBicubic(new QRadioButton(tr("&Bicubic"))),
      mResample(new QRadioButton(tr("Re&sample"))),
      mWords(new QLabel)
{
    setObjectName(QStringLiteral("ResizeForm"));
    setModal(true);
    mKeepsShape->setObjectName(QStringLiteral("AspectRatioBox"));
    mPlain->setObjectName(QStringLiteral("Resize"));
    mPlain->setToolTip(tr("The nearest pixel: fast, and colors stay as they are"));
    mBicubic->setObjectName(QStringLiteral("Bicubic"));
    mBicubic->setToolTip(tr("On a curve between pixels: the sharpest"));
    mResample->setObjectName(QStringLiteral("Resample"));
    mResample->setToolTip(tr("The mean of pixels: the smoothest when made smaller"));
    mWords->setObjectName(QStringLiteral("SizeWords"));

    auto* frame3 = new QGroupBox(tr("Type"));
    frame3->setObjectName(QStringLiteral("Frame3"));
    auto* types = new QHBoxLayout(frame3);
    types->addWidget(mPlain);
    types->addWidget(mBicubic);
    types->addWidget(mResample);
    types->addStretch(1);

    auto* buttons = new QDialogButtonBox;
    QPushButton* okay = buttons->addButton(tr("&Okay"), QDialogButtonBox::AcceptRole);
    okay->setObjectName(QStringLiteral("OkayButton"));
    okay->setDefault(true);
    QPushButton* cancel = buttons->addButton(tr("&Cancel"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("CancelButton"));

    auto* all = new QVBoxLayout(this);
    all->addWidget(mFrame1);
    all->addWidget(mFrame2);
    all->addWidget(mKeepsShape);
    all->addWidget(frame3);
    all->addWidget(mWords);
    all->addStretch(1);
    all->addWidget(buttons);

    connect(mWidth.bar, &QScrollBar::valueChanged, this, &Resize::WidthChanged);
    connect(mHeight.bar, &QScrollBar::valueChanged, this, &Resize::HeightChanged);
    connect(mKeepsShape, &QCheckBox::toggled, this, [this](bool on) {
        if (on) {
            WidthChanged(mWidth.bar->value());
        }
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void Resize::SetPictureSize(QSize size)
{
    mPicture = size.expandedTo({1, 1});
    mRatio = ResizeRatio(mPicture);
}

void Resize::InitTheForm(QString& kind)
{
    if (kind.isEmpty()) {
        kind = QStringLiteral("Resize");
    }
    setWindowTitle(tr("Resize"));
    mFrame1->setTitle(tr("Width"));
    mFrame2->setTitle(tr("Height"));
    for (const Side& side : {mWidth, mHeight}) {
        const bool first = side.bar == mWidth.bar;
        side.bar->setAccessibleName(first ? tr("Width") : tr("Height"));
        side.box->setAccessibleName(first ? tr("Width") : tr("Height"));
    }
    mFollowing = true; // both sides are the picture's own
    SetResizeRange(*mWidth.bar, *mWidth.box, kResizeMostWidth, mPicture.width());
    SetResizeRange(*mHeight.bar, *mHeight.box, mRatio, mPicture.height());
    mKeepsShape->setChecked(true);
    mFollowing = false;
    mPlain->setChecked(true);
    setResult(QDialog::Rejected);
    mWidth.box->setFocus();
    mWidth.box->selectAll();
    ShowWords();
}

void Resize::GetResults(bool& ok, float& width, float& height, qint32& method) const
{
    ok = result() == QDialog::Accepted;
    width = float(mWidth.bar->value());
    height = float(mHeight.bar->value());
    method = mBicubic->isChecked() ? kResizeBicubic
        : mResample->isChecked()   ? kResizeResample
                                   : kResizePlain;
}

void Resize::WidthChanged(int width)
{
    if (mKeepsShape->isChecked() && !mFollowing) {
        mFollowing = true;
        mHeight.bar->setValue(HeightForWidth(width, mRatio));
        mFollowing = false;
    }
    ShowWords();
}

void Resize::HeightChanged(int height)
{
    if (mKeepsShape->isChecked() && !mFollowing) {
        mFollowing = true;
        mWidth.bar->setValue(WidthForHeight(height, mRatio));
        mFollowing = false;
    }
    ShowWords();
}

void Resize::ShowWords()
{
    const auto words = [this](QSize size) {
        const double millions = double(size.width()) * size.height() / 1e6;
        return tr("%1 x %2 (%3 megapixels)")
            .arg(size.width())
            .arg(size.height())
            .arg(locale().toString(millions, 'f', millions < 1 ? 2 : 1));
    };
    mWords->setText(tr("%1 becomes %2")
                        .arg(words(mPicture), words({mWidth.bar->value(), mHeight.bar->value()})));
}

} // namespace quillane
