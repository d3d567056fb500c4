#include "core/expect_failure.h"
#include "core/window_registry.h"
#include <QStringList>
#include <gtest/gtest.h>

namespace quillane {

// Notes its end.
class FakeWindow : public QObject {
public:
    FakeWindow(QString name, QStringList& ended) : mName(std::move(name)), mEnded(ended) { }
    ~FakeWindow() override { mEnded.append(mName); }

private:
    QString mName;
    QStringList& mEnded;
};

class WindowRegistryTest : public testing::Test {
protected:
    void Tell(const QString& name)
    {
        mRegistry.Register(name, [this, name] {
            ++mMade;
            return new FakeWindow(name, mEnded);
        });
    }
    QStringList mEnded;
    int mMade = 0;
    WindowRegistry mRegistry;
};

TEST_F(WindowRegistryTest, AWindowIsMadeOnFirstUseAndOnce)
{
    Tell("frmA");
    EXPECT_TRUE(mRegistry.Knows("frmA"));
    EXPECT_FALSE(mRegistry.Knows("frmB"));
    EXPECT_EQ(mMade, 0);
    EXPECT_EQ(mRegistry.Loaded("frmA"), nullptr);
    QObject* window = mRegistry.Get("frmA");
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(mRegistry.Get("frmA"), window);
    EXPECT_EQ(mRegistry.Loaded("frmA"), window);
    EXPECT_EQ(mMade, 1);
}

TEST_F(WindowRegistryTest, AnUnknownNameIsNoWindow)
{
    EXPECT_EQ(mRegistry.Get("frmA"), nullptr);
    EXPECT_EQ(mRegistry.Loaded("frmA"), nullptr);
}

TEST_F(WindowRegistryTest, ANameMayBeToldOnce)
{
    Tell("frmA");
    EXPECT_EQ(FailureOf([&] { Tell("frmA"); }), kFailureGeneral);
}

TEST_F(WindowRegistryTest, NamesStandInTheOrderOfLoading)
{
    for (const char* name : {"frmA", "frmB", "frmC"})
        Tell(name);
    mRegistry.Get("frmC");
    mRegistry.Get("frmA");
    mRegistry.Get("frmB");
    mRegistry.Get("frmC");
    EXPECT_EQ(mRegistry.LoadedNames(), (QVector<QString>{"frmC", "frmA", "frmB"}));
}

TEST_F(WindowRegistryTest, AWindowThatWentIsMadeAnewAndCountsAsLoadedLast)
{
    Tell("frmA");
    Tell("frmB");
    delete mRegistry.Get("frmA");
    EXPECT_EQ(mRegistry.Loaded("frmA"), nullptr);
    EXPECT_TRUE(mRegistry.LoadedNames().isEmpty());
    mRegistry.Get("frmB");
    EXPECT_NE(mRegistry.Get("frmA"), nullptr);
    EXPECT_EQ(mMade, 3);
    EXPECT_EQ(mRegistry.LoadedNames(), (QVector<QString>{"frmB", "frmA"}));
}

TEST_F(WindowRegistryTest, AllAreDestroyedInTheReverseOrder)
{
    for (const char* name : {"frmA", "frmB", "frmC"}) {
        Tell(name);
        mRegistry.Get(name);
    }
    delete mRegistry.Loaded("frmB");
    mRegistry.DestroyAll();
    EXPECT_EQ(mEnded, (QStringList{"frmB", "frmC", "frmA"}));
    EXPECT_TRUE(mRegistry.LoadedNames().isEmpty());
}

TEST_F(WindowRegistryTest, AWindowOwnedByAnotherEndsWithIt)
{
    Tell("frmA");
    Tell("frmB");
    mRegistry.Get("frmA")->setParent(mRegistry.Get("frmB"));
    mRegistry.DestroyAll();
    EXPECT_EQ(mEnded.size(), 2);
}

TEST_F(WindowRegistryTest, TheRegistrysEndDestroysThem)
{
    {
        WindowRegistry registry;
        registry.Register("frmX", [&] { return new FakeWindow("frmX", mEnded); });
        registry.Get("frmX");
    }
    EXPECT_EQ(mEnded, QStringList{"frmX"});
}

TEST_F(WindowRegistryTest, NothingIsMadeWhileAllAreDestroyed)
{
    Tell("frmLate");
    QObject* late = nullptr;
    mRegistry.Register("frmA", [&] {
        auto* window = new QObject;
        QObject::connect(window, &QObject::destroyed, [&] { late = mRegistry.Get("frmLate"); });
        return window;
    });
    mRegistry.Get("frmA");
    mRegistry.DestroyAll();
    EXPECT_EQ(late, nullptr);
    EXPECT_EQ(mMade, 0);
}

TEST_F(WindowRegistryTest, AWindowThatAsksForItselfWhileItIsMadeFindsNothing)
{
    QObject* inner = nullptr;
    mRegistry.Register("frmA", [&] {
        inner = mRegistry.Get("frmA");
        return new QObject;
    });
    EXPECT_NE(mRegistry.Get("frmA"), nullptr);
    EXPECT_EQ(inner, nullptr);
}

TEST_F(WindowRegistryTest, AMakerThatFailsMayBeAskedAgain)
{
    bool fail = true;
    mRegistry.Register("frmA", [&]() -> QObject* {
        if (fail)
            throw Failure(kFailureGeneral, "cannot be made");
        return new QObject;
    });
    EXPECT_EQ(FailureOf([&] { mRegistry.Get("frmA"); }), kFailureGeneral);
    fail = false;
    EXPECT_NE(mRegistry.Get("frmA"), nullptr);
}

} // namespace quillane
