#pragma once
#include "core/failure.h"
#include <QByteArray>
#include <QString>
#include <QVector>
#include <variant>

namespace quillane {

/// One metadata field in the shape of its slot: absent, text, integer, rationals (numerator
/// and denominator in turn: two elements for one rational, six for a triple) or bytes.
class CommentValue {
public:
    CommentValue() = default;
    CommentValue(QString text) : mValue(std::move(text)) { }
    CommentValue(qint32 integer) : mValue(integer) { }
    CommentValue(QVector<double> rationals) : mValue(std::move(rationals)) { }
    CommentValue(QByteArray bytes) : mValue(std::move(bytes)) { }

    bool IsEmpty() const { return std::holds_alternative<std::monostate>(mValue); }
    /// The value in the asked shape; Failure kFailureType for any other, an absent one too.
    const QString& Text() const { return Get<QString>(); }
    qint32 Integer() const { return Get<qint32>(); }
    const QVector<double>& Rationals() const { return Get<QVector<double>>(); }
    const QByteArray& Bytes() const { return Get<QByteArray>(); }
    /// The value where it has the shape of T, else nullptr.
    template <typename T> const T* If() const { return std::get_if<T>(&mValue); }
    bool operator==(const CommentValue&) const = default;

private:
    template <typename T> const T& Get() const
    {
        if (const T* held = std::get_if<T>(&mValue)) {
            return *held;
        }
        throw Failure(kFailureType, QStringLiteral("This field holds no value of that kind."));
    }
    std::variant<std::monostate, QString, qint32, QVector<double>, QByteArray> mValue;
};

} // namespace quillane
