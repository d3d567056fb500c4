#include "imaging/worker_main/codecs/dicom_fields.h"
#include "imaging/worker_main/codecs/dicom_file.h"
#include "imaging/worker_main/codecs/dicom_text.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <dcmtk/dcmdata/dcdeftag.h>

namespace quillane::worker {

void ReadDicomComments(ByteSource& source, const TextVisitor& visit)
{
    DicomFile file(source, DicomPart::BeforePixels);
    const QByteArray sets = DicomBytes(file.Dataset(), DCM_SpecificCharacterSet);
    for (const DicomField& field : DicomFields()) {
        const QByteArray bytes = DicomBytes(file.Dataset(), field.tag);
        if (!bytes.isEmpty()) {
            visit(field.slot, DicomText(bytes, sets).toUtf8());
        }
    }
}

} // namespace quillane::worker
