#pragma once
#include "imaging/codecs/dxf_groups.h"
#include <QHash>
#include <QImage>
#include <QRectF>
#include <QString>

namespace quillane::codecs {

/// Colour of an index of the drawing program, 1 to 255; index 7, which is white on a dark ground
/// and dark on a light one, is black here.
QRgb DxfIndexColour(int index);

struct DxfLayer {
    int colour = 7;
    bool hidden = false; ///< switched off or frozen
    QByteArray lineType;
};

struct DxfBlock {
    qsizetype at = 0; ///< of its first entity
    QPointF base;
};

/// What a drawing says before its entities.
struct DxfTables {
    QHash<QByteArray, DxfLayer> layers; ///< by upper-case names, as the next two
    QHash<QByteArray, DxfBlock> blocks;
    QHash<QByteArray, bool> dashed; ///< line types: whether with dots
    QRectF extents;                 ///< as the header claims them, y upwards; empty for none
    QByteArray codePage;
    qsizetype entitiesAt = -1; ///< of the first entity; -1 when there are none
};

/// Walks the whole file once for its tables. `ended` tells whether its end was reached.
DxfTables ReadDxfTables(QByteArrayView bytes, bool& ended);
/// Upper-case form of a name, by which it is looked up.
QByteArray DxfKey(QByteArrayView name);
/// A text value: UTF-8, else the drawing's code page; escapes for letters and signs are resolved.
QString DxfText(QByteArrayView bytes, const QByteArray& codePage);
/// The lines of a text with formatting, which is taken out.
QStringList DxfLines(const QString& formatted);

} // namespace quillane::codecs
