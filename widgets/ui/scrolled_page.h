#pragma once
#include <QScrollArea>

namespace quillane {

/// A page of tabs that scrolls where a low screen shows a part of it. Owns the page.
QScrollArea* ScrolledPage(QWidget* page);

} // namespace quillane
