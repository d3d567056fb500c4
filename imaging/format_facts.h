#pragma once
// What people ask about a format and its functions do not tell: who reads it, in which depths, how
// its variants are packed, and why a format is refused. FORMATS.md is made from these tables, the
// codec table and the table of variants.
#include <QString>
#include <span>

namespace quillane {

/// Which of a file's pictures can be had.
enum class PagesRead : quint8 {
    One,          ///< the format holds one
    FirstCounted, ///< the first; the facts tell how many there are
    FirstOnly,    ///< the first; the others are not counted
    Any,          ///< whichever is asked for
};

/// How a codec reads its files.
struct ReadFacts {
    const char* codec;  ///< Codec::name
    const char* reader; ///< the library, or what there is of our own; nullptr: nothing is read
    const char* depths; ///< bits per pixel
    PagesRead pages;
    const char* note;              ///< what people should know besides, or nullptr
    const char* refused = nullptr; ///< why files of the format are refused
};

/// How the variant of a format code lays its samples.
struct WriteFacts {
    qint16 format;
    const char* packing; ///< sampling and compression
};

/// Why a format code of the table cannot be written: words that follow "cannot be written: ".
struct WriteRefusal {
    qint16 format;
    const char* why;
};

/// One row for every codec.
std::span<const ReadFacts> AllReadFacts();
/// One row for every format code that can be written.
std::span<const WriteFacts> AllWriteFacts();
/// One row for every other code of the format table.
std::span<const WriteRefusal> AllWriteRefusals();

/// nullptr for a name that no codec has.
const ReadFacts* FindReadFacts(QByteArrayView codec);
/// nullptr for a code that cannot be written.
const WriteFacts* FindWriteFacts(qint16 format);
/// Why the code cannot be written; empty for one that can, or that the format table lacks.
QString WhyNotWritten(qint16 format);

} // namespace quillane
