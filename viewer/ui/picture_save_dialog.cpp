#include "viewer/ui/picture_save_dialog.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "core/paths.h"
#include "imaging/format_table.h"
#include "imaging/reader.h"
#include <QAbstractItemView>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStyle>

namespace quillane {

namespace {

constexpr int kStampLeast = 16; // pixels, sides of the stamp's box
constexpr int kStampMost = 1024;
constexpr int kStampUsual = 160;
constexpr int kFormatLetters = 36; // width of the boxes with long words

void NameSaveControl(QWidget* control, const char* object, const QString& spoken,
                     const QString& tip = {})
{
    control->setObjectName(QLatin1String(object));
    control->setAccessibleName(spoken);
    control->setToolTip(tip);
}

QComboBox* NewSaveBox(const char* object, const QString& spoken, const QString& tip = {})
{
    auto* const box = new QComboBox;
    NameSaveControl(box, object, spoken, tip);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(kFormatLetters);
    return box;
}

/// Whether a file is there that a page can be added to.
bool TargetTakesPages(const QString& path)
{
    constexpr qint16 kAnyTiff = 3;
    bool takes = false;
    ResumeNext([&] {
        FileSource file(path);
        constexpr qint64 kMark = 512; // that codecs know a file by
        const Codec* const codec = FindCodec(file.Head(kMark), {});
        takes = codec && SaveTypes().at(SaveTypeOf(kAnyTiff)).name == QLatin1String(codec->name);
    });
    return takes;
}

} // namespace

PictureSaveDialog::PictureSaveDialog(QWidget* owner, const SaveDialogStart& start)
    : FileDialogWithPanel(owner, start.title, start.folder),
      mPicture(start.picture),
      mChoices(start.picture, start.format, start.bits)
{
    setObjectName(QStringLiteral("FileSaveDialog"));
    setAcceptMode(QFileDialog::AcceptSave);
    setFileMode(QFileDialog::AnyFile);
    const QStringList filter = start.filter.split(u'|', Qt::SkipEmptyParts);
    setNameFilter(
        QStringLiteral("%1 (*)").arg(filter.isEmpty() ? tr("All Files") : filter.first()));
    if (!start.fileName.isEmpty()) {
        const bool written = FindSaveVariant(start.format) != nullptr;
        selectFile(written ? start.fileName : mChoices.Renamed(start.fileName));
    }
    HideDates();
    Build(start.quality);
    ShowChoices();
    Connect();
    LookAtTarget();
    Preview();
}

void PictureSaveDialog::Build(qint32 quality)
{
    mFormat = NewSaveBox("SaveFormat", tr("Format"));
    for (const SaveType& type : SaveTypes()) {
        mFormat->addItem(type.Words());
    }
    mSubFormat = NewSaveBox("SaveSubFormat", tr("Sub-format"));
    mBits = NewSaveBox("SaveBits", tr("Colours"), tr("Bits for each pixel in the file"));
    mActual = new QCheckBox(tr("Actual si&ze"));
    NameSaveControl(mActual, "PreviewActual", tr("Actual size"),
                    tr("Show the middle of the picture, one pixel to a pixel of the screen"));
    mMultiPage = new QCheckBox(tr("Append as a further pa&ge"));
    NameSaveControl(mMultiPage, "MultiPage", tr("Append as a further page"),
                    tr("The pages of the file that is there stay (TIFF only)"));
    Words().setMinimumHeight(Words().fontMetrics().lineSpacing());

    auto* const form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(tr("F&ormat:"), mFormat);
    form->addRow(tr("S&ub-format:"), mSubFormat);
    form->addRow(tr("Colou&rs:"), mBits);
    auto* const qualityLabel = new QLabel(tr("&Quality:"));
    form->addRow(qualityLabel, BuildQuality(quality));
    qualityLabel->setBuddy(mQuality);
    form->addRow(BuildStamp());
    form->addRow(mMultiPage);
    mActual->setVisible(!mPicture.IsNull());
    Well().setVisible(!mPicture.IsNull());
    Words().setVisible(!mPicture.IsNull());
    Panel().addWidget(mActual);
    Panel().addSpacing(Panel().spacing());
    Panel().addLayout(form);
    Panel().addStretch();
    OrderTabs({mActual, mFormat, mSubFormat, mBits, mQualityBar, mQuality, mStamp, mStampSize,
               mStampBits, mMultiPage});
}

QWidget* PictureSaveDialog::BuildQuality(qint32 quality)
{
    mQuality = new QSpinBox;
    NameSaveControl(mQuality, "SaveQuality", tr("Quality"),
                    tr("2 is the best picture, 255 the smallest file"));
    mQuality->setRange(kBestQuality, kLeastQuality);
    mQuality->setValue(quality);
    mQualityBar = new QSlider(Qt::Horizontal);
    NameSaveControl(mQualityBar, "SaveQualityBar", tr("Quality"), mQuality->toolTip());
    mQualityBar->setRange(kBestQuality, kLeastQuality);
    mQualityBar->setPageStep(16);
    mQualityBar->setValue(mQuality->value());
    mQualityEnds[0] = new QLabel(tr("best"));
    mQualityEnds[1] = new QLabel(tr("smallest"));
    auto* const all = new QWidget;
    auto* const grid = new QGridLayout(all);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(0);
    grid->addWidget(mQualityBar, 0, 0, 1, 2);
    grid->addWidget(mQuality, 0, 2);
    grid->addWidget(mQualityEnds[0], 1, 0);
    grid->addWidget(mQualityEnds[1], 1, 1, Qt::AlignRight);
    return all;
}

QWidget* PictureSaveDialog::BuildStamp()
{
    mStamp = new QCheckBox(tr("Embed a small &preview"));
    NameSaveControl(mStamp, "StampWanted", tr("Embed a small preview"),
                    tr("Other programs show it without reading the whole picture"));
    mStampSize = new QSpinBox;
    NameSaveControl(mStampSize, "StampSize", tr("Size of the small preview"));
    mStampSize->setRange(kStampLeast, kStampMost);
    mStampSize->setValue(kStampUsual);
    mStampSize->setSuffix(tr(" pixels"));
    mStampBits = new QComboBox;
    NameSaveControl(mStampBits, "StampBits", tr("Colours of the small preview"));
    mStampBits->addItem(tr("8 bits: grey"), 8);
    mStampBits->addItem(tr("24 bits: colours"), 24);
    mStampBits->setCurrentIndex(1);
    auto* const all = new QWidget;
    auto* const grid = new QGridLayout(all);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(mStamp, 0, 0, 1, 3);
    // The two stand in from the box that switches them.
    grid->setColumnMinimumWidth(0, 2 * grid->spacing() + mStamp->iconSize().width() / 2);
    grid->addWidget(mStampSize, 1, 1);
    grid->addWidget(mStampBits, 1, 2);
    grid->setColumnStretch(2, 1);
    return all;
}

void PictureSaveDialog::Connect()
{
    connect(&NameEdit(), &QLineEdit::textChanged, this, &PictureSaveDialog::NameChanged);
    connect(this, &QFileDialog::directoryEntered, this, &PictureSaveDialog::LookAtTarget);
    connect(mFormat, &QComboBox::currentIndexChanged, this, [this](int type) {
        mChoices.ChooseType(type);
        ShowChoices();
        RenameFile();
        Preview();
    });
    connect(mSubFormat, &QComboBox::currentIndexChanged, this, [this](int position) {
        mChoices.ChooseSubFormat(position);
        ShowChoices();
        RenameFile();
        Preview();
    });
    connect(mBits, &QComboBox::currentIndexChanged, this, [this] {
        mChoices.ChooseBits(mBits->currentData().toInt());
        Preview();
    });
    connect(mQuality, &QSpinBox::valueChanged, mQualityBar, &QSlider::setValue);
    connect(mQualityBar, &QSlider::valueChanged, mQuality, &QSpinBox::setValue);
    connect(mQuality, &QSpinBox::valueChanged, this, &PictureSaveDialog::Preview);
    connect(mStamp, &QCheckBox::toggled, this, &PictureSaveDialog::EnableControls);
    connect(mMultiPage, &QCheckBox::toggled, this, &PictureSaveDialog::EnableControls);
    connect(mActual, &QCheckBox::toggled, this, &PictureSaveDialog::ShowPreview);
}

// What is chosen, into the controls, without hearing from them.
void PictureSaveDialog::ShowChoices()
{
    const QSignalBlocker quietFormat(mFormat), quietSub(mSubFormat), quietBits(mBits);
    const SaveVariant& variant = mChoices.Variant();
    mFormat->setCurrentIndex(int(mChoices.Type()));
    mSubFormat->clear();
    for (const qint16 format : SaveTypes().at(mChoices.Type()).formats) {
        mSubFormat->addItem(FormatDescription(format), format);
    }
    mSubFormat->setCurrentIndex(mChoices.SubFormat());
    mBits->clear();
    for (const qint32* depth = variant.depths; *depth != 0; ++depth) {
        mBits->addItem(DepthWords(variant, mPicture, *depth), *depth);
    }
    mBits->setCurrentIndex(mBits->findData(mChoices.Bits()));
    // Long words are whole in the list, and in the tip.
    QAbstractItemView& list = *mSubFormat->view();
    list.setMinimumWidth(list.sizeHintForColumn(0)
                         + style()->pixelMetric(QStyle::PM_ScrollBarExtent));
    mSubFormat->setToolTip(mSubFormat->currentText());
    EnableControls();
}

void PictureSaveDialog::EnableControls()
{
    const SaveVariant& variant = mChoices.Variant();
    const bool pages = mTargetTakes && TakesFurtherPage(variant);
    if (!pages) {
        mMultiPage->setChecked(false);
    }
    mMultiPage->setEnabled(pages);
    mSubFormat->setEnabled(mSubFormat->count() > 1);
    mBits->setEnabled(mBits->count() > 1);
    const bool quality = TakesQuality(variant);
    for (QWidget* const one :
         std::initializer_list<QWidget*>{mQuality, mQualityBar, mQualityEnds[0], mQualityEnds[1]}) {
        one->setEnabled(quality);
    }
    const bool stamps = variant.stamp && !mMultiPage->isChecked();
    mStamp->setEnabled(stamps);
    mStampSize->setEnabled(stamps && mStamp->isChecked());
    mStampBits->setEnabled(stamps && mStamp->isChecked());
}

void PictureSaveDialog::NameChanged(const QString& name)
{
    if (mChoices.NameTyped(name)) {
        ShowChoices();
        Preview();
    }
    LookAtTarget();
}

void PictureSaveDialog::RenameFile()
{
    const QString name = NameEdit().text();
    const QString renamed = mChoices.Renamed(name);
    if (renamed != name) {
        // The toolkit's dialog must not hear of it: it would mark that file beside the marked one
        // and write both names.
        const QSignalBlocker quiet(&NameEdit());
        NameEdit().setText(renamed);
        Hint({});
        LookAtTarget();
    }
}

void PictureSaveDialog::LookAtTarget()
{
    const QString target = Target();
    mLookedAt = target;
    const auto takes = std::make_shared<bool>(false);
    mJobs.Run([target, takes] { *takes = !target.isEmpty() && TargetTakesPages(target); },
              [this, target, takes] {
                  if (target == mLookedAt) {
                      mTargetTakes = *takes;
                      EnableControls();
                  }
              });
}

void PictureSaveDialog::Preview()
{
    if (mPicture.IsNull()) {
        return;
    }
    if (mEncoding) {
        mEncodeAgain = true;
        return;
    }
    StartPreview();
}

void PictureSaveDialog::StartPreview()
{
    mEncoding = true;
    mEncodeAgain = false;
    EncodeRequest request;
    request.format = mChoices.Format();
    request.bits = mChoices.Bits();
    request.quality = mQuality->value();
    const auto made = std::make_shared<SavePreview>();
    mJobs.Run([picture = mPicture, request, box = Well().Box(),
               made] { *made = MakeSavePreview(picture, request, box); },
              [this, made] {
                  mEncoding = false;
                  mPreview = *made;
                  ShowPreview();
                  if (mEncodeAgain) {
                      StartPreview();
                  }
              });
}

void PictureSaveDialog::ShowPreview()
{
    Well().ShowImage(mActual->isChecked() ? mPreview.detail : mPreview.whole);
    Words().setText(mPreview.failure.isEmpty() ? tr("Size: %1").arg(PreviewSizeWords(mPreview))
                                               : mPreview.failure);
}

bool PictureSaveDialog::AgreesToReplace(const QString& file)
{
    QMessageBox box(QMessageBox::Warning, windowTitle(),
                    tr("\"%1\" is there already. Do you want to replace it?").arg(LeafName(file)),
                    QMessageBox::Yes | QMessageBox::No, this);
    box.setObjectName(QStringLiteral("messageBox"));
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::No);
    box.button(QMessageBox::Yes)->setObjectName(QStringLiteral("cmdYes"));
    box.button(QMessageBox::Yes)->setText(tr("&Replace"));
    box.button(QMessageBox::No)->setObjectName(QStringLiteral("cmdNo"));
    box.button(QMessageBox::No)->setText(tr("&Keep it"));
    return box.exec() == QMessageBox::Yes;
}

