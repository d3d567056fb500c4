#include "viewer/ui/number_box.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <algorithm>
#include <cmath>

namespace quillane {

namespace {

constexpr int kNumberMostUnits = 32;

} // namespace

NumberBox::NumberBox(qint32 divisor, QWidget* parent) : QSpinBox(parent), mDivisor(divisor)
{
    setAccelerated(true);
    lineEdit()->setMaxLength(kNumberMostUnits);
    lineEdit()->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

QString NumberBox::textFromValue(int value) const
{
    if (mDivisor == 1) {
        return QString::number(value);
    }
    QLocale plain = locale();
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    return plain.toString(double(value) / mDivisor, 'f', mDivisor == 10 ? 1 : 2);
}

bool NumberBox::Read(const QString& text, double& number) const
{
    QString digits = text;
    const QString unit = suffix();
    if (!unit.isEmpty() && digits.endsWith(unit)) {
        digits.chop(unit.size());
    }
    digits = digits.trimmed();
    digits.replace(u',', u'.');
    bool good = false;
    number = digits.toDouble(&good);
    return good && std::isfinite(number);
}

int NumberBox::valueFromText(const QString& text) const
{
    double number = 0;
    if (!Read(text, number)) {
        return value();
    }
    return int(std::lround(std::clamp(number * mDivisor, double(minimum()), double(maximum()))));
}

QValidator::State NumberBox::validate(QString& text, int& /*position*/) const
{
    double number = 0;
    if (Read(text, number)) {
        return QValidator::Acceptable;
    }
    QString rest = text;
    if (!suffix().isEmpty() && rest.endsWith(suffix())) {
        rest.chop(suffix().size());
    }
    const bool part = std::all_of(rest.begin(), rest.end(), [](QChar unit) {
        return unit.isSpace() || (unit >= u'0' && unit <= u'9') || unit == u'-' || unit == u'+'
            || unit == u'.' || unit == u',';
    });
    return part ? QValidator::Intermediate : QValidator::Invalid;
}

void NumberBox::fixup(QString& text) const
{
    text = textFromValue(value()) + suffix();
}

void NumberBox::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown) {
        setValue(value() + (event->key() == Qt::Key_PageUp ? mPage : -mPage));
        event->accept();
        return;
    }
    QSpinBox::keyPressEvent(event);
}

} // namespace quillane
