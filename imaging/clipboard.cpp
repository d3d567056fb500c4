#include "imaging/clipboard.h"

#include "core/failure.h"
#include "imaging/codec.h"
#include "imaging/limits.h"
#include "imaging/reader.h"
#include "imaging/worker/worker_host.h"
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QUrl>
#include <sys/mman.h>
#include <typeinfo>
#include <unistd.h>

namespace quillane {

namespace {

/// What this program puts on the clipboard.
class PictureOnClipboard : public QMimeData {
public:
    explicit PictureOnClipboard(Bitmap picture) : mPicture(std::move(picture)) { }
    const Bitmap& Picture() const { return mPicture; }

    QStringList formats() const override { return {Kind()}; }

protected:
    // Only when another program asks is made what the screen shows of the picture.
    QVariant retrieveData(const QString& kind, QMetaType type) const override
    {
        if (kind != Kind()) {
            return QMimeData::retrieveData(kind, type);
        }
        if (mShown.isNull()) {
            mShown = mPicture.ToDisplay();
            if (mShown.hasAlphaChannel()) {
                mShown = std::move(mShown).convertToFormat(QImage::Format_ARGB32);
            }
        }
        return mShown;
    }

private:
    /// The toolkit's name for an image, which it offers to others as PNG, BMP and more.
    static QString Kind() { return QStringLiteral("application/x-qt-image"); }

    Bitmap mPicture;
    mutable QImage mShown;
};

/// Kinds that are asked for first: those that lose nothing.
constexpr const char* kClipboardKinds[] = {"image/png", "image/tiff", "image/bmp", "image/jpeg",
                                           "image/gif"};
constexpr qint64 kMaxClipboardBytes = limits::kMaxPictureBytes;
constexpr qsizetype kClipboardMark = 512; // that codecs know a file by

const Codec* ClipboardCodec(const QByteArray& bytes)
{
    const auto head = QByteArrayView(bytes).first(qMin(bytes.size(), kClipboardMark));
    const Codec* const codec = bytes.isEmpty() ? nullptr : FindCodec(head, QStringView());
    return codec && (codec->inWorker || codec->decode) ? codec : nullptr;
}

/// The one file of this machine that was copied in a file manager; empty for none or several.
QString ClipboardFile(const QMimeData& data)
{
    const QByteArray list = data.data(QStringLiteral("text/uri-list"));
    QString file;
    for (const QByteArray& line : list.split('\n')) {
        const QByteArray address = line.trimmed();
        if (address.isEmpty() || address.startsWith('#')) {
            continue;
        }
        constexpr QByteArrayView kScheme("file://");
        if (!file.isEmpty() || !address.startsWith(kScheme)) {
            return {};
        }
        const qsizetype path = address.indexOf('/', kScheme.size());
        file = path < 0 ? QString()
                        : PathFromBytes(QByteArray::fromPercentEncoding(address.mid(path)));
    }
    return file;
}

[[noreturn]] void FailForLargeClipboard()
{
    throw Failure(kFailureLimit,
                  QStringLiteral("The picture on the clipboard is larger than can be held."));
}

Bitmap HeldPixels(const QImage& image)
{
    if (qint64(image.width()) * image.height() * 4 > limits::kMaxPictureBytes) {
        FailForLargeClipboard();
    }
    const bool alpha = image.hasAlphaChannel();
    return {image.convertToFormat(alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32),
            ColourModel::Rgb, alpha ? 32 : 24};
}

/// The content as a file that the decoding process can read.
FileSource ClipboardSource(const QByteArray& bytes)
{
    FileHandle memory(::memfd_create("quillane-paste", MFD_CLOEXEC));
    for (qint64 done = 0; done < bytes.size();) {
        const ssize_t wrote =
            ::pwrite(memory.Fd(), bytes.constData() + done, size_t(bytes.size() - done), done);
        if (wrote <= 0) {
            FailForLargeClipboard();
        }
        done += wrote;
    }
    return {std::move(memory), bytes.size()};
}

Bitmap DecodedClipboard(const QByteArray& bytes)
{
    const Codec* const codec = ClipboardCodec(bytes);
    if (!codec) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("What is on the clipboard is not a picture this program "
                                     "reads."));
    }
    if (codec->inWorker) {
        FileSource source = ClipboardSource(bytes);
        const ImageFacts facts = worker::Probe(source, codec->name);
        return worker::Decode(source, codec->name, {}).Upright(facts.orientation);
    }
    MemorySource source(bytes);
    const ImageFacts facts = codec->probe(source);
    return codec->decode(source, {}).Upright(facts.orientation);
}

} // namespace

void PutOnClipboard(const Bitmap& picture)
{
    QGuiApplication::clipboard()->setMimeData(new PictureOnClipboard(picture));
}

ClipboardContent TakeClipboard()
{
    ClipboardContent content;
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    if (!data) {
        throw Failure(kFailureGeneral, QStringLiteral("There is no picture on the clipboard."));
    }
    if (const auto* own = dynamic_cast<const PictureOnClipboard*>(data)) {
        content.own = own->Picture();
        return content;
    }
    // Held as an image by this very process: nothing is read from outside.
    if (typeid(*data) == typeid(QMimeData) && data->hasImage()) {
        content.held = data->imageData().value<QImage>();
        if (!content.held.isNull()) {
            return content;
        }
    }
    QStringList kinds;
    for (const char* kind : kClipboardKinds) {
        kinds.append(QString::fromLatin1(kind));
    }
    const QStringList offered = data->formats();
    for (const QString& kind : offered) {
        if (kind.startsWith(QStringLiteral("image/")) && !kinds.contains(kind)) {
            kinds.append(kind);
        }
    }
    bool nonsense = false;
    for (const QString& kind : kinds) {
        if (!offered.contains(kind)) {
            continue;
        }
        QByteArray bytes = data->data(kind);
        if (bytes.size() > kMaxClipboardBytes) {
            FailForLargeClipboard();
        }
        if (ClipboardCodec(bytes)) {
            content.bytes = std::move(bytes);
            return content;
        }
        nonsense = true;
    }
    content.file = ClipboardFile(*data);
    if (content.file.isEmpty()) {
        throw Failure(nonsense ? kFailureUnreadable : kFailureGeneral,
                      nonsense ? QStringLiteral("What is on the clipboard is not a picture this "
                                                "program reads.")
                               : QStringLiteral("There is no picture on the clipboard."));
    }
    return content;
}

Bitmap PictureFromClipboard(const ClipboardContent& content)
{
    if (!content.own.IsNull()) {
        return content.own;
    }
    if (!content.held.isNull()) {
        return HeldPixels(content.held);
    }
    return content.file.isEmpty() ? DecodedClipboard(content.bytes) : LoadFile(content.file).bitmap;
}

} // namespace quillane
