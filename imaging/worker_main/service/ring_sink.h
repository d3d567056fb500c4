#pragma once
#include "imaging/worker_main/service/worker_codec.h"

namespace quillane::worker {

/// The window in shared memory as the process sees it.
class Window {
public:
    ~Window();
    /// Maps the memory file; false when it is too small or cannot be mapped.
    bool Map(int descriptor);
    uchar* Data() const { return mData; }

private:
    uchar* mData = nullptr;
};

/// Sends a picture's rows through the window.
class RingSink : public PictureSink {
public:
    RingSink(Window& window, quint64 ticket, const char* format)
        : mWindow(window),
          mTicket(ticket),
          mFormat(format)
    { }
    void Begin(const PictureShape& shape) override;
    uchar* NextRow() override;
    /// Whether the decoder gave every row.
    bool IsFull() const { return mGranted && mGiven == mHeight; }

private:
    void SendRows();
    /// Takes in what the program has said; waits for one message when `wait`.
    void Listen(bool wait);

    Window& mWindow;
    quint64 mTicket;
    const char* mFormat;
    qint64 mRowBytes = 0, mHeight = 0, mRing = 0, mStep = 0, mListenStep = 0;
    qint64 mGiven = 0; ///< rows handed to the decoder
    qint64 mSaid = 0;  ///< rows announced
    qint64 mHeard = 0; ///< rows given when the program was listened to last
    qint64 mTaken = 0; ///< rows the program has copied
    bool mGranted = false;
};

} // namespace quillane::worker
