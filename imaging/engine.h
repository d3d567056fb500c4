#pragma once
// The seam to the imaging engine: one image with its facts, as LEAD1 (shown) and LEAD2
// (scratch) of the windows. No widget; EngineView paints one.
#include "imaging/comments/comment_reader.h"
#include "imaging/reader.h"
#include "imaging/region.h"
#include "imaging/saving/saver.h"
#include <QFont>
#include <array>
#include <functional>

namespace quillane {

/// Ways of Resize.
enum ResizeFlag : qint32 { kResizePlain = 0, kResizeResample = 2, kResizeBicubic = 4 };

class EngineInstance {
public:
    /// Replaces the image: first page of the file at `bits` per pixel, 0 for the file's own.
    /// Pixels stand upright; the information values are the file's own. Clears the pending
    /// comments. Failure (unless MethodErrors is off) leaves the image as it was.
    void Load(const QString& file, qint32 bits, qint32 page, qint32 pages = 1,
              const DecodeRequest& request = {});
    /// Takes over what another thread has loaded, as Load would.
    void Adopt(LoadedImage loaded);
    /// Writes the image with all pending comments, which stay pending, and what no comment names of
    /// the file it was loaded from. bits: per pixel in the file, 0 for the image's own; quality:
    /// 2..255, 2 the best; mode: see PictureSaveMode. Returns 0,
    /// or with method errors off the number of the Failure. See SavePicture for what fails.
    qint32 Save(const QString& file, qint16 format, qint32 bits, qint32 quality, qint32 mode);
    /// Save in mode 0 with a small picture embedded, which fits the stamp's size with its shape
    /// kept; stampBits: 8 grey, else colours.
    qint32 SaveWithThumbnail(const QString& file, qint16 format, qint32 bits, qint32 quality,
                             float stampWidth, float stampHeight, qint32 stampBits);
    /// Fills the information values below without loading pixels.
    void GetFileInfo(const QString& file, qint32 page, qint32 flags);
    void SetInfo(const ImageFacts& facts) { mInfo = facts; }

    const ImageFacts& Info() const { return mInfo; }
    qint32 InfoWidth() const { return mInfo.width; }
    qint32 InfoHeight() const { return mInfo.height; }
    qint32 InfoBits() const { return mInfo.bits; }
    qint16 InfoFormat() const { return mInfo.format; }
    qint64 InfoSizeDisk() const { return mInfo.sizeDisk; }
    qint64 InfoSizeMemory() const { return mInfo.sizeMemory; }
    QString InfoCompression() const { return mInfo.compression; }
    qint32 InfoXResolution() const { return mInfo.xResolution; }
    qint32 InfoYResolution() const { return mInfo.yResolution; }
    qint32 InfoPages() const { return mInfo.pages; }

    qint32 BitmapWidth() const { return mBitmap.Width(); }
    qint32 BitmapHeight() const { return mBitmap.Height(); }
    qint32 BitmapBits() const { return mBitmap.Bits(); }

    /// The image; a copy of it is O(1) and independent.
    const quillane::Bitmap& Bitmap() const { return mBitmap; }
    /// Gives this instance its own copy of a picture; an empty one frees the image. The region
    /// stays as far as it lies on the new picture. What was loaded last is remembered for the
    /// next save until the image is freed.
    void SetBitmap(quillane::Bitmap bitmap);
    bool HasBitmap() const { return !mBitmap.IsNull(); }
    /// The file that the image came from, as it was then; nullptr for an image from elsewhere.
    const std::shared_ptr<const LoadedFile>& Loaded() const { return mLoaded; }
    /// Has the next save carry over what is in that file; nullptr for none.
    void SetLoaded(std::shared_ptr<const LoadedFile> file) { mLoaded = std::move(file); }

    /// One metadata field read from the file, the image untouched. See CommentReader.
    CommentValue ReadComment(const QString& file, qint32 page, qint16 slot);
    CommentReader& Comments() { return mReader; }
    /// Pending comment of the next save; an empty value clears it.
    void SetComment(qint16 slot, CommentValue value) { mPending.Set(slot, std::move(value)); }
    const CommentValue& Comment(qint16 slot) const { return mPending.At(slot); }

