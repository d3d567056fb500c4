#pragma once
// A file's facts and pixels, whichever codec and process they come through. Any thread.
#include "imaging/codec.h"
#include "imaging/saving/loaded_file.h"

namespace quillane {

struct LoadedImage {
    Bitmap bitmap; ///< upright
    ImageFacts facts;
    std::shared_ptr<const LoadedFile> file; ///< what the picture came from
};

/// Facts of the first page. Failure: no such file, no permission, not a regular file, content
/// that no codec takes ("... is not a picture this program reads"), damaged content.
ImageFacts ProbeFile(const QString& path);
ImageFacts ProbeSource(FileSource& source, const QString& path);
/// Facts and upright pixels. Failure as ProbeFile.
LoadedImage LoadFile(const QString& path, const DecodeRequest& request = {});

} // namespace quillane
