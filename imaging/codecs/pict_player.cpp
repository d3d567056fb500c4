#include "imaging/codecs/pict_player.h"
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/pict_state.h"
#include "imaging/limits.h"
#include <algorithm>

namespace quillane::codecs {

namespace {

constexpr qint64 kPictPreamble = 512;
constexpr int kPictMostOperations = 2'000'000;

/// Where the picture's first byte stands.
qint64 PictStart(QByteArrayView bytes)
{
    if (PictBegins(bytes, kPictPreamble)) {
        return kPictPreamble;
    }
    if (PictBegins(bytes, 0)) {
        return 0;
    }
    Damaged(kPictName, QStringLiteral("it does not begin as one"));
}

class PictPlayer {
public:
    PictPlayer(QByteArrayView bytes, const DecodeRequest& request)
        : mReader(bytes),
          mRequest(request),
          mArtist(mState, mPage.drawing)
    { }

    PictPage Play()
    {
        mReader.Skip(2); // its size, which wraps
        mPage.frame = mReader.Rectangle();
        ReadVersion();
        int operation = 0;
        for (int i = 0; i < kPictMostOperations; ++i) {
            CheckCancelled(mRequest);
            if (mWide) {
                mReader.Align();
            }
            operation = mWide ? mReader.U16() : mReader.U8();
            constexpr int kEnd = 0xff;
            if (operation == kEnd || mReader.HasEnded()) {
                break;
            }
            const bool ended = !ResumeNextOrCancelled([&] { Run(operation); });
            if (ended || mReader.HasEnded() || mPage.drawing.IsFull()) {
                mPage.partial = true;
                break;
            }
        }
        mPage.partial = mPage.partial || mReader.HasEnded() || mPage.drawing.IsCutShort();
        if (mPage.alone && (mFigures != 1 || !FillsFrame(*mPage.alone))) {
            mPage.alone.reset();
        }
        return std::move(mPage);
    }

private:
    /// Like ResumeNext, but lets a cancellation through, and what comes before the first figure.
    template <typename Step> bool ResumeNextOrCancelled(Step&& step)
    {
        try {
            step();
            return true;
        } catch (const Failure& failure) {
            if (failure.Number() == kFailureCancelled || mFigures == 0) {
                throw;
            }
            return false;
        }
    }

    void ReadVersion()
    {
        constexpr int kVersionOperation = 0x11;
        if (mReader.U8() == kVersionOperation) {
            mReader.Skip(1);
            return;
        }
        mWide = true;
        mReader.Skip(3);
        PictReader ahead = mReader;
        constexpr int kHeader = 0x0c00;
        if (ahead.U16() != kHeader) {
            return;
        }
        constexpr int kExtended = -2; // tells a resolution, and the frame in its units
        if (ahead.I16() == kExtended) {
            ahead.Skip(2);
            const double across = ahead.Fixed();
            ahead.Skip(4);
            const QRectF frame = ahead.Rectangle().normalized();
            if (across >= 1 && across < 100'000 && frame.width() > 0 && frame.height() > 0) {
                mPage.frame = frame;
                mPage.dotsPerInch = across;
            }
        }
    }

    bool FillsFrame(const PictRaster& raster) const
    {
        return raster.target == mPage.frame && raster.source == raster.bounds
            && raster.image.size() == mPage.frame.size().toSize()
            && raster.bounds.size() == QSizeF(raster.image.size())
            && (!raster.mask
                || (raster.mask->IsRectangle() && raster.mask->Bounds().contains(mPage.frame)));
    }

    QPointF Point() { return mReader.Point() - mState.origin; }
    QRectF Box() { return mReader.Rectangle().translated(-mState.origin); }
    QRgb Colour()
    {
        const int red = mReader.U16() >> 8;
        const int green = mReader.U16() >> 8;
        return qRgb(red, green, mReader.U16() >> 8);
    }
    PictPattern Pattern()
    {
        PictPattern pattern{};
        const QByteArrayView bytes = mReader.Bytes(8);
        std::copy(bytes.begin(), bytes.end(), pattern.begin());
        return pattern;
    }

    void Run(int operation)
    {
        if (operation < 0x30) {
            RunState(operation);
        } else if (operation < 0x90) {
            RunFigure(operation);
        } else if (operation >= 0x90 && operation <= 0x9b
                   && (operation <= 0x91 || operation >= 0x98)) {
            const PictRaster raster =
                ReadPictRaster(mReader, operation, mState.ink, mState.paper, mRequest);
            CountPixels(raster.image);
            AddRaster(raster);
        } else {
            RunOther(operation);
        }
    }