    /// When off, a failing method raises nothing and returns as if it had not been called.
    bool MethodErrors() const { return mMethodErrors; }
    void SetMethodErrors(bool on) { mMethodErrors = on; }

    // Processing: of the whole image or, where there is one, of the region; see
    // imaging/processing/ for what each does with which depth. Colours have red in the low byte,
    // angles are hundredths of a degree. Each fails without an image.

    void Contrast(qint32 value);          ///< -1000..1000
    void Brightness(qint32 value);        ///< -1000..1000
    void HistogramContrast(qint32 value); ///< -1000..1000
    void Saturation(qint32 value);        ///< -1000..1000
    void Hue(qint32 angle);               ///< turn of the colour circle
    void GammaCorrect(qint32 gamma);      ///< in hundredths, above 100 brightens
    void Invert();
    void Posterize(qint32 levels); ///< 2..256
    void StretchIntensity();
    void HistogramEqualize();
    void IntensityDetect(qint32 low, qint32 high); ///< of 0..255
    /// range 0..1000; channel 0 all, 1 red, 2 green, 3 blue.
    void AddNoise(qint32 range, qint32 channel);
    void Average(qint32 size);                   ///< neighbourhood in pixels, 0..255
    void Median(qint32 size);                    ///< the same
    void Sharpen(qint32 value);                  ///< -1000..1000
    void Mosaic(qint32 size);                    ///< of a tile, in pixels
    void Emboss(qint32 direction, qint32 depth); ///< 0 north, clockwise to 7; 0..1000
    void SpatialFilter(qint32 code);             ///< of processing::SpatialKernels()
    void BinaryFilter(qint32 code);              ///< of processing::BinaryKernels()
    void Halftone(qint32 type, qint32 angle);    ///< 0 lines, 1 dots
    /// See processing::ContourChoice.
    void ContourFilter(qint32 threshold, qint32 interval, qint32 smoothing, qint32 option);
    /// Combines another picture into a rectangle of this one; see processing/combine.h for what
    /// flags 768 do.
    void Combine(qint32 left, qint32 top, qint32 width, qint32 height,
                 const quillane::Bitmap& source, qint32 sourceLeft, qint32 sourceTop, qint32 flags);
    void Grayscale(qint32 bits); ///< 8 or 16
    void FillColor(qint32 colour);
    void Flip();    ///< upside down
    void Reverse(); ///< left to right
    /// To the right; the image grows to hold the turned picture when flags have bit 1.
    void Rotate(qint32 angle, qint32 flags, qint32 fill);
    void Shear(qint32 angle, bool horizontal, qint32 fill);
    /// Changes the size of the whole image and drops the region; sizes are rounded to whole
    /// pixels, at least 1.
    void Resize(float width, float height, qint32 flags);
    /// Changes the depth of the whole image to 1, 4, 8, 16, 24, 32, 48 or 64 bits, with the
    /// choices of processing::PaletteChoice and DitherChoice. No palette of one's own can be given.
    void ChangeColorDepth(qint32 bits, qint32 palette, qint32 dither);
    /// Cuts the image to the rectangle; what lies beside the image is left out.
    void Trim(qint32 left, qint32 top, qint32 width, qint32 height);

    /// Number of different colours; see processing/histogram.h.
    qint64 UniqueColors() const;
    /// Counts the levels of a channel: 0 master, 1 red, 2 green, 3 blue.
    void GetHistogram(qint32 channel);
    /// An entry, 0..255, of what GetHistogram counted last. Failure kFailureIndex beyond.
    qint64 HistogramValue(qint32 index) const;

    // The region, in coordinates of the image and clipped to it; a new one takes the place of the
    // old. One of no pixels is none. It goes with the image: Load, Resize and an empty image drop
    // it, another image keeps what lies on it.

