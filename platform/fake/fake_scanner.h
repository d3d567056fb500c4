#pragma once
#include "core/failure.h"
#include "platform/scanner.h"
#include <QSemaphore>
#include <atomic>

namespace quillane {

/// Scanners that a test holds.
class FakeScanner : public Scanner {
public:
    QList<ScanSource> sources;
    ScanChoices choices;
    ScannedPage page;             ///< what a scan brings
    QString trouble;              ///< when not empty, everything fails with it
    bool waits = false;           ///< every action waits until it is cancelled or let go
    QSemaphore letGo;             ///< releases a waiting action
    std::atomic<int> searches{0}; ///< how often sources were looked for
    QString acquiredFrom;         ///< source of the last scan
    ScanWishes acquiredWith;      ///< its wishes

    QList<ScanSource> Sources(const ScanProgress& progress = {}) override;
    ScanChoices Choices(const QString& source, const ScanProgress& progress = {}) override;
    ScannedPage Acquire(const QString& source, const ScanWishes& wishes,
                        const ScanProgress& progress = {}) override;

private:
    void Act(const ScanProgress& progress);
};

} // namespace quillane
