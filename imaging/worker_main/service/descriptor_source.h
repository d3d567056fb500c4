#pragma once
#include "imaging/byte_source.h"

namespace quillane::worker {

/// The file of a request: an open descriptor that the program handed over, read by position.
class DescriptorSource : public ByteSource {
public:
    DescriptorSource(FileHandle file, qint64 size) : mFile(std::move(file)), mSize(size) { }
    qint64 Size() const override { return mSize; }
    qint64 ReadAt(qint64 position, void* to, qint64 count) override;

private:
    FileHandle mFile;
    qint64 mSize;
};

} // namespace quillane::worker
