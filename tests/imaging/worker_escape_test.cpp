// A process that was taken over tries to get out, whatever it was asked for.
#include "worker_support.h"
#include <cstring>
#include <functional>
#include <map>

namespace quillane::test {

namespace {

const QString kEscapingWorker =
    QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-escaping-codec");
constexpr const char* kEscapeFile = "/tmp/quillane-escape";

struct EscapeRow {
    const char* name; ///< of the attempt
    bool deadly;      ///< ends the process; else it is refused
};
constexpr EscapeRow kEscapes[] = {
    {"open", false},
    {"open2", false},
    {"create", false},
    {"memory file", false},
    {"folder", false},
    {"remove", false},
    {"rename", false},
    {"link", false},
    {"symlink", false},
    {"readlink", false},
    {"look", false},
    {"access", false},
    {"list", false},
    {"mode", false},
    {"go elsewhere", false},
    {"watch", false},
    {"its bytes", false},
    {"its mode", false},
    {"its owner", false},
    {"its size", false},
    {"its times", false},
    {"its attributes", false},
    {"its room", false},
    {"its flags", false},
    {"its name", false},
    {"copy", false},
    {"duplicate", false},
    {"device", false},
    {"socket", true},
    {"local socket", true},
    {"pair", false},
    {"bind", true},
    {"listen", true},
    {"accept", false},
    {"execute", true},
    {"execute file", true},
    {"fork", true},
    {"fork anew", true},
    {"trace", true},
    {"be traced", true},
    {"read memory", true},
    {"write memory", true},
    {"handle", false},
    {"signal", false},
    {"thread signal", false},
    {"limits of others", false},
    {"shared memory", false},
    {"message queue", false},
    {"own limits", false},
    {"filter", false},
    {"control", false},
    {"become root", false},
    {"new world", false},
    {"other root", false},
    {"mount", true},
    {"ring", false},
    {"kernel program", true},
    {"measure", false},
    {"faults", false},
    {"keys", false},
    {"make executable", false},
    {"executable memory", false},
};
/// System calls by the gates of other processors' programs; these end the process everywhere.
constexpr const char* kForeignGates[] = {"old gate", "other width"};

class WorkerEscape : public WorkerTest {
protected:
    WorkerEscape() : WorkerTest(kEscapingWorker, 1) { }

    /// What came of an attempt for every user of the process.
    std::map<std::string, QString> Outcomes(const char* attempt)
    {
        const QString path = Write(QStringLiteral("picture"), "its content");
        const Bitmap picture(QImage(3, 3, QImage::Format_RGB32), ColourModel::Rgb, 24);
        const CommentChange change{3, QStringLiteral("text")};
        std::map<std::string, QString> outcomes;
        const auto ask = [&](const char* user, const std::function<QString()>& call) {
            QString& outcome = outcomes[user];
            const Failure failure = FailureOf([&] { outcome = call(); });
            if (failure.Number() == kFailureWorker
                && failure.Description().contains(QStringLiteral("stopped working"))) {
                outcome = QStringLiteral("killed");
            } else if (failure.Number() != 0) {
                outcome = failure.Description();
            }
        };
        ask("facts", [&] { return Probe(path, attempt).compression; });
        ask("pixels", [&] {
            const QImage image = Decode(path, attempt).Pixels();
            return QString::fromLatin1(reinterpret_cast<const char*>(image.constScanLine(0)),
                                       image.width());
        });
        ask("comments", [&] { return Comments(path, attempt).At(3).Text(); });
        ask("encoding", [&] { return QString::fromLatin1(worker::Encode(picture, {}, attempt)); });
        for (const bool pixels : {true, false}) {
            ask(pixels ? "new pixels" : "new comments", [&] {
                FileSource original(path);
                return QString::fromLatin1(worker::Rewrite(original, pixels ? picture : Bitmap(),
                                                           {}, {&change, 1}, attempt));
            });
        }
        EXPECT_EQ(ReadWholeFile(path, 100), QByteArray("its content"));
        EXPECT_EQ(StatPath(path).mode & 0777, mMode);
        return outcomes;
    }
    void SetUp() override
    {
        mMode = StatPath(Write(QStringLiteral("picture"), "its content")).mode & 0777;
        RemoveFile(QString::fromLatin1(kEscapeFile));
    }
    void TearDown() override
    {
        EXPECT_EQ(StatPath(QString::fromLatin1(kEscapeFile)).type, FileType::Missing);
    }
    quint32 mMode = 0;
};

#ifdef QUILLANE_SANITIZED
constexpr bool kDeadlyKills = false; // a sanitizer's report starts helpers of its own
#else
constexpr bool kDeadlyKills = true;
#endif

} // namespace

TEST_F(WorkerEscape, EveryAttemptOfEveryUserIsStopped)
{
    for (const EscapeRow& row : kEscapes) {
#ifdef QUILLANE_SANITIZED
        if (std::strcmp(row.name, "readlink") == 0) {
            continue; // what a sanitizer's report needs
        }
#endif
        for (const auto& [user, outcome] : Outcomes(row.name)) {
            EXPECT_EQ(outcome,
                      row.deadly && kDeadlyKills ? QStringLiteral("killed")
                                                 : QStringLiteral("refused"))
                << row.name << " by " << user;
        }
    }
}

TEST_F(WorkerEscape, GatesOfOtherProcessorsEndTheProcess)
{
    for (const char* gate : kForeignGates) {
        for (const auto& [user, outcome] : Outcomes(gate)) {
            EXPECT_EQ(outcome, QStringLiteral("killed")) << gate << " by " << user;
        }
    }
}

} // namespace quillane::test
