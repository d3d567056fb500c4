#pragma once
// Sets the picture behind the desktop.
#include "platform/service_ended.h"
#include <QString>

namespace quillane {

class WallpaperService {
public:
    virtual ~WallpaperService() = default;
    /// Makes a picture file the wallpaper of the user's desktop, without waiting for it. Failure
    /// at once for a file that is not there; what goes wrong later, and that a person refused
    /// (kFailureCancelled), is told by `ended`.
    virtual void Set(const QString& path, ServiceEnded ended) = 0;
};

} // namespace quillane
