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
void EncodeDicom(PictureRows& picture, const EncodeWish& wish, FileSink& file);

/// JPEG 2000, through OpenJPEG.
ImageFacts ProbeJpeg2000(ByteSource& source);
bool DecodeJpeg2000(ByteSource& source, const PictureWish& wish, PictureSink& sink);
void EncodeJpeg2000(PictureRows& picture, const EncodeWish& wish, FileSink& file);

/// Bare fax pages, CALS and Intergraph rasters and IOCA images, through libtiff.
ImageFacts ProbeFax(ByteSource& source);
bool DecodeFax(ByteSource& source, const PictureWish& wish, PictureSink& sink);
ImageFacts ProbeCals(ByteSource& source);
bool DecodeCals(ByteSource& source, const PictureWish& wish, PictureSink& sink);
ImageFacts ProbeIoca(ByteSource& source);
bool DecodeIoca(ByteSource& source, const PictureWish& wish, PictureSink& sink);
ImageFacts ProbeItg(ByteSource& source);
bool DecodeItg(ByteSource& source, const PictureWish& wish, PictureSink& sink);

/// First frames of clips, through FFmpeg, whose libraries are loaded by PrepareClips.
void PrepareClips();
ImageFacts ProbeMov(ByteSource& source);
bool DecodeMov(ByteSource& source, const PictureWish& wish, PictureSink& sink);
ImageFacts ProbeAvi(ByteSource& source);
bool DecodeAvi(ByteSource& source, const PictureWish& wish, PictureSink& sink);
ImageFacts ProbeMpeg(ByteSource& source);
bool DecodeMpeg(ByteSource& source, const PictureWish& wish, PictureSink& sink);

/// What the shipped decoding process serves.
inline constexpr WorkerCodec kShippedCodecs[] = {
    {"TIFF", nullptr, ProbeTiff, DecodeTiff, nullptr, EncodeTiff},
    {"DICOM", PrepareDicom, ProbeDicom, DecodeDicom, ReadDicomComments, EncodeDicom},
    {"JPEG 2000", nullptr, ProbeJpeg2000, DecodeJpeg2000, nullptr, EncodeJpeg2000},
    {"FAX", nullptr, ProbeFax, DecodeFax, nullptr},
    {"CALS", nullptr, ProbeCals, DecodeCals, nullptr},
    {"IOCA", nullptr, ProbeIoca, DecodeIoca, nullptr},
    {"Intergraph", nullptr, ProbeItg, DecodeItg, nullptr},
};

/// What it serves instead when it is started with kClipArgument.
inline constexpr WorkerCodec kShippedClips[] = {
    {"MOV", PrepareClips, ProbeMov, DecodeMov, nullptr},
    {"AVI", nullptr, ProbeAvi, DecodeAvi, nullptr},
    {"MPEG", nullptr, ProbeMpeg, DecodeMpeg, nullptr},
};

} // namespace quillane::worker