void PictureSaveDialog::accept()
{
    const QString typed = Target();
    if (typed.isEmpty() || EnterFolder(typed)) {
        return;
    }
    const QString file = mChoices.Completed(typed);
    const quillane::FileType type = StatPath(file).type;
    if (type == quillane::FileType::Folder || type == quillane::FileType::Other) {
        Hint(tr("\"%1\" is not a file. Choose another name.").arg(LeafName(file)));
        return;
    }
    if (StatPath(FolderOf(file)).type != quillane::FileType::Folder) {
        Hint(tr("There is no folder \"%1\". Choose another one.").arg(FolderOf(file)));
        return;
    }
    const bool adds = mMultiPage->isChecked() && file == typed && TargetTakesPages(file);
    if (type == quillane::FileType::Regular && !adds && !AgreesToReplace(file)) {
        return;
    }
    mChosen.file = file;
    mChosen.format = mChoices.Format();
    mChosen.subFormat = mChoices.SubFormat();
    mChosen.bits = mChoices.Bits();
    mChosen.quality = mQuality->value();
    mChosen.stampWanted = mStamp->isEnabled() && mStamp->isChecked();
    mChosen.stampBits = mStampBits->currentData().toInt();
    mChosen.stampSize = float(mStampSize->value());
    mChosen.multiPage = adds ? 1 : 0;
    done(Accepted);
}

} // namespace quillane
