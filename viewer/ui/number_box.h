#pragma once
#include <QSpinBox>

namespace quillane {

/// A box for a whole number that may be shown as hundredths or tenths of it. Any number can be
/// typed; one out of range is brought into it. Page keys step further than arrow keys.
class NumberBox : public QSpinBox {
    Q_OBJECT
public:
    /// divisor: 1, 10 or 100; the shown number is the value divided by it.
    explicit NumberBox(qint32 divisor = 1, QWidget* parent = nullptr);
    void SetPageStep(int step) { mPage = step; } ///< of a page key

protected:
    QString textFromValue(int value) const override;
    int valueFromText(const QString& text) const override;
    QValidator::State validate(QString& text, int& position) const override;
    void fixup(QString& text) const override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    /// The number of a text without its unit; whether it is one.
    bool Read(const QString& text, double& number) const;

    qint32 mDivisor;
    int mPage = 10;
};

} // namespace quillane
