#include "house/rules.h"
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>

namespace quillane::house {

namespace {

constexpr int kMostLines = 1000;
/// Headers that bring the library of pixel operations along.
const QLatin1String kProcessingPixels("imaging/processing/pixels/");

QString Complaint(const SourceFile& file, int line, const QString& words)
{
    return QStringLiteral("%1:%2: %3").arg(file.path).arg(line).arg(words);
}

int LineOf(const QString& text, qsizetype at)
{
    return 1 + int(QStringView(text).first(at).count(u'\n'));
}

// What a file belongs to: its folder, "/ui" behind it for windows.
QString UnitOf(const QString& path)
{
    const QStringList parts = path.split(u'/');
    if (parts.size() < 2)
        return {};
    if (parts.size() > 2 && parts[1] == QLatin1String("ui"))
        return parts[0] + QLatin1String("/ui");
    if (path.startsWith(QLatin1String("imaging/worker_main/")))
        return QStringLiteral("imaging/worker_main");
    return parts[0];
}

// Who may include whom, besides himself.
const QHash<QString, QSet<QString>>& LayersBelow()
{
    static const QSet<QString> kPlatform{"core"};
    static const QSet<QString> kImaging{"core", "platform"};
    static const QSet<QString> kUpper{"core", "platform", "imaging"};
    static const QSet<QString> kWindows{"core",    "platform",   "imaging",    "metadata",
                                        "widgets", "widgets/ui", "platform/ui"};
    static const QHash<QString, QSet<QString>> kBelow{
        {"core", {}},
        {"platform", kPlatform},
        {"platform/ui", {"core", "platform"}},
        {"imaging", kImaging},
        {"imaging/worker_main", kUpper},
        {"metadata", kUpper},
        {"metadata/ui", kWindows},
        {"widgets", kUpper},
        {"widgets/ui", {"core", "platform", "imaging", "widgets", "platform/ui"}},
        {"viewer", {"core", "platform", "imaging", "metadata", "widgets"}},
        {"viewer/ui",
         {"core", "platform", "imaging", "metadata", "widgets", "viewer", "platform/ui",
          "widgets/ui"}},
        {"search", {"core", "platform", "imaging", "metadata", "widgets"}},
        {"search/ui",
         {"core", "platform", "imaging", "metadata", "widgets", "search", "platform/ui",
          "widgets/ui"}},
        {"album", {"core", "platform", "imaging", "metadata", "widgets"}},
        {"album/ui",
         {"core", "platform", "imaging", "metadata", "widgets", "album", "platform/ui",
          "widgets/ui"}},
        {"locator", {"core", "platform", "imaging", "metadata", "widgets"}},
        {"locator/ui",
         {"core", "platform", "imaging", "metadata", "widgets", "locator", "platform/ui",
          "widgets/ui"}},
        {"browser", {"core", "platform", "imaging", "metadata", "widgets", "search"}},
        {"browser/ui",
         {"core", "platform", "imaging", "metadata", "widgets", "browser", "platform/ui",
          "widgets/ui", "metadata/ui", "viewer/ui", "search", "search/ui", "album/ui",
          "locator/ui"}},
        {"scripts", {}}, // the program that draws the samples
    };
    return kBelow;
}

struct Library {
    const char* headers; ///< how the header's name begins
    std::initializer_list<const char*> folders;
};

// Outside libraries and the folders whose .cpp files wrap them.
const Library kLibraries[] = {
    {"turbojpeg.h", {"imaging/"}},
    {"jpeglib.h", {"imaging/"}},
    {"jerror.h", {"imaging/"}},
    {"png.h", {"imaging/"}},
    {"zlib.h", {"imaging/"}},
    {"gif_lib.h", {"imaging/"}},
    {"exiv2/", {"imaging/"}},
    {"lcms2.h", {"imaging/"}},
    {"opencv2/", {"imaging/processing/"}},
    {"libimagequant.h", {"imaging/processing/"}},
    {"tiff.h", {"imaging/worker_main/"}},
    {"tiffio.h", {"imaging/worker_main/"}},
    {"dcmtk/", {"imaging/worker_main/"}},
    {"libavcodec/", {"imaging/worker_main/"}},
    {"libavformat/", {"imaging/worker_main/"}},
    {"libswscale/", {"imaging/worker_main/"}},
    {"openjpeg.h", {"imaging/worker_main/"}},
    {"seccomp.h", {"imaging/worker_main/"}},
    {"sane/", {"platform/scan_main/"}},
};

// Headers of the language and of the system that carry no dot or a folder of their own.
bool IsSystemHeader(const QString& name)
{
    static const QRegularExpression kLanguage(QStringLiteral("^[a-z_0-9]+$"));
    static const QRegularExpression kSystem(QStringLiteral("^(sys|linux|asm|netinet|arpa)/"));
    static const QSet<QString> kPosix{
        "dirent.h", "fcntl.h",  "unistd.h", "poll.h",    "signal.h", "errno.h",  "pthread.h",
        "spawn.h",  "locale.h", "pwd.h",    "time.h",    "pty.h",    "dlfcn.h",  "malloc.h",
        "stdio.h",  "sched.h",  "limits.h", "stdlib.h",  "string.h", "stdint.h", "ftw.h",
        "utime.h",  "setjmp.h", "math.h",   "ucontext.h"};
    return kLanguage.match(name).hasMatch() || kSystem.match(name).hasMatch()
        || kPosix.contains(name);
}

bool IsQtHeader(const QString& name)
{
    static const QRegularExpression kQt(QStringLiteral("^(Qt[A-Z][A-Za-z]*/)?Q[A-Za-z0-9]+$"));
    return kQt.match(name).hasMatch();
}

void ComplainOfWords(const SourceFile& file, const QString& text, const QStringList& words,
                     const QString& reason, QStringList& complaints)
{
    for (const QString& word : words) {
        for (const int line : LinesWithWord(text, word))
            complaints.append(Complaint(file, line, word + u' ' + reason));
    }
}

} // namespace

QStringList CheckLayers(const SourceFile& file)
{
    QStringList complaints;
    if (!file.IsProduct() || !file.path.contains(u'/'))
        return complaints;
    const QString own = UnitOf(file.path);
    const auto below = LayersBelow().constFind(own);
    if (below == LayersBelow().cend()) {
        complaints.append(Complaint(file, 1, QStringLiteral("stands in no known layer")));
        return complaints;
    }
    for (const Include& include : IncludesOf(file.text)) {
        if (include.angled)
            continue;
        const bool generated = include.name.startsWith(QLatin1String("ui_"))
            || include.name.startsWith(QLatin1String("moc_"))
            || include.name.endsWith(QLatin1String(".moc"));
        const QString unit = UnitOf(include.name);
        if (generated && unit.isEmpty())
            continue;
        if (!LayersBelow().contains(unit))
            complaints.append(Complaint(file, include.line,
                                        include.name
                                            + QLatin1String(" is not written from the "
                                                            "root of the tree")));
        else if (unit != own && !below->contains(unit))
            complaints.append(
                Complaint(file, include.line,
                          QStringLiteral("%1 must not include %2").arg(own, include.name)));
    }
    return complaints;
}

QStringList CheckFileAccess(const SourceFile& file)
{
    QStringList complaints;
    // The worker reads the system's own files before it locks itself.
    static const QStringList kAllowed{"core/native_path.cpp", "core/settings_store.cpp",
                                      "imaging/worker_main/service/sandbox.cpp"};
    if (!file.IsProduct() || kAllowed.contains(file.path))
        return complaints;
    static const QStringList kWords{"QFile",     "QDir",           "QFileInfo",     "QDirIterator",
                                    "QSaveFile", "QTemporaryFile", "QTemporaryDir", "filesystem",
                                    "ifstream",  "ofstream",       "fstream",       "fopen",
                                    "opendir",   "QDirListing",    "freopen"};
    ComplainOfWords(file, CodeOf(file.text), kWords,
                    QStringLiteral("is for core/native_path.h alone"), complaints);
    return complaints;
}

QStringList CheckThirdParty(const SourceFile& file)
{
    QStringList complaints;
    if (!file.IsProduct())
        return complaints;
    // Nobody includes the worker's headers, and none but processing those of its pixels, so there
    // they are part of the adapter.
    const bool isSharedHeader = file.IsHeader()
        && UnitOf(file.path) != QLatin1String("imaging/worker_main")
        && !file.path.startsWith(kProcessingPixels);
    for (const Include& include : IncludesOf(file.text)) {
        if (include.name.startsWith(kProcessingPixels)
            && !file.path.startsWith(QLatin1String("imaging/processing/"))) {
            complaints.append(Complaint(file, include.line,
                                        include.name + QLatin1String(" is of processing alone")));
        }
        if (!include.angled || IsSystemHeader(include.name) || IsQtHeader(include.name))
            continue;
        const auto library =
            std::find_if(std::begin(kLibraries), std::end(kLibraries), [&](const Library& one) {
                return include.name.startsWith(QLatin1String(one.headers));
            });
        if (library == std::end(kLibraries)) {
            complaints.append(Complaint(file, include.line,
                                        include.name + QLatin1String(" is of no known library")));
        } else if (isSharedHeader
                   || std::none_of(library->folders.begin(), library->folders.end(),
                                   [&](const char* folder) {
                                       return file.path.startsWith(QLatin1String(folder));
                                   })) {
            complaints.append(
                Complaint(file, include.line,
                          include.name + QLatin1String(" belongs in the adapter's .cpp")));
        }
    }
    return complaints;
}

QStringList CheckQtModules(const SourceFile& file)
{
    static const QSet<QString> kModules{"QtCore", "QtGui",          "QtWidgets",    "QtTest",
                                        "QtDBus", "QtPrintSupport", "QtSvg",        "QtNetwork",
                                        "QtXml",  "QtConcurrent",   "QtSvgWidgets", "QtOpenGL"};
    QStringList complaints;
    if (!file.IsCpp())
        return complaints;
    for (const Include& include : IncludesOf(file.text)) {
        if (kModules.contains(include.name.section(u'/', -1)))
            complaints.append(
                Complaint(file, include.line, include.name + QLatin1String(" is a whole module")));
    }
    return complaints;
}

QStringList CheckTestManners(const SourceFile& file)
{
    QStringList complaints;
    if (!file.IsTest() || !file.IsCpp())
        return complaints;
    const QString code = CodeOf(file.text);
    static const QStringList kSleeps{"sleep",     "usleep",      "nanosleep",       "msleep",
                                     "sleep_for", "sleep_until", "clock_nanosleep", "qSleep",
                                     "qWait",     "singleShot"};
    ComplainOfWords(file, code, kSleeps, QStringLiteral("waits for a time, not for a condition"),
                    complaints);
    ComplainOfWords(file, code,
                    {QStringLiteral("GTEST_"
                                    "SKIP")},
                    QStringLiteral("skips a test"), complaints);
    static const QRegularExpression kOff(QStringLiteral("\\b"
                                                        "DISABLED"
                                                        "_\\w+"));
    for (auto matches = kOff.globalMatch(code); matches.hasNext();) {
        const auto match = matches.next();
        const int line = LineOf(code, match.capturedStart());
        complaints.append(Complaint(file, line, match.captured() + QLatin1String(" is off")));
    }
    return complaints;
}

QStringList CheckLength(const SourceFile& file)
{
    // Tables may be as long as what they state.
    static const QRegularExpression kTables(QStringLiteral("(_table|_tables)\\.(h|cpp)$"));
    static const QSet<QString> kProse{".md", ".html", ".xml", ".ui", ".json"};
    const qsizetype dot = file.path.lastIndexOf(u'.');
    if (kTables.match(file.path).hasMatch() || (dot >= 0 && kProse.contains(file.path.mid(dot))))
        return {};
    const auto lines = int(file.text.count(u'\n'));
    if (lines <= kMostLines)
        return {};
    return {Complaint(file, lines, QStringLiteral("the file has more than 1000 lines"))};
}

QStringList CheckLeftUndone(const SourceFile& file)
{
    QStringList complaints;
    static const QStringList kWords{"TO"
                                    "DO",
                                    "FIX"
                                    "ME",
                                    "XX"
                                    "X",
                                    "HA"
                                    "CK"};
    ComplainOfWords(file, file.text, kWords, QStringLiteral("marks something as left undone"),
                    complaints);
    static const QRegularExpression kPhrase(QStringLiteral("not (yet )?imple"
                                                           "mented"),
                                            QRegularExpression::CaseInsensitiveOption);
    for (auto matches = kPhrase.globalMatch(file.text); matches.hasNext();) {
        const int line = LineOf(file.text, matches.next().capturedStart());
        complaints.append(Complaint(file, line, QStringLiteral("tells of something left undone")));
    }
    return complaints;
}

QStringList CheckHeaders(const SourceFile& file)
{
    QStringList complaints;
    if (!file.IsCpp())
        return complaints;
    const QString code = CodeOf(file.text);
    if (file.IsHeader() && !code.trimmed().startsWith(QLatin1String("#pragma once")))
        complaints.append(Complaint(file, 1, QStringLiteral("does not begin with #pragma once")));
    // A benchmark is one file that nothing else is built together with.
    if (file.IsBench())
        return complaints;
    static const QRegularExpression kImport(QStringLiteral("^using\\s+namespace\\b"),
                                            QRegularExpression::MultilineOption);
    for (auto matches = kImport.globalMatch(code); matches.hasNext();) {
        const int line = LineOf(code, matches.next().capturedStart());
        complaints.append(Complaint(file, line, QStringLiteral("imports a whole namespace")));
    }
    return complaints;
}

} // namespace quillane::house
