#pragma once
// The run-length codes of ITU-T T.4 and T.6, for finding out how wide and long a bare stream is.
#include <QByteArray>
#include <vector>

namespace quillane::worker {

/// Bits of a stream, one after the other.
class FaxBits {
public:
    explicit FaxBits(QByteArray bytes);
    /// Takes bytes with their lowest bit first from here on.
    void SetLowBitFirst(bool low) { mLow = low; }

    qint64 Size() const { return qint64(mBytes.size()) * 8; }
    qint64 Position() const { return mAt; }
    void Seek(qint64 position) { mAt = position; }
    qint64 Left() const { return Size() - mAt; }
    /// The next `count` (at most 24) bits without taking them; zeros behind the end.
    quint32 Peek(int count) const;
    void Take(int count) { mAt += count; }

private:
    QByteArray mBytes;
    qint64 mAt = 0;
    bool mLow = false;
};

/// Length of the next run of white or black, its make-up codes added; -1 where no code stands.
int TakeFaxRun(FaxBits& bits, bool black);
/// Goes behind the next end-of-line mark that begins within `reach` bits; false when none does.
bool SkipToFaxLine(FaxBits& bits, qint64 reach);
/// Whether the next bits are an end-of-line mark: eleven zeros or more and a one.
bool AtFaxLineEnd(const FaxBits& bits);

/// How the decoding of one line went.
enum class FaxLine : quint8 { Good, Bad, OutOfBits };
/// Decodes one line of two-dimensional codes against the places of change of the line before, and
/// puts its own there.
FaxLine TakeFaxLine2D(FaxBits& bits, int width, std::vector<int>& changes);

} // namespace quillane::worker
