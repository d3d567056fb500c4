#pragma once
#include <QByteArrayView>
#include <vector>

namespace quillane::codecs {

/// One pair of a drawing exchange file: a code that says what the value means, and the value.
struct DxfGroup {
    int code = 0;
    QByteArrayView text; ///< without blanks around it; of a binary file only for text
    double number = 0;   ///< of a binary file
    bool written = true; ///< the value is text, a number has to be read from it

    /// The value as a number; 0 for what is none.
    double Number() const;
    /// The value as a whole number within 32 bits; 0 for what is none.
    int Whole() const;
};

/// Reads the pairs of a written or a binary file one after the other.
class DxfGroups {
public:
    explicit DxfGroups(QByteArrayView bytes);
    /// The next pair; false at the end of the file and at what is no pair.
    bool Next(DxfGroup& group);
    /// The pair that Next gave last is given once more.
    void Back() { mAt = mBefore; }
    qsizetype At() const { return mAt; }
    void Seek(qsizetype to) { mAt = to; }
    bool IsBinary() const { return mBinary; }

private:
    bool NextWritten(DxfGroup& group);
    bool NextBinary(DxfGroup& group);
    bool Line(QByteArrayView& line);
    quint64 Little(int count);
    QByteArrayView mBytes;
    qsizetype mAt = 0;
    qsizetype mBefore = 0;
    bool mBinary = false;
    int mCodeBytes = 2;
};

/// Whether the bytes begin as such a file, or, with nothing but remarks in them, might.
bool DxfIsStart(QByteArrayView head, bool trusting);

/// One entity: its pairs but for the first, which names it.
struct DxfEntity {
    QByteArrayView kind;
    std::vector<DxfGroup> groups;

    /// The first value of that code as a number, or `otherwise`.
    double Number(int code, double otherwise = 0) const;
    int Whole(int code, int otherwise = 0) const;
    /// The first value of that code as text; empty when there is none.
    QByteArrayView Text(int code) const;
    bool Has(int code) const;
};

} // namespace quillane::codecs
