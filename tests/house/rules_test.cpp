// The rules themselves: each can fail, and does so where it should.
#include "house/rules.h"
#include <gtest/gtest.h>

namespace quillane::house {

using Rule = QStringList (*)(const SourceFile&);

int Complaints(Rule rule, const QString& path, const QString& text)
{
    return int(rule({path, text}).size());
}

TEST(CodeOf, BlanksCommentsAndLiterals)
{
    EXPECT_EQ(CodeOf("a // b\nc"), "a     \nc");
    EXPECT_EQ(CodeOf("a /* b\n c */ d"), "a     \n      d");
    EXPECT_EQ(CodeOf("f(\"x // y\", 1)"), "f(\"      \", 1)");
    EXPECT_EQ(CodeOf("f(\"\\\"x\") g"), "f(\"   \") g");
    EXPECT_EQ(CodeOf("R\"(a \" b)\" c"), "R\"       \" c");
    EXPECT_EQ(CodeOf("R\"x(a)\" )x\" c"), "R\"        \" c");
    EXPECT_EQ(CodeOf("'\"' + 1'000'000 + u'\\''"), "' ' + 1'000'000 + u'  '");
    EXPECT_EQ(CodeOf("\"open"),
              "\"  "
              "  ");
    EXPECT_EQ(CodeOf("/* open"), "       ");
    EXPECT_EQ(CodeOf(""), "");
}

TEST(IncludesOf, FindsThoseThatTheCompilerSees)
{
    const auto includes = IncludesOf("#include <a>\n// #include <b>\n  # include \"c/d.h\" // e\n"
                                     "/*\n#include <f>\n*/\nconst char* g = \"#include <h>\";\n");
    ASSERT_EQ(includes.size(), 2u);
    EXPECT_EQ(includes[0].name, "a");
    EXPECT_TRUE(includes[0].angled);
    EXPECT_EQ(includes[0].line, 1);
    EXPECT_EQ(includes[1].name, "c/d.h");
    EXPECT_FALSE(includes[1].angled);
    EXPECT_EQ(includes[1].line, 3);
}

TEST(LinesWithWord, FindsWholeWords)
{
    EXPECT_EQ(LinesWithWord("sleep\nasleep sleeper\n x.sleep(1); sleep", "sleep"),
              (std::vector<int>{1, 3}));
    EXPECT_TRUE(LinesWithWord("_sleep sleep2", "sleep").empty());
}

TEST(CheckLayers, ComplainsOfWhatStandsAbove)
{
    struct Row {
        const char* path;
        const char* include;
        int complaints;
    } constexpr kRows[] = {
        {"core/a.cpp", "core/b.h", 0},
        {"core/a.cpp", "platform/b.h", 1},
        {"platform/a.cpp", "core/b.h", 0},
        {"platform/desktop/a.cpp", "platform/b.h", 0},
        {"platform/a.cpp", "imaging/b.h", 1},
        {"platform/a.cpp", "platform/ui/b.h", 1},
        {"platform/ui/a.cpp", "platform/b.h", 0},
        {"platform/ui/a.cpp", "widgets/b.h", 1},
        {"imaging/codecs/a.cpp", "imaging/comments/b.h", 0},
        {"imaging/a.cpp", "imaging/worker_main/b.h", 1},
        {"imaging/worker_main/a.cpp", "imaging/b.h", 0},
        {"imaging/a.cpp", "metadata/b.h", 1},
        {"metadata/a.cpp", "imaging/b.h", 0},
        {"metadata/a.cpp", "widgets/b.h", 1},
        {"widgets/a.cpp", "metadata/b.h", 1},
        {"widgets/a.cpp", "widgets/ui/b.h", 1},
        {"widgets/ui/a.cpp", "widgets/b.h", 0},
        {"widgets/ui/a.cpp", "browser/b.h", 1},
        {"browser/a.cpp", "metadata/b.h", 0},
        {"browser/a.cpp", "browser/ui/b.h", 1},
        {"browser/a.cpp", "widgets/ui/b.h", 1},
        {"browser/ui/a.cpp", "browser/b.h", 0},
        {"browser/ui/a.h", "widgets/ui/b.h", 0},
        {"browser/ui/a.cpp", "ui_frmBrowse.h", 0},
        {"main.cpp", "browser/ui/b.h", 0},
        {"tests/core/a.cpp", "browser/b.h", 0},
        {"core/a.cpp", "b.h", 1},
        {"core/a.cpp", "../core/b.h", 1},
        {"unknown/a.cpp", "core/b.h", 1},
    };
    for (const Row& row : kRows) {
        const QString text = QStringLiteral("#include \"%1\"\n").arg(row.include);
        EXPECT_EQ(Complaints(CheckLayers, row.path, text), row.complaints)
            << row.path << " includes " << row.include;
    }
}

TEST(CheckFileAccess, ComplainsOfOtherRoadsToFiles)
{
    for (const char* line :
         {"QFile file(path);", "QDir(path).entryList();", "QFileInfo info;", "#include <QFileInfo>",
          "std::ofstream out;", "fopen(a, b);", "std::filesystem::path p;"}) {
        EXPECT_EQ(Complaints(CheckFileAccess, "imaging/a.cpp", line), 1) << line;
        EXPECT_EQ(Complaints(CheckFileAccess, "core/native_path.cpp", line), 0) << line;
        EXPECT_EQ(Complaints(CheckFileAccess, "tests/core/a_test.cpp", line), 0) << line;
    }
    EXPECT_EQ(Complaints(CheckFileAccess, "imaging/a.cpp", "// QFile\nQFileDialog d; f(\"QDir\");"),
              0);
}

TEST(CheckThirdParty, ComplainsOutsideTheAdapter)
{
    struct Row {
        const char* path;
        const char* include;
        int complaints;
    } constexpr kRows[] = {
        {"imaging/codecs/png.cpp", "png.h", 0},
        {"imaging/codecs/png.h", "png.h", 1},
        {"metadata/a.cpp", "png.h", 1},
        {"imaging/comments/a.cpp", "exiv2/exiv2.hpp", 0},
        {"metadata/a.cpp", "exiv2/exiv2.hpp", 1},
        {"imaging/worker_main/codecs/tiff.cpp", "tiffio.h", 0},
        {"imaging/codecs/tiff.cpp", "tiffio.h", 1},
        {"imaging/worker_main/codecs/dicom.h", "dcmtk/dcmdata/dctk.h", 0},
        {"imaging/processing/pixels/a.h", "opencv2/core.hpp", 0},
        {"imaging/processing/a.h", "opencv2/core.hpp", 1},
        {"imaging/engine.cpp", "opencv2/core.hpp", 1},
        {"core/a.cpp", "boost/any.hpp", 1},
        {"core/a.cpp", "vector", 0},
        {"core/a.cpp", "sys/stat.h", 0},
        {"core/a.cpp", "fcntl.h", 0},
        {"core/a.h", "QString", 0},
        {"tests/imaging/a_test.cpp", "png.h", 0},
    };
    for (const Row& row : kRows) {
        const QString text = QStringLiteral("#include <%1>\n").arg(row.include);
        EXPECT_EQ(Complaints(CheckThirdParty, row.path, text), row.complaints)
            << row.path << " includes " << row.include;
    }
}

TEST(CheckQtModules, ComplainsOfWholeModules)
{
    for (const char* module : {"QtCore", "QtWidgets", "QtTest", "QtTest/QtTest", "QtDBus"}) {
        const QString text = QStringLiteral("#include <%1>\n").arg(module);
        EXPECT_EQ(Complaints(CheckQtModules, "browser/ui/a.cpp", text), 1) << module;
        EXPECT_EQ(Complaints(CheckQtModules, "tests/gui/a_test.cpp", text), 1) << module;
    }
    for (const char* header : {"QString", "QtGlobal", "QtMath", "QtTest/QTest", "QTest"}) {
        const QString text = QStringLiteral("#include <%1>\n").arg(header);
        EXPECT_EQ(Complaints(CheckQtModules, "browser/ui/a.cpp", text), 0) << header;
    }
}

TEST(CheckTestManners, ComplainsOfFixedWaits)
{
    for (const char* line : {"usleep(10);", "sleep(1);", "std::this_thread::sleep_for(1s);",
                             "QThread::msleep(5);", "QTest::qWait(100);", "QTest::qSleep(1);"}) {
        EXPECT_EQ(Complaints(CheckTestManners, "tests/gui/a_test.cpp", line), 1) << line;
        EXPECT_EQ(Complaints(CheckTestManners, "imaging/a.cpp", line), 0) << line;
    }
    EXPECT_EQ(Complaints(CheckTestManners, "tests/gui/a_test.cpp", "QTest::qWaitFor(f); // sleep"),
              0);
}

TEST(CheckTestManners, ComplainsOfTestsThatDoNotRun)
{
    const QString skip = QStringLiteral("GTEST_%1() << \"later\";").arg("SKIP");
    const QString off = QStringLiteral("TEST(A, %1_B) {}").arg("DISABLED");
    EXPECT_EQ(Complaints(CheckTestManners, "tests/core/a_test.cpp", skip), 1);
    EXPECT_EQ(Complaints(CheckTestManners, "tests/core/a_test.cpp", off), 1);
    EXPECT_EQ(Complaints(CheckTestManners, "tests/core/a_test.cpp", "TEST(A, IsDisabled) {}"), 0);
}

TEST(CheckLength, ComplainsBeyondAThousandLines)
{
    EXPECT_EQ(Complaints(CheckLength, "core/a.cpp", QString(1000, '\n')), 0);
    EXPECT_EQ(Complaints(CheckLength, "core/a.cpp", QString(1001, '\n')), 1);
    EXPECT_EQ(Complaints(CheckLength, "tests/core/a_test.cpp", QString(1001, '\n')), 1);
    EXPECT_EQ(Complaints(CheckLength, "core/settings_table.cpp", QString(1001, '\n')), 0);
    EXPECT_EQ(Complaints(CheckLength, "README.md", QString(1001, '\n')), 0);
}

TEST(CheckLeftUndone, ComplainsOfMarksInCodeAndComments)
{
    for (const char* word : {"TO"
                             "DO",
                             "FIX"
                             "ME"}) {
        const QString text = QStringLiteral("int a; // %1: b\n").arg(word);
        EXPECT_EQ(Complaints(CheckLeftUndone, "core/a.cpp", text), 1) << word;
        EXPECT_EQ(Complaints(CheckLeftUndone, "run", text), 1) << word;
    }
    EXPECT_EQ(Complaints(CheckLeftUndone, "core/a.cpp",
                         "throw \"Not "
                         "implemented\";"),
              1);
    EXPECT_EQ(Complaints(CheckLeftUndone, "core/a.cpp", "int todoList; // METHODOLOGY"), 0);
}

TEST(CheckHeaders, ComplainsOfMissingGuardsAndImportedNamespaces)
{
    EXPECT_EQ(Complaints(CheckHeaders, "core/a.h", "#pragma once\nint a;\n"), 0);
    EXPECT_EQ(Complaints(CheckHeaders, "core/a.h", "// about\n#pragma once\n"), 0);
    EXPECT_EQ(Complaints(CheckHeaders, "core/a.h", "int a;\n#pragma once\n"), 1);
    EXPECT_EQ(Complaints(CheckHeaders, "core/a.cpp", "int a;\n"), 0);
    EXPECT_EQ(Complaints(CheckHeaders, "core/a.cpp", "using namespace std;\n"), 1);
    EXPECT_EQ(Complaints(CheckHeaders, "tests/core/a_test.cpp", "using namespace std;\n"), 1);
    EXPECT_EQ(Complaints(CheckHeaders, "bench/a_bench.cpp", "using namespace std;\n"), 0);
    EXPECT_EQ(Complaints(CheckHeaders, "core/a.cpp", "void F()\n{\n    using namespace std;\n}\n"),
              0);
}

TEST(CheckDocstrings, ComplainsOfFunctionsWithoutOne)
{
    for (const char* text : {
             "namespace q {\nint F(int a);\n}\n",
             "/// Documented.\nint F();\n\nint G();\n",
             "/// A class.\nclass A {\npublic:\n    void F();\n};\n",
             "struct A {\n    virtual void F() = 0;\n};\n",
             "template <typename T> T F(T a);\n",
             "std::function<bool()> F(int a);\n",
             "class A {\n    Q_OBJECT\npublic:\n    void F();\n};\n",
             "class A : public B<int()> {\nprotected:\n    void F(int a = {});\n};\n",
             "class A {\nQ_SIGNALS:\n    void changed();\n};\n",
             "inline int F()\n{\n    return 1;\n}\n",
             "// no docstring\nint F();\n",
         })
        EXPECT_EQ(Complaints(CheckDocstrings, "core/a.h", text), 1) << text;
}

TEST(CheckDocstrings, IsContentWithDocumentedOnes)
{
    for (const char* text : {
             "/// Above.\nint F(int a);\n",
             "int F(int a); ///< Behind.\n",
             "/// For both.\nint F();\nint G();\n",
             "/// For a long one.\nint F(int a,\n      int b);\nint G();\n",
             "/// A template.\ntemplate <typename T>\nT F(T a);\n",
             "#pragma once\n#define A(x) \\\n    x(x)\n",
             "class A {\n    void F();\n};\n",
             "class A {\npublic:\n    int F() const { return mF; }\nprivate:\n    int G();\n};\n",
             "class A {\npublic:\n    A();\n    ~A();\n    A(A&&) = delete;\n    void F() "
             "override;\n};\n",
             "class A {\npublic:\n    explicit A(int a);\n    A& operator=(A&&);\n};\n",
             "struct A {\n    int a = F(1);\n    std::function<void(int)> b;\n    int c{2};\n};\n",
             "enum class E { A, B };\nusing F = int (*)(int);\nfriend void G();\n",
             "inline constexpr int kA[] = {F(1), G(2)};\nstatic_assert(sizeof(int) == 4);\n",
             "class A {\n    struct B {\n        void F();\n    };\n};\n",
             "/// Waits.\nvoid F(const std::function<bool()>& go = {},\n       int a = 1);\n",
         })
        EXPECT_EQ(CheckDocstrings({"core/a.h", text}), QStringList()) << text;
}

TEST(CheckDocstrings, LooksAtTheProgramsHeadersAlone)
{
    EXPECT_EQ(Complaints(CheckDocstrings, "core/a.cpp", "int F();\n"), 0);
    EXPECT_EQ(Complaints(CheckDocstrings, "tests/core/a.h", "int F();\n"), 0);
}

} // namespace quillane::house
