#include "imaging/worker_main/codecs/dicom_stream.h"
#include <algorithm>
#include <cstring>
#include <dcmtk/dcmdata/dcerror.h>

namespace quillane::worker {

namespace {

/// Opens the source again at a place, for a value that was left there.
class DicomStreamFactory : public DcmInputStreamFactory {
public:
    DicomStreamFactory(ByteSource& source, qint64 position, qint64 padding)
        : mSource(source),
          mPosition(position),
          mPadding(padding)
    { }
    DcmInputStream* create() const override
    {
        return new DicomStream(mSource, mPosition, mPadding);
    }
    DcmInputStreamFactory* clone() const override
    {
        return new DicomStreamFactory(mSource, mPosition, mPadding);
    }
    // There is no kind for other sources; nobody asks while a file is only read.
    DcmInputStreamFactoryType ident() const override { return DFT_DcmInputTempFileStreamFactory; }

private:
    ByteSource& mSource;
    qint64 mPosition;
    qint64 mPadding;
};

} // namespace

offile_off_t DicomProducer::read(void* to, offile_off_t count)
{
    if (count <= 0 || mStatus.bad()) {
        return 0;
    }
    const qint64 wanted = std::min<qint64>(count, mEnd - mPosition);
    const qint64 got = std::max<qint64>(0, mSource.ReadAt(mPosition, to, wanted));
    if (got < wanted) {
        std::memset(static_cast<char*>(to) + got, 0, size_t(wanted - got));
    }
    mPosition += std::max<qint64>(0, wanted);
    return std::max<qint64>(0, wanted);
}

offile_off_t DicomProducer::skip(offile_off_t count)
{
    const qint64 skipped = std::clamp<qint64>(count, 0, std::max<qint64>(0, mEnd - mPosition));
    mPosition += skipped;
    return skipped;
}

void DicomProducer::putback(offile_off_t count)
{
    if (count > mPosition) {
        mStatus = EC_PutbackFailed;
        return;
    }
    mPosition -= count;
}

DicomStream::DicomStream(ByteSource& source, qint64 position, qint64 padding)
    : DcmInputStream(&mProducer),
      mProducer(source, position, padding),
      mSource(source),
      mStart(position),
      mPadding(padding)
{ }

DcmInputStreamFactory* DicomStream::newFactory() const
{
    // Places in inflated bytes cannot be gone back to: such values are read at once.
    return currentProducer() == &mProducer
        ? new DicomStreamFactory(mSource, mStart + tell(), mPadding)
        : nullptr;
}

} // namespace quillane::worker
