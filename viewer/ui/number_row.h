#pragma once
#include "viewer/effect_ranges.h"
#include <QObject>

class QGridLayout;
class QSlider;

namespace quillane {

class NumberBox;

/// A number of a dialog: label, slider and box in a row, which always show the same.
class NumberRow : public QObject {
    Q_OBJECT
public:
    /// Adds the controls as the last row of a grid. A start out of range is brought into it.
    NumberRow(const EffectRange& range, qint32 start, QGridLayout& grid, QObject* parent);
    qint32 Value() const;
    void SetValue(qint32 value); ///< brought into range
    void Reset();                ///< back to the start
    /// Puts the keyboard to the slider.
    void TakeFocus();

Q_SIGNALS:
    /// By whatever changed it.
    void ValueChanged(int value);

private:
    EffectRange mRange;
    qint32 mStart;
    QSlider* mSlider;
    NumberBox* mBox;
};

} // namespace quillane
