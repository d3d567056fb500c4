#pragma once
#include "imaging/worker_main/service/worker_codec.h"
#include <dcmtk/config/osconfig.h>

#include <dcmtk/dcmdata/dcostrma.h>
#include <exception>

namespace quillane::worker {

/// What DCMTK writes into: a sink, from its beginning to its end. Keeps what the sink threw,
/// because the library expects a status.
class DicomConsumer : public DcmConsumer {
public:
    explicit DicomConsumer(FileSink& file) : mFile(file) { }
    OFBool good() const override { return mStatus.good(); }
    OFCondition status() const override { return mStatus; }
    OFBool isFlushed() const override { return OFTrue; }
    offile_off_t avail() const override;
    offile_off_t write(const void* bytes, offile_off_t count) override;
    void flush() override { }
    /// Throws what the sink threw, if anything.
    void Rethrow() const;

private:
    FileSink& mFile;
    OFCondition mStatus = EC_Normal;
    std::exception_ptr mThrown;
};

class DicomOutput : public DcmOutputStream {
public:
    explicit DicomOutput(FileSink& file) : DcmOutputStream(&mConsumer), mConsumer(file) { }
    /// See DicomConsumer.
    void Rethrow() const { mConsumer.Rethrow(); }

private:
    DicomConsumer mConsumer;
};

} // namespace quillane::worker
