#include "core/ini_text.h"
#include "core/native_path.h"
#include "core/settings_store.h"
#include "core/temp_folder.h"
#include "core/unprivileged.h"
#include <QRandomGenerator>
#include <gtest/gtest.h>

namespace quillane {

QString Stored(const QByteArray& content, const QString& section, const QString& key)
{
    return ParseIni(content).value(section).value(key, QStringLiteral("<absent>"));
}

TEST(SettingsStore, AnAbsentKeyGivesTheFallback)
{
    TempFolder folder;
    const SettingsStore store(folder.Path("none.ini"));
    EXPECT_EQ(store.GetSetting("Globals", "gsPath", "fallback"), "fallback");
    EXPECT_EQ(store.GetSetting("Globals", "gsPath"), QString());
    EXPECT_FALSE(store.Contains("Globals", "gsPath"));
    EXPECT_EQ(StatPath(folder.Path("none.ini")).type, FileType::Missing) << "reading makes nothing";
}

TEST(SettingsStore, KeepsValuesFromRunToRun)
{
    TempFolder folder;
    const QString file = folder.Path("new/folder/settings.ini");
    {
        SettingsStore store(file);
        store.SaveSetting("MainScreenSettings", "Me.TOp", "180");
        store.SaveSetting("Globals", "gTagKeyword(0)", "City");
        store.SaveSetting("Globals", "gTagKeyword(0)", "Name");
        store.SaveSetting("Globals", "empty", {});
        EXPECT_EQ(store.GetSetting("Globals", "gTagKeyword(0)"), "Name");
        EXPECT_TRUE(store.Flush());
    }
    const SettingsStore store(file);
    EXPECT_EQ(store.File(), file);
    EXPECT_EQ(store.GetSetting("MainScreenSettings", "Me.TOp", "x"), "180");
    EXPECT_EQ(store.GetSetting("Globals", "gTagKeyword(0)", "x"), "Name");
    EXPECT_EQ(store.GetSetting("Globals", "empty", "x"), QString());
    EXPECT_TRUE(store.Contains("Globals", "empty"));
}

TEST(SettingsStore, KeysAndSectionsAreKnownToTheLetter)
{
    TempFolder folder;
    SettingsStore store(folder.Path("s.ini"));
    store.SaveSetting("MainScreenSettings", "Me.TOp", "1");
    EXPECT_FALSE(store.Contains("MainScreenSettings", "Me.Top"));
    EXPECT_FALSE(store.Contains("mainscreensettings", "Me.TOp"));
    EXPECT_FALSE(store.Contains("Globals", "Me.TOp"));
}

TEST(SettingsStore, AnyTextSurvivesAsValueKeyAndSection)
{
    const QStringList texts{
        "plain",
        " leading blanks",
        "trailing blanks  ",
        "a,b;c,d",
        "\"quoted\"",
        "half \" quote",
        "\"",
        "C:\\Program Files\\new\\table",
        "ends in backslash\\",
        "100 % %20 %n",
        "line\nfeed\r\nand carriage",
        "tab\tin it",
        "=equals=",
        "[bracket]",
        "]",
        "; no comment",
        "# no comment",
        "@Variant(\\0)",
        "\\u0041",
        QStringLiteral("\u00E4\u03B1\u05D0\u20AC \U0001F4F7"),
        QStringLiteral("\uFEFFmark"),
        QStringLiteral("a\u2028b\u2029c\u0085d\u00A0"),
        PathFromBytes("/pics/\xFF\xE4/"),
        QString(QChar(u'\0')) + "nul" + QChar(u'\0'),
        QString(QChar(0xD83D)),
        QString(70'000, u'x'),
        QString(),
    };
    TempFolder folder;
    const QString file = folder.Path("s.ini");
    {
        SettingsStore store(file);
        for (qsizetype i = 0; i < texts.size(); ++i) {
            store.SaveSetting("Values", QString::number(i), texts[i]);
            store.SaveSetting("Keys", texts[i], QString::number(i));
            store.SaveSetting(texts[i], "key", QString::number(i));
        }
        ASSERT_TRUE(store.Flush());
    }
    const SettingsStore store(file);
    for (qsizetype i = 0; i < texts.size(); ++i) {
        const QString number = QString::number(i);
        EXPECT_EQ(store.GetSetting("Values", number, "<absent>"), texts[i]) << i;
        EXPECT_EQ(store.GetSetting("Keys", texts[i], "<absent>"), number) << i;
        EXPECT_EQ(store.GetSetting(texts[i], "key", "<absent>"), number) << i;
    }
}

TEST(SettingsStore, RandomTextsSurvive)
{
    QRandomGenerator random(3);
    const QString letters = QStringLiteral("ab \"\\=[];#\n\r\tu0n%\u00E4\u2028") + QChar(0xDCFF)
        + QChar(0xD83D) + QChar(0xDCF7) + QChar(u'\0') + QChar(0xFEFF);
    for (int round = 0; round < 2000; ++round) {
        IniSections sections;
        for (int entry = 0; entry < 3; ++entry) {
            QString texts[3];
            for (QString& text : texts) {
                for (int length = random.bounded(8); length > 0; --length)
                    text += letters[random.bounded(int(letters.size()))];
            }
            sections[texts[0]][texts[1]] = texts[2];
        }
        ASSERT_EQ(ParseIni(IniText(sections)), sections) << IniText(sections).constData();
    }
}

TEST(SettingsStore, PlainValuesStandPlainlyInTheFile)
{
    TempFolder folder;
    SettingsStore store(folder.Path("s.ini"));
    store.SaveSetting("Settings", "lvSelected.View", "3");
    store.SaveSetting("Globals", "gsPath", "/home/ann/My Pictures/");
    store.SaveSetting("Globals", "gsComments", "two\nlines");
    ASSERT_TRUE(store.Flush());
    EXPECT_EQ(folder.Content("s.ini"),
              "[Globals]\ngsComments=\"two\\nlines\"\ngsPath=/home/ann/My Pictures/\n\n"
              "[Settings]\nlvSelected.View=3\n");
}

TEST(SettingsStore, ReadsWhatAPersonWroteByHand)
{
    const QByteArray content = "\xEF\xBB\xBF; a remark\r\n"
                               "# another\r\n"
                               "loose=1\r\n"
                               "[Globals]\r\n"
                               "  gsPath = C:\\Pics\\new \r\n"
                               "no equals sign\r\n"
                               "=no key\r\n"
                               "gsComments=\"My\" Tool\r\n"
                               "equals=a=b=c\r\n"
                               "twice=1\r\ntwice=2\r\n"
                               "latin=Stra\xDF"
                               "e\r\n"
                               "[Settings]\r\n"
                               "last=no line end";
    EXPECT_EQ(Stored(content, {}, "loose"), "1");
    EXPECT_EQ(Stored(content, "Globals", "gsPath"), "C:\\Pics\\new");
    EXPECT_EQ(Stored(content, "Globals", "gsComments"), "\"My\" Tool");
    EXPECT_EQ(Stored(content, "Globals", "equals"), "a=b=c");
    EXPECT_EQ(Stored(content, "Globals", "twice"), "2");
    EXPECT_EQ(Stored(content, "Globals", "latin"),
              PathFromBytes("Stra\xDF"
                            "e"));
    EXPECT_EQ(Stored(content, "Settings", "last"), "no line end");
    EXPECT_EQ(ParseIni(content).value("Globals").size(), 5);
}

TEST(SettingsStore, AValueCutInsideItsQuotesIsAbsent)
{
    EXPECT_EQ(Stored("[A]\na=1\nb=\"cut he", "A", "b"), "<absent>");
    EXPECT_EQ(Stored("[A]\na=1\nb=\"cut he", "A", "a"), "1");
    EXPECT_EQ(Stored("[A]\nb=\"cut\\", "A", "b"), "<absent>");
    EXPECT_EQ(Stored("[A]\nb=\"cut\\u00", "A", "b"), "<absent>");
    EXPECT_EQ(Stored("[A]\nb=\"\\uzzzz\"", "A", "b"), "<absent>");
    EXPECT_EQ(Stored("[A]\n\"cut ke", "A", "cut ke"), "<absent>");
}

TEST(SettingsStore, EntriesUnderADamagedSectionLineAreNotTakenForAnothers)
{
    const QByteArray content = "[A]\na=1\n[B\nb=2\n[\"C\nc=3\n[D]\nd=4\n";
    EXPECT_EQ(ParseIni(content), (IniSections{{"A", {{"a", "1"}}}, {"D", {{"d", "4"}}}}));
}

TEST(SettingsStore, HalfAFileKeepsItsFirstHalf)
{
    IniSections sections;
    for (int i = 0; i < 20; ++i) {
        sections["Globals"][QStringLiteral("key%1").arg(i, 2)] = "value";
        sections["Settings"][QStringLiteral("key%1").arg(i, 2)] = "two\nlines";
    }
    const QByteArray whole = IniText(sections);
    for (qsizetype length = 0; length <= whole.size(); ++length) {
        const IniSections read = ParseIni(whole.first(length));
        for (auto section = read.cbegin(); section != read.cend(); ++section) {
            for (auto entry = section->cbegin(); entry != section->cend(); ++entry) {
                const QString value = sections.value(section.key()).value(entry.key());
                EXPECT_TRUE(value.startsWith(*entry)) << length;
            }
        }
    }
    EXPECT_EQ(ParseIni(whole.first(whole.size() / 2)).value("Globals"), sections["Globals"]);
}

TEST(SettingsStore, GarbageIsAnEmptyStoreThatCanBeWrittenAnew)
{
    QRandomGenerator random(5);
    for (int round = 0; round < 50; ++round) {
        TempFolder folder;
        QByteArray garbage(4096, Qt::Uninitialized);
        for (char& byte : garbage)
            byte = char(random.bounded(256));
        folder.Write("s.ini", garbage);
        SettingsStore store(folder.Path("s.ini"));
        EXPECT_EQ(store.GetSetting("Globals", "jpegQuality", "10"), "10");
        store.SaveSetting("Globals", "jpegQuality", "20");
        EXPECT_TRUE(store.Flush());
        EXPECT_EQ(SettingsStore(store.File()).GetSetting("Globals", "jpegQuality"), "20");
    }
}

TEST(SettingsStore, KeysOfOthersAreKept)
{
    TempFolder folder;
    folder.Write("s.ini", "[Future]\nnewKey(7)=\"kept\\n\"\n\n[Globals]\nunknown=1\n");
    {
        SettingsStore store(folder.Path("s.ini"));
        store.SaveSetting("Globals", "gsPath", "/");
        ASSERT_TRUE(store.Flush());
    }
    const SettingsStore store(folder.Path("s.ini"));
    EXPECT_EQ(store.GetSetting("Future", "newKey(7)"), "kept\n");
    EXPECT_EQ(store.GetSetting("Globals", "unknown"), "1");
    EXPECT_EQ(store.GetSetting("Globals", "gsPath"), "/");
}

TEST(SettingsStore, WritesOnlyWhatChanged)
{
    TempFolder folder;
    folder.Write("s.ini", "; remark\n[A]\na=1\n");
    SettingsStore store(folder.Path("s.ini"));
    store.SaveSetting("A", "a", "1");
    EXPECT_TRUE(store.Flush());
    EXPECT_EQ(folder.Content("s.ini"), "; remark\n[A]\na=1\n");
    store.SaveSetting("A", "a", "2");
    EXPECT_TRUE(store.Flush());
    const quint64 inode = StatPath(folder.Path("s.ini")).inode;
    EXPECT_TRUE(store.Flush());
    EXPECT_EQ(StatPath(folder.Path("s.ini")).inode, inode);
}

TEST(SettingsStore, ANewFileIsPrivate)
{
    TempFolder folder;
    SettingsStore store(folder.Path("sub/s.ini"));
    store.SaveSetting("A", "a", "1");
    ASSERT_TRUE(store.Flush());
    EXPECT_EQ(StatPath(folder.Path("sub/s.ini")).mode, 0600u);
    EXPECT_EQ(StatPath(folder.Path("sub")).mode, 0700u);
}

TEST(SettingsStore, AnUnreadableFileIsAnEmptyStoreAndStaysAsItIs)
{
    TempFolder folder;
    folder.Write("s.ini", "[A]\na=1\n");
    folder.Chmod("s.ini", 0);
    {
        const Unprivileged now;
        SettingsStore store(folder.Path("s.ini"));
        EXPECT_EQ(store.GetSetting("A", "a", "default"), "default");
        store.SaveSetting("A", "a", "2");
        QString error;
        EXPECT_FALSE(store.Flush(&error));
        EXPECT_TRUE(error.contains("permission")) << error.toStdString();
        EXPECT_FALSE(store.Flush());
        EXPECT_EQ(store.GetSetting("A", "a"), "2") << "what was set is still there";
    }
    folder.Chmod("s.ini", 0600);
    EXPECT_EQ(folder.Content("s.ini"), "[A]\na=1\n");
}

TEST(SettingsStore, AReadOnlyFolderIsReadAndNotWritten)
{
    TempFolder folder;
    folder.MakeFolder("closed");
    folder.Write("closed/s.ini", "[A]\na=1\n");
    folder.Chmod("closed", 0555);
    {
        const Unprivileged now;
        SettingsStore store(folder.Path("closed/s.ini"));
        EXPECT_EQ(store.GetSetting("A", "a"), "1");
        store.SaveSetting("A", "a", "2");
        QString error;
        EXPECT_FALSE(store.Flush(&error));
        EXPECT_FALSE(error.isEmpty());
        SettingsStore first(folder.Path("closed/new/s.ini"));
        first.SaveSetting("A", "a", "2");
        EXPECT_FALSE(first.Flush());
    }
    folder.Chmod("closed", 0755);
    EXPECT_EQ(folder.Content("closed/s.ini"), "[A]\na=1\n");
}

TEST(SettingsStore, WhatIsNoFileIsAnEmptyStore)
{
    TempFolder folder;
    folder.MakeFolder("folder.ini");
    ASSERT_EQ(mkfifo(folder.Bytes("fifo.ini").constData(), 0644), 0);
    folder.Write("huge.ini", "[A]\na=1\n");
    ASSERT_EQ(truncate(folder.Bytes("huge.ini").constData(), qint64(1) << 33), 0);
    for (const char* name : {"folder.ini", "fifo.ini", "huge.ini"}) {
        SettingsStore store(folder.Path(name));
        EXPECT_EQ(store.GetSetting("A", "a", "default"), "default") << name;
    }
}

} // namespace quillane
