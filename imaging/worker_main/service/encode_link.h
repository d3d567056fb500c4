#pragma once
#include "imaging/worker_main/service/ring_sink.h"
#include "imaging/worker_main/service/worker_codec.h"

namespace quillane::worker {

/// The process's end of an encoding: rows come through the window's first half, the file goes
/// through the slots of its second.
class EncodeLink : public PictureRows, public FileSink {
public:
    EncodeLink(Window& window, const EncodeMessage& request);
    /// Takes in the window and what lies at its beginning. Failure kFailureGeneral for a request
    /// whose numbers make no sense.
    void Begin(EncodeWish& wish);

    const PictureShape& Shape() const override { return mShape; }
    const uchar* NextRow() override;
    void WriteAt(qint64 position, const void* bytes, qint64 count) override;
    qint64 Size() const override { return mSize; }
    /// Sends what is still here of the file, and waits until the program has all of it.
    void Finish();

private:
    void SayTaken();
    void SendSlot();
    void Listen();
    uchar* Slot() const;

    Window& mWindow;
    const EncodeMessage mRequest;
    PictureShape mShape;
    qint64 mRowBytes = 0, mRing = 1;
    qint64 mUsed = 0;   ///< rows handed to the encoder
    qint64 mFilled = 0; ///< rows that the program has put into the ring so far
    qint64 mSaid = 0;   ///< rows that the program knows were taken
    qint64 mSize = 0;   ///< bytes of the file
    qint64 mSlotAt = 0; ///< place in the file of the slot that is being filled
    qint64 mInSlot = 0; ///< bytes in it
    quint32 mSlots = 0; ///< slots sent
    int mWaiting = 0;   ///< slots sent and not copied yet
    bool mGranted = false;
};

} // namespace quillane::worker
