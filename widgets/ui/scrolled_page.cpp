#include "widgets/ui/scrolled_page.h"

namespace quillane {

QScrollArea* ScrolledPage(QWidget* page)
{
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(page);
    // The page of the tab shows through.
    area->viewport()->setAutoFillBackground(false);
    page->setAutoFillBackground(false);
    return area;
}

} // namespace quillane
