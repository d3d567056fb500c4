#include "browser/ui/frmBrowserAbout.h"

#include "browser/about_text.h"
#include "core/failure.h"

#include <QEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillane {

namespace {

constexpr char kLinkAddress[] = "address";
constexpr int kAboutIconSize = 96;

} // namespace

frmBrowserAbout::frmBrowserAbout(const QString& title, Launcher& launcher, QWidget* parent)
    : QDialog(parent),
      mLauncher(launcher)
{
    setObjectName(QStringLiteral("frmBrowserAbout"));
    setWindowTitle(AboutCaption(title));
    setModal(true);

    auto* icon = new QLabel;
    icon->setPixmap(QIcon(QStringLiteral(":/icons/quillane.svg"))
                        .pixmap(QSize(kAboutIconSize, kAboutIconSize), devicePixelRatioF()));
    icon->setAccessibleName(tr("Quillane's picture"));
    auto* name = new QLabel(title);
    name->setObjectName(QStringLiteral("lblTitle"));
    QFont large = name->font();
    large.setPointSizeF(large.pointSizeF() * 2);
    large.setBold(true);
    name->setFont(large);
    auto* version = new QLabel(VersionText());
    version->setObjectName(QStringLiteral("lblVersion"));
    auto* about = new QLabel(tr("Browse, tag, view and print folders of photographs.\n"
                                "Free software under the GNU General Public License, "
                                "version 3 or later."));
    about->setWordWrap(true);

    auto* ok = new QPushButton(tr("&OK"));
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);

    auto* texts = new QVBoxLayout;
    texts->addWidget(name);
    texts->addWidget(version);
    texts->addSpacing(8);
    texts->addWidget(about);
    texts->addSpacing(8);
    texts->addWidget(MakeLink("Label1", MakerSite(), MakerSite()), 0, Qt::AlignLeft);
    texts->addWidget(MakeLink("Label2", SupportAddress(), SupportMailLink(title)), 0,
                     Qt::AlignLeft);
    texts->addStretch();
    auto* top = new QHBoxLayout;
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addSpacing(16);
    top->addLayout(texts, 1);
    auto* bottom = new QHBoxLayout;
    bottom->addStretch();
    bottom->addWidget(ok);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(20, 20, 20, 16);
    all->addLayout(top);
    all->addSpacing(8);
    all->addLayout(bottom);
    setMinimumWidth(460);
    ok->setFocus();
}

QLabel* frmBrowserAbout::MakeLink(const char* name, const QString& text, const QString& address)
{
    auto* link = new QLabel(text);
    link->setObjectName(QLatin1String(name));
    link->setProperty(kLinkAddress, address);
    link->setAccessibleName(text);
    link->setCursor(Qt::PointingHandCursor);
    link->setFocusPolicy(Qt::TabFocus);
    link->setForegroundRole(QPalette::Link);
    QFont font = link->font();
    font.setUnderline(true);
    link->setFont(font);
    link->installEventFilter(this);
    return link;
}

void frmBrowserAbout::OpenLink(const QLabel* link)
{
    // What the system makes of the link is its own matter.
    ResumeNext([&] { mLauncher.OpenAddress(link->property(kLinkAddress).toString()); });
}

bool frmBrowserAbout::eventFilter(QObject* watched, QEvent* event)
{
    auto* link = qobject_cast<QLabel*>(watched);
    if (!link) {
        return QDialog::eventFilter(watched, event);
    }
    switch (event->type()) {
    case QEvent::Enter:
    case QEvent::FocusIn: {
        QPalette red = link->palette();
        red.setColor(QPalette::Link, QColor(255, 0, 0));
        link->setPalette(red);
        break;
    }
    case QEvent::Leave:
    case QEvent::FocusOut:
        link->setPalette(QPalette());
        break;
    case QEvent::MouseButtonRelease:
        OpenLink(link);
        return true;
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space) {
            OpenLink(link);
            return true;
        }
        break;
    }
    default:
        break;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace quillane
