#pragma once
// Scanners. Everything here may take seconds and is called off the window thread.
#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <mutex>

namespace quillane {

/// A scanner that is there.
struct ScanSource {
    QString name; ///< by which it is opened
    QString vendor, model;
    QString kind; ///< as in "flatbed scanner"
    /// What a person reads: vendor and model, or else the name.
    QString Title() const;
    bool operator==(const ScanSource&) const = default;
};

/// What a scanner offers to be chosen.
struct ScanChoices {
    QStringList modes, feeds;  ///< as in "Color"; as in "Flatbed"
    QString mode, feed;        ///< those that are set
    QList<double> resolutions; ///< dots per inch; empty when any in the range goes
    double leastResolution = 0, mostResolution = 0, resolution = 0;
    double width = 0, height = 0; ///< of the glass, in millimetres; 0 unknown
};

/// What is wished of a scan. What is left empty or 0 stays as the driver has it.
struct ScanWishes {
    QString mode, feed;
    qint32 depth = 0;                                ///< bits a sample
    double resolution = 0;                           ///< dots per inch
    double left = 0, top = 0, right = 0, bottom = 0; ///< millimetres; no area when right is 0
    qint64 mostPixels = 100'000'000; ///< a larger page is refused before it is scanned
};

/// A page as plain rows, the top one first.
struct ScannedPage {
    qint32 width = 0, height = 0;
    qint32 channels = 1; ///< 1 grey, 3 red, green, blue
    qint32 depth = 8;    ///< bits a sample: 1 (packed, highest bit first, 1 is black), 8, or 16 in
                         ///< the machine's order
    qint64 bytesPerLine = 0;
    double xResolution = 0, yResolution = 0; ///< dots per inch; 0 unknown
    QByteArray rows;                         ///< height times bytesPerLine bytes
};

/// Told from time to time how far things are: 0 to 1, or -1 when that is not known. False ends the
/// action with a Failure kFailureCancelled. Called on the thread of the action.
using ScanProgress = std::function<bool(double part)>;

class Scanner {
public:
    virtual ~Scanner() = default;
    /// The scanners that answer, those of the network too. Failure kFailureWorker or
    /// kFailureCancelled.
    virtual QList<ScanSource> Sources(const ScanProgress& progress = {}) = 0;
    /// What the scanner of that name offers. Failure as Acquire.
    virtual ScanChoices Choices(const QString& source, const ScanProgress& progress = {}) = 0;
    /// Scans one page. Failure kFailureNoFile (no such scanner), kFailureDenied, kFailureIo,
    /// kFailureLimit, kFailureWorker (its driver crashed or hangs), kFailureCancelled.
    virtual ScannedPage Acquire(const QString& source, const ScanWishes& wishes,
                                const ScanProgress& progress = {}) = 0;

    /// The source that was chosen for this run of the program; empty for none. Any thread.
    QString Selected() const;
    void Select(const QString& source);

private:
    mutable std::mutex mLock;
    QString mSelected;
};

} // namespace quillane
