#include "search/ui/frmBrowserSearch.h"

#include "platform/ui/command_connector.h"
#include "platform/ui/window_room.h"
#include "widgets/ui/scrolled_page.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QTabBar>
#include <QVBoxLayout>

namespace quillane {

namespace {

using enum EntryKind;
constexpr EntryState kSearchBuilt = EntryState::Built;

constexpr MenuEntry kSearchMenu[] = {
    {"", "mnuFile", u"&File", Menu},
    {"", "mnuOptions", u"&Options", Menu},
    {"mnuFile", "mnuExit", u"&Exit", Entry, kSearchBuilt, "Ctrl+W", "window-close"},
    {"mnuOptions", "mnuMatchCase", u"Match Case", Check},
    {"mnuOptions", "mnuMatchWord", u"Match Whole Word", Check},
};

constexpr int kSearchRows = 4;
constexpr int kPersonalTab = 1;
constexpr int kLeastKeywordWidth = 180; // logical pixels
constexpr int kLeastNumberWidth = 90;

/// A text box of a row, named by its array and its index in it.
QLineEdit* RowBox(const char* name, int index, const QString& spoken, const QString& tip)
{
    auto* box = new QLineEdit;
    box->setObjectName(QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(index));
    box->setAccessibleName(QStringLiteral("%1 %2").arg(spoken).arg(index + 1));
    box->setToolTip(tip);
    return box;
}

} // namespace

frmBrowserSearch::frmBrowserSearch(Session& session, SettingsStore& store, SearchCriteria& criteria,
                                   Platform platform, BrowserHost& host, QWidget* parent)
    : QDialog(parent),
      mSession(session),
      mStore(store),
      mCriteria(criteria),
      mPlatform(platform),
      mHost(host),
      mBar(new QMenuBar(this)),
      mMenus(kSearchMenu, mBar, this),
      SSTab1(new QTabWidget)
{
    setObjectName(QStringLiteral("frmBrowserSearch"));
    setModal(true);
    setAttribute(Qt::WA_DeleteOnClose);
    SSTab1->setObjectName(QStringLiteral("SSTab1"));
    SSTab1->setAccessibleName(tr("Kinds of search"));
    SSTab1->tabBar()->setAccessibleName(tr("Kinds of search"));
    QScrollArea* page = BuildPage();
    SSTab1->addTab(page, QStringLiteral("Custom Search"));
    SSTab1->addTab(new QWidget, QStringLiteral("(Personal Information"));

    auto* all = new QVBoxLayout(this);
    all->setMenuBar(mBar);
    all->addWidget(SSTab1, 1);
    all->addWidget(BuildButtons());
    // As high as its rows, or as the screen.
    const QSize more = page->widget()->sizeHint() - page->sizeHint();
    resize((sizeHint() + more.expandedTo({})).boundedTo(WindowRoom(*this)));

    const auto command = [this](const char* name, auto&& action) {
        ConnectCommand(mMenus.Action(QLatin1String(name)), &QAction::triggered, this,
                       mPlatform.dialogs, action);
    };
    command("mnuExit", [this] {
        SaveForm();
        done(Accepted);
    });
    command("mnuMatchCase",
            [this] { mSession.matchCase = mMenus.IsChecked(QStringLiteral("mnuMatchCase")); });
    command("mnuMatchWord",
            [this] { mSession.matchWord = mMenus.IsChecked(QStringLiteral("mnuMatchWord")); });
    mNumeric[0].check->setFocus();
}

QScrollArea* frmBrowserSearch::BuildPage()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(BuildNumericFrame());
    layout->addWidget(BuildTextFrame());
    layout->addStretch();
    // A low screen shows a part of the rows, and the buttons all the same.
    return ScrolledPage(page);
}

QCheckBox* frmBrowserSearch::AddCheck(const char* name, int index, int mnemonic,
                                      SearchCriterion& row)
{
    auto* check = new QCheckBox(QStringLiteral("&%1").arg(mnemonic));
    check->setObjectName(QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(index));
    check->setAccessibleName(tr("Criterion %1 takes part").arg(mnemonic));
    check->setToolTip(tr("Files must meet this row"));
    connect(check, &QCheckBox::clicked, this,
            [&row](bool on) { row.checked = on ? kTrue : kFalse; });
    return check;
}

QGroupBox* frmBrowserSearch::BuildNumericFrame()
{
    auto* frame = new QGroupBox(QStringLiteral("Numeric Based Search Settings"));
    frame->setObjectName(QStringLiteral("fraNumeric"));
    auto* grid = new QGridLayout(frame);
    grid->addWidget(new QLabel(QStringLiteral("Metadata Keyword")), 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("Numeric Value Range Search")), 0, 2, 1, 3);
    for (int i = 0; i < kSearchRows; ++i) {
        Row& row = mNumeric[size_t(i)];
        row.check = AddCheck("chkNumeric", i, i + 1, mCriteria.searchNumeric[size_t(i)]);
        row.keyword = RowBox("txtNumericKeyword", i, tr("Keyword of numeric row"),
                             tr("Name of a tag, for example ISO"));
        row.first = RowBox("txtNumericInfo", i, tr("Lowest value of numeric row"),
                           tr("Lowest value, or the exact one when there is no highest"));
        row.high = RowBox("txtNumericInfoHigh", i, tr("Highest value of numeric row"),
                          tr("Highest value; may be left empty"));
        row.keyword->setMinimumWidth(kLeastKeywordWidth);
        row.first->setMinimumWidth(kLeastNumberWidth);
        row.high->setMinimumWidth(kLeastNumberWidth);
        grid->addWidget(row.check, i + 1, 0);
        grid->addWidget(row.keyword, i + 1, 1);
        grid->addWidget(row.first, i + 1, 2);
        grid->addWidget(new QLabel(QStringLiteral("–")), i + 1, 3);
        grid->addWidget(row.high, i + 1, 4);
    }
    grid->setColumnStretch(1, 2);
    grid->setColumnStretch(2, 1);
    grid->setColumnStretch(4, 1);
    return frame;
}

