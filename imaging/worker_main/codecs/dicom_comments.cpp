#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker_main/codecs/dicom_file.h"
#include "imaging/worker_main/codecs/dicom_text.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcelem.h>

namespace quillane::worker {

namespace {

struct DicomField {
    qint16 slot;
    DcmTagKey tag;
};
const DicomField kDicomFields[] = {
    {3, DCM_ImageComments},     {10, DCM_PatientName},       {11, DCM_PatientID},
    {12, DCM_PatientBirthDate}, {13, DCM_PatientSex},        {14, DCM_StudyInstanceUID},
    {15, DCM_StudyDate},        {16, DCM_StudyTime},         {17, DCM_ReferringPhysicianName},
    {18, DCM_Modality},         {19, DCM_SeriesInstanceUID}, {20, DCM_SeriesNumber},
};

/// The value's bytes without the blanks or zeros that only make its length even.
QByteArray DicomBytes(DcmDataset& dataset, const DcmTagKey& tag)
{
    DcmElement* element = nullptr;
    char* value = nullptr;
    Uint32 length = 0;
    if (dataset.findAndGetElement(tag, element).bad() || !element
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

} // namespace

void ReadDicomComments(ByteSource& source, const TextVisitor& visit)
{
    DicomFile file(source, DicomPart::BeforePixels);
    const QByteArray sets = DicomBytes(file.Dataset(), DCM_SpecificCharacterSet);
    for (const DicomField& field : kDicomFields) {
        const QByteArray bytes = DicomBytes(file.Dataset(), field.tag);
        if (!bytes.isEmpty()) {
            visit(field.slot, DicomText(bytes, sets).toUtf8());
        }
    }
}

} // namespace quillane::worker
