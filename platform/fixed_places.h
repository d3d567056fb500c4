#pragma once
// Places the program uses without asking. Each has one name, here.
#include <QString>

namespace quillane {

class FixedPlaces {
public:
    virtual ~FixedPlaces() = default;
    virtual QString Home() const = 0;         ///< home folder, with separator
    virtual QString Pictures() const = 0;     ///< Pictures folder if there is one, else home
    virtual QString SettingsFile() const = 0; ///< the settings store
    virtual QString Wallpaper() const = 0;    ///< Wallpaper.bmp in the application's data folder
    virtual QString PrintCopy() const = 0;    ///< TPrinter2Image.jpg, per user, private
    virtual QString Capture() const = 0;      ///< Capture.avi in the Videos folder
    virtual QString CaptureLower() const = 0; ///< capture.avi in the Videos folder
    virtual QString Programs() const = 0;     ///< where programs are looked for first
    virtual QString ApplicationFolder() const = 0; ///< folder of the executable, with separator
    virtual QString HelpFile() const = 0;          ///< first page of the manual
    virtual QString ThumbnailCache() const = 0;    ///< freedesktop thumbnail folder, no separator
    virtual QString CodecWorker() const = 0;       ///< the decoding program's path
    virtual QString ScanHelper() const = 0;        ///< path of the program that talks to scanners
};

} // namespace quillane
