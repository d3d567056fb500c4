#include "viewer/ui/metadata_page.h"

#include "core/file_kinds.h"
#include "core/strings.h"
#include "imaging/comments/slots.h"
#include "metadata/catalogue.h"
#include "viewer/metadata_rules.h"
#include "viewer/viewer_settings.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QResizeEvent>
#include <QScrollArea>
#include <QVBoxLayout>

namespace quillane {

namespace {

enum MetadataTab : quint8 { kImageTab, kGeneralTab, kCameraTab, kGpsTab, kDicomTab };

constexpr int kWidePage = 1000; // pixels from which text and tabs stand side by side
constexpr const char* kSoftwareBox = "txtSoftware";

void FillRows(QTreeWidget* list, const QVector<CatalogueRow>& rows)
{
    list->clear();
    for (const CatalogueRow& row : rows) {
        auto* item = new QTreeWidgetItem(list, {row.label, row.value});
        item->setToolTip(0, row.label);
        item->setToolTip(1, row.value);
    }
}

/// The name of the label beside a box: four have names of their own.
QString LabelName(const char* box)
{
    for (const GeneralLabel& label : kGeneralLabels) {
        if (QLatin1String(label.box) == QLatin1String(box)) {
            return QLatin1String(label.name);
        }
    }
    return QStringLiteral("lbl") + QLatin1String(box).mid(3);
}

} // namespace

MetadataPage::MetadataPage(QWidget* parent)
    : QWidget(parent),
      mHalves(new QSplitter(Qt::Vertical)),
      Frame1(new QGroupBox(QStringLiteral("Photo Description/Metadata Text Editor"))),
      txtTags(new QPlainTextEdit),
      SSTab2(new QTabWidget)
{
    Frame1->setObjectName(QStringLiteral("Frame1"));
    txtTags->setObjectName(QStringLiteral("txtTags"));
    txtTags->setAccessibleName(tr("Photo description and metadata text"));
    txtTags->setTabChangesFocus(true);
    auto* editor = new QVBoxLayout(Frame1);
    editor->addWidget(txtTags);

    SSTab2->setObjectName(QStringLiteral("SSTab2"));
    SSTab2->setAccessibleName(tr("Photo information"));
    SSTab2->setElideMode(Qt::ElideNone); // a narrow window scrolls its tabs
    lvImageInfo = AddList("lvImageInfo", QStringLiteral("Image Information"), kImageInfoColumns);
    BuildGeneral();
    lvCamera = AddList("lvCamera", QStringLiteral("Camera (Exif)"), kCameraColumns);
    lvGPS = AddList("lvGPS", QStringLiteral("GPS (Exif)"), kGpsColumns);
    lvDICOM = AddList("lvDICOM", QStringLiteral("DICOM Information"), kDicomColumns);

    for (int tab = 0; tab < SSTab2->count(); ++tab) {
        SSTab2->setTabToolTip(tab, SSTab2->tabText(tab));
    }
    mHalves->setObjectName(QStringLiteral("splMetadata"));
    mHalves->setChildrenCollapsible(false);
    mHalves->addWidget(Frame1);
    mHalves->addWidget(SSTab2);
    mHalves->setStretchFactor(0, 2);
    mHalves->setStretchFactor(1, 3);
    auto* all = new QVBoxLayout(this);
    all->addWidget(mHalves);
    Empty();
}

QTreeWidget* MetadataPage::AddList(const char* name, const QString& caption,
                                   const CatalogueColumns& columns)
{
    auto* list = new QTreeWidget;
    list->setObjectName(QLatin1String(name));
    list->setAccessibleName(caption);
    list->setColumnCount(2);
    list->setHeaderLabels({QLatin1String(columns.label), QLatin1String(columns.value)});
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAlternatingRowColors(true);
    list->setColumnWidth(0, columns.labelTwips / kTwipsPerPixel);
    list->setColumnWidth(1, columns.valueTwips / kTwipsPerPixel);
    SSTab2->addTab(list, caption);
    return list;
}

void MetadataPage::BuildGeneral()
{
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    int row = 0;
    for (const GeneralBox& field : FillGeneralBoxes({}, {})) {
        const QByteArray name = field.box.toLatin1();
        auto* label = new QLabel(field.label);
        label->setObjectName(LabelName(name.constData()));
        auto* box = new QLineEdit;
        box->setObjectName(field.box);
        box->setAccessibleName(field.label);
        label->setBuddy(box);
        if (field.box == QLatin1String(kSoftwareBox)) {
            // A save leaves the program's own name there.
            box->setReadOnly(true);
            box->setToolTip(tr("The program that saved the picture last; every save sets it."));
        } else {
            mBoxes.append(box);
        }
        grid->addWidget(label, row, 0);
        grid->addWidget(box, row, 1);
        ++row;
    }
    grid->setRowStretch(row, 1);
    grid->setColumnStretch(1, 1);
    auto* scroll = new QScrollArea;
    scroll->setObjectName(QStringLiteral("scrGeneral"));
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setWidget(page);
    SSTab2->addTab(scroll, QStringLiteral("General Comment Tags"));
}

QLineEdit* MetadataPage::Box(const char* name) const
{
    return SSTab2->findChild<QLineEdit*>(QLatin1String(name));
}

void MetadataPage::Empty()
{
    for (int tab = kGeneralTab; tab <= kDicomTab; ++tab) {
        SSTab2->setTabEnabled(tab, false);
    }
    txtTags->clear();
    for (QLineEdit* box : mBoxes) {
        box->clear();
    }
    Box(kSoftwareBox)->clear();
    mTagsRead = false;
    mGeneralRead = false;
    CountAsSaved();
}

void MetadataPage::Fill(const ViewedFile& viewed, const UiLoop& loop)
{
    Empty();
    FillRows(lvImageInfo, FillImageInfoList(viewed.facts, viewed.stat, loop));
    const MetadataTabs tabs = MetadataTabsFor(viewed.file, viewed.facts.format);
    if (IsImageFile(viewed.file) == kTrue) {
        QString text;
        mTagsRead = viewed.commentsRead && ResumeNext([&] {
                        const CommentValue& description = viewed.comments.At(kDescriptionSlot);
                        if (!description.IsEmpty()) {
                            text = description.Text();
                            text = NormaliseLineEnds(text);
                        }
                    });
        txtTags->setPlainText(text);
    }
    if (tabs.general) {
        const bool png = HasPngWords(viewed.file, viewed.facts.format);
        for (const GeneralLabel& label : kGeneralLabels) {
            const QString words = QLatin1String(png ? label.png : label.tiff);
            SSTab2->findChild<QLabel*>(QLatin1String(label.name))->setText(words);
            Box(label.box)->setAccessibleName(words);
        }
        for (const GeneralBox& field : FillGeneralBoxes(viewed.file, viewed.comments)) {
            Box(field.box.toLatin1().constData())->setText(field.value);
        }
        mGeneralRead = viewed.commentsRead;
    }
    FillRows(lvCamera, tabs.camera ? FillCameraList(viewed.comments) : QVector<CatalogueRow>());
    FillRows(lvGPS, tabs.gps ? FillGpsList(viewed.comments) : QVector<CatalogueRow>());
    FillRows(lvDICOM, tabs.dicom ? FillDicomList(viewed.comments) : QVector<CatalogueRow>());
    SSTab2->setTabEnabled(kGeneralTab, tabs.general);
    SSTab2->setTabEnabled(kCameraTab, tabs.camera);
    SSTab2->setTabEnabled(kGpsTab, tabs.gps);
    SSTab2->setTabEnabled(kDicomTab, tabs.dicom);
    SetReadOnly(false);
    CountAsSaved();
}

QString MetadataPage::Tags() const
{
    return txtTags->toPlainText().replace(u'\n', QStringLiteral("\r\n"));
}

GeneralTagTexts MetadataPage::General() const
{
    GeneralTagTexts texts;
    texts.txtArtistExif = Box("txtArtistExif")->text();
    texts.txtCopyrightExif = Box("txtCopyrightExif")->text();
    texts.txtMake = Box("txtMake")->text();
    texts.txtDateCreated = Box("txtDateCreated")->text();
    texts.txtComputer = Box("txtComputer")->text();
    texts.txtModel = Box("txtModel")->text();
    texts.txtDocument = Box("txtDocument")->text();
    texts.txtPage = Box("txtPage")->text();
    return texts;
}

void MetadataPage::SetDateCreated(const QString& date)
{
    Box("txtDateCreated")->setText(date);
}

QString MetadataPage::AllTexts() const
{
    QString all = txtTags->toPlainText();
    for (const QLineEdit* box : mBoxes) {
        all += QChar(0) + box->text();
    }
    return all;
}

bool MetadataPage::IsChanged() const
{
    return mSaved != AllTexts();
}

void MetadataPage::CountAsSaved()
{
    mSaved = AllTexts();
}

void MetadataPage::SetReadOnly(bool on)
{
    // A text that was not read from the file is not written into it either.
    txtTags->setReadOnly(on || !mTagsRead);
    for (QLineEdit* box : mBoxes) {
        box->setReadOnly(on);
    }
}

void MetadataPage::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const bool wide = width() >= kWidePage && width() > height() * 3 / 2;
    const Qt::Orientation wanted = wide ? Qt::Horizontal : Qt::Vertical;
    if (mHalves->orientation() != wanted) {
        mHalves->setOrientation(wanted);
    }
}

} // namespace quillane
