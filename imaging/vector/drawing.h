#pragma once
// What a drawn format is made of before it has pixels: a list of paths, runs of text and pictures
// in the drawing's own units, y downwards.
#include "imaging/vector/path.h"
#include <QImage>
#include <QString>
#include <QTransform>
#include <memory>
#include <vector>

namespace quillane::drawing {

/// How a line is drawn. Qt::NoPen draws none.
struct Stroke {
    Qt::PenStyle style = Qt::NoPen;
    Qt::PenCapStyle cap = Qt::RoundCap;
    Qt::PenJoinStyle join = Qt::RoundJoin;
    QRgb colour = 0xff000000;
    double width = 0; ///< drawing units; drawn at least one pixel wide
    double miter = 10;
    bool operator==(const Stroke&) const = default;
};

/// How an area is filled. Qt::NoBrush fills none; the hatches of Qt are those of the screen, eight
/// pixels apart; Qt::TexturePattern repeats `pattern` pixel by pixel.
struct Fill {
    Qt::BrushStyle style = Qt::NoBrush;
    QRgb colour = 0xff000000;
    bool winding = false; ///< overlapping parts are all inside; else they alternate
    bool backed = false;  ///< `back` shows between the lines of a hatch
    QRgb back = 0xffffffff;
    QImage pattern;
    bool operator==(const Fill& other) const;
};

enum class ClipMode : quint8 { Intersect, Exclude, Unite, Xor };

/// One step of a clipping area: what `before` leaves (everything where there is none), changed by
/// a path. Values are shared and never change.
struct Clip {
    std::shared_ptr<const Clip> before;
    ClipMode mode = ClipMode::Intersect;
    Path path;
    bool winding = false;
    int depth = 1;
};
using ClipPointer = std::shared_ptr<const Clip>;

/// The clipping area changed by one more path; steps beyond kMaxClipDepth change nothing.
ClipPointer AddClip(const ClipPointer& before, ClipMode mode, Path path, bool winding);

enum class TextHeight : quint8 { Em, Cell, Capital };
enum class TextPlace : quint8 { Baseline, Top, Middle, Bottom };

struct TextRun {
    QString text;
    QString family;
    bool serif = false; ///< when the family is not there
    bool fixed = false; ///< when the family is not there
    int weight = 400;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
    double height = 0; ///< text units, of what `heightOf` says
    TextHeight heightOf = TextHeight::Em;
    double stretch = 1;      ///< width against the font's own
    double averageWidth = 0; ///< text units of a middling letter, instead of `stretch`
    double width = 0;        ///< text units of the whole run, instead of both
    double extra = 0;        ///< text units behind every character
    /// Text units from each character to the next; empty: the font's own.
    std::vector<float> advances;
    Qt::AlignmentFlag across = Qt::AlignLeft;
    TextPlace down = TextPlace::Baseline;
    /// From text units (x along the line, y downwards, origin at the run's point) to the drawing.
    QTransform place;
    QRgb colour = 0xff000000;
    bool backed = false;
    QRgb back = 0xffffffff;
};

/// A picture, or, with a null image, the pattern alone.
struct Picture {
    QImage image;     ///< any format; alpha counts when the operation is a plain copy
    QRectF part;      ///< pixels of it that are shown
    QTransform place; ///< from the unit square, y downwards, to the drawing
    Fill pattern;     ///< P of the raster operation
    bool smooth = true;
    int opacity = 255;
};

/// Raster operation of a plain picture (S) and of a plain path or text (P): bit i of a raster
/// operation is the result for pattern, source and destination bits i = 4 P + 2 S + D.
inline constexpr quint8 kRopSource = 0xcc;
inline constexpr quint8 kRopPattern = 0xf0;

enum class RecordKind : quint8 { Path, Text, Picture };

struct Record {
    RecordKind kind = RecordKind::Path;
    quint8 rop = kRopPattern;
    quint32 index = 0; ///< into the shapes, texts or pictures
    ClipPointer clip;
};

struct Shape {
    Path path;
    quint32 stroke = 0; ///< index into Strokes()
    quint32 fill = 0;   ///< index into Fills()
};

/// The list itself. It takes no more than its bounds; what comes behind them is left out, and
/// IsCutShort says so.
class Drawing {
public:
    /// Each adds one record; nothing when the list is full or the record holds what is no number.
    void AddPath(Path path, const Stroke& stroke, const Fill& fill, const ClipPointer& clip = {},
                 quint8 rop = kRopPattern);
    void AddText(TextRun run, const ClipPointer& clip = {}, quint8 rop = kRopPattern);
    void AddPicture(Picture picture, const ClipPointer& clip = {}, quint8 rop = kRopSource);

    const std::vector<Record>& Records() const { return mRecords; }
    const std::vector<Shape>& Shapes() const { return mShapes; }
    const std::vector<TextRun>& Texts() const { return mTexts; }
    const std::vector<Picture>& Pictures() const { return mPictures; }
    const Stroke& StrokeOf(const Shape& shape) const { return mStrokes[shape.stroke]; }
    const Fill& FillOf(const Shape& shape) const { return mFills[shape.fill]; }
    bool IsEmpty() const { return mRecords.empty(); }
    bool IsFull() const { return mFull; }
    /// Something was left out.
    bool IsCutShort() const { return mCutShort; }
    void SetCutShort() { mCutShort = true; }
    /// Box around everything, cut by the boxes that clip it; drawing units. Of text, which is left
    /// out on wish, the length is a guess.
    QRectF Extents(bool withText = true) const;

    static constexpr qsizetype kMaxRecords = 500'000;
    static constexpr qsizetype kMaxPoints = 4'000'000;
    static constexpr qsizetype kMaxLetters = 400'000;
    static constexpr qsizetype kMaxPictureBytes = qsizetype(96) << 20;

private:
    QRectF ExtentsOf(const Record& record, bool withText) const;
    bool Reserve(qsizetype points, qsizetype letters, qsizetype bytes);
    void Push(RecordKind kind, size_t index, const ClipPointer& clip, quint8 rop);
    std::vector<Record> mRecords;
    std::vector<Shape> mShapes;
    std::vector<TextRun> mTexts;
    std::vector<Picture> mPictures;
    std::vector<Stroke> mStrokes;
    std::vector<Fill> mFills;
    qsizetype mPoints = 0;
    qsizetype mLetters = 0;
    qsizetype mPictureBytes = 0;
    bool mFull = false;
    bool mCutShort = false;
};

} // namespace quillane::drawing
