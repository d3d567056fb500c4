#pragma once
#include "imaging/engine.h"
#include <QDialog>

namespace quillane {

/// The window that draws the histogram of a picture.
class Histogram : public QDialog {
    Q_OBJECT
public:
    explicit Histogram(const EngineInstance& LEAD1, QWidget* parent = nullptr);
};

} // namespace quillane
