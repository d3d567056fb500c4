#pragma once
#include <QLabel>

namespace quillane {

/// A line of text that shows as much of itself as there is room for; a tool tip has the rest.
class StatusLine : public QLabel {
    Q_OBJECT
public:
    using QLabel::QLabel;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
};

} // namespace quillane
