// scripts/install_packages against a package system of the test's own.
#include "e2e/e2e_support.h"
#include <QTemporaryDir>
#include <filesystem>
#include <gtest/gtest.h>

namespace quillane::test {

namespace {

class InstallPackages : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(mFolder.isValid());
        for (const char* name : {"bin", "scripts", "index"}) {
            std::filesystem::create_directory(Path(name).toStdString());
        }
        std::filesystem::copy(QUILLANE_SOURCE_FOLDER "/scripts/install_packages",
                              Path("scripts/install_packages").toStdString());
        WriteText(Path("scripts/packages.one"), "alpha\nbeta\n");
        WriteText(Path("scripts/packages.two"), "beta\ngamma\n");
        // Only what the script calls is in its path, so no real apt-get can be reached.
        for (const char* tool :
             {"bash", "sh", "cat", "sort", "dirname", "tee", "chmod", "rm", "ls", "env", "id"}) {
            const std::string real = std::filesystem::exists(std::string("/usr/bin/") + tool)
                ? std::string("/usr/bin/") + tool
                : std::string("/bin/") + tool;
            std::filesystem::create_symlink(real, Path("bin/").toStdString() + tool);
        }
        BeUser(0);
        WriteScript(
            Path("bin/dpkg-query"),
            "for last; do :; done\n"
            "case \" $INSTALLED \" in *\" $last \"*) printf 'installed ' ;; *) exit 1 ;; esac\n");
        WriteScript(Path("bin/apt-get"),
                    "echo \"$DEBIAN_FRONTEND $*\" >>'" + Path("calls") + "'\n" + "[ -x '"
                        + Path("policy") + "' ] && echo guarded >>'" + Path("guard") + "'\n"
                        + "case \"$*\" in *update*) : >'" + Path("index/x_Packages") + "' ;;\n"
                        + "*) [ -z \"$REFUSE_ONCE\" ] || [ -e '" + Path("refused") + "' ] || { : >'"
                        + Path("refused") + "'; exit 100; } ;; esac\n");
        WriteText(Path("index/x_Packages"), "");
        mEnvironment.insert("PATH", Path("bin"));
        mEnvironment.insert("INSTALLED", "");
        mEnvironment.insert("REFUSE_ONCE", "");
        mEnvironment.insert("QUILLANE_POLICY_FILE", Path("policy"));
        mEnvironment.insert("QUILLANE_PACKAGE_INDEX", Path("index"));
    }

    QString Path(const QString& name) const { return mFolder.filePath(name); }
    void BeUser(int id) const
    {
        std::filesystem::remove(Path("bin/id").toStdString());
        WriteScript(Path("bin/id"), QStringLiteral("echo %1\n").arg(id));
    }
    ScriptResult Install() const
    {
        return RunScript(Path("bin/bash"), {Path("scripts/install_packages"), "one", "two"},
                         mEnvironment);
    }
    QStringList Calls() const { return ReadText(Path("calls")).split('\n', Qt::SkipEmptyParts); }

    QTemporaryDir mFolder;
    QProcessEnvironment mEnvironment;
};

TEST_F(InstallPackages, TouchesNothingWhenNothingIsMissing)
{
    mEnvironment.insert("INSTALLED", "alpha beta gamma");
    BeUser(1000);
    const ScriptResult result = Install();
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(Calls(), QStringList());
}

TEST_F(InstallPackages, InstallsOnlyWhatIsMissingInOneCall)
{
    mEnvironment.insert("INSTALLED", "beta");
    const ScriptResult result = Install();
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    ASSERT_EQ(Calls().size(), 1);
    EXPECT_TRUE(Calls().first().startsWith("noninteractive ")) << Calls().first().toStdString();
    EXPECT_TRUE(Calls().first().contains("DPkg::Lock::Timeout="));
    EXPECT_TRUE(Calls().first().endsWith("install --no-install-recommends alpha gamma"))
        << Calls().first().toStdString();
}

TEST_F(InstallPackages, LetsNoPackageStartAServiceAndTakesThePolicyAwayAgain)
{
    EXPECT_EQ(Install().status, 0);
    EXPECT_EQ(ReadText(Path("guard")), "guarded\n");
    EXPECT_FALSE(std::filesystem::exists(Path("policy").toStdString()));
}

TEST_F(InstallPackages, LeavesAPolicyThatIsThereAsItIs)
{
    WriteScript(Path("policy"), "exit 0\n");
    EXPECT_EQ(Install().status, 0);
    EXPECT_EQ(ReadText(Path("policy")), "#!/bin/sh\nexit 0\n");
}

TEST_F(InstallPackages, FetchesTheIndexFirstOnAMachineWithoutOne)
{
    std::filesystem::remove(Path("index/x_Packages").toStdString());
    EXPECT_EQ(Install().status, 0);
    ASSERT_EQ(Calls().size(), 2);
    EXPECT_TRUE(Calls().at(0).endsWith("update"));
    EXPECT_TRUE(Calls().at(1).endsWith("alpha beta gamma"));
}

TEST_F(InstallPackages, FetchesAStaleIndexAnewAndTriesAgain)
{
    mEnvironment.insert("REFUSE_ONCE", "1");
    EXPECT_EQ(Install().status, 0);
    ASSERT_EQ(Calls().size(), 3);
    EXPECT_TRUE(Calls().at(1).endsWith("update"));
    EXPECT_EQ(Calls().at(0), Calls().at(2));
}

TEST_F(InstallPackages, PrintsTheCommandWhereThereIsNeitherRootNorSudo)
{
    mEnvironment.insert("INSTALLED", "alpha");
    BeUser(1000);
    const ScriptResult result = Install();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains("apt-get install --no-install-recommends beta gamma"))
        << result.err.toStdString();
    EXPECT_EQ(Calls(), QStringList());
}

TEST_F(InstallPackages, GoesThroughSudoForAnOrdinaryUser)
{
    BeUser(1000);
    WriteScript(Path("bin/sudo"),
                "[ \"$1\" != -n ] || shift\n[ \"$1\" != true ] || exit 0\necho sudo >>'"
                    + Path("calls") + "'\nexec \"$@\"\n");
    EXPECT_EQ(Install().status, 0);
    const QStringList calls = Calls();
    EXPECT_EQ(calls.count("sudo"),
              4); // the policy written, made to run, the call, the policy removed
    EXPECT_EQ(calls.filter("install --no-install-recommends alpha beta gamma").size(), 1);
}

} // namespace

} // namespace quillane::test
