#pragma once
#include <QPushButton>

namespace quillane {

/// A button that shows a colour and asks for another one when it is pressed.
class ColourButton : public QPushButton {
    Q_OBJECT
public:
    /// colour: red in the low byte.
    explicit ColourButton(qint32 colour, QWidget* parent = nullptr);
    qint32 Colour() const { return mColour; }
    void SetColour(qint32 colour); ///< red in the low byte; the other bits do not count

Q_SIGNALS:
    /// By whatever changed it.
    void ColourChanged();

private:
    void Ask();

    qint32 mColour;
};

} // namespace quillane