    /// Comments, what is reserved, and what a codec of movies made.
    void RunOther(int operation)
    {
        constexpr int kShortComment = 0xa0, kLongComment = 0xa1;
        constexpr int kCompressed = 0x8200;
        if (operation == kShortComment) {
            mReader.Skip(2);
        } else if (operation == kLongComment) {
            mReader.Skip(2);
            mReader.Skip(mReader.U16());
        } else if (operation < 0xb0) {
            mReader.Skip(mReader.U16());
        } else if (operation < 0xd0) {
            return;
        } else if (operation < 0x100) {
            mReader.Skip(mReader.U32());
        } else if (operation < 0x8000) {
            mReader.Skip((operation >> 8) * 2);
        } else if (operation >= 0x8100) {
            const QByteArrayView body = mReader.Bytes(mReader.U32());
            if (operation == kCompressed) {
                const PictRaster raster = ReadPictCompressed(body, mRequest);
                if (raster.image.isNull()) {
                    mPage.partial = true;
                } else {
                    mOnlyCompressed = false;
                    AddRaster(raster);
                    // What follows draws words for those who cannot read this.
                    mOnlyCompressed = true;
                }
            }
        }
    }

    /// Bitmaps that are read and not kept cost time too.
    void CountPixels(const QImage& image)
    {
        mPixels += qint64(image.width()) * image.height();
        if (mPixels > 2 * limits::kMaxPixels) {
            TooMuch(kPictName,
                    QStringLiteral("has bitmaps of more than %1 million pixels")
                        .arg(2 * limits::kMaxPixels / 1'000'000));
        }
    }

    void AddRaster(PictRaster raster)
    {
        if (mOnlyCompressed) {
            return;
        }
        mPage.bits = std::max(mPage.bits, raster.bits);
        mPage.partial = mPage.partial || raster.partial;
        ++mFigures;
        drawing::Picture picture;
        picture.image = raster.image;
        picture.part = raster.source.translated(-raster.bounds.topLeft());
        const QRectF to = raster.target.translated(-mState.origin);
        picture.place = QTransform(to.width(), 0, 0, to.height(), to.x(), to.y());
        picture.smooth = raster.image.format() != QImage::Format_Mono;
        quint8 rop = drawing::kRopSource;
        switch (raster.mode & 7) { // the modes with 4 added turn the source around
        case 1:
            rop = 0x88; // ink is 0 here: or is and
            break;
        case 2:
            rop = 0x99;
            break;
        case 3:
            rop = 0xbb;
            break;
        default:
            break;
        }
        constexpr int kBooleanModes = 8;
        rop = raster.mode < kBooleanModes ? rop : drawing::kRopSource;
        drawing::ClipPointer clip = mState.clip;
        if (raster.mask) {
            clip = drawing::AddClip(clip, drawing::ClipMode::Intersect,
                                    raster.mask->Mapped(QTransform::fromTranslate(
                                        -mState.origin.x(), -mState.origin.y())),
                                    false);
        }
        mPage.drawing.AddPicture(std::move(picture), clip, rop);
        if (!mPage.alone && mFigures == 1) {
            mPage.alone = std::move(raster);
        }
    }

    void RunState(int operation)
    {
        switch (operation) {
        case 0x01:
            mState.clip = drawing::AddClip({}, drawing::ClipMode::Intersect,
                                           ReadPictRegion(mReader).Mapped(QTransform::fromTranslate(
                                               -mState.origin.x(), -mState.origin.y())),
                                           false);
            return;
        case 0x02:
            mState.backPattern = Pattern();
            return;
        case 0x03:
            mState.font = mReader.U16();
            return;
        case 0x04:
            mState.face = mReader.U8();
            return;
        case 0x07: {
            const int down = mReader.I16();
            mState.pen = QSizeF(std::max<int>(mReader.I16(), 0), std::max(down, 0));
            return;
        }
        case 0x08:
            mState.penMode = mReader.U16();
            return;
        case 0x09:
            mState.penPattern = Pattern();
            return;
        case 0x0a:
            mState.fillPattern = Pattern();
            return;
        case 0x0b: {
            const QPointF size = mReader.Point();
            mState.corner = QSizeF(size.x(), size.y());
            return;
        }
        case 0x0c: {
            const int across = mReader.I16();
            mState.origin += QPointF(across, mReader.I16());
            return;
        }
        case 0x0d:
            mState.textSize = mReader.U16();
            return;
        case 0x0e:
            mState.ink = PictOldColour(mReader.U32());
            return;
        case 0x0f:
            mState.paper = PictOldColour(mReader.U32());
            return;
        case 0x12:
        case 0x13:
        case 0x14:
            TakePixelPattern(operation);
            return;
        case 0x1a:
            mState.ink = Colour();
            return;
        case 0x1b:
            mState.paper = Colour();
            return;
        default:
            break;
        }
        if (operation >= 0x20) {
            RunLine(operation);
            return;
        }
        // What is read over: its bytes, from 0x00 on.
        constexpr uchar kBytes[0x20] = {0, 0, 8, 2, 1, 2, 4, 4, 2, 8, 8, 4, 4, 2, 4, 4,
                                        8, 1, 0, 0, 0, 2, 2, 0, 0, 0, 6, 6, 0, 6, 0, 6};
        mReader.Skip(kBytes[operation]);
    }

