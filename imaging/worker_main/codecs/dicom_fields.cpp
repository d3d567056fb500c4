#include "imaging/worker_main/codecs/dicom_fields.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker_main/codecs/dicom_text.h"
#include <algorithm>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcelem.h>
#include <dcmtk/dcmdata/dcsequen.h>

namespace quillane::worker {

namespace {

const DicomField kDicomFields[] = {
    {3, DCM_ImageComments, "ImageComments"},
    {10, DCM_PatientName, "PatientName"},
    {11, DCM_PatientID, "PatientID"},
    {12, DCM_PatientBirthDate, "PatientBirthDate"},
    {13, DCM_PatientSex, "PatientSex"},
    {14, DCM_StudyInstanceUID, "StudyInstanceUID"},
    {15, DCM_StudyDate, "StudyDate"},
    {16, DCM_StudyTime, "StudyTime"},
    {17, DCM_ReferringPhysicianName, "ReferringPhysicianName"},
    {18, DCM_Modality, "Modality"},
    {19, DCM_SeriesInstanceUID, "SeriesInstanceUID"},
    {20, DCM_SeriesNumber, "SeriesNumber"},
};

constexpr char kDicomUtf8[] = "ISO_IR 192";
constexpr char kDicomLatin[] = "ISO_IR 100";

/// Characters that a value of a type may have (DICOM PS3.5, 6.2).
qsizetype LongestValue(DcmEVR type)
{
    switch (type) {
    case EVR_CS:
    case EVR_SH:
    case EVR_TM:
        return 16;
    case EVR_IS:
        return 12;
    case EVR_DA:
        return 8;
    case EVR_LT:
        return 10'240;
    default:
        return 64; // LO, PN, UI
    }
}

bool IsAscii(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

bool IsTextType(DcmEVR type)
{
    switch (type) {
    case EVR_SH:
    case EVR_LO:
    case EVR_PN:
    case EVR_ST:
    case EVR_LT:
    case EVR_UC:
    case EVR_UT:
        return true;
    default:
        return false;
    }
}

void PutDicomBytes(DcmItem& item, const DcmTagKey& tag, const QByteArray& bytes)
{
    if (item.putAndInsertString(DcmTag(tag), bytes.constData(), Uint32(bytes.size())).bad()) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("A text of this DICOM file cannot be changed."));
    }
}

/// Writes every text of an item, and of those inside it, anew as UTF-8.
void ItemToUtf8(DcmItem& item, const QByteArray& outerSets)
{
    const QByteArray own = DicomBytes(item, DCM_SpecificCharacterSet);
    const QByteArray sets = own.isEmpty() ? outerSets : own;
    std::vector<DcmTagKey> texts;
    for (unsigned long i = 0; i < item.card(); ++i) {
        DcmElement* element = item.getElement(i);
        if (element && IsTextType(element->ident())) {
            texts.push_back(element->getTag());
        } else if (element && element->ident() == EVR_SQ) {
            auto* sequence = static_cast<DcmSequenceOfItems*>(element);
            for (unsigned long k = 0; k < sequence->card(); ++k) {
                ItemToUtf8(*sequence->getItem(k), sets);
            }
        }
    }
    for (const DcmTagKey& tag : texts) {
        const QByteArray bytes = DicomBytes(item, tag);
        const bool plain = std::all_of(bytes.begin(), bytes.end(), [](char c) {
            return c >= 0x20 || c == '\r' || c == '\n' || c == '\t' || c == '\f';
        });
        if (!plain) { // escapes and the upper half are what a set gives another meaning
            PutDicomBytes(item, tag, DicomText(bytes, sets).toUtf8());
        }
    }
    if (!own.isEmpty()) {
        PutDicomBytes(item, DCM_SpecificCharacterSet, kDicomUtf8);
    }
}

/// The text in the data set's character set, which is UTF-8 afterwards when it has to be.
QByteArray InSetOf(DcmDataset& dataset, const QString& text)
{
    if (IsAscii(text)) {
        return text.toLatin1();
    }
    const QByteArray sets = DicomBytes(dataset, DCM_SpecificCharacterSet);
    if (sets == kDicomUtf8) {
        return text.toUtf8();
    }
    if (sets == kDicomLatin) {
        if (std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() <= 0xff; })) {
            return text.toLatin1();
        }
    }
    ItemToUtf8(dataset, sets);
    PutDicomBytes(dataset, DCM_SpecificCharacterSet, kDicomUtf8);
    return text.toUtf8();
}

void CheckDicomText(const DicomField& field, const QString& text)
{
    const DcmEVR type = DcmTag(field.tag).getEVR();
    const qsizetype longest = LongestValue(type);
    if (text.size() > longest) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("The text of %1 is too long for a DICOM file: it has %2 "
                                     "characters, and at most %3 can be stored.")
                          .arg(QLatin1String(field.name))
                          .arg(text.size())
                          .arg(longest));
    }
    const bool plainOnly = type != EVR_LT && type != EVR_LO && type != EVR_PN;
    if (plainOnly && !IsAscii(text)) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("The text of %1 has characters that a DICOM file cannot store "
                                     "there.")
                          .arg(QLatin1String(field.name)));
    }
}

} // namespace

std::span<const DicomField> DicomFields()
{
    return kDicomFields;
}

QByteArray DicomBytes(DcmItem& item, const DcmTagKey& tag)
{
    DcmElement* element = nullptr;
    char* value = nullptr;
    Uint32 length = 0;
    if (item.findAndGetElement(tag, element).bad() || !element
        || element->getLength() > limits::kMaxTextBytes || element->getString(value, length).bad()
        || !value) {
        return {};
    }
    QByteArray bytes(value, length);
    while (!bytes.isEmpty() && (bytes.back() == '\0' || bytes.back() == ' ')) {
        bytes.chop(1);
    }
    return bytes;
}

void ChangeDicomFields(DcmDataset& dataset, const std::vector<TextChange>& changes)
{
    for (const DicomField& field : kDicomFields) {
        for (const TextChange& change : changes) {
            if (change.slot != field.slot) {
                continue;
            }
            const QString text = QString::fromUtf8(change.utf8);
            CheckDicomText(field, text);
            if (text.isEmpty() && field.tag == DCM_ImageComments) {
                dataset.findAndDeleteElement(field.tag);
            } else {
                PutDicomBytes(dataset, field.tag, InSetOf(dataset, text));
            }
        }
    }
}

} // namespace quillane::worker
