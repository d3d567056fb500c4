#pragma once
#include "imaging/byte_source.h"
#include "imaging/image_facts.h"
#include <dcmtk/config/osconfig.h>

#include <dcmtk/dcmdata/dcfilefo.h>

namespace quillane::worker {

/// How much of a file is read.
enum class DicomPart : quint8 {
    BeforePixels,
    All,   ///< up to the pixels and with them, what is missing of them as zeros
    Whole, ///< what lies behind the pixels too; for a file that is written anew
};

/// Everything that decides how pictures of a file are read.
struct DicomFacts {
    ImageFacts facts;
    int bitsStored = 0;
    bool colour = false;
    bool partial = false; ///< the file ends early; what is missing reads as zeros
};

/// A parsed file. Large values stay in the source until asked for.
class DicomFile {
public:
    /// Failure kFailureUnreadable.
    DicomFile(ByteSource& source, DicomPart part);
    DcmFileFormat& Document() { return mFile; }
    DcmDataset& Dataset() { return *mFile.getDataset(); }
    /// Failure kFailureUnreadable, kFailureLimit.
    DicomFacts Facts();

private:
    bool Read(ByteSource& source, DicomPart part, qint64 padding);
    DcmFileFormat mFile;
    qint64 mBytes;
    bool mPartial = false;
};

/// kFailureUnreadable: the file is damaged.
[[noreturn]] void ThrowDicomDamaged();

} // namespace quillane::worker
