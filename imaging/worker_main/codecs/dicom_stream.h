#pragma once
#include "imaging/byte_source.h"
#include <dcmtk/config/osconfig.h>

#include <dcmtk/dcmdata/dcistrma.h>

namespace quillane::worker {

/// What DCMTK reads from: a byte source from a position on, followed by `padding` zeros that
/// stand for the missing end of a file that was cut short. The source outlives the stream and
/// everything parsed from it.
class DicomProducer : public DcmProducer {
public:
    DicomProducer(ByteSource& source, qint64 position, qint64 padding)
        : mSource(source),
          mPosition(position),
          mEnd(source.Size() + padding)
    { }
    OFBool good() const override { return mStatus.good(); }
    OFCondition status() const override { return mStatus; }
    OFBool eos() override { return mPosition >= mEnd; }
    offile_off_t avail() override { return mEnd - mPosition; }
    offile_off_t read(void* to, offile_off_t count) override;
    offile_off_t skip(offile_off_t count) override;
    void putback(offile_off_t count) override;

private:
    ByteSource& mSource;
    qint64 mPosition;
    qint64 mEnd;
    OFCondition mStatus = EC_Normal;
};

class DicomStream : public DcmInputStream {
public:
    DicomStream(ByteSource& source, qint64 position, qint64 padding);
    DcmInputStreamFactory* newFactory() const override;

private:
    DicomProducer mProducer;
    ByteSource& mSource;
    qint64 mStart;
    qint64 mPadding;
};

} // namespace quillane::worker