QGroupBox* frmBrowserSearch::BuildTextFrame()
{
    auto* frame = new QGroupBox(QStringLiteral("Text Based Search Settings"));
    frame->setObjectName(QStringLiteral("fraCharacter"));
    auto* grid = new QGridLayout(frame);
    grid->addWidget(new QLabel(QStringLiteral("Meadata Keyword")), 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("Text Value Search")), 0, 2);
    for (int i = 0; i < kSearchRows; ++i) {
        Row& row = mCharacter[size_t(i)];
        row.check =
            AddCheck("chkCharacter", i, kSearchRows + i + 1, mCriteria.searchCharacter[size_t(i)]);
        row.keyword = RowBox("txtCharacterKeyword", i, tr("Keyword of text row"),
                             tr("Name of a tag, for example City"));
        row.first = RowBox("txtCharacterInfo", i, tr("Wanted text of text row"),
                           tr("Text that the tag's value must contain"));
        row.keyword->setMinimumWidth(kLeastKeywordWidth);
        grid->addWidget(row.check, i + 1, 0);
        grid->addWidget(row.keyword, i + 1, 1);
        grid->addWidget(row.first, i + 1, 2);
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(2, 1);
    return frame;
}

QWidget* frmBrowserSearch::BuildButtons()
{
    const auto button = [](const char* name, const QString& caption, const QString& spoken) {
        auto* made = new QPushButton(caption);
        made->setObjectName(QLatin1String(name));
        made->setAccessibleName(spoken);
        made->setAutoDefault(false);
        return made;
    };
    auto* okay = button("cmdOkay", QStringLiteral("&Search"), tr("Search"));
    auto* cancel = button("cmdCancel", QStringLiteral("&Cancel"), tr("Cancel"));
    auto* reset = button("cmdReset", QStringLiteral("Clear/Reset"), tr("Clear/Reset"));
    reset->setToolTip(tr("The rows are clear each time this window opens"));
    cancel->setToolTip(tr("Shows all files again with the next refresh"));
    okay->setDefault(true);
    ConnectCommand(okay, &QPushButton::clicked, this, mPlatform.dialogs, [this] { Search(); });
    ConnectCommand(cancel, &QPushButton::clicked, this, mPlatform.dialogs, [this] { reject(); });

    auto* bar = new QWidget;
    auto* line = new QHBoxLayout(bar);
    line->setContentsMargins({});
    line->addWidget(reset);
    line->addStretch();
    line->addWidget(okay);
    line->addWidget(cancel);
    return bar;
}

void frmBrowserSearch::setVisible(bool visible)
{
    if (visible && !mFormLoaded) {
        mFormLoaded = true;
        LoadForm();
    }
    QDialog::setVisible(visible);
}

void frmBrowserSearch::LoadForm()
{
    setWindowTitle(mSession.gsAppTitle + QStringLiteral("  Search Image Metadata"));
    SSTab1->setTabVisible(kPersonalTab, false);
    LoadSearchSettings(mStore, mCriteria, mSession);
    mMenus.SetChecked(QStringLiteral("mnuMatchCase"), mSession.matchCase);
    mMenus.SetChecked(QStringLiteral("mnuMatchWord"), mSession.matchWord);
}

void frmBrowserSearch::SaveForm()
{
    SaveSearchSettings(mStore, mCriteria, mSession);
    mStore.Flush();
}

void frmBrowserSearch::Search()
{
    mHost.SetSearchOn(true);
    mPlatform.loop.ProcessEvents();
    done(Accepted);
}

void frmBrowserSearch::reject()
{
    mHost.SetSearchOn(false);
    done(Rejected);
}

void frmBrowserSearch::closeEvent(QCloseEvent* event)
{
    // Closed by its frame: the state of the search stays as it is.
    done(Rejected);
    event->setAccepted(!isVisible());
}

void frmBrowserSearch::done(int result)
{
    if (mFormLoaded) {
        const bool read = RunCommand(mPlatform.dialogs, [this] {
            ReadSearchRows(Texts(), mCriteria);
            SaveForm();
        });
        if (!read && result == Accepted) {
            ShowUnfit();
            return;
        }
        mFormLoaded = false;
    }
    QDialog::done(result);
}

void frmBrowserSearch::ShowUnfit()
{
    for (const Row& row : mNumeric) {
        for (QLineEdit* box : {row.first, row.high}) {
            if (!ResumeNext([box] { BoundOfText(box->text()); })) {
                box->setFocus();
                box->selectAll();
                return;
            }
        }
    }
}

SearchWindowTexts frmBrowserSearch::Texts() const
{
    SearchWindowTexts texts;
    for (size_t i = 0; i < texts.character.size(); ++i) {
        const Row& row = mCharacter[i];
        texts.character[i] = {
            row.check->isChecked(), row.keyword->text(), row.first->text(), {}, {}};
    }
    for (size_t i = 0; i < texts.numeric.size(); ++i) {
        const Row& row = mNumeric[i];
        texts.numeric[i] = {
            row.check->isChecked(), row.keyword->text(), {}, row.first->text(), row.high->text()};
    }
    return texts;
}

} // namespace quillane
