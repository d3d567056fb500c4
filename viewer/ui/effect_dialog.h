#pragma once
#include "viewer/effect_ranges.h"
#include <QDialog>
#include <QPointer>

class QGridLayout;

namespace quillane {

class NumberRow;
class PreviewPane;

/// The frame that all dialogs of effects share: the preview, rows of controls, Reset, OK and
/// Cancel.
class EffectDialog : public QDialog {
    Q_OBJECT
public:
    /// name: of the dialog for tests and tools; title: as the menu entry names the effect.
    EffectDialog(QWidget* owner, const QString& name, const QString& title, const Bitmap& picture,
                 const Region& region);

    /// A row for a number.
    NumberRow* AddNumber(const EffectRange& range, qint32 start);
    /// A row for any other control, with a label that may be empty.
    void AddControl(const QString& label, QWidget* control);
    /// What Reset does besides setting the numbers to their starts.
    void OnReset(std::function<void()> reset) { mResets.push_back(std::move(reset)); }
    /// Tells what is to be tried with the values of now. Call when all rows are there.
    void SetWish(std::function<EffectWish()> wish);
    /// A value has changed: the preview follows.
    void ValuesChanged();

    /// Shows the dialog until it is answered; `take` then reads the values. The dialog is gone
    /// afterwards. Failure kFailureCancelled when it was cancelled, or its owner closed or
    /// destroyed.
    void Run(const std::function<void()>& take);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ResetAll();

    PreviewPane* mPane;
    QGridLayout* mRows;
    QPointer<QWidget> mOwner;
    std::vector<std::function<void()>> mResets;
    std::function<EffectWish()> mWish;
    bool mResetting = false;
};

} // namespace quillane
