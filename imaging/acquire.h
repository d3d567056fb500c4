#pragma once
// Pictures from a scanner.
#include "imaging/engine.h"
#include "platform/scanner.h"
#include "platform/ui_loop.h"
#include <QObject>
#include <optional>
#include <thread>

namespace quillane {

/// A scanned page as a picture: black and white, 8 or 16-bit grey, 24 or 48-bit colour, with its
/// resolution. Failure kFailureLimit for one that is too large, kFailureUnreadable for rows that
/// do not hold what they should.
Bitmap BitmapFromScan(const ScannedPage& page);

/// Looks for scanners on a thread of its own. Ends with the object, which cancels it.
class SourceSearch : public QObject {
    Q_OBJECT
public:
    explicit SourceSearch(Scanner& scanner, QObject* parent = nullptr);
    ~SourceSearch() override;
    /// Begins to look, if it does not already.
    void Start();
    bool IsRunning() const { return mThread.joinable(); }

Q_SIGNALS:
    /// Tells, on the object's thread, the scanners that answer.
    void Found(const QList<quillane::ScanSource>& sources);
    /// Tells in words why there is no answer.
    void Failed(const QString& words);

private:
    void End();
    Scanner& mScanner;
    std::atomic<bool> mStop{false};
    std::thread mThread;
};

/// Shows the list of scanners, to be filled by `search`; returns the name of the chosen one, or
/// nothing when the person did not choose. current: the one chosen before.
using SourceChooser =
    std::function<std::optional<QString>(SourceSearch& search, const QString& current)>;
/// Has a person choose the scanner for this run of the program. Returns 0, or kFailureCancelled
/// when nothing was chosen.
qint32 TwainSelect(Scanner& scanner, const SourceChooser& choose);

struct AcquireHooks {
    /// The driver's interface: fills in what is wished; false cancels. Without it the driver's own
    /// settings hold.
    std::function<bool(const ScanChoices& choices, ScanWishes& wishes)> ask;
    /// How far things are: 0 to 1, or -1 when that is not known. On the caller's thread.
    std::function<void(double part)> progress;
};
/// Brings one page from the selected scanner, or else the first that answers, into the instance;
/// its information values and pending comments stay. The scanner works on another thread; events
/// are handled meanwhile, and Esc cancels. instance and scanner must outlive the call; a second
/// call meanwhile fails.
/// Returns 0. Failure as Scanner::Acquire, kFailureNoFile when there is no scanner; with method
/// errors off its number is returned instead.
qint32 TwainAcquire(EngineInstance& instance, Scanner& scanner, UiLoop& loop,
                    const AcquireHooks& hooks = {});

} // namespace quillane
