#include "browser/preferences.h"

#include "core/expect_failure.h"
#include <QStringList>

namespace quillane {

/// A main window that notes in which order it is changed.
class NotingTarget : public PreferencesTarget {
public:
    bool gridLines = false, sorted = true, subDirectories = false;
    int style = 3;
    CustomSlots stored;
    QStringList order;

    bool GridLines() const override { return gridLines; }
    void SetGridLines(bool on) override { Note(gridLines, on, "grid"); }
    bool Sorted() const override { return sorted; }
    void SetSorted(bool on) override { Note(sorted, on, "sorted"); }
    int ListStyle() const override { return style; }
    void SetListStyle(int to) override { Note(style, to, "style"); }
    bool IncludeSubDirectories() const override { return subDirectories; }
    void SetIncludeSubDirectories(bool on) override { Note(subDirectories, on, "sub"); }
    CustomSlots LoadCustomToolPrefs() const override { return stored; }
    void SaveCustomToolPrefs(const CustomSlots& customSlots) override
    {
        Note(stored, customSlots, "slots");
    }

private:
    template <typename Value> void Note(Value& value, const Value& to, const char* word)
    {
        value = to;
        order.append(QLatin1String(word));
    }
};

class PreferencesTest : public testing::Test {
protected:
    PreferencesForm Form() const { return LoadPreferences(session, target); }
    Session session;
    NotingTarget target;
};

TEST_F(PreferencesTest, CaptionHasTwoBlanks)
{
    EXPECT_EQ(PreferencesCaption("Quillane"), "Quillane  Preferences");
}

TEST_F(PreferencesTest, LoadShowsWhatIsInForce)
{
    session.gsFileKeyword = {"City", "", "Name", "x"};
    session.gThumbnailWidth = 120;
    session.gThumbnailHeight = -3;
    session.jpegQuality = 200;
    target.gridLines = true;
    target.sorted = false;
    target.subDirectories = true;
    target.style = 1;
    target.stored.apps[3] = {1, "Paint", "/usr/bin/paint"};
    const PreferencesForm form = Form();
    EXPECT_EQ(form.txtKeyword, session.gsFileKeyword);
    EXPECT_EQ(form.txtThumbX, "120");
    EXPECT_EQ(form.txtThumbY, "-3");
    EXPECT_EQ(form.txtJPEGValue, "200");
    EXPECT_TRUE(form.chkGridlines);
    EXPECT_FALSE(form.chkSorted);
    EXPECT_TRUE(form.chkSubDirectory);
    EXPECT_EQ(form.optFileOptions, (Four<bool>{false, true, false, false}));
    EXPECT_EQ(form.customSlots.apps[3].caption, "Paint");
    EXPECT_TRUE(target.order.isEmpty());
}

TEST_F(PreferencesTest, AnyVideoToolButZeroIsTheSecondOption)
{
    for (const auto& [tool, option] : {std::pair(0, 0), {1, 1}, {7, 1}, {-1, 1}}) {
        session.gsVideoTool = tool;
        EXPECT_EQ(Form().optVideoTool, option) << tool;
    }
}

TEST_F(PreferencesTest, ApplyGoesInItsOrder)
{
    ApplyPreferences(Form(), session, target);
    EXPECT_EQ(target.order, QStringList({"grid", "sorted", "style", "sub", "slots"}));
}

TEST_F(PreferencesTest, ApplyTakesEverythingOver)
{
    PreferencesForm form = Form();
    form.txtKeyword = {"a", "b", "c", "d"};
    form.txtThumbX = " 64 ";
    form.txtThumbY = "1e2";
    form.txtJPEGValue = "2";
    form.chkGridlines = true;
    form.chkSorted = false;
    form.chkSubDirectory = true;
    form.optFileOptions = {false, false, true, false};
    form.customSlots.tools[2] = {1, "T", "/t"};
    session.gsVideoTool = 5;
    form.optVideoTool = 0;
    ApplyPreferences(form, session, target);
    EXPECT_EQ(session.gsFileKeyword, (Four<QString>{"a", "b", "c", "d"}));
    EXPECT_EQ(session.gThumbnailWidth, 64);
    EXPECT_EQ(session.gThumbnailHeight, 100);
    EXPECT_EQ(session.jpegQuality, 2);
    EXPECT_TRUE(target.gridLines);
    EXPECT_FALSE(target.sorted);
    EXPECT_TRUE(target.subDirectories);
    EXPECT_EQ(target.style, 2);
    EXPECT_EQ(target.stored.tools[2].path, "/t");
    EXPECT_EQ(session.gsVideoTool, 5) << "only a click changes it";
}

TEST_F(PreferencesTest, EachStyleThatIsOnIsSetInTurnAndNoneLeavesTheStyle)
{
    PreferencesForm form = Form();
    form.optFileOptions = {true, false, true, false};
    ApplyPreferences(form, session, target);
    EXPECT_EQ(target.style, 2);
    EXPECT_EQ(target.order.count("style"), 2);
    form.optFileOptions = {};
    ApplyPreferences(form, session, target);
    EXPECT_EQ(target.style, 2);
}

TEST_F(PreferencesTest, ATextThatIsNoNumberEndsItWithATypeErrorWhereItStands)
{
    struct Row {
        const char *x, *y, *jpeg;
        qint32 failure;
        qint16 width, height;
        qint32 quality;
    };
    const Row rows[] = {{"wide", "50", "20", kFailureType, 100, 100, 10},
                        {"50", "", "20", kFailureType, 50, 100, 10},
                        {"50", "60", "10 %", kFailureType, 50, 60, 10},
                        {"32768", "60", "20", kFailureOverflow, 100, 100, 10},
                        {"50", "60", "2147483648", kFailureOverflow, 50, 60, 10}};
    for (const Row& row : rows) {
        session = {};
        target.order.clear();
        PreferencesForm form = Form();
        form.txtKeyword[0] = "City";
        form.txtThumbX = row.x;
        form.txtThumbY = row.y;
        form.txtJPEGValue = row.jpeg;
        EXPECT_EQ(FailureOf([&] { ApplyPreferences(form, session, target); }), row.failure)
            << row.x;
        EXPECT_EQ(session.gsFileKeyword[0], "City");
        EXPECT_EQ(session.gThumbnailWidth, row.width);
        EXPECT_EQ(session.gThumbnailHeight, row.height);
        EXPECT_EQ(session.jpegQuality, row.quality);
        EXPECT_EQ(target.order, QStringList({"grid", "sorted", "style", "sub"}));
    }
}

} // namespace quillane
