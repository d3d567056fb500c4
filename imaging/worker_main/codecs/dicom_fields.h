#pragma once
#include "imaging/worker_main/service/worker_codec.h"
#include <dcmtk/config/osconfig.h>

#include <dcmtk/dcmdata/dcdatset.h>
#include <span>

namespace quillane::worker {

/// A comment slot and the element that holds it.
struct DicomField {
    qint16 slot;
    DcmTagKey tag;
    const char* name; ///< as people know it
};
/// Every slot that a DICOM file has an element for.
std::span<const DicomField> DicomFields();

/// The value's bytes without the blanks or zeros that only make its length even; empty for none
/// or one beyond limits.h.
QByteArray DicomBytes(DcmItem& item, const DcmTagKey& tag);

/// Puts changed texts into their elements; an empty one leaves its element without a value. Texts
/// that the file's character set lacks bring the whole data set to UTF-8. Slots without an element
/// are passed over. Failure kFailureGeneral for a text that its element cannot hold.
void ChangeDicomFields(DcmDataset& dataset, const std::vector<TextChange>& changes);

} // namespace quillane::worker
