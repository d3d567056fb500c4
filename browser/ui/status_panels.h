#pragma once
#include <QFrame>
#include <QStatusBar>
#include <array>

namespace quillane {

/// One panel of the status bar: a text that is elided where it is too long.
class StatusPanel : public QFrame {
    Q_OBJECT
public:
    explicit StatusPanel(QWidget* parent = nullptr);
    /// Shows this text from now on; the tool tip has it whole.
    void SetText(const QString& text);
    const QString& Text() const { return mText; }
    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString mText;
};

/// The four text panels of StatusBar1. A transient message covers them for some seconds.
class StatusPanels {
public:
    explicit StatusPanels(QStatusBar* bar);
    void SetText(int panel, const QString& text); ///< panel 1 to 4; others are ignored
    QString Text(int panel) const;
    /// One quiet line that goes away by itself.
    void Tell(const QString& message);

private:
    QStatusBar* mBar;
    std::array<StatusPanel*, 4> mPanels{};
};

} // namespace quillane