    /// In image coordinates; a width or height below 1 makes no region.
    void SetRegionRect(qint32 left, qint32 top, qint32 width, qint32 height);
    /// The ellipse inside that rectangle.
    void SetRegionEllipse(qint32 left, qint32 top, qint32 width, qint32 height);
    /// The rectangle with quarter circles of that radius in its corners.
    void SetRegionRoundRect(qint32 left, qint32 top, qint32 width, qint32 height, qint32 radius);
    /// What the outline encloses; it is closed where it ends.
    void SetRegionFreeHand(const QList<QPoint>& outline);
    /// The pixels whose colour lies between the two in red, green and blue.
    void SetRegionColor(qint32 lowest, qint32 highest);
    void MoveRegion(qint32 right, qint32 down);
    void ClearRegion() { mRegion = {}; }
    bool HasRegion() const { return !mRegion.IsEmpty(); }
    QRect RegionBounds() const { return mRegion.Bounds(); }
    bool IsPointInRegion(qint32 x, qint32 y) const { return mRegion.Contains(x, y); }
    const Region& RegionShape() const { return mRegion; }

    // The floater: a copy of the region's pixels that lies over the image and can be moved. It
    // does not change the image until it is combined. A new image of another size drops it.

    /// Makes it of the region, where the region stands, and shows it. Failure without a region.
    void MakeFloater();
    /// Its picture, transparent outside its shape; empty without a floater.
    const quillane::Bitmap& FloaterHandle() const { return mFloater.shown; }
    bool FloaterVisible() const { return mFloater.visible; }
    /// Whether the floater is shown; it stays where it is.
    void SetFloaterVisible(bool visible);
    /// Of its upper left corner in the image; it may lie beside it.
    QPoint FloaterPosition() const { return mFloater.position; }
    void SetFloaterPosition(QPoint position) { mFloater.position = position; }
    /// Copies it into the image where it lies and moves the region there. It stays a floater.
    void CombineFloater();
    void ReleaseFloater() { mFloater = {}; }

    // Drawing of text into the image, in the region only where there is one.

    const QFont& DrawFont() const { return mText.font; }
    /// Its size in points counts 96 pixels to the inch.
    void SetDrawFont(const QFont& font) { mText.font = font; }
    qint32 DrawTextColor() const { return mText.colour; }
    void SetDrawTextColor(qint32 colour) { mText.colour = colour; }
    /// 0, the only one: pixels of the text replace those of the image.
    qint32 DrawMode() const { return mText.mode; }
    /// Failure for any other mode than 0.
    void SetDrawMode(qint32 mode);
    /// Whether the image shows between the letters; else it is white there.
    bool DrawTransparent() const { return mText.transparent; }
    void SetDrawTransparent(bool transparent) { mText.transparent = transparent; }
    qint32 MeasureTextWidth(const QString& text) const;  ///< pixels, of the widest line
    qint32 MeasureTextHeight(const QString& text) const; ///< pixels, of all lines
    /// With its upper left corner at a place of the image.
    void DrawText(const QString& text, qint32 x, qint32 y);

    /// Puts the image, or the region where there is one, on the system's clipboard. Flags change
    /// nothing: the palette and the region are always honoured.
    void CopyToClipboard(qint32 flags) const;
    /// Replaces the image by the clipboard's and drops region and pending comments. Failure where
    /// there is no picture on the clipboard.
    void PasteFromClipboard(qint32 flags);

private:
    /// Replaces the image by what `work` makes of it and of the region (null for none).
    void Process(const std::function<quillane::Bitmap(const Region*)>& work);
    /// Runs a method; with method errors off its Failure is passed over.
    void Guarded(const std::function<void()>& step) const;
    qint32 SaveAs(const QString& file, qint16 format, qint32 bits, qint32 quality, qint32 mode,
                  const StampWish* stamp);

    /// Drops what belongs to places of an image that is replaced.
    void KeepToImage(QSize before);

    struct Floater {
        quillane::Bitmap pixels; ///< those of the bounds, as in the image
        quillane::Bitmap shown;
        Region shape; ///< where it was made
        QPoint position;
        bool visible = false;
    };
    struct TextSettings {
        QFont font;
        qint32 colour = 0;
        qint32 mode = 0;
        bool transparent = true;
    };

    quillane::Bitmap mBitmap;
    Region mRegion;
    Floater mFloater;
    TextSettings mText;
    std::array<qint64, 256> mHistogram{};
    ImageFacts mInfo;
    CommentReader mReader;
    CommentSet mPending;
    std::shared_ptr<const LoadedFile> mLoaded;
    bool mMethodErrors = true;
};

} // namespace quillane
