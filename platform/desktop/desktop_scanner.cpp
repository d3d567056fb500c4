#include "platform/desktop/desktop_scanner.h"
#include "core/failure.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace quillane {

namespace {

constexpr qsizetype kMostScanSources = 1000;
constexpr qsizetype kMostScanChoices = 10'000;
constexpr qint32 kMostScanWidth = 1 << 20;
constexpr int kScanWordsShown = 200;

[[noreturn]] void RefuseScanMessage()
{
    throw Failure(kFailureWorker,
                  QStringLiteral("The driver of the scanner breaks the rules of its messages."));
}

// Texts that each end with a zero byte.
template <size_t Count> std::array<QString, Count> ScanTexts(const QByteArray& bytes)
{
    const QList<QByteArray> fields = bytes.split('\0');
    if (size_t(fields.size()) != Count + 1)
        RefuseScanMessage();
    std::array<QString, Count> texts;
    for (size_t i = 0; i < Count; ++i)
        texts[i] = PathFromBytes(fields[qsizetype(i)]);
    return texts;
}

QString TroubleWords(scan::Trouble trouble, const QString& source, const QString& words)
{
    using scan::Trouble;
    switch (trouble) {
    case Trouble::NoSuchSource:
        return QStringLiteral("There is no scanner \"%1\". Look whether it is switched on and "
                              "connected, and select the source anew.")
            .arg(source);
    case Trouble::Busy:
        return QStringLiteral("The scanner is busy. Another program may be using it.");
    case Trouble::Denied:
        return QStringLiteral("You have no permission to use the scanner.");
    case Trouble::Jammed:
        return QStringLiteral("The paper is jammed in the scanner.");
    case Trouble::NoPaper:
        return QStringLiteral("There is no paper in the scanner's feeder.");
    case Trouble::CoverOpen:
        return QStringLiteral("The cover of the scanner is open.");
    case Trouble::Transfer:
        return QStringLiteral("The connection to the scanner failed in the middle of the work.");
    case Trouble::NoMemory:
        return QStringLiteral("The scanner has not enough memory for this page.");
    case Trouble::Cancelled:
        return QStringLiteral("The scan was cancelled.");
    case Trouble::NoSuchOption:
        return QStringLiteral("The scanner does not take what is wished for \"%1\".").arg(words);
    case Trouble::TooLarge:
        return QStringLiteral("The page would be too large. Choose a smaller area or resolution.");
    case Trouble::Other:
        break;
    }
    return QStringLiteral("The scanner does not do it. Its driver says: %1").arg(words);
}

qint32 TroubleNumber(scan::Trouble trouble)
{
    switch (trouble) {
    case scan::Trouble::NoSuchSource:
        return kFailureNoFile;
    case scan::Trouble::Denied:
        return kFailureDenied;
    case scan::Trouble::Cancelled:
        return kFailureCancelled;
    case scan::Trouble::NoSuchOption:
        return kFailureGeneral;
    case scan::Trouble::NoMemory:
    case scan::Trouble::TooLarge:
        return kFailureLimit;
    default:
        return kFailureIo;
    }
}

[[noreturn]] void FailAsTold(const QByteArray& bytes, const QString& source)
{
    scan::FailedHead head;
    if (size_t(bytes.size()) < sizeof head)
        RefuseScanMessage();
    std::memcpy(&head, bytes.constData(), sizeof head);
    const QString words = PathFromBytes(bytes.sliced(sizeof head)).left(kScanWordsShown);
    throw Failure(TroubleNumber(head.trouble), TroubleWords(head.trouble, source, words));
}

// Runs one order; take is called for every message that is no answer to all of them and tells how
// much is done by now.
void RunScanOrder(ScanProcess& process, const QString& source, const ScanProgress& progress,
                  const std::function<double(const ScanProcess::Message&)>& take)
{
    double part = -1;
    for (;;) {
        const ScanProcess::Message message = process.Next(progress, part);
        if (message.kind == scan::Kind::Done)
            return;
        if (message.kind == scan::Kind::Failed)
            FailAsTold(message.bytes, source);
        if (message.kind != scan::Kind::Alive)
            part = take(message);
        if (progress && !progress(part))
            throw Failure(kFailureCancelled, QStringLiteral("The scan was cancelled."));
    }
}

double ScanNumber(const QString& text)
{
    bool known = false;
    const double number = text.toDouble(&known);
    return known && std::isfinite(number) ? number : 0;
}

void TakeChoice(ScanChoices& choices, const QString& what, const QString& value)
{
    if (what == QLatin1String("mode"))
        choices.modes.append(value);
    else if (what == QLatin1String("mode-now"))
        choices.mode = value;
    else if (what == QLatin1String("feed"))
        choices.feeds.append(value);
    else if (what == QLatin1String("feed-now"))
        choices.feed = value;
    else if (what == QLatin1String("resolution"))
        choices.resolutions.append(ScanNumber(value));
    else if (what == QLatin1String("resolution-now"))
        choices.resolution = ScanNumber(value);
    else if (what == QLatin1String("resolution-least"))
        choices.leastResolution = ScanNumber(value);
    else if (what == QLatin1String("resolution-most"))
        choices.mostResolution = ScanNumber(value);
    else if (what == QLatin1String("width"))
        choices.width = ScanNumber(value);
    else if (what == QLatin1String("height"))
        choices.height = ScanNumber(value);
}

QList<QByteArray> OrdersOf(const QString& source, const ScanWishes& wishes)
{
    QList<QByteArray> orders{"acquire", BytesFromPath(source)};
    const auto number = [&](const char* option, double value) {
        orders.append(QByteArray(option) + '=' + QByteArray::number(value, 'f', 4));
    };
    // Where the paper comes from first, and the kind of picture: the rest may depend on them.
    if (!wishes.feed.isEmpty())
        orders.append("source=" + BytesFromPath(wishes.feed));
    if (!wishes.mode.isEmpty())
        orders.append("mode=" + BytesFromPath(wishes.mode));
    if (wishes.depth > 0)
        number("depth", wishes.depth);
    if (wishes.resolution > 0)
        number("resolution", wishes.resolution);
    if (wishes.right > 0) {
        number("tl-x", wishes.left);
        number("tl-y", wishes.top);
        number("br-x", wishes.right);
        number("br-y", wishes.bottom);
    }
    return orders;
}

// Puts a page together from its messages, none of which is believed.
class PageTaker {
public:
    explicit PageTaker(qint64 mostPixels) : mMostPixels(mostPixels) { }

