#include "core/expect_failure.h"
#include "platform/fake/fake_platform.h"
#include <QCoreApplication>
#include <QStringList>

namespace quillane {

class Fakes : public testing::Test {
protected:
    FakePlatform fakes{QStringLiteral("/somewhere")};
    Platform platform = fakes.Services();
};

TEST_F(Fakes, DialogsGiveScriptedAnswersInOrderAndKeepTheWords)
{
    fakes.dialogs.Answer(BoxAnswer::Yes);
    fakes.dialogs.Answer(BoxAnswer::No);
    EXPECT_EQ(platform.dialogs.Box("Replace?", "Copy", BoxIcon::Question, BoxButtons::YesNo),
              BoxAnswer::Yes);
    EXPECT_EQ(platform.dialogs.Box("Again?", "Copy", BoxIcon::Warning, BoxButtons::YesNoCancel),
              BoxAnswer::No);
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 2);
    EXPECT_EQ(fakes.dialogs.Boxes()[0].text, "Replace?");
    EXPECT_EQ(fakes.dialogs.Boxes()[0].title, "Copy");
    EXPECT_EQ(fakes.dialogs.Boxes()[0].icon, BoxIcon::Question);
    EXPECT_EQ(fakes.dialogs.Boxes()[0].buttons, BoxButtons::YesNo);
    EXPECT_EQ(fakes.dialogs.Boxes()[1].icon, BoxIcon::Warning);
    EXPECT_EQ(fakes.dialogs.Boxes()[1].buttons, BoxButtons::YesNoCancel);
    EXPECT_EQ(fakes.dialogs.Unexpected(), 0);
    EXPECT_EQ(fakes.dialogs.AnswersLeft(), 0);
}

TEST_F(Fakes, BoxWithoutAnswerIsUnexpectedAndTakesTheSafeButton)
{
    QStringList told;
    fakes.dialogs.OnUnexpected([&](const QString& text) { told.append(text); });
    EXPECT_EQ(platform.dialogs.Box("a", {}), BoxAnswer::Ok);
    EXPECT_EQ(platform.dialogs.Box("b", {}, BoxIcon::None, BoxButtons::OkCancel),
              BoxAnswer::Cancel);
    EXPECT_EQ(platform.dialogs.Box("c", {}, BoxIcon::None, BoxButtons::YesNo), BoxAnswer::No);
    EXPECT_EQ(platform.dialogs.Box("d", {}, BoxIcon::None, BoxButtons::YesNoCancel),
              BoxAnswer::Cancel);
    EXPECT_EQ(fakes.dialogs.Unexpected(), 4);
    EXPECT_EQ(told, QStringList({"a", "b", "c", "d"}));
    EXPECT_EQ(fakes.dialogs.Boxes().size(), 4);
}

TEST_F(Fakes, FileDialogGivesTheScriptedPathElseIsCancelled)
{
    fakes.dialogs.AnswerFile("/pictures/a.jpg");
    EXPECT_EQ(fakes.dialogs.AnswersLeft(), 1);
    EXPECT_EQ(platform.dialogs.File({"Open File", "/pictures/", {}, {}, false}), "/pictures/a.jpg");
    EXPECT_EQ(FailureOf([&] { platform.dialogs.File({}); }), kFailureCancelled);
    ASSERT_EQ(fakes.dialogs.FileDialogs().size(), 2);
    EXPECT_EQ(fakes.dialogs.FileDialogs()[0].title, "Open File");
    EXPECT_EQ(fakes.dialogs.FileDialogs()[0].folder, "/pictures/");
}

TEST_F(Fakes, EscIsPressedAtTheScriptedPolls)
{
    fakes.loop.PressEscAtPoll(2);
    fakes.loop.PressEscAtPoll(4);
    QList<bool> polls;
    for (int i = 0; i < 5; ++i) {
        polls.append(platform.loop.PollEsc());
    }
    EXPECT_EQ(polls, QList<bool>({false, true, false, true, false}));
    EXPECT_EQ(fakes.loop.EscPolls(), 5);
}

TEST_F(Fakes, HeldEscCountsAtEveryPollUntilReleased)
{
    fakes.loop.HoldEscAfterPolls(1);
    EXPECT_FALSE(platform.loop.PollEsc());
    EXPECT_TRUE(platform.loop.PollEsc());
    platform.loop.ForgetEsc(); // a key that is held repeats
    EXPECT_TRUE(platform.loop.PollEsc());
    fakes.loop.ReleaseEsc();
    EXPECT_FALSE(platform.loop.PollEsc());
    EXPECT_EQ(fakes.loop.Forgets(), 1);
}

