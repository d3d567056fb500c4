#pragma once
#include "platform/fixed_places.h"

namespace quillane {

/// Fixed places by the XDG rules; a place is made when it is first asked for, where it must be.
class DesktopPlaces : public FixedPlaces {
public:
    /// The program's own folder is that of the executable unless another is given.
    explicit DesktopPlaces(QString applicationFolder = {});

    QString Home() const override;
    QString Pictures() const override;
    QString SettingsFile() const override;
    QString Wallpaper() const override;
    QString PrintCopy() const override;
    QString Capture() const override;
    QString CaptureLower() const override;
    QString Programs() const override;
    QString ApplicationFolder() const override;
    QString HelpFile() const override;
    QString ThumbnailCache() const override;
    QString CodecWorker() const override;
    QString ScanHelper() const override;

private:
    QString OwnProgram(const QString& name) const;

    QString mApplicationFolder;
};

} // namespace quillane
