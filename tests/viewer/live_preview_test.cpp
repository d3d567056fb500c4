#include "viewer/live_preview.h"
#include "viewer/preview_pictures.h"
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <atomic>
#include <gtest/gtest.h>
#include <semaphore>

namespace quillane {

namespace {

void WaitUntil(const std::function<bool()>& condition)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition() && clock.elapsed() < 30'000) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    }
    ASSERT_TRUE(condition());
}

/// Work that waits until it is let go, and notes which values were tried.
struct Gate {
    std::binary_semaphore go{0};
    std::atomic<int> running{0}, most{0}, started{0};
    std::atomic<int> last{-1};

    static EffectWish Wish(const std::shared_ptr<Gate>& gate, int value)
    {
        return {[gate, value](const EffectInput& input) {
            gate->most = std::max(gate->most.load(), ++gate->running);
            ++gate->started;
            gate->go.acquire();
            gate->last = value;
            --gate->running;
            return input.picture;
        }};
    }
};

} // namespace

TEST(LivePreview, OneRunsAtATimeAndOnlyTheNewestWishFollows)
{
    LivePreview preview;
    preview.SetPicture(SmoothPicture({40, 30}), {});
    preview.SetView({true, {20, 15}, {}});
    WaitUntil([&] { return !preview.Busy(); });
    const auto gate = std::make_shared<Gate>();
    const int before = preview.Computed();
    for (int value = 0; value < 50; ++value) {
        preview.SetWish(Gate::Wish(gate, value));
    }
    gate->go.release();
    WaitUntil([&] { return preview.Computed() == before + 1; });
    EXPECT_EQ(gate->last, 0);
    EXPECT_TRUE(preview.Busy());
    gate->go.release();
    WaitUntil([&] { return !preview.Busy(); });
    EXPECT_EQ(gate->last, 49);
    EXPECT_EQ(gate->started, 2) << "those between were dropped";
    EXPECT_EQ(gate->most, 1);
}

TEST(LivePreview, TheLookItselfFollowsADraftWhenNothingNewerIsWished)
{
    LivePreview preview;
    preview.SetPicture(SmoothPicture({2000, 1500}), {});
    preview.SetView({true, {20, 15}, {}});
    WaitUntil([&] { return !preview.Busy(); });
    const int before = preview.Computed();
    const auto sizes = std::make_shared<std::vector<int>>(); // written on one thread at a time
    const auto wish = [sizes] {
        return EffectWish{[sizes](const EffectInput& input) {
                              sizes->push_back(input.picture.Width());
                              return input.picture;
                          },
                          EffectReach::Near, 0, 1};
    };
    preview.SetWish(wish());
    WaitUntil([&] { return !preview.Busy(); });
    EXPECT_EQ(preview.Computed(), before + 2);
    ASSERT_EQ(sizes->size(), 2u);
    EXPECT_LT(sizes->front(), 2000) << "a smaller copy";
    EXPECT_EQ(sizes->back(), 2000);

    sizes->clear();
    preview.SetWish(wish());
    preview.SetWish(wish());
    WaitUntil([&] { return !preview.Busy(); });
    ASSERT_EQ(sizes->size(), 3u) << "two drafts, then the look";
    EXPECT_LT(sizes->at(1), 2000);
    EXPECT_EQ(sizes->at(2), 2000);
}

TEST(LivePreview, TheWindowThreadDoesNotCompute)
{
    LivePreview preview;
    preview.SetPicture(SmoothPicture({40, 30}), {});
    preview.SetView({true, {20, 15}, {}});
    const Qt::HANDLE here = QThread::currentThreadId();
    std::atomic<bool> elsewhere{false};
    preview.SetWish({[&](const EffectInput& input) {
        elsewhere = QThread::currentThreadId() != here;
        return input.picture;
    }});
    WaitUntil([&] { return !preview.Busy(); });
    EXPECT_TRUE(elsewhere);
    EXPECT_EQ(preview.Look().after.size(), QSize(20, 15));
}

TEST(LivePreview, MayGoWhileItComputes)
{
    const auto gate = std::make_shared<Gate>();
    {
        LivePreview preview;
        preview.SetPicture(SmoothPicture({40, 30}), {});
        preview.SetView({true, {20, 15}, {}});
        WaitUntil([&] { return !preview.Busy(); });
        preview.SetWish(Gate::Wish(gate, 1));
        WaitUntil([&] { return gate->started == 1; });
    }
    gate->go.release();
    WaitUntil([&] { return gate->last == 1; });
}

TEST(LivePreview, ALookOfAnotherPictureIsNotShown)
{
    LivePreview preview;
    preview.SetPicture(SmoothPicture({40, 30}), {});
    preview.SetView({true, {20, 20}, {}});
    WaitUntil([&] { return !preview.Busy(); });
    const auto gate = std::make_shared<Gate>();
    preview.SetWish(Gate::Wish(gate, 1));
    preview.SetPicture(SmoothPicture({30, 40}), {});
    EXPECT_TRUE(preview.Look().after.isNull());
    int shown = 0;
    QObject::connect(&preview, &LivePreview::Changed, [&] {
        ++shown;
        EXPECT_EQ(preview.Look().after.size(), QSize(15, 20));
    });
    gate->go.release();
    WaitUntil([&] { return gate->started == 2; });
    gate->go.release();
    WaitUntil([&] { return !preview.Busy(); });
    EXPECT_EQ(shown, 1);
}

TEST(LivePreview, WithoutAPictureThereIsNothingToDo)
{
    LivePreview preview;
    preview.SetView({true, {20, 15}, {}});
    preview.SetWish({[](const EffectInput& input) { return input.picture; }});
    EXPECT_FALSE(preview.HasPicture());
    EXPECT_FALSE(preview.Busy());
    EXPECT_TRUE(preview.PictureSize().isEmpty());
}

} // namespace quillane
