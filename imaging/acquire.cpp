#include "imaging/acquire.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include <QCoreApplication>
#include <QScopeGuard>
#include <cmath>
#include <cstring>
#include <exception>

namespace quillane {

namespace {

constexpr double kInchesAMetre = 1 / 0.0254;
constexpr int kAcquireLook = 50; // milliseconds between two looks at what the scanner does
constexpr qint64 kBytesAPixel = 4;

qint32 DepthInFile(const ScannedPage& page)
{
    return page.channels * page.depth;
}

QImage::Format FormatOfScan(const ScannedPage& page)
{
    if (page.channels == 3)
        return page.depth == 16 ? QImage::Format_RGBX64 : QImage::Format_RGB32;
    return page.depth == 1 ? QImage::Format_Mono
        : page.depth == 16 ? QImage::Format_Grayscale16
                           : QImage::Format_Grayscale8;
}

void CheckScan(const ScannedPage& page)
{
    const bool kind = (page.channels == 1 && page.depth == 1)
        || ((page.channels == 1 || page.channels == 3) && (page.depth == 8 || page.depth == 16));
    const qint64 needed = (qint64(page.width) * page.channels * page.depth + 7) / 8;
    if (!kind || page.width <= 0 || page.height <= 0 || page.bytesPerLine < needed
        || page.rows.size() / page.height < page.bytesPerLine) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("The scanner sent a page that is not whole."));
    }
    const qint64 bytes = page.depth == 16 && page.channels == 3 ? 2 * kBytesAPixel : kBytesAPixel;
    if (page.width > limits::kMaxSide || page.height > limits::kMaxSide
        || qint64(page.width) * page.height > limits::kMaxPictureBytes / bytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("The scanned page is too large. Choose a smaller area or "
                                     "resolution."));
    }
}

// A row of the scan as a row of the picture.
void TakeRow(const ScannedPage& page, const char* row, uchar* to)
{
    if (page.channels == 1 && page.depth > 1) {
        std::memcpy(to, row, size_t(page.width) * size_t(page.depth / 8));
    } else if (page.channels == 1) {
        for (qint32 i = 0; i < (page.width + 7) / 8; ++i)
            to[i] = uchar(~uchar(row[i])); // a scanner's 1 is black
    } else if (page.depth == 8) {
        auto* pixels = reinterpret_cast<QRgb*>(to);
        const auto* from = reinterpret_cast<const uchar*>(row);
        for (qint32 x = 0; x < page.width; ++x, from += 3)
            pixels[x] = qRgb(from[0], from[1], from[2]);
    } else {
        auto* pixels = reinterpret_cast<QRgba64*>(to);
        for (qint32 x = 0; x < page.width; ++x) {
            quint16 samples[3];
            std::memcpy(samples, row + qint64(x) * 6, sizeof samples);
            pixels[x] = qRgba64(samples[0], samples[1], samples[2], 0xFFFF);
        }
    }
}

ColourModel ModelOfScan(const ScannedPage& page)
{
    if (page.channels == 3)
        return ColourModel::Rgb;
    return page.depth == 1 ? ColourModel::BlackWhite : ColourModel::Grey;
}

int DotsPerMetre(double resolution)
{
    return resolution > 0 && resolution < 1e6 ? int(std::lround(resolution * kInchesAMetre)) : 0;
}

// What a thread has come to.
template <typename Result> struct ScanOutcome {
    std::optional<Result> result;
    std::exception_ptr failure;
    std::atomic<bool> done{false};
};

// Runs action on a thread and handles events until it has ended; Esc cancels it.
template <typename Result>
Result WhileEventsRun(UiLoop& loop, const std::function<void(double)>& tell,
                      const std::function<Result(const ScanProgress&)>& action)
{
    ScanOutcome<Result> outcome;
    std::atomic<bool> stop{false};
    std::atomic<double> part{-1};
    QObject* application = QCoreApplication::instance();
    std::thread worker([&] {
        try {
            outcome.result = action([&](double now) {
                part = now;
                return !stop;
            });
        } catch (...) {
            outcome.failure = std::current_exception();
        }
        outcome.done = true;
        QMetaObject::invokeMethod(
            application, [] {}, Qt::QueuedConnection);
    });
    const auto end = qScopeGuard([&] {
        stop = true;
        worker.join();
    });
    while (!outcome.done) {
        loop.WaitForEvents(kAcquireLook);
        if (loop.PollEsc())
            stop = true;
        if (tell)
            tell(part);
    }
    if (outcome.failure)
        std::rethrow_exception(outcome.failure);
    return std::move(*outcome.result);
}

