#include "core/expect_failure.h"
#include "core/save_support.h"
#include "core/unprivileged.h"
#include <QThread>
#include <atomic>
#include <thread>

namespace quillane {

namespace {

SaveOptions CreateOnly()
{
    SaveOptions options;
    options.mode = SaveMode::CreateOnly;
    return options;
}

SaveOptions Expecting(const FileStat& state)
{
    SaveOptions options;
    options.expected = state;
    return options;
}

// Every road must behave alike where files without a name are not to be had.
SaveOptions NamedOnly(SaveOptions options = {})
{
    options.probe = [](SaveStep step, qint64&) {
        return step == SaveStep::OpenUnnamed ? EOPNOTSUPP : 0;
    };
    return options;
}

QString WordsOf(const std::function<void()>& step)
{
    try {
        step();
    } catch (const Failure& failure) {
        return failure.Description();
    }
    return {};
}

} // namespace

TEST(SaveAtomically, WritesPiecesInOrderAndTellsWhatStandsThere)
{
    const SavePlace place;
    const FileStat saved = SaveAtomically(place.Path("a"), [](SaveSink& sink) {
        sink.Write("one ");
        sink.Write({});
        sink.Write("two");
    });
    EXPECT_EQ(place.Content("a"), "one two");
    EXPECT_TRUE(SameFileState(saved, StatPath(place.Path("a"))));
    EXPECT_EQ(place.Entries(), QStringList{"a"});
    EXPECT_TRUE(place.Journals().isEmpty());
}

TEST(SaveAtomically, TheDraftIsReadBackBeforeTheTargetIsTouched)
{
    for (const bool named : {false, true}) {
        const SavePlace place;
        place.Write("a", "old");
        QByteArray draft, meanwhile;
        SaveOptions options;
        options.verify = [&](const QString& path) {
            draft = ReadWholeFile(path, 100);
            meanwhile = place.Content("a");
        };
        SaveAtomically(place.Path("a"), "new", named ? NamedOnly(options) : options);
        EXPECT_EQ(draft, "new");
        EXPECT_EQ(meanwhile, "old");
        EXPECT_EQ(place.Content("a"), "new");
    }
}

TEST(SaveAtomically, ADraftThatFailsVerificationLeavesTheOldFile)
{
    for (const bool named : {false, true}) {
        const SavePlace place;
        place.Write("a", "old");
        SaveOptions options;
        options.verify = [](const QString&) { throw Failure(kFailureUnreadable, "Not whole."); };
        const SaveOptions used = named ? NamedOnly(options) : options;
        EXPECT_EQ(FailureOf([&] { SaveAtomically(place.Path("a"), "new", used); }),
                  kFailureUnreadable);
        EXPECT_EQ(FailureOf([&] { SaveAtomically(place.Path("b"), "new", used); }),
                  kFailureUnreadable);
        EXPECT_EQ(place.Content("a"), "old");
        EXPECT_EQ(place.Entries(), QStringList{"a"});
        EXPECT_TRUE(place.Journals().isEmpty());
    }
}

TEST(SaveAtomically, AWriterThatFailsOrThrowsLeavesNothingBehind)
{
    const SavePlace place;
    const auto save = [&](const SaveWriter& writer) {
        SaveAtomically(place.Path("a"), writer, NamedOnly());
    };
    const SaveWriter fails = [](SaveSink& sink) {
        sink.Write("half");
        throw Failure(77, "No more.");
    };
    EXPECT_EQ(FailureOf([&] { save(fails); }), 77);
    EXPECT_THROW(save([](SaveSink&) { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_TRUE(place.Entries().isEmpty());
    EXPECT_TRUE(place.Journals().isEmpty());
}

TEST(SaveAtomically, CreateOnlyMakesAFileAndNeverReplaces)
{
    for (const bool named : {false, true}) {
        const SavePlace place;
        const SaveOptions options = named ? NamedOnly(CreateOnly()) : CreateOnly();
        SaveAtomically(place.Path("a"), "first", options);
        place.MakeFolder("folder");
        place.Link("nowhere", "dangling");
        place.Link("circle", "circle");
        for (const char* name : {"a", "folder", "dangling", "circle"})
            EXPECT_EQ(FailureOf([&] { SaveAtomically(place.Path(name), "x", options); }),
                      kFailureGeneral)
                << name;
        EXPECT_EQ(place.Content("a"), "first");
        EXPECT_EQ(place.Entries(), (QStringList{"a", "circle", "dangling", "folder"}));
    }
}

TEST(SaveAtomically, CreateOnlyFailsForAFileThatAppearsWhileTheContentIsMade)
{
    for (const bool named : {false, true}) {
        // Before the last look at the target, and behind it.
        for (const bool late : {false, true}) {
            const SavePlace place;
            SaveOptions options = CreateOnly();
            options.probe = [&](SaveStep step, qint64&) {
                if (named && step == SaveStep::OpenUnnamed)
                    return EOPNOTSUPP;
                if (step == (late ? named ? SaveStep::Rename : SaveStep::Link : SaveStep::Write))
                    place.Write("a", "theirs");
                return 0;
            };
            EXPECT_EQ(FailureOf([&] { SaveAtomically(place.Path("a"), "ours", options); }),
                      kFailureGeneral);
            EXPECT_EQ(place.Content("a"), "theirs");
            EXPECT_EQ(place.Entries(), QStringList{"a"});
        }
    }
}

TEST(SaveAtomically, OfManyThatCreateOneFileExactlyOneDoes)
{
    const SavePlace place;
    std::atomic<int> made{0}, refused{0};
    std::vector<std::thread> savers;
    savers.reserve(8);
    for (int i = 0; i < 8; ++i) {
        savers.emplace_back([&, i] {
            const SaveOptions options = i % 2 == 0 ? CreateOnly() : NamedOnly(CreateOnly());
            const bool done = ResumeNext(
                [&] { SaveAtomically(place.Path("a"), QByteArray::number(i), options); });
            ++(done ? made : refused);
        });
    }
    for (std::thread& saver : savers)
        saver.join();
    EXPECT_EQ(made, 1);
    EXPECT_EQ(refused, 7);
    EXPECT_EQ(place.Entries(), QStringList{"a"});
    EXPECT_TRUE(place.Journals().isEmpty());
}

TEST(SaveAtomically, ManyThreadsReplaceOneFileAndOneOfThemStands)
{
    const SavePlace place;
    place.Write("a", "old");
    std::vector<std::thread> savers;
    savers.reserve(8);
    for (int i = 0; i < 8; ++i) {
        savers.emplace_back([&, i] {
            for (int round = 0; round < 10; ++round)
                SaveAtomically(place.Path("a"), QByteArray(10'000, char('0' + i)));
        });
    }
    for (std::thread& saver : savers)
        saver.join();
    const QByteArray content = place.Content("a");
    EXPECT_EQ(content, QByteArray(10'000, content[0]));
    EXPECT_EQ(place.Entries(), QStringList{"a"});
}

TEST(SaveAtomically, WhatIsNotAsExpectedIsNotTouched)
{
    const SavePlace place;
    place.Write("a", "old");
    const FileStat loaded = StatPath(place.Path("a"));
    const SaveOptions options = Expecting(loaded);
    const FileStat saved = SaveAtomically(place.Path("a"), "mine", options);
    EXPECT_FALSE(SameFileState(loaded, saved));

    // Changed since, by ourselves in this case.
    EXPECT_TRUE(WordsOf([&] {
                    SaveAtomically(place.Path("a"), "again", options);
                }).startsWith("\"a\" has been changed by another program"));
    EXPECT_EQ(place.Content("a"), "mine");
    SaveAtomically(place.Path("a"), "again", Expecting(saved));

    // Gone since.
    ASSERT_TRUE(RemoveFile(place.Path("a")));
    EXPECT_EQ(FailureOf([&] { SaveAtomically(place.Path("a"), "x", options); }), kFailureNoFile);
    EXPECT_TRUE(place.Entries().isEmpty());

    // A folder since.
    place.MakeFolder("a");
    EXPECT_EQ(FailureOf([&] { SaveAtomically(place.Path("a"), "x", options); }), kFailureGeneral);

    // Nothing was there, now something is.
    place.Write("b", "theirs");
    EXPECT_EQ(FailureOf([&] { SaveAtomically(place.Path("b"), "x", Expecting({})); }),
              kFailureGeneral);
    SaveAtomically(place.Path("c"), "made", Expecting({}));
    EXPECT_EQ(place.Content("b"), "theirs");
    EXPECT_EQ(place.Content("c"), "made");
}

TEST(SaveAtomically, WhatChangesWhileTheContentIsMadeIsNotTouched)
{
    struct Case {
        const char* name;
        std::function<void(const SavePlace&)> change;
        QStringList entries;
    };
    const Case cases[] = {
        {"written to", [](const SavePlace& in) { in.Write("a", "theirs"); }, {"a"}},
        {"replaced", [](const SavePlace& in) { WriteWholeFile(in.Path("a"), "oldd"); }, {"a"}},
        {"gone", [](const SavePlace& in) { RemoveFile(in.Path("a")); }, {}},
        {"a folder",
         [](const SavePlace& in) {
             RemoveFile(in.Path("a"));
             in.MakeFolder("a");
         },
         {"a"}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        for (const bool named : {false, true}) {
            const SavePlace place;
            place.Write("a", "old");
            SaveOptions options = Expecting(StatPath(place.Path("a")));
            options.verify = [&](const QString&) { row.change(place); };
            if (named)
                options = NamedOnly(options);
            EXPECT_NE(FailureOf([&] { SaveAtomically(place.Path("a"), "new", options); }), 0);
            EXPECT_EQ(place.Entries(), row.entries);
            if (StatPath(place.Path("a")).type == FileType::Regular) {
                EXPECT_NE(place.Content("a"), "new");
            }
        }
    }
}

TEST(SaveAtomically, AFolderThatTakesTheTargetsNameStays)
{
    for (const SaveStep late : {SaveStep::Write, SaveStep::Rename}) {
        const SavePlace place;
        place.Write("a", "old");
        SaveOptions options;
        options.probe = [&](SaveStep step, qint64&) {
            if (step == late) {
                RemoveFile(place.Path("a"));
                place.MakeFolder("a");
            }
            return 0;
        };
        EXPECT_EQ(FailureOf([&] { SaveAtomically(place.Path("a"), "new", options); }), kFailureIo);
        EXPECT_EQ(StatPath(place.Path("a")).type, FileType::Folder);
        EXPECT_EQ(place.Entries(), QStringList{"a"});
        EXPECT_TRUE(place.Journals().isEmpty());
    }
}

TEST(SaveAtomically, AFolderThatIsRemovedMeanwhileEndsTheSave)
{
    for (const bool named : {false, true}) {
        const SavePlace place;
        place.MakeFolder("sub");
        SaveOptions options;
        options.probe = [&](SaveStep step, qint64&) {
            if (named && step == SaveStep::OpenUnnamed)
                return EOPNOTSUPP;
            if (step == SaveStep::Sync) {
                ListFolder(place.Path("sub"), [&](DirEntry&& entry) {
                    return RemoveFile(place.Path("sub") + '/' + entry.name);
                });
                rmdir(place.Bytes("sub").constData());
            }
            return 0;
        };
        EXPECT_EQ(FailureOf([&] { SaveAtomically(place.Path("sub/a"), "new", options); }),
                  kFailureNoFile);
        EXPECT_TRUE(place.Entries().isEmpty());
        EXPECT_TRUE(place.Journals().isEmpty());
    }
}

TEST(SaveAtomically, AFileThatVanishesMeanwhileIsMadeAnewWithItsPermissions)
{
    const SavePlace place;
    place.Write("a", "old");
    place.Chmod("a", 0640);
    SaveOptions options;
    options.verify = [&](const QString&) { RemoveFile(place.Path("a")); };
    SaveAtomically(place.Path("a"), "new", options);
    EXPECT_EQ(place.Content("a"), "new");
    EXPECT_EQ(StatPath(place.Path("a")).mode, 0640u);
}

TEST(SaveAtomically, HardLinksStayAndShowTheNewContent)
{
    for (const char* content : {"a longer new content", "n", ""}) {
        const SavePlace place;
        place.Write("a", "old content");
        place.MakeFolder("other");
        place.HardLink("a", "other/second");
        place.Chmod("a", 0604);
        const FileStat before = StatPath(place.Path("a"));
        const FileStat after = SaveAtomically(place.Path("a"), content);
        EXPECT_EQ(place.Content("a"), content);
        EXPECT_EQ(place.Content("other/second"), content);
        EXPECT_EQ(after.inode, before.inode);
        EXPECT_EQ(after.mode, 0604u);
        EXPECT_EQ(place.LinkCount("a"), 2u);
        EXPECT_EQ(place.Entries(), (QStringList{"a", "other"}));
        EXPECT_TRUE(place.Journals().isEmpty());
    }
}

TEST(SaveAtomically, ThePreviousFileStaysUnderItsOtherName)
{
    const SavePlace place;
    SaveOptions options;
    options.keepPreviousAs = place.Path("a~");
    SaveAtomically(place.Path("a"), "1", options);
    EXPECT_EQ(place.Entries(), QStringList{"a"}) << "there was none";
    place.Chmod("a", 0640);
    SaveAtomically(place.Path("a"), "2", options);
    EXPECT_EQ(place.Content("a~"), "1");
    SaveAtomically(place.Path("a"), "3", options);
    EXPECT_EQ(place.Content("a"), "3");
    EXPECT_EQ(place.Content("a~"), "2");
    EXPECT_EQ(StatPath(place.Path("a")).mode, 0640u);
    EXPECT_EQ(StatPath(place.Path("a~")).mode, 0640u);
    EXPECT_EQ(place.LinkCount("a"), 1u);

    // What an earlier save may have left when it was killed: both names are one file.
    ASSERT_TRUE(RemoveFile(place.Path("a~")));
    place.HardLink("a", "a~");
    SaveAtomically(place.Path("a"), "4", options);
    EXPECT_EQ(place.Content("a"), "4");
    EXPECT_EQ(place.Content("a~"), "3");
    EXPECT_EQ(place.Entries(), (QStringList{"a", "a~"}));
}

TEST(SaveAtomically, ThePreviousFileStaysWhereFilesHaveOneNameOnly)
{
    const SavePlace place;
    place.Write("a", "1");
    SaveOptions options;
    options.keepPreviousAs = place.Path("a~");
    options.probe = [](SaveStep step, qint64&) { return step == SaveStep::Link ? EPERM : 0; };
    SaveAtomically(place.Path("a"), "2", options);
    EXPECT_EQ(place.Content("a"), "2");
    EXPECT_EQ(place.Content("a~"), "1");
    EXPECT_EQ(place.Entries(), (QStringList{"a", "a~"}));
}

TEST(SaveAtomically, ThePreviousOfAFileWithHardLinksStaysToo)
{
    const SavePlace place;
    place.Write("a", "1");
    place.HardLink("a", "second");
    SaveOptions options;
    options.keepPreviousAs = place.Path("a~");
    SaveAtomically(place.Path("a"), "2", options);
    EXPECT_EQ(place.Content("a"), "2");
    EXPECT_EQ(place.Content("second"), "2");
    EXPECT_EQ(place.Content("a~"), "1");
    EXPECT_EQ(place.LinkCount("a~"), 1u);
}

TEST(SaveAtomically, AFolderInThePlaceOfThePreviousEndsTheSave)
{
    const SavePlace place;
    place.Write("a", "1");
    place.MakeFolder("a~");
    SaveOptions options;
    options.keepPreviousAs = place.Path("a~");
    EXPECT_EQ(FailureOf([&] { SaveAtomically(place.Path("a"), "2", options); }), kFailureIo);
    EXPECT_EQ(place.Content("a"), "1");
    EXPECT_EQ(place.Entries(), (QStringList{"a", "a~"}));
}

TEST(SaveAtomically, AReadOnlyFileWithHardLinksIsRefused)
{
    const SavePlace place;
    place.Write("a", "old");
    place.HardLink("a", "second");
    place.Chmod("a", 0444);
    {
        const Unprivileged now;
        EXPECT_EQ(FailureOf([&] { SaveAtomically(place.Path("a"), "new"); }), kFailureDenied);
        EXPECT_EQ(FailureOf([&] { SaveAtomically(place.Path("a"), "new", NamedOnly()); }),
                  kFailureDenied);
    }
    EXPECT_EQ(place.Content("second"), "old");
    EXPECT_EQ(place.Entries(), (QStringList{"a", "second"}));
}

TEST(SaveAtomically, AnUnwritableHomeKeepsNobodyFromSavingButForHardLinks)
{
    const SavePlace place;
    place.Write("a", "old");
    place.Write("linked", "old");
    place.HardLink("linked", "second");
    SaveOptions options;
    options.probe = [](SaveStep step, qint64&) {
        return step == SaveStep::Journal || step == SaveStep::OpenUnnamed ? ENOSPC : 0;
    };
    SaveAtomically(place.Path("a"), "new", options);
    EXPECT_EQ(place.Content("a"), "new");
    EXPECT_TRUE(WordsOf([&] {
                    SaveAtomically(place.Path("linked"), "new", options);
                }).contains("several names"));
    EXPECT_EQ(place.Content("linked"), "old");
    EXPECT_EQ(place.Entries(), (QStringList{"a", "linked", "second"}));
}

TEST(SaveAtomically, ABareNameIsSavedIntoTheCurrentFolder)
{
    const SavePlace place;
    const QByteArray before = QDir::currentPath().toUtf8();
    ASSERT_EQ(chdir(place.Bytes().constData()), 0);
    SaveAtomically("a", "1");
    SaveAtomically("./a", "2");
    place.Link("a", "link");
    SaveAtomically("link", "3");
    EXPECT_EQ(FailureOf([] { SaveAtomically("a/", "x"); }), kFailureIo);
    EXPECT_EQ(FailureOf([] { SaveAtomically(".", "x"); }), kFailureIo);
    ASSERT_EQ(chdir(before.constData()), 0);
    EXPECT_EQ(place.Content("a"), "3");
    EXPECT_EQ(place.Entries(), (QStringList{"a", "link"}));
}

} // namespace quillane
