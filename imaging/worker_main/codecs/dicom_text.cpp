#include "imaging/worker_main/codecs/dicom_text.h"
#include <QStringDecoder>
#include <vector>

namespace quillane::worker {

namespace {

/// How bytes of a character set become Unicode.
enum class DicomSet : quint8 {
    Ascii,
    Direct,      ///< all bytes, in a converter's own encoding
    JisKatakana, ///< one byte each in the upper half
    JisKanji,    ///< pairs in the lower half, JIS X 0208
    JisKanji2,   ///< pairs in the lower half, JIS X 0212
};

struct DicomSetName {
    const char* term;    ///< as a file names it
    const char* iso2022; ///< the same where sets are switched
    DicomSet kind;
    const char* converter; ///< for Direct
};
constexpr DicomSetName kDicomSets[] = {
    {"ISO_IR 6", "ISO 2022 IR 6", DicomSet::Ascii, ""},
    {"ISO_IR 100", "ISO 2022 IR 100", DicomSet::Direct, "ISO-8859-1"},
    {"ISO_IR 101", "ISO 2022 IR 101", DicomSet::Direct, "ISO-8859-2"},
    {"ISO_IR 109", "ISO 2022 IR 109", DicomSet::Direct, "ISO-8859-3"},
    {"ISO_IR 110", "ISO 2022 IR 110", DicomSet::Direct, "ISO-8859-4"},
    {"ISO_IR 144", "ISO 2022 IR 144", DicomSet::Direct, "ISO-8859-5"},
    {"ISO_IR 127", "ISO 2022 IR 127", DicomSet::Direct, "ISO-8859-6"},
    {"ISO_IR 126", "ISO 2022 IR 126", DicomSet::Direct, "ISO-8859-7"},
    {"ISO_IR 138", "ISO 2022 IR 138", DicomSet::Direct, "ISO-8859-8"},
    {"ISO_IR 148", "ISO 2022 IR 148", DicomSet::Direct, "ISO-8859-9"},
    {"ISO_IR 203", "ISO 2022 IR 203", DicomSet::Direct, "ISO-8859-15"},
    {"ISO_IR 166", "ISO 2022 IR 166", DicomSet::Direct, "TIS-620"},
    {"ISO_IR 13", "ISO 2022 IR 13", DicomSet::JisKatakana, ""},
    {"ISO 2022 IR 87", "ISO 2022 IR 87", DicomSet::JisKanji, ""},
    {"ISO 2022 IR 159", "ISO 2022 IR 159", DicomSet::JisKanji2, ""},
    {"ISO 2022 IR 149", "ISO 2022 IR 149", DicomSet::Direct, "EUC-KR"},
    {"ISO 2022 IR 58", "ISO 2022 IR 58", DicomSet::Direct, "GB2312"},
    {"ISO_IR 192", "ISO_IR 192", DicomSet::Direct, "UTF-8"},
    {"GB18030", "GB18030", DicomSet::Direct, "GB18030"},
    {"GBK", "GBK", DicomSet::Direct, "GBK"},
};

/// What follows an escape byte, and the set it switches to.
struct DicomEscape {
    const char* bytes;
    const char* term;
    bool lower; ///< it replaces the lower half of the codes, else the upper one
};
constexpr DicomEscape kDicomEscapes[] = {
    {"(B", "ISO_IR 6", true},         {"(J", "ISO_IR 6", true},
    {"$B", "ISO 2022 IR 87", true},   {"$@", "ISO 2022 IR 87", true},
    {"$(D", "ISO 2022 IR 159", true}, {")I", "ISO_IR 13", false},
    {"-A", "ISO_IR 100", false},      {"-B", "ISO_IR 101", false},
    {"-C", "ISO_IR 109", false},      {"-D", "ISO_IR 110", false},
    {"-L", "ISO_IR 144", false},      {"-G", "ISO_IR 127", false},
    {"-F", "ISO_IR 126", false},      {"-H", "ISO_IR 138", false},
    {"-M", "ISO_IR 148", false},      {"-b", "ISO_IR 203", false},
    {"-T", "ISO_IR 166", false},      {"$)C", "ISO 2022 IR 149", false},
    {"$)A", "ISO 2022 IR 58", false},
};

constexpr DicomSetName kDicomUnknownSet = {"", "", DicomSet::Direct, "windows-1252"};

const DicomSetName& FindDicomSet(QByteArrayView term)
{
    while (!term.isEmpty() && (term.back() == ' ' || term.back() == '\0')) {
        term.chop(1);
    }
    for (const DicomSetName& row : kDicomSets) {
        if (term == row.term || term == row.iso2022) {
            return row;
        }
    }
    return kDicomUnknownSet;
}

QString DicomConverted(QByteArrayView bytes, const char* converter)
{
    QStringDecoder decoder(converter);
    if (!decoder.isValid()) {
        decoder = QStringDecoder(QStringDecoder::Latin1);
    }
    const QString text = decoder(bytes);
    return text;
}

/// One stretch of bytes between escapes.
QString DicomStretch(QByteArrayView bytes, const DicomSetName& lower, const DicomSetName& upper)
{
    if (lower.kind == DicomSet::JisKanji || lower.kind == DicomSet::JisKanji2) {
        // The same pairs with the high bit set are EUC-JP; control characters stand alone.
        QByteArray euc;
        for (qsizetype i = 0; i < bytes.size(); ++i) {
            const uchar first = uchar(bytes[i]);
            if (first <= 0x20 || i + 1 == bytes.size()) {
                euc.append(char(first));
                continue;
            }
            if (lower.kind == DicomSet::JisKanji2) {
                euc.append('\x8f');
            }
            euc.append(char(first | 0x80));
            euc.append(char(uchar(bytes[++i]) | 0x80));
        }
        return DicomConverted(euc, "EUC-JP");
    }
    if (upper.kind == DicomSet::JisKatakana) {
        QString text;
        for (const char byte : bytes) {
            const uchar code = uchar(byte);
            constexpr char16_t kFirstKatakana = 0xff61, kNothing = 0xfffd;
            text.append(QChar(code < 0x80 ? char16_t(code)
                                  : code >= 0xa1 && code <= 0xdf
                                  ? char16_t(kFirstKatakana + code - 0xa1)
                                  : kNothing));
        }
        return text;
    }
    return DicomConverted(bytes, upper.kind == DicomSet::Direct ? upper.converter : "windows-1252");
}

const DicomEscape* FindDicomEscape(QByteArrayView behind)
{
    for (const DicomEscape& row : kDicomEscapes) {
        if (behind.startsWith(row.bytes)) {
            return &row;
        }
    }
    return nullptr;
}

} // namespace

QString DicomText(QByteArrayView value, QByteArrayView characterSets)
{
    constexpr char kEscape = '\x1b';
    const qsizetype divider = characterSets.indexOf('\\');
    const QByteArrayView firstTerm = divider < 0 ? characterSets : characterSets.first(divider);
    const DicomSetName& ascii = kDicomSets[0];
    const bool none = firstTerm.isEmpty();
    const DicomSetName& initial = none && divider >= 0 ? ascii
        : none                                         ? kDicomUnknownSet
                                                       : FindDicomSet(firstTerm);
    const DicomSetName* lower = &ascii;
    const DicomSetName* upper = &initial;
    QString text;
    qsizetype from = 0;
    for (qsizetype i = 0; i <= value.size(); ++i) {
        const DicomEscape* escape = i < value.size() && value[i] == kEscape
            ? FindDicomEscape(value.sliced(i + 1))
            : nullptr;
        if (i < value.size() && !escape) {
            continue;
        }
        text += DicomStretch(value.sliced(from, i - from), *lower, *upper);
        if (escape) {
            (escape->lower ? lower : upper) = &FindDicomSet(escape->term);
            i += qsizetype(qstrlen(escape->bytes));
            from = i + 1;
        }
    }
    return text;
}

} // namespace quillane::worker