// One at a time: events are handled while a page is brought in.
class AcquireTurn {
public:
    AcquireTurn()
    {
        if (Taken().exchange(true)) {
            throw Failure(kFailureGeneral,
                          QStringLiteral("A page is being scanned already. Press Esc to end it."));
        }
    }
    ~AcquireTurn() { Taken() = false; }
    AcquireTurn(const AcquireTurn&) = delete;
    AcquireTurn& operator=(const AcquireTurn&) = delete;

private:
    static std::atomic<bool>& Taken()
    {
        static std::atomic<bool> taken{false};
        return taken;
    }
};

QString SourceToUse(Scanner& scanner, UiLoop& loop, const AcquireHooks& hooks)
{
    const QString selected = scanner.Selected();
    if (!selected.isEmpty())
        return selected;
    const QList<ScanSource> sources = WhileEventsRun<QList<ScanSource>>(
        loop, hooks.progress, [&](const ScanProgress& tell) { return scanner.Sources(tell); });
    if (sources.isEmpty()) {
        throw Failure(kFailureNoFile,
                      QStringLiteral("No scanner was found. Look whether it is switched on and "
                                     "connected."));
    }
    return sources.constFirst().name;
}

void BringPage(EngineInstance& instance, Scanner& scanner, UiLoop& loop, const AcquireHooks& hooks)
{
    const AcquireTurn turn;
    loop.ForgetEsc();
    const QString source = SourceToUse(scanner, loop, hooks);
    ScanWishes wishes;
    wishes.mostPixels = limits::kMaxPictureBytes / kBytesAPixel;
    if (hooks.ask) {
        const ScanChoices choices =
            WhileEventsRun<ScanChoices>(loop, hooks.progress, [&](const ScanProgress& tell) {
                return scanner.Choices(source, tell);
            });
        if (!hooks.ask(choices, wishes))
            throw Failure(kFailureCancelled, QStringLiteral("The scan was cancelled."));
        loop.ForgetEsc();
    }
    Bitmap picture = WhileEventsRun<Bitmap>(loop, hooks.progress, [&](const ScanProgress& tell) {
        return BitmapFromScan(scanner.Acquire(source, wishes, tell));
    });
    instance.SetBitmap({}); // the page has nothing to do with the file that was loaded
    instance.SetBitmap(std::move(picture));
}

} // namespace

Bitmap BitmapFromScan(const ScannedPage& page)
{
    CheckScan(page);
    QImage image(page.width, page.height, FormatOfScan(page));
    if (image.isNull())
        throw Failure(kFailureLimit,
                      QStringLiteral("There is not enough memory for the scanned page."));
    if (page.depth == 1)
        image.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    image.setDotsPerMeterX(DotsPerMetre(page.xResolution));
    image.setDotsPerMeterY(DotsPerMetre(page.yResolution));
    for (qint32 y = 0; y < page.height; ++y)
        TakeRow(page, page.rows.constData() + y * page.bytesPerLine, image.scanLine(y));
    return Bitmap(std::move(image), ModelOfScan(page), DepthInFile(page));
}

SourceSearch::SourceSearch(Scanner& scanner, QObject* parent) : QObject(parent), mScanner(scanner)
{ }

SourceSearch::~SourceSearch()
{
    mStop = true;
    End();
}

void SourceSearch::End()
{
    if (mThread.joinable())
        mThread.join();
}

void SourceSearch::Start()
{
    if (IsRunning())
        return;
    mThread = std::thread([this] {
        QList<ScanSource> sources;
        QString words;
        try {
            sources = mScanner.Sources([this](double) { return !mStop; });
        } catch (const Failure& failure) {
            words = failure.Description();
        }
        // The thread is waited for before the object goes.
        QMetaObject::invokeMethod(
            this,
            [this, sources, words] {
                End();
                if (words.isEmpty())
                    Q_EMIT Found(sources);
                else
                    Q_EMIT Failed(words);
            },
            Qt::QueuedConnection);
    });
}

qint32 TwainSelect(Scanner& scanner, const SourceChooser& choose)
{
    SourceSearch search(scanner);
    search.Start();
    const std::optional<QString> chosen = choose(search, scanner.Selected());
    if (!chosen)
        return kFailureCancelled;
    scanner.Select(*chosen);
    return 0;
}

qint32 TwainAcquire(EngineInstance& instance, Scanner& scanner, UiLoop& loop,
                    const AcquireHooks& hooks)
{
    try {
        BringPage(instance, scanner, loop, hooks);
    } catch (const Failure& failure) {
        if (instance.MethodErrors())
            throw;
        return failure.Number();
    }
    return 0;
}

} // namespace quillane
