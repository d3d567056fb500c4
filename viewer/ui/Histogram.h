#pragma once
#include "imaging/engine.h"
#include "viewer/histogram_lines.h"
#include "widgets/background_jobs.h"
#include <QDialog>

class QButtonGroup;
class QComboBox;
class QLabel;

namespace quillane {

/// The drawn histogram: a line for each of 256 levels.
class HistogramChart : public QWidget {
    Q_OBJECT
public:
    explicit HistogramChart(QWidget* parent = nullptr);
    /// The line of a level of 0..255, in the scale of viewer/histogram_lines.h.
    const HistogramLine& TheLine(int level) const { return mDrawing.lines[size_t(level)]; }
    qint64 Max() const { return mDrawing.max; } ///< 0 while nothing is drawn
    /// What to draw, and in which colour; an invalid one: that of text.
    void Draw(const HistogramDrawing& drawing, const processing::HistogramTable& table,
              const QColor& colour);
    /// Words in place of lines.
    void ShowWords(const QString& words);
    const QString& Words() const { return mWords; } ///< empty while lines are drawn
    QSize sizeHint() const override { return {540, 240}; }
    QSize minimumSizeHint() const override { return {270, 120}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    /// Where the lines stand, and how many device pixels a unit of the scale has.
    QRectF Plot() const;

    HistogramDrawing mDrawing;
    processing::HistogramTable mTable{};
    QColor mColour;
    QString mWords;
};

/// The window that draws the histogram of a picture, or of the region in it.
class Histogram : public QDialog {
    Q_OBJECT
public:
    /// LEAD1 lives longer than the window; each choice of a channel counts what it holds then.
    explicit Histogram(const EngineInstance& LEAD1, QWidget* parent = nullptr);

private:
    void DrawChannel();
    void ShowTable(const processing::HistogramTable& table, int channel);
    void ShowFailure(const Failure& failure);
    void PlaceInMiddle();

    const EngineInstance& mLead; ///< LEAD1 of the window that opened this one
    HistogramChart* mChart;
    QButtonGroup* mChannels;
    QComboBox* mFilter;
    QLabel* mMost;
    QLabel* mHalf;
    int mAsked = 0; ///< numbers the counts, so that only the last one is shown
    BackgroundJobs mJobs;
};

} // namespace quillane
