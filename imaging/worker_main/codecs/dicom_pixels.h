#pragma once
#include "imaging/worker_main/service/sample_rows.h"
#include <dcmtk/config/osconfig.h>

#include <dcmtk/dcmdata/dcdatset.h>
#include <dcmtk/dcmdata/dcxfer.h>

namespace quillane::worker {

/// What pixels of a DICOM file are to be.
struct DicomVariant {
    SampleKind kind = SampleKind::Grey8;
    E_TransferSyntax syntax = EXS_LittleEndianExplicit;
    bool lossy = false;
};

/// The variant for a format code, depth and quality. Failure kFailureGeneral for what cannot be
/// written.
DicomVariant ChooseDicomVariant(const PictureShape& shape, const EncodeWish& wish);

/// Takes every row of the picture and gives the data set its pixels, in the variant's transfer
/// syntax, in place of those that it has and of all that described them. Failure.
void PutDicomPixels(DcmDataset& dataset, PictureRows& picture, const DicomVariant& variant,
                    qint32 quality);

} // namespace quillane::worker