    /// A pattern of pixels; its first eight bytes are what older systems draw instead.
    void TakePixelPattern(int operation)
    {
        constexpr int kOneColour = 2;
        const int kind = mReader.U16();
        const PictPattern pattern = Pattern();
        PictPattern& to = operation == 0x12 ? mState.backPattern
            : operation == 0x13             ? mState.penPattern
                                            : mState.fillPattern;
        to = pattern;
        if (kind == kOneColour) {
            const QRgb colour = Colour();
            (operation == 0x12 ? mState.paper : mState.ink) = colour;
            return;
        }
        SkipPictPattern(mReader, mRequest);
    }

    void RunLine(int operation)
    {
        switch (operation) {
        case 0x20:
            mState.at = Point();
            Line(Point());
            return;
        case 0x21:
            Line(Point());
            return;
        case 0x22: {
            mState.at = Point();
            const qint8 across = mReader.I8();
            Line(mState.at + QPointF(across, mReader.I8()));
            return;
        }
        case 0x23: {
            const qint8 across = mReader.I8();
            Line(mState.at + QPointF(across, mReader.I8()));
            return;
        }
        case 0x28:
            mState.textAt = Point();
            Text();
            return;
        case 0x29:
            mState.textAt.rx() += mReader.U8();
            Text();
            return;
        case 0x2a:
            mState.textAt.ry() += mReader.U8();
            Text();
            return;
        case 0x2b: {
            const int across = mReader.U8();
            mState.textAt += QPointF(across, mReader.U8());
            Text();
            return;
        }
        case 0x2c: {
            PictReader body(mReader.Bytes(mReader.U16()));
            const int number = body.U16();
            const QByteArrayView name = body.Bytes(body.U8());
            constexpr int kMostFonts = 1000;
            if (mState.fonts.size() < kMostFonts) {
                mState.fonts.insert(number, QString::fromLatin1(name));
            }
            return;
        }
        default:
            mReader.Skip(mReader.U16());
            return;
        }
    }

    void Line(QPointF to)
    {
        if (!mOnlyCompressed) {
            ++mFigures;
            mArtist.Line(to);
        }
    }

    void Text()
    {
        const QByteArrayView text = mReader.Bytes(mReader.U8());
        if (!mOnlyCompressed) {
            ++mFigures;
            mArtist.Text(text);
        }
    }

    void RunFigure(int operation)
    {
        const int which = operation & 15;
        const bool same = which >= 8;
        const auto verb = PictVerb(which & 7);
        const int family = operation >> 4;
        ReadFigure(family, same);
        if ((which & 7) > int(PictVerb::Fill) || mOnlyCompressed) {
            return;
        }
        ++mFigures;
        switch (family) {
        case 3:
            mArtist.Rectangle(verb, mState.rectangle);
            break;
        case 4:
            mArtist.RoundRectangle(verb, mState.rounded);
            break;
        case 5:
            mArtist.Oval(verb, mState.oval);
            break;
        case 6:
            mArtist.Arc(verb, mState.arc, mState.arcStart, mState.arcSweep);
            break;
        case 7:
            mArtist.Polygon(verb, mState.polygon);
            break;
        default:
            mArtist.Region(verb, mState.region);
            break;
        }
    }

    void ReadFigure(int family, bool same)
    {
        QRectF* const boxes[] = {&mState.rectangle, &mState.rounded, &mState.oval, &mState.arc};
        if (family <= 6 && !same) {
            *boxes[family - 3] = Box();
        }
        if (family == 6) {
            mState.arcStart = mReader.I16();
            mState.arcSweep = mReader.I16();
        }
        if (family == 7 && !same) {
            PictReader body(mReader.Bytes(std::max(mReader.U16() - 2, 0)));
            body.Skip(8);
            mState.polygon.clear();
            while (body.Left() >= 4) {
                mState.polygon.push_back(body.Point() - mState.origin);
            }
        }
        if (family == 8 && !same) {
            mState.region = ReadPictRegion(mReader).Mapped(
                QTransform::fromTranslate(-mState.origin.x(), -mState.origin.y()));
        }
    }

    PictReader mReader;
    const DecodeRequest& mRequest;
    PictPage mPage;
    PictState mState;
    PictArtist mArtist;
    bool mWide = false; ///< operations of two bytes, at even places
    bool mOnlyCompressed = false;
    int mFigures = 0;
    qint64 mPixels = 0; ///< of all bitmaps
};

} // namespace

bool PictBegins(QByteArrayView bytes, qint64 at)
{
    constexpr qint64 kBeginning = 14;
    if (at + kBeginning > bytes.size()) {
        return false;
    }
    PictReader reader(bytes.sliced(at));
    reader.Skip(2);
    const QRectF frame = reader.Rectangle();
    const quint32 version = reader.U32();
    return frame.width() > 0 && frame.height() > 0
        && (version == 0x001102ff || version >> 16 == 0x1101);
}

PictPage PlayPict(QByteArrayView bytes, const DecodeRequest& request)
{
    return PictPlayer(bytes.sliced(PictStart(bytes)), request).Play();
}

} // namespace quillane::codecs
