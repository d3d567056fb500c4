#include "core/file_kinds.h"
#include "core/native_path.h"
#include "core/paths.h"
#include <initializer_list>

namespace quillane {

namespace {

// Only ASCII letters change: the literals are ASCII, and a letter like the dotless i must not
// become one of theirs.
char16_t AsciiUpper(char16_t unit)
{
    return unit >= u'a' && unit <= u'z' ? char16_t(unit - u'a' + u'A') : unit;
}

qint16 ContainsAny(QStringView path, std::initializer_list<const char*> literals)
{
    for (qsizetype dot = path.indexOf(u'.'); dot >= 0; dot = path.indexOf(u'.', dot + 1)) {
        for (const char* literal : literals) {
            qsizetype at = dot;
            const char* wanted = literal;
            while (*wanted != 0 && at < path.size()
                   && AsciiUpper(path[at].unicode()) == static_cast<unsigned char>(*wanted)) {
                ++at;
                ++wanted;
            }
            if (*wanted == 0)
                return kTrue;
        }
    }
    return kFalse;
}

bool SameUnit(QChar left, QChar right)
{
    return left == right || left.toCaseFolded() == right.toCaseFolded();
}

} // namespace

qint16 IsAlbumFile(const QString& path)
{
    return ContainsAny(path, {".IFL"});
}

qint16 IsPrintSetFile(const QString& path)
{
    return ContainsAny(path, {".LY2"});
}

qint16 IsMediaFile(const QString& path)
{
    return ContainsAny(path, {".AVI", ".MPG", ".MOV", ".WAV", ".MP2", ".MP3"});
}

qint16 IsMpegFile(const QString& path)
{
    return ContainsAny(path, {".MPG"});
}

qint16 IsQuickTimeFile(const QString& path)
{
    return ContainsAny(path, {".MOV"});
}

qint16 IsTiffFile(const QString& path)
{
    return ContainsAny(path, {".TIF"});
}

qint16 IsPngFile(const QString& path)
{
    return ContainsAny(path, {".PNG"});
}

qint16 IsDicomFile(const QString& path)
{
    return ContainsAny(path, {".DIC"});
}

qint16 IsImageFile(const QString& path)
{
    return ContainsAny(path, {".TIF", ".JPG", ".GIF", ".PNG", ".DIC"});
}

qint16 FileExists(const QString& path)
{
    if (LeafName(path).startsWith(u'.'))
        return kFalse;
    return StatPath(path).type == FileType::Regular ? kTrue : kFalse;
}

bool MatchesPattern(QStringView name, QStringView pattern)
{
    qsizetype at = 0, wanted = 0;
    qsizetype star = -1, resume = 0; // the last '*' and the first unit it has not yet taken
    while (at < name.size()) {
        if (wanted < pattern.size() && pattern[wanted] == u'*') {
            star = wanted++;
            resume = at;
        } else if (wanted < pattern.size()
                   && (pattern[wanted] == u'?' || SameUnit(pattern[wanted], name[at]))) {
            ++wanted;
            ++at;
        } else if (star >= 0) {
            wanted = star + 1;
            at = ++resume;
        } else {
            return false;
        }
    }
    while (wanted < pattern.size() && pattern[wanted] == u'*')
        ++wanted;
    return wanted == pattern.size();
}

} // namespace quillane