TEST_F(Fakes, YieldRunsTheTestsActionAndTellsWhetherTheRunIsStillTheNewest)
{
    const Generation first = platform.loop.NewGeneration();
    EXPECT_TRUE(platform.loop.Yield(first));
    fakes.loop.OnYield([&] {
        if (fakes.loop.Yields() == 3) {
            platform.loop.NewGeneration();
        }
    });
    EXPECT_TRUE(platform.loop.Yield(first));
    EXPECT_FALSE(platform.loop.Yield(first));
    EXPECT_EQ(fakes.loop.Yields(), 3);
    EXPECT_NE(platform.loop.Newest(), first);
    EXPECT_TRUE(platform.loop.Yield(platform.loop.Newest()));
}

TEST_F(Fakes, LoopHandlesPostedEventsAndWaitsForThem)
{
    int handled = 0;
    QMetaObject::invokeMethod(
        qApp, [&] { ++handled; }, Qt::QueuedConnection);
    platform.loop.ProcessEvents();
    EXPECT_EQ(handled, 1);
    QMetaObject::invokeMethod(
        qApp, [&] { ++handled; }, Qt::QueuedConnection);
    platform.loop.WaitForEvents(60000);
    EXPECT_EQ(handled, 2);
    EXPECT_EQ(fakes.loop.Waits(), 1);
}

TEST_F(Fakes, HourglassIsCountedAndComesBack)
{
    {
        const Hourglass outer(platform.loop);
        const Hourglass inner(platform.loop);
        EXPECT_EQ(fakes.loop.HourglassDepth(), 2);
    }
    EXPECT_EQ(fakes.loop.HourglassDepth(), 0);
    EXPECT_EQ(fakes.loop.HourglassBegins(), 2);
}

TEST_F(Fakes, ClockAndDateTextAreFixed)
{
    EXPECT_EQ(platform.loop.Now(), platform.loop.Now());
    const QDateTime when({2004, 2, 29}, {23, 5, 9});
    fakes.loop.SetNow(when);
    EXPECT_EQ(platform.loop.Now(), when);
    EXPECT_EQ(platform.loop.SystemDateText(when), "2004-02-29 23:05:09");
    EXPECT_EQ(platform.loop.SystemDateText({}), "");
}

TEST_F(Fakes, LauncherNotesEveryCall)
{
    platform.launcher.OpenPath("/a.jpg");
    platform.launcher.OpenAddress("https://example.org/");
    platform.launcher.FindIn("/pictures/");
    platform.launcher.Run("tool", {"-x", "/a b.jpg"}, "/pictures/");
    EXPECT_EQ(fakes.launcher.opened, QStringList("/a.jpg"));
    EXPECT_EQ(fakes.launcher.addresses, QStringList("https://example.org/"));
    EXPECT_EQ(fakes.launcher.searched, QStringList("/pictures/"));
    ASSERT_EQ(fakes.launcher.started.size(), 1);
    EXPECT_EQ(fakes.launcher.started[0].program, "tool");
    EXPECT_EQ(fakes.launcher.started[0].arguments, QStringList({"-x", "/a b.jpg"}));
    EXPECT_EQ(fakes.launcher.started[0].folder, "/pictures/");
}

TEST_F(Fakes, LauncherFailsWhenTold)
{
    fakes.launcher.fails = true;
    EXPECT_NE(FailureOf([&] { platform.launcher.OpenPath("/a.jpg"); }), 0);
    EXPECT_NE(FailureOf([&] { platform.launcher.OpenAddress("https://example.org/"); }), 0);
    EXPECT_NE(FailureOf([&] { platform.launcher.FindIn("/"); }), 0);
    EXPECT_NE(FailureOf([&] { platform.launcher.Run("tool", {}); }), 0);
    EXPECT_TRUE(fakes.launcher.opened.isEmpty());
}

TEST_F(Fakes, EveryPlaceLiesBelowTheOneFolder)
{
    const FixedPlaces& places = platform.places;
    for (const QString& place :
         {places.Home(), places.Pictures(), places.SettingsFile(), places.Wallpaper(),
          places.PrintCopy(), places.Capture(), places.CaptureLower(), places.ApplicationFolder(),
          places.HelpFile(), places.ThumbnailCache()}) {
        EXPECT_TRUE(place.startsWith("/somewhere/")) << place.toStdString();
    }
    EXPECT_EQ(places.Programs(), "/usr/bin");
    fakes.places.codecWorker = "/bin/worker";
    EXPECT_EQ(places.CodecWorker(), "/bin/worker");
}

TEST_F(Fakes, WatchIsFiredByTheTest)
{
    int told = 0;
    fakes.watch.Fire();
    platform.watch.OnChange([&] { ++told; });
    platform.watch.Watch("/pictures");
    fakes.watch.Fire();
    EXPECT_EQ(told, 1);
    EXPECT_EQ(fakes.watch.folder, "/pictures");
    EXPECT_EQ(fakes.watch.watchings, 1);
}

} // namespace quillane
