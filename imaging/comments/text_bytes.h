#pragma once
#include <QByteArrayView>
#include <QString>

namespace quillane {

/// Text of a metadata field: zeros are cut from its end; valid UTF-8 is taken as such, anything
/// else as Windows-1252.
QString TextFromFieldBytes(QByteArrayView bytes);
/// The character that one byte stands for in Windows-1252; the five bytes it leaves open stand
/// for the control characters of the same number.
QChar CharacterFromByte(uchar byte);

} // namespace quillane
