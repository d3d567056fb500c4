#pragma once
#include <QByteArray>
#include <QByteArrayView>
#include <vector>

namespace quillane::carry {

/// Markers of a JPEG (ITU T.81, table B.1).
enum JpegPartMarker : quint8 {
    kPartApp0 = 0xe0,
    kPartApp1 = 0xe1,
    kPartApp2 = 0xe2,
    kPartApp14 = 0xee,
    kPartComment = 0xfe,
};

struct JpegPart {
    quint8 marker = 0;
    QByteArray content; ///< without marker and length
    qint64 at = 0;      ///< where the content lies in the file
};

/// A JPEG cut into the segments before its first scan, the picture, and what lies behind it.
struct JpegParts {
    std::vector<JpegPart> segments;
    qint64 scan = 0;    ///< where the first scan's marker lies
    qint64 end = 0;     ///< behind the mark of the picture's end
    bool ended = false; ///< the mark is there
};

/// Whose JPEG is cut: behind one that the program has just made lies nothing.
enum class JpegMaker : quint8 { Anybody, Program };
/// Failure kFailureUnreadable when there is no scan.
JpegParts CutJpeg(const QByteArray& bytes, JpegMaker maker = JpegMaker::Anybody);
/// Whether a segment describes the coded picture itself (frames, tables, intervals).
bool DescribesPixels(quint8 marker);
/// The bytes of a segment. Failure kFailureLimit for a content beyond 65,533 bytes; `what` names
/// it in the words.
QByteArray SegmentBytes(quint8 marker, const QByteArray& content, const QString& what);

} // namespace quillane::carry