    double Take(const ScanProcess::Message& message)
    {
        if (message.kind == scan::Kind::Page && mPage.width == 0)
            Begin(message.bytes);
        else if (message.kind == scan::Kind::Rows && mPage.width != 0)
            AddRows(message.bytes);
        else
            RefuseScanMessage();
        return mLines > 0 ? std::min(
                   1.0, double(mPage.rows.size()) / (double(mLines) * double(mPage.bytesPerLine)))
                          : -1;
    }

    ScannedPage Finish()
    {
        if (mPage.bytesPerLine > 0)
            mPage.height = qint32(mPage.rows.size() / mPage.bytesPerLine);
        if (mPage.height == 0)
            throw Failure(kFailureIo, QStringLiteral("The scanner has sent no picture."));
        mPage.rows.truncate(mPage.height * mPage.bytesPerLine);
        return std::move(mPage);
    }

private:
    void Begin(const QByteArray& bytes)
    {
        scan::PageHead head;
        if (size_t(bytes.size()) != sizeof head)
            RefuseScanMessage();
        std::memcpy(&head, bytes.constData(), sizeof head);
        const bool kind = (head.channels == 1 || head.channels == 3)
            && (head.depth == 8 || head.depth == 16 || (head.depth == 1 && head.channels == 1));
        if (!kind || head.width <= 0 || head.width > kMostScanWidth)
            RefuseScanMessage();
        const qint64 needed = (qint64(head.width) * head.channels * head.depth + 7) / 8;
        if (head.bytesPerLine < needed || head.bytesPerLine > needed * 2 + 4096)
            RefuseScanMessage();
        if (head.lines > 0 && qint64(head.lines) * head.width > mMostPixels)
            RefuseAsTooLarge();
        mMostBytes = head.bytesPerLine * std::max<qint64>(1, mMostPixels / head.width);
        mLines = head.lines;
        mPage.width = head.width;
        mPage.channels = head.channels;
        mPage.depth = head.depth;
        mPage.bytesPerLine = head.bytesPerLine;
        mPage.xResolution = Resolution(head.xResolution);
        mPage.yResolution = Resolution(head.yResolution);
    }

    static double Resolution(double value)
    {
        return std::isfinite(value) && value > 0 && value < 1e6 ? value : 0;
    }

    void AddRows(const QByteArray& bytes)
    {
        if (mPage.rows.size() + bytes.size() > mMostBytes)
            RefuseAsTooLarge();
        mPage.rows.append(bytes);
    }

    [[noreturn]] static void RefuseAsTooLarge()
    {
        throw Failure(kFailureLimit, TroubleWords(scan::Trouble::TooLarge, {}, {}));
    }

    qint64 mMostPixels, mMostBytes = 0;
    qint32 mLines = -1;
    ScannedPage mPage;
};

} // namespace

QList<ScanSource> DesktopScanner::Sources(const ScanProgress& progress)
{
    QList<ScanSource> sources;
    ScanProcess process(mProgram, {"list"}, mPatience);
    process.EndAtOnce(); // no scanner has begun to move
    RunScanOrder(process, {}, progress, [&](const ScanProcess::Message& message) {
        if (message.kind != scan::Kind::Source || sources.size() >= kMostScanSources)
            RefuseScanMessage();
        const auto texts = ScanTexts<4>(message.bytes);
        if (!texts[0].isEmpty())
            sources.append({texts[0], texts[1], texts[2], texts[3]});
        return -1.0;
    });
    return sources;
}

ScanChoices DesktopScanner::Choices(const QString& source, const ScanProgress& progress)
{
    ScanChoices choices;
    ScanProcess process(mProgram, {"choices", BytesFromPath(source)}, mPatience);
    qsizetype count = 0;
    RunScanOrder(process, source, progress, [&](const ScanProcess::Message& message) {
        if (message.kind != scan::Kind::Choice || ++count > kMostScanChoices)
            RefuseScanMessage();
        const auto texts = ScanTexts<2>(message.bytes);
        TakeChoice(choices, texts[0], texts[1]);
        return -1.0;
    });
    return choices;
}

ScannedPage DesktopScanner::Acquire(const QString& source, const ScanWishes& wishes,
                                    const ScanProgress& progress)
{
    PageTaker page(wishes.mostPixels);
    ScanProcess process(mProgram, OrdersOf(source, wishes), mPatience);
    RunScanOrder(process, source, progress,
                 [&](const ScanProcess::Message& message) { return page.Take(message); });
    return page.Finish();
}

} // namespace quillane
