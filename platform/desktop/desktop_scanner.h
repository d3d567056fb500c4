#pragma once
#include "platform/desktop/scan_process.h"

namespace quillane {

/// Scanners through quillane-scan, one process an action.
class DesktopScanner : public Scanner {
public:
    /// program: the path of quillane-scan.
    explicit DesktopScanner(QString program, ScanPatience patience = {})
        : mProgram(std::move(program)),
          mPatience(patience)
    { }

    QList<ScanSource> Sources(const ScanProgress& progress = {}) override;
    ScanChoices Choices(const QString& source, const ScanProgress& progress = {}) override;
    ScannedPage Acquire(const QString& source, const ScanWishes& wishes,
                        const ScanProgress& progress = {}) override;

private:
    QString mProgram;
    ScanPatience mPatience;
};

} // namespace quillane
