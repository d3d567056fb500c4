#pragma once
// What a file is, decided from its name alone and loosely: the test is whether the
// upper-cased path contains the literal anywhere, a folder's name included.
#include <QString>

namespace quillane {

/// Booleans that the predicates return: -1 for true, 0 for false.
inline constexpr qint16 kTrue = -1;
inline constexpr qint16 kFalse = 0;

qint16 IsAlbumFile(const QString& path);     ///< ".IFL"
qint16 IsPrintSetFile(const QString& path);  ///< ".LY2"
qint16 IsMediaFile(const QString& path);     ///< ".AVI" ".MPG" ".MOV" ".WAV" ".MP2" ".MP3"
qint16 IsMpegFile(const QString& path);      ///< ".MPG"
qint16 IsQuickTimeFile(const QString& path); ///< ".MOV"
qint16 IsTiffFile(const QString& path);      ///< ".TIF"
qint16 IsPngFile(const QString& path);       ///< ".PNG"
qint16 IsDicomFile(const QString& path);     ///< ".DIC"
/// A file that can carry metadata text: ".TIF" ".JPG" ".GIF" ".PNG" ".DIC".
qint16 IsImageFile(const QString& path);

/// -1 if there is a normal file of that name; 0 for none, for a hidden one and for a bad path.
qint16 FileExists(const QString& path);

/// Whether a file name matches a pattern of `*` and `?`, without regard to case.
bool MatchesPattern(QStringView name, QStringView pattern);

} // namespace quillane
