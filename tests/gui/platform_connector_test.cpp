#include "platform/ui/command_connector.h"

#include "platform/fake/fake_dialogs.h"
#include <QAction>
#include <QComboBox>
#include <gtest/gtest.h>
#include <memory>

namespace quillane {

class CommandConnector : public testing::Test {
protected:
    FakeDialogs dialogs;
    QAction action;
    QObject context;
};

TEST_F(CommandConnector, RunsTheCommand)
{
    int runs = 0;
    ConnectCommand(&action, &QAction::triggered, &context, dialogs, [&] { ++runs; });
    action.trigger();
    action.trigger();
    EXPECT_EQ(runs, 2);
    EXPECT_TRUE(dialogs.Boxes().isEmpty());
}

TEST_F(CommandConnector, PassesTheSignalsArguments)
{
    QComboBox box;
    box.addItems({"a", "b"});
    int index = -1;
    ConnectCommand(&box, &QComboBox::currentIndexChanged, &context, dialogs,
                   [&](int at) { index = at; });
    box.setCurrentIndex(1);
    EXPECT_EQ(index, 1);
}

TEST_F(CommandConnector, ShowsNumberAndDescriptionOfAFailureAndGoesOn)
{
    int runs = 0;
    ConnectCommand(&action, &QAction::triggered, &context, dialogs, [&] {
        ++runs;
        throw Failure(53, QStringLiteral("There is no file a.jpg."));
    });
    dialogs.Answer(BoxAnswer::Ok);
    dialogs.Answer(BoxAnswer::Ok);
    action.trigger();
    action.trigger();
    EXPECT_EQ(runs, 2);
    ASSERT_EQ(dialogs.Boxes().size(), 2);
    EXPECT_TRUE(dialogs.Boxes()[0].text.contains("53"));
    EXPECT_TRUE(dialogs.Boxes()[0].text.contains("There is no file a.jpg."));
    EXPECT_EQ(dialogs.Boxes()[0].buttons, BoxButtons::Ok);
}

TEST_F(CommandConnector, EndsWithItsContext)
{
    int runs = 0;
    auto brief = std::make_unique<QObject>();
    ConnectCommand(&action, &QAction::triggered, brief.get(), dialogs, [&] { ++runs; });
    brief.reset();
    action.trigger();
    EXPECT_EQ(runs, 0);
}

TEST_F(CommandConnector, RunCommandTellsWhetherItCameToItsEnd)
{
    EXPECT_TRUE(RunCommand(dialogs, [] {}));
    dialogs.Answer(BoxAnswer::Ok);
    EXPECT_FALSE(RunCommand(dialogs, [] { throw Failure(5, QStringLiteral("No.")); }));
    EXPECT_EQ(dialogs.Boxes().size(), 1);
}

TEST_F(CommandConnector, WhatIsNoFailurePassesThrough)
{
    EXPECT_THROW(RunCommand(dialogs, [] { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_TRUE(dialogs.Boxes().isEmpty());
}

} // namespace quillane
