#pragma once
#include "imaging/worker_main/service/worker_codec.h"

namespace quillane::worker {

/// TIFF, through libtiff. See WorkerCodec for the functions' words.
ImageFacts ProbeTiff(ByteSource& source);
bool DecodeTiff(ByteSource& source, const PictureWish& wish, PictureSink& sink);
void EncodeTiff(PictureRows& picture, const EncodeWish& wish, FileSink& file);

/// DICOM, through DCMTK.
void PrepareDicom();
ImageFacts ProbeDicom(ByteSource& source);
bool DecodeDicom(ByteSource& source, const PictureWish& wish, PictureSink& sink);
void ReadDicomComments(ByteSource& source, const TextVisitor& visit);

/// What the shipped decoding process serves.
inline constexpr WorkerCodec kShippedCodecs[] = {
    {"TIFF", nullptr, ProbeTiff, DecodeTiff, nullptr, EncodeTiff},
    {"DICOM", PrepareDicom, ProbeDicom, DecodeDicom, ReadDicomComments},
};

} // namespace quillane::worker
