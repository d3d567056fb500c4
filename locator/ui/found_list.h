#pragma once
#include "locator/found_model.h"
#include <QHash>
#include <QListView>
#include <array>

namespace quillane {

/// The rows of a search. They scroll sideways as far as the widest of them.
class FoundList : public QListView {
    Q_OBJECT
public:
    /// loop writes the dates.
    explicit FoundList(const UiLoop& loop, QWidget* parent = nullptr);

    void Clear(); ///< no rows any more
    /// Adds rows and notes the widest.
    void Append(const std::vector<LocatorSearch::Batch>& batches);
    const FoundModel& Rows() const { return *mModel; }
    /// The greatest width of a row's text so far, in units of nine logical pixels.
    qint32 WidestText() const { return mWidestText; }
    /// How far the rows reach sideways, in logical pixels: WidestText * 9.
    int HorizontalExtent() const;
    /// Paths of the selected rows, from the top.
    QStringList SelectedPaths() const;

protected:
    void changeEvent(QEvent* event) override;

private:
    class Delegate;
    void ForgetWidths();
    qreal WidthOf(QStringView text);
    void Measure(const std::vector<LocatorSearch::Batch>& batches);
    qreal DateWidth();

    const UiLoop& mLoop;
    FoundModel* mModel;
    std::array<qreal, 0x180> mUsualWidths; ///< of the first units, in the list's font; -1: open
    QHash<char16_t, qreal> mWidths;        ///< of others
    qreal mDateWidth = -1;
    qint32 mWidestText = 0;
};

} // namespace quillane
