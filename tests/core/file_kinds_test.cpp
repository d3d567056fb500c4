#include "core/file_kinds.h"
#include "core/temp_folder.h"
#include "core/unprivileged.h"
#include <gtest/gtest.h>

namespace quillane {

using Predicate = qint16 (*)(const QString&);

struct KindRow {
    const char* name;
    Predicate predicate;
    std::initializer_list<const char*> literals;
};

const KindRow kKinds[] = {
    {"IsAlbumFile", IsAlbumFile, {".IFL"}},
    {"IsPrintSetFile", IsPrintSetFile, {".LY2"}},
    {"IsMediaFile", IsMediaFile, {".AVI", ".MPG", ".MOV", ".WAV", ".MP2", ".MP3"}},
    {"IsMpegFile", IsMpegFile, {".MPG"}},
    {"IsQuickTimeFile", IsQuickTimeFile, {".MOV"}},
    {"IsTiffFile", IsTiffFile, {".TIF"}},
    {"IsPngFile", IsPngFile, {".PNG"}},
    {"IsDicomFile", IsDicomFile, {".DIC"}},
    {"IsImageFile", IsImageFile, {".TIF", ".JPG", ".GIF", ".PNG", ".DIC"}},
};

constexpr const char* kEveryLiteral[] = {".IFL", ".LY2", ".AVI", ".MPG", ".MOV", ".WAV", ".MP2",
                                         ".MP3", ".TIF", ".PNG", ".DIC", ".JPG", ".GIF", ".BMP"};

TEST(FileKinds, EachPredicateHoldsForItsLiteralsAndNoOthers)
{
    for (const KindRow& row : kKinds) {
        for (const char* literal : kEveryLiteral) {
            const bool wanted = std::any_of(row.literals.begin(), row.literals.end(),
                                            [&](const char* one) { return !strcmp(one, literal); });
            const QString upper = QStringLiteral("/pics/a") + literal;
            EXPECT_EQ(row.predicate(upper), wanted ? -1 : 0) << row.name << ' ' << literal;
            EXPECT_EQ(row.predicate(upper.toLower()), wanted ? -1 : 0) << row.name << literal;
        }
    }
}

TEST(FileKinds, TheEmptyTextIsNoKind)
{
    for (const KindRow& row : kKinds)
        EXPECT_EQ(row.predicate({}), 0) << row.name;
}

TEST(FileKinds, AFoldersNameCounts)
{
    EXPECT_EQ(IsTiffFile("C:\\PICS.TIF\\readme.txt"), -1);
    EXPECT_EQ(IsImageFile("/home/PICS.TIF/readme.txt"), -1);
    EXPECT_EQ(IsTiffFile("/home/x.tif.old/a.bmp"), -1);
}

TEST(FileKinds, ANameMayBeOfSeveralKinds)
{
    EXPECT_EQ(IsMediaFile("image.MP3.jpg"), -1);
    EXPECT_EQ(IsImageFile("image.MP3.jpg"), -1);
}

TEST(FileKinds, TheLiteralMayStandAnywhere)
{
    EXPECT_EQ(IsTiffFile("photo.tiff"), -1);
    EXPECT_EQ(IsImageFile("photo.jpeg"), 0);
    EXPECT_EQ(IsAlbumFile("a.lnk.ifl2"), -1);
    EXPECT_EQ(IsImageFile("a..jpg"), -1);
    EXPECT_EQ(IsImageFile("a.jp"), 0);
    EXPECT_EQ(IsImageFile("jpg"), 0);
}

TEST(FileKinds, LettersBeyondAsciiAreNotTakenForTheLiterals)
{
    EXPECT_EQ(IsTiffFile(QStringLiteral("a.t\u0131f")), 0); // dotless i
    EXPECT_EQ(IsTiffFile(QStringLiteral("a.T\u0130F")), 0); // dotted I
    EXPECT_EQ(IsTiffFile(QStringLiteral("\u03B1\u05D0.tif")), -1);
}

TEST(FileExists, KnowsNormalFilesAlone)
{
    TempFolder folder;
    folder.Write("a.jpg");
    folder.Write(".hidden.jpg");
    folder.Write("\xFF\xFE b.jpg");
    folder.Write("line\nend.jpg");
    folder.MakeFolder("sub.jpg");
    folder.Link("a.jpg", "link.jpg");
    folder.Link("gone.jpg", "dangling.jpg");
    ASSERT_EQ(mkfifo(folder.Bytes("fifo.jpg").constData(), 0644), 0);

    EXPECT_EQ(FileExists(folder.Path("a.jpg")), -1);
    EXPECT_EQ(FileExists(folder.Path("\xFF\xFE b.jpg")), -1);
    EXPECT_EQ(FileExists(folder.Path("line\nend.jpg")), -1);
    EXPECT_EQ(FileExists(folder.Path("link.jpg")), -1);
    EXPECT_EQ(FileExists(folder.Path(".hidden.jpg")), 0);
    EXPECT_EQ(FileExists(folder.Path("sub.jpg")), 0);
    EXPECT_EQ(FileExists(folder.Path("dangling.jpg")), 0);
    EXPECT_EQ(FileExists(folder.Path("fifo.jpg")), 0);
    EXPECT_EQ(FileExists(folder.Path("missing.jpg")), 0);
    EXPECT_EQ(FileExists(folder.Path("a.jpg/b")), 0);
    EXPECT_EQ(FileExists(folder.Path()), 0);
    EXPECT_EQ(FileExists(folder.Path("a.jpg") + QChar(u'\0') + "x"), 0);
    EXPECT_EQ(FileExists(QStringLiteral("/dev/null")), 0);
    EXPECT_EQ(FileExists(u'/' + QString(100'000, u'x')), 0);
}

TEST(FileExists, TheEmptyTextIsNoFile)
{
    EXPECT_EQ(FileExists({}), 0);
}

TEST(FileExists, AFileInAClosedFolderIsNotFound)
{
    TempFolder folder;
    folder.MakeFolder("closed");
    folder.Write("closed/a.jpg");
    folder.Chmod("closed", 0);
    {
        const Unprivileged now;
        EXPECT_EQ(FileExists(folder.Path("closed/a.jpg")), 0);
    }
    folder.Chmod("closed", 0755);
    EXPECT_EQ(FileExists(folder.Path("closed/a.jpg")), -1);
}

struct PatternRow {
    const char16_t* name;
    const char16_t* pattern;
    bool matches;
};

TEST(MatchesPattern, KnowsStarsAndQuestionMarks)
{
    constexpr PatternRow kRows[] = {
        {u"a.jpg", u"*.JPG", true},
        {u"a.JPG", u"*.jpg", true},
        {u"a.jpeg", u"*.JPG", false},
        {u"a.jpg.txt", u"*.JPG", false},
        {u".jpg", u"*.JPG", true},
        {u"jpg", u"*.JPG", false},
        {u"", u"", true},
        {u"", u"*", true},
        {u"", u"?", false},
        {u"a", u"", false},
        {u"abc", u"a?c", true},
        {u"ac", u"a?c", false},
        {u"abc", u"a*c*", true},
        {u"aXbXc", u"a*b*c", true},
        {u"aab", u"*ab", true},
        {u"ababac", u"*abac", true},
        {u"abc", u"***", true},
        {u"abc", u"*?", true},
        {u"\u00C4.jpg", u"\u00E4.*", true},
        {u"[a].jpg", u"[a]*", true},
        {u"a\nb.jpg", u"a*.jpg", true},
        {u"\u05D0\u05D1.tif", u"??.TIF", true},
    };
    for (const PatternRow& row : kRows) {
        EXPECT_EQ(MatchesPattern(row.name, row.pattern), row.matches)
            << QString::fromUtf16(row.name).toStdString() << " "
            << QString::fromUtf16(row.pattern).toStdString();
    }
}

TEST(MatchesPattern, ManyStarsDoNotMultiplyTheWork)
{
    const QString name(20'000, u'a');
    QString pattern;
    for (int i = 0; i < 200; ++i)
        pattern += QLatin1String("*a");
    EXPECT_FALSE(MatchesPattern(name, pattern + u'b'));
    EXPECT_TRUE(MatchesPattern(name, pattern));
}

} // namespace quillane
