#include "imaging/worker_main/codecs/dicom_output.h"
#include <dcmtk/dcmdata/dcerror.h>

namespace quillane::worker {

offile_off_t DicomConsumer::avail() const
{
    // The library writes an element's head only where there is room; here there always is.
    constexpr offile_off_t kRoom = offile_off_t(1) << 30;
    return kRoom;
}

offile_off_t DicomConsumer::write(const void* bytes, offile_off_t count)
{
    if (mStatus.bad() || count <= 0) {
        return 0;
    }
    try {
        mFile.Append(bytes, count);
    } catch (...) {
        mThrown = std::current_exception();
        mStatus = EC_InvalidStream;
        return 0;
    }
    return count;
}

void DicomConsumer::Rethrow() const
{
    if (mThrown) {
        std::rethrow_exception(mThrown);
    }
}

} // namespace quillane::worker
