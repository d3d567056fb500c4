#pragma once
// The work variables of a run over the catalogue, and how a row's value is made of them. A field
// that cannot be read leaves bytes, triple and integer as the field before it left them, and its
// row then shows those: that belongs to what the catalogue promises.
#include "imaging/comments/comment_value.h"
#include "imaging/comments/slots.h"

namespace quillane {

/// What the fields of one run are read into. An index beyond an array's end is kFailureIndex.
class CatalogueWork {
public:
    /// Reads a field's value in the shape that its row expects. Text and rational begin empty
    /// with every field; the others keep what they held when the value has another shape, or
    /// the integer does not fit 16 bits.
    void Read(const CommentValue& value, SlotShape shape);

    const QString& Text() const { return mText; }
    qint16 Integer() const { return mInteger; }
    /// One byte of the byte vector, as a number or as a character.
    int ByteAt(qsizetype index) const;
    QChar CharacterAt(qsizetype index) const;
    bool HasBytes() const { return !mBytes.isEmpty(); }
    /// An element of the rational: 0 numerator, 1 denominator.
    double RationalAt(qsizetype index) const;
    double TripleAt(qsizetype index) const;

private:
    QString mText;
    qint16 mInteger = 0;
    QVector<double> mRational;
    QVector<double> mTriple;
    QByteArray mBytes;
};

} // namespace quillane
