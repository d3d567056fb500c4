#include "core/failure.h"
#include "imaging/codec.h"
#include "imaging/engine.h"
#include "imaging/limits.h"
#include "imaging/processing/colour.h"
#include "imaging/processing/cut_out.h"
#include "imaging/processing/text.h"
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <memory>
#include <typeinfo>

namespace quillane {

namespace {

/// What this program puts on the clipboard: the picture itself for its own pastes, and what the
/// screen shows of it for others.
class PictureOnClipboard : public QMimeData {
public:
    explicit PictureOnClipboard(Bitmap picture) : mPicture(std::move(picture))
    {
        QImage shown = mPicture.ToDisplay();
        if (shown.hasAlphaChannel()) {
            shown = std::move(shown).convertToFormat(QImage::Format_ARGB32);
        }
        setImageData(shown);
    }
    const Bitmap& Picture() const { return mPicture; }

private:
    Bitmap mPicture;
};

/// What other programs offer and what is read without the toolkit's own readers.
constexpr const char* kClipboardKinds[] = {"image/png", "image/bmp", "image/jpeg", "image/gif"};

[[noreturn]] void FailForClipboard()
{
    throw Failure(kFailureGeneral, QStringLiteral("There is no picture on the clipboard."));
}

Bitmap ClipboardPixels(const QImage& image)
{
    if (image.isNull()) {
        FailForClipboard();
    }
    if (qint64(image.width()) * image.height() * 4 > limits::kMaxPictureBytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("The picture on the clipboard is larger than can be held."));
    }
    const bool alpha = image.hasAlphaChannel();
    return Bitmap(image.convertToFormat(alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32),
                  ColourModel::Rgb, alpha ? 32 : 24);
}

Bitmap PictureFromClipboard()
{
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    if (!data) {
        FailForClipboard();
    }
    if (const auto* own = dynamic_cast<const PictureOnClipboard*>(data)) {
        return own->Picture();
    }
    for (const char* kind : kClipboardKinds) {
        const QByteArray bytes = data->data(QString::fromLatin1(kind));
        const Codec* const codec = FindCodec(
            QByteArrayView(bytes).first(qMin<qsizetype>(bytes.size(), 512)), QStringView());
        if (!bytes.isEmpty() && codec && codec->decode) {
            MemorySource source(bytes);
            return codec->decode(source, {});
        }
    }
    // Held as an image by this very process: nothing is read from outside.
    if (typeid(*data) == typeid(QMimeData) && data->hasImage()) {
        return ClipboardPixels(data->imageData().value<QImage>());
    }
    FailForClipboard();
}

} // namespace

void EngineInstance::SetDrawMode(qint32 mode)
{
    Guarded([&] {
        if (mode != 0) {
            throw Failure(kFailureGeneral,
                          QStringLiteral("There is no way of drawing of number %1.").arg(mode));
        }
        mText.mode = mode;
    });
}

qint32 EngineInstance::MeasureTextWidth(const QString& text) const
{
    return processing::TextSize(text, mText.font).width();
}

qint32 EngineInstance::MeasureTextHeight(const QString& text) const
{
    return processing::TextSize(text, mText.font).height();
}

void EngineInstance::DrawText(const QString& text, qint32 x, qint32 y)
{
    Process([&](const Region* region) {
        return processing::DrawText(
            mBitmap, region, text, QPoint(x, y),
            {mText.font, processing::RgbOfColour(mText.colour), mText.transparent});
    });
}

void EngineInstance::CopyToClipboard(qint32) const
{
    Guarded([&] {
        if (mBitmap.IsNull()) {
            throw Failure(kFailureGeneral, QStringLiteral("There is no picture to copy."));
        }
        auto data = std::make_unique<PictureOnClipboard>(
            HasRegion() ? processing::CutOut(mBitmap, mRegion) : mBitmap);
        QGuiApplication::clipboard()->setMimeData(data.release());
    });
}

void EngineInstance::PasteFromClipboard(qint32)
{
    Guarded([&] {
        quillane::Bitmap pasted = PictureFromClipboard();
        pasted.SetExact(false);
        mBitmap = std::move(pasted);
        mPending = {};
        mLoaded.reset();
        mRegion = {};
        mFloater = {};
    });
}

} // namespace quillane
