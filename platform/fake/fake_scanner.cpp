#include "platform/fake/fake_scanner.h"

namespace quillane {

namespace {

constexpr int kFakeScanLook = 5; // milliseconds between two questions whether to go on

} // namespace

void FakeScanner::Act(const ScanProgress& progress)
{
    do {
        if (progress && !progress(0.5))
            throw Failure(kFailureCancelled, QStringLiteral("The scan was cancelled."));
    } while (waits && !letGo.tryAcquire(1, kFakeScanLook));
    if (!trouble.isEmpty())
        throw Failure(kFailureIo, trouble);
}

QList<ScanSource> FakeScanner::Sources(const ScanProgress& progress)
{
    ++searches;
    Act(progress);
    return sources;
}

ScanChoices FakeScanner::Choices(const QString&, const ScanProgress& progress)
{
    Act(progress);
    return choices;
}

ScannedPage FakeScanner::Acquire(const QString& source, const ScanWishes& wishes,
                                 const ScanProgress& progress)
{
    acquiredFrom = source;
    acquiredWith = wishes;
    Act(progress);
    return page;
}

} // namespace quillane
