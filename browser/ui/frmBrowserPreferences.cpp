#include "browser/ui/frmBrowserPreferences.h"

#include "core/numbers.h"
#include "platform/ui/command_connector.h"
#include "platform/ui/window_room.h"
#include "widgets/ui/scrolled_page.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QScrollArea>
#include <QTabBar>
#include <QVBoxLayout>
#include <algorithm>

namespace quillane {

namespace {

constexpr int kNumberWidth = 90; // logical pixels
constexpr QSize kPreferencesSize{620, 540};
constexpr int kTabSlack = 16; // what styles put before the first tab and behind the last

QString IndexedName(const char* name, int index)
{
    return QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(index);
}

QLineEdit* MakeNumberBox(const char* name, const QString& tip)
{
    auto* box = new QLineEdit;
    box->setObjectName(QLatin1String(name));
    box->setToolTip(tip);
    box->setMaximumWidth(kNumberWidth);
    return box;
}

/// A label whose mnemonic leads to the box, and which speaks for it.
QLabel* MakePreferenceLabel(const QString& words, QWidget* box)
{
    auto* label = new QLabel(words);
    label->setBuddy(box);
    box->setAccessibleName(QString(words).remove(u'&').remove(u':'));
    return label;
}

/// The Tab key leads to the option that is on, as the toolkit sees to once the keyboard was there.
template <typename Options> void LeadTabToTheCheckedOne(const Options& options)
{
    for (QRadioButton* option : options) {
        option->setFocusPolicy(option->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

} // namespace

frmBrowserPreferences::frmBrowserPreferences(Session& session, PreferencesTarget& target,
                                             Dialogs& dialogs, PickProgram pickProgram,
                                             QWidget* parent)
    : QDialog(parent),
      mSession(session),
      mTarget(target),
      mDialogs(dialogs),
      mPickProgram(std::move(pickProgram)),
      mTabs(new QTabWidget),
      txtThumbX(MakeNumberBox("txtThumbX", tr("Of a cell, in pixels; used by the next scan"))),
      txtThumbY(MakeNumberBox("txtThumbY", tr("Of a cell, in pixels; used by the next scan"))),
      txtJPEGValue(MakeNumberBox("txtJPEGValue",
                                 tr("2 keeps the most detail, 255 makes the smallest file"))),
      chkSubDirectory(new QCheckBox(tr("Include &Subfolders"))),
      chkGridlines(new QCheckBox(tr("&Grid Lines"))),
      chkSorted(new QCheckBox(tr("S&orted List")))
{
    setObjectName(QStringLiteral("frmBrowserPreferences"));
    setModal(true);
    chkSubDirectory->setObjectName(QStringLiteral("chkSubDirectory"));
    chkSubDirectory->setToolTip(tr("Thumbnails of the pictures in folders below are shown too"));
    chkGridlines->setObjectName(QStringLiteral("chkGridlines"));
    chkGridlines->setToolTip(tr("Lines between rows and columns of the details"));
    chkSorted->setObjectName(QStringLiteral("chkSorted"));
    chkSorted->setToolTip(tr("A click on a heading sorts the list"));

    mTabs->setObjectName(QStringLiteral("tabPreferences"));
    mTabs->setAccessibleName(tr("Preferences"));
    mTabs->tabBar()->setAccessibleName(tr("Kinds of settings"));
    mTabs->setUsesScrollButtons(true);
    mTabs->addTab(MakeFileTab(), tr("File/Thumbnail Settings"));
    mTabs->addTab(MakeImagingTab(), tr("Imaging Settings"));
    mTabs->addTab(MakeSlotTab("Tool", mTools), tr("Quillane Custom Tools"));
    mTabs->addTab(MakeSlotTab("App", mApps), tr("Quillane Custom Applications"));

    auto* close = new QPushButton(tr("&Close"));
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setToolTip(tr("Apply all settings and close"));
    close->setDefault(true);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(close, QDialogButtonBox::AcceptRole);
    auto* all = new QVBoxLayout(this);
    all->addWidget(mTabs, 1);
    all->addWidget(buttons);
    ConnectCommand(close, &QPushButton::clicked, this, mDialogs, [this] { Apply(); });
    resize(FirstSize());
    Load();
    txtThumbX->setFocus();
}

QSize frmBrowserPreferences::FirstSize() const
{
    // Wide enough for the words of all tabs, high enough for each page.
    const QSize bar = mTabs->tabBar()->sizeHint();
    const QMargins margins = layout()->contentsMargins();
    int page = 0;
    for (const auto* area : mTabs->findChildren<QScrollArea*>()) {
        page = std::max(page, area->widget()->sizeHint().height());
    }
    const int buttons = layout()->itemAt(1)->sizeHint().height() + layout()->spacing();
    const QSize whole(bar.width() + margins.left() + margins.right() + kTabSlack,
                      bar.height() + page + buttons + margins.top() + margins.bottom() + kTabSlack);
    return kPreferencesSize.expandedTo(whole).boundedTo(WindowRoom(*this));
}

QWidget* frmBrowserPreferences::MakeThumbnailFrame()
{
    auto* frame = new QGroupBox(tr("Thumbnail View"));
    frame->setObjectName(QStringLiteral("fraThumbnailView"));
    auto* form = new QFormLayout(frame);
    form->addRow(MakePreferenceLabel(tr("Thumbnail Image &Width:"), txtThumbX), txtThumbX);
    form->addRow(MakePreferenceLabel(tr("Thumbnail Image &Height:"), txtThumbY), txtThumbY);
    form->addRow(chkSubDirectory);
    return frame;
}

QWidget* frmBrowserPreferences::MakeListFrame()
{
    auto* frame = new QGroupBox(tr("List View Options:"));
    frame->setObjectName(QStringLiteral("fraListViewOptions"));
    auto* grid = new QGridLayout(frame);
    const QString captions[] = {tr("&Large Icons"), tr("S&mall Icons"), tr("L&ist"),
                                tr("&Details")};
    for (int i = 0; i < int(optFileOptions.size()); ++i) {
        auto* option = new QRadioButton(captions[i]);
        option->setObjectName(IndexedName("optFileOptions", i));
        option->setToolTip(tr("Style of the file list"));
        optFileOptions[size_t(i)] = option;
        grid->addWidget(option, i / 2, i % 2);
    }
    grid->addWidget(chkGridlines, 2, 0);
    grid->addWidget(chkSorted, 2, 1);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    return frame;
}

QWidget* frmBrowserPreferences::MakeKeywordFrame()
{
    auto* frame = new QGroupBox(tr("Column Header Metadata Keywords (Detail List)"));
    frame->setObjectName(QStringLiteral("fraKeywords"));
    auto* form = new QFormLayout(frame);
    for (int i = 0; i < int(txtKeyword.size()); ++i) {
        auto* box = new QLineEdit;
        box->setObjectName(QStringLiteral("txtKeyword%1").arg(i + 1));
        box->setToolTip(tr("Name of the tag that column %1 of the details shows").arg(i + 4));
        txtKeyword[size_t(i)] = box;
        form->addRow(MakePreferenceLabel(tr("Keyword&%1:").arg(i + 1), box), box);
    }
    return frame;
}

QWidget* frmBrowserPreferences::MakeFileTab()
{
    auto* tab = new QWidget;
    auto* layout = new QVBoxLayout(tab);
    layout->addWidget(MakeThumbnailFrame());
    layout->addWidget(MakeListFrame());
    layout->addWidget(MakeKeywordFrame());
    layout->addStretch();
    return ScrolledPage(tab);
}

QWidget* frmBrowserPreferences::MakeVideoFrame()
{
    auto* frame = new QGroupBox(tr("Video Application for (AVI/MPEG)"));
    frame->setObjectName(QStringLiteral("fraVideoTool"));
    auto* layout = new QVBoxLayout(frame);
    const QString captions[] = {tr("Use &Quillane Media Player"),
                                tr("Use Windows &Default Video Viewer")};
    for (int i = 0; i < int(optVideoTool.size()); ++i) {
        auto* option = new QRadioButton(captions[i]);
        option->setObjectName(IndexedName("optVideoTool", i));
        option->setToolTip(i == 0 ? tr("Videos open in a window of this program; takes effect at "
                                       "once")
                                  : tr("Videos open in the desktop's own player; takes effect at "
                                       "once"));
        connect(option, &QRadioButton::clicked, this, [this, i] { mSession.gsVideoTool = i; });
        optVideoTool[size_t(i)] = option;
        layout->addWidget(option);
    }
    return frame;
}

QWidget* frmBrowserPreferences::MakeImagingTab()
{
    auto* tab = new QWidget;
    auto* saving = new QGroupBox(tr("Imaging Settings"));
    saving->setObjectName(QStringLiteral("fraImaging"));
    auto* form = new QFormLayout(saving);
    form->addRow(MakePreferenceLabel(tr("&JPEG Image Compression:"), txtJPEGValue), txtJPEGValue);
    auto* layout = new QVBoxLayout(tab);
    layout->addWidget(saving);
    layout->addWidget(MakeVideoFrame());
    layout->addStretch();
    return ScrolledPage(tab);
}

QWidget* frmBrowserPreferences::MakeSlot(const char* kind, int number, SlotRow& row)
{
    const QString word = QLatin1String(kind);
    const bool tool = word == QLatin1String("Tool");
    const QString caption =
        (tool ? tr("Custom Tool &%1") : tr("Custom Application &%1")).arg(number + 1);
    const QString title = QString(caption).remove(u'&');
    const auto name = [&](QWidget* widget, const QString& before, const char* behind) {
        widget->setObjectName(
            IndexedName((before + word + QLatin1String(behind)).toLatin1().constData(), number));
    };
    auto* frame = new QGroupBox;
    name(frame, QStringLiteral("fraCustom"), "");
    frame->setAccessibleName(title);
    row.active = new QCheckBox(caption);
    name(row.active, QStringLiteral("chkCustom"), "");
    row.active->setToolTip(tool ? tr("Show this tool in the Tools menu and the pop-up menu")
                                : tr("Show this application in the Applications menu"));
    row.caption = new QLineEdit;
    name(row.caption, QStringLiteral("txtCustom"), "");
    row.caption->setToolTip(tr("Its name in the menu; & before a letter makes it a key"));
    row.path = new QLineEdit;
    name(row.path, QStringLiteral("txtCustom"), "Path");
    row.path->setToolTip(tr("The program that is run on the current file"));
    row.browse = new QPushButton(tr("Browse for Application (.exe)..."));
    name(row.browse, QStringLiteral("cmdCustom"), "");
    row.browse->setAutoDefault(false);
    row.browse->setAccessibleName(tr("Browse for the program of %1").arg(title));
    ConnectCommand(row.browse, &QPushButton::clicked, this, mDialogs,
                   [this, path = row.path] { path->setText(mPickProgram()); });

    auto* grid = new QGridLayout(frame);
    auto* captionLabel = MakePreferenceLabel(tr("Menu Name:"), row.caption);
    auto* pathLabel = MakePreferenceLabel(tr("Program:"), row.path);
    row.caption->setAccessibleName(tr("Menu name of %1").arg(title));
    row.path->setAccessibleName(tr("Program of %1").arg(title));
    grid->addWidget(row.active, 0, 0, 1, 3);
    grid->addWidget(captionLabel, 1, 0);
    grid->addWidget(row.caption, 1, 1, 1, 2);
    grid->addWidget(pathLabel, 2, 0);
    grid->addWidget(row.path, 2, 1);
    grid->addWidget(row.browse, 2, 2);
    grid->setColumnStretch(1, 1);
    return frame;
}

QWidget* frmBrowserPreferences::MakeSlotTab(const char* kind, Four<SlotRow>& rows)
{
    auto* inside = new QWidget;
    auto* layout = new QVBoxLayout(inside);
    for (int i = 0; i < int(rows.size()); ++i) {
        layout->addWidget(MakeSlot(kind, i, rows[size_t(i)]));
    }
    layout->addStretch();
    return ScrolledPage(inside);
}

void frmBrowserPreferences::Load()
{
    setWindowTitle(PreferencesCaption(mSession.gsAppTitle));
    const PreferencesForm form = LoadPreferences(mSession, mTarget);
    for (size_t i = 0; i < txtKeyword.size(); ++i) {
        txtKeyword[i]->setText(form.txtKeyword[i]);
        optFileOptions[i]->setChecked(form.optFileOptions[i]);
    }
    txtThumbX->setText(form.txtThumbX);
    txtThumbY->setText(form.txtThumbY);
    txtJPEGValue->setText(form.txtJPEGValue);
    optVideoTool[size_t(form.optVideoTool)]->setChecked(true);
    LeadTabToTheCheckedOne(optFileOptions);
    LeadTabToTheCheckedOne(optVideoTool);
    chkGridlines->setChecked(form.chkGridlines);
    chkSorted->setChecked(form.chkSorted);
    chkSubDirectory->setChecked(form.chkSubDirectory);
    const auto show = [](const Four<CustomSlot>& four, const Four<SlotRow>& rows) {
        for (size_t i = 0; i < four.size(); ++i) {
            rows[i].active->setChecked(four[i].active == 1);
            rows[i].caption->setText(four[i].caption);
            rows[i].path->setText(four[i].path);
        }
    };
    show(form.customSlots.tools, mTools);
    show(form.customSlots.apps, mApps);
}

PreferencesForm frmBrowserPreferences::Gather() const
{
    PreferencesForm form;
    for (size_t i = 0; i < txtKeyword.size(); ++i) {
        form.txtKeyword[i] = txtKeyword[i]->text();
        form.optFileOptions[i] = optFileOptions[i]->isChecked();
    }
    form.txtThumbX = txtThumbX->text();
    form.txtThumbY = txtThumbY->text();
    form.txtJPEGValue = txtJPEGValue->text();
    form.chkGridlines = chkGridlines->isChecked();
    form.chkSorted = chkSorted->isChecked();
    form.chkSubDirectory = chkSubDirectory->isChecked();
    form.optVideoTool = optVideoTool[1]->isChecked() ? 1 : 0;
    const auto gather = [](const Four<SlotRow>& rows, Four<CustomSlot>& four) {
        for (size_t i = 0; i < rows.size(); ++i) {
            four[i] = {qint16(rows[i].active->isChecked() ? 1 : 0), rows[i].caption->text(),
                       rows[i].path->text()};
        }
    };
    gather(mTools, form.customSlots.tools);
    gather(mApps, form.customSlots.apps);
    return form;
}

void frmBrowserPreferences::Apply()
{
    try {
        ApplyPreferences(Gather(), mSession, mTarget);
    } catch (const Failure&) {
        ShowWrongNumber();
        throw;
    }
    accept();
}

void frmBrowserPreferences::ShowWrongNumber()
{
    const auto wrong = [](const QLineEdit* box, auto convert) {
        return !ResumeNext([&] { convert(box->text()); });
    };
    QLineEdit* box = wrong(txtThumbX, Int16FromText) ? txtThumbX
        : wrong(txtThumbY, Int16FromText)            ? txtThumbY
        : wrong(txtJPEGValue, Int32FromText)         ? txtJPEGValue
                                                     : nullptr;
    if (box) {
        mTabs->setCurrentIndex(box == txtJPEGValue ? 1 : 0);
        box->setFocus();
        box->selectAll();
    }
}

} // namespace quillane
