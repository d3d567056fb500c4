#pragma once
#include <QWidget>

class QButtonGroup;

namespace quillane {

/// Eight buttons around a middle, of which one is down: a direction of the compass.
class Compass : public QWidget {
    Q_OBJECT
public:
    explicit Compass(qint32 direction, QWidget* parent = nullptr);
    qint32 Direction() const;            ///< 0 north, clockwise to 7
    void SetDirection(qint32 direction); ///< one beyond 7 or below 0 is taken as north

Q_SIGNALS:
    /// By whatever changed it.
    void DirectionChanged(int direction);

private:
    QButtonGroup* mButtons;
};

} // namespace quillane
