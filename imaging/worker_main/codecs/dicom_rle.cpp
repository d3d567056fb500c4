#include "imaging/worker_main/codecs/dicom_rle.h"
#include "imaging/worker_main/codecs/dicom_file.h"
#include <QtEndian>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcpixel.h>
#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>

namespace quillane::worker {

namespace {

constexpr quint32 kRleHeaderBytes = 64; ///< a count and the places of up to 15 segments
constexpr quint32 kRleMostSegments = 15;

bool IsRunHeaderSound(const Uint8* frame, quint32 bytes)
{
    if (!frame || bytes < kRleHeaderBytes) {
        return false;
    }
    const quint32 segments = qFromLittleEndian<quint32>(frame);
    if (segments < 1 || segments > kRleMostSegments) {
        return false;
    }
    quint32 before = kRleHeaderBytes;
    for (quint32 i = 1; i <= segments; ++i) {
        const quint32 place = qFromLittleEndian<quint32>(frame + size_t(i) * 4);
        if (place < before || place >= bytes) {
            return false;
        }
        before = place;
    }
    return true;
}

} // namespace

void CheckDicomRuns(DcmDataset& dataset)
{
    if (dataset.getOriginalXfer() != EXS_RLELossless) {
        return;
    }
    DcmElement* element = nullptr;
    if (dataset.findAndGetElement(DCM_PixelData, element).bad()) {
        return;
    }
    auto* pixels = dynamic_cast<DcmPixelData*>(element);
    DcmPixelSequence* sequence = nullptr;
    if (!pixels
        || pixels->getEncapsulatedRepresentation(EXS_RLELossless, nullptr, sequence).bad()) {
        return;
    }
    // The first item is a table of places; each of the others is one frame.
    for (unsigned long i = 1; i < sequence->card(); ++i) {
        DcmPixelItem* item = nullptr;
        Uint8* frame = nullptr;
        if (sequence->getItem(item, i).bad() || item->getUint8Array(frame).bad()
            || !IsRunHeaderSound(frame, item->getLength())) {
            ThrowDicomDamaged();
        }
    }
}

} // namespace quillane::worker
