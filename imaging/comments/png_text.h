#pragma once
#include <QByteArray>
#include <QByteArrayView>
#include <memory>
#include <span>

namespace quillane {

/// The slot of a text with that keyword, -1 for a keyword without one.
qint16 PngKeywordSlot(QByteArrayView keyword);
/// The keyword of a slot's text; nullptr for a slot that no text holds.
const char* PngSlotKeyword(qint16 slot);

/// Reads text chunks of a PNG (tEXt, zTXt, iTXt) through the PNG library, without the picture
/// they belong to. One text, also one that is stored compressed, is at most
/// limits::kMaxTextBytes long; a longer one is passed over.
class PngTextReader {
public:
    PngTextReader();
    ~PngTextReader();
    PngTextReader(const PngTextReader&) = delete;
    PngTextReader& operator=(const PngTextReader&) = delete;

    /// Takes one whole chunk, from its length to its check sum; returns its text, empty when the
    /// chunk is damaged or its text too long. A chunk that the library stumbles over ends the
    /// reading: every later one is empty.
    QByteArray Take(std::span<unsigned char> chunk);

private:
    struct Run;
    std::unique_ptr<Run> mRun;
};

} // namespace quillane
