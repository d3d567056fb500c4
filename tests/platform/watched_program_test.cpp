#include "platform/desktop/watched_program.h"

#include "core/expect_failure.h"
#include "platform/program_log.h"
#include <csignal>
#include <optional>

namespace quillane {

class WatchedProgramTest : public testing::Test {
protected:
    /// Runs a shell script to its end.
    ProgramEnd Run(const QByteArray& script, int patience = 0)
    {
        folder.Write("script", "#!/bin/sh\n" + script + "\n");
        folder.Chmod("script", 0755);
        std::optional<ProgramEnd> ended;
        WatchedProgram::Run(
            {folder.Path("script"), {}, folder.Path(), patience},
            [&](const ProgramEnd& end) { ended = end; }, &parent);
        EXPECT_TRUE(QTest::qWaitFor([&] { return ended.has_value(); }, kTestPatience));
        EXPECT_TRUE(QTest::qWaitFor([&] { return parent.children().isEmpty(); }, kTestPatience));
        return ended.value_or(ProgramEnd());
    }
    TempFolder folder;
    QObject parent;
};

TEST_F(WatchedProgramTest, AGoodEndBringsWhatWasSaid)
{
    const ProgramEnd end = Run("echo one; echo two >&2; printf three");
    EXPECT_TRUE(end.Good());
    EXPECT_EQ(end.output, "one\nthree");
    EXPECT_EQ(end.errors, "two\n");
}

TEST_F(WatchedProgramTest, AnErrorIsToldWithTheLastLineOfItsComplaint)
{
    const ProgramEnd end = Run("echo first >&2; echo 'no  such\tlens' >&2; echo >&2; exit 3");
    EXPECT_FALSE(end.Good());
    EXPECT_EQ(end.code, 3);
    EXPECT_EQ(end.Words(),
              folder.Path("script") + QStringLiteral(" ended with error 3: no such lens"));
}

TEST_F(WatchedProgramTest, AnErrorWithoutAWordIsToldByItsNumber)
{
    EXPECT_EQ(Run("exit 7").Words(),
              folder.Path("script") + QStringLiteral(" ended with error 7."));
}

TEST_F(WatchedProgramTest, ACrashIsTold)
{
    const ProgramEnd end = Run("kill -SEGV $$");
    EXPECT_FALSE(end.Good());
    EXPECT_EQ(end.signal, SIGSEGV);
    EXPECT_TRUE(end.Words().startsWith(folder.Path("script") + QStringLiteral(" was ended")));
}

TEST_F(WatchedProgramTest, WhatTakesTooLongIsEndedWithAllItStarted)
{
    // The second process would hold the slate for a minute, and the shell waits for it.
    const ProgramEnd end = Run("/bin/sleep 60 & echo $! > child; wait", 200);
    EXPECT_TRUE(end.late);
    EXPECT_FALSE(end.Good());
    EXPECT_TRUE(end.Words().contains(QStringLiteral("took too long")));
}

TEST_F(WatchedProgramTest, AFloodOfWordsTakesNoMoreThanAMegabyte)
{
    const ProgramEnd end = Run("/usr/bin/head -c 3000000 /dev/zero 2>/dev/null; exit 0");
    EXPECT_TRUE(end.Good());
    EXPECT_EQ(end.output.size(), 1 << 20);
}

TEST_F(WatchedProgramTest, ALongComplaintIsCutForOneLine)
{
    const ProgramEnd end = Run("printf '%0900d\\n' 7 >&2; exit 1");
    EXPECT_LT(end.Words().size(), 300 + folder.Path("script").size());
}

TEST_F(WatchedProgramTest, WhatCannotBeStartedFailsAtOnceAndIsNeverHeardOf)
{
    bool heard = false;
    const auto hear = [&](const ProgramEnd&) { heard = true; };
    EXPECT_EQ(FailureOf([&] {
                  WatchedProgram::Run({folder.Path("absent"), {}, {}, 0}, hear, &parent);
              }),
              kFailureNoFile);
    EXPECT_TRUE(parent.children().isEmpty());
    EXPECT_FALSE(heard);
}

TEST_F(WatchedProgramTest, TheProgramRunsOnWhenItsWatcherGoes)
{
    folder.Write("script",
                 "#!/bin/sh\nread -r line < gate\necho late >&2\necho \"$line\" > out.part\n"
                 "/bin/mv out.part out\n");
    folder.Chmod("script", 0755);
    ASSERT_EQ(mkfifo(folder.Bytes("gate").constData(), 0600), 0);
    bool heard = false;
    {
        QObject brief;
        WatchedProgram::Run(
            {folder.Path("script"), {}, folder.Path(), 0}, [&](const ProgramEnd&) { heard = true; },
            &brief);
    }
    folder.Write("gate", "through\n");
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return StatPath(folder.Path("out")).type == FileType::Regular; }, kTestPatience));
    EXPECT_EQ(folder.Content("out"), "through\n");
    EXPECT_FALSE(heard);
}

} // namespace quillane
