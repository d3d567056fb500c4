#pragma once
#include <QByteArray>
#include <QByteArrayView>
#include <vector>

namespace quillane::carry {

/// One chunk of a PNG.
struct PngPart {
    QByteArray bytes; ///< whole, from its length to its check sum
    QByteArrayView Type() const { return QByteArrayView(bytes).sliced(4, 4); }
    QByteArrayView Content() const { return QByteArrayView(bytes).sliced(8, bytes.size() - 12); }
    bool Is(const char* type) const { return Type() == QByteArrayView(type); }
};

struct PngParts {
    std::vector<PngPart> chunks; ///< through IEND, where there is one
    QByteArray behind;           ///< whatever follows, as it is
    QByteArray Joined() const;
    /// Index of the first chunk of that type; -1 for none.
    qsizetype Find(const char* type) const;
};

/// Failure kFailureUnreadable for what does not begin as a PNG does, kFailureLimit for more
/// chunks than any picture has.
PngParts CutPng(const QByteArray& bytes);
/// A chunk with its check sum.
PngPart MakePngPart(const char* type, QByteArrayView content);
/// A text chunk: plain where the text has ASCII letters only, else the kind that holds UTF-8.
/// Failure kFailureLimit for a text that no reader takes.
PngPart MakePngText(const char* keyword, const QString& text);
/// Whether a chunk holds text, of whatever kind, and its keyword.
bool IsPngText(const PngPart& part);
QByteArrayView PngTextKeyword(const PngPart& part);

} // namespace quillane::carry
