// Saves whose file, folder or name has become something else since the picture was loaded.
#include "core/unprivileged.h"
#include "imaging/saving/loaded_file.h"
#include "save_fault_support.h"
#include <cstdio>
#include <functional>

namespace quillane {
namespace {

class SaveChangeEach : public testing::TestWithParam<FaultKind> { };

/// Sets the time of change back or forth.
void SetModified(const QByteArray& path, qint64 seconds)
{
    const timespec times[2] = {{0, UTIME_OMIT}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.constData(), times, 0), 0);
}

/// What somebody else does to the file "name"; the answer is what stands there then.
struct Meddling {
    const char* what;
    std::function<void(const FaultPlace& place)> meddle;
    qint32 failure;
};

void ReplaceByRename(const FaultPlace& place, const QByteArray& content)
{
    place.Write("other", content);
    ASSERT_EQ(std::rename(place.Bytes("other").constData(), place.Bytes(place.Name()).constData()),
              0);
}

const std::vector<Meddling>& Meddlings()
{
    static const std::vector<Meddling> kAll = {
        {"touched", [](const FaultPlace& p) { SetModified(p.Bytes(p.Name()), 1'000'000'000); },
         kFailureIo},
        {"longer", [](const FaultPlace& p) { p.Write(p.Name(), p.FileBytes() + "more"); },
         kFailureIo},
        {"cut", [](const FaultPlace& p) { p.Write(p.Name(), p.FileBytes().left(100)); },
         kFailureIo},
        {"emptied", [](const FaultPlace& p) { p.Write(p.Name(), {}); }, kFailureIo},
        {"of the same length",
         [](const FaultPlace& p) {
             p.Write(p.Name(), QByteArray(p.FileBytes().size(), 'x'));
             SetModified(p.Bytes(p.Name()), 1'000'000'001); // clocks of disks tick slowly
         },
         kFailureIo},
        {"replaced", [](const FaultPlace& p) { ReplaceByRename(p, "somebody else's"); },
         kFailureIo},
        {"replaced by its like, of the same time",
         [](const FaultPlace& p) {
             const FileStat before = StatPath(p.File());
             ReplaceByRename(p, p.FileBytes());
             const timespec times[2] = {{0, UTIME_OMIT},
                                        {before.modifiedSeconds, before.modifiedNanos}};
             ASSERT_EQ(utimensat(AT_FDCWD, p.Bytes(p.Name()).constData(), times, 0), 0);
         },
         kFailureIo},
    };
    return kAll;
}

TEST_P(SaveChangeEach, WhatSomebodyElseMadeOfTheFileStays)
{
    const FaultKind& kind = GetParam();
    for (const Meddling& meddling : Meddlings()) {
        SCOPED_TRACE(meddling.what);
        const FaultPlace place(kind);
        ChangedPicture picture(kind, place.File());
        const QSize shape = picture.lead.Bitmap().Pixels().size();
        meddling.meddle(place);
        const QByteArray theirs = place.FileBytes();
        const FileStat before = StatPath(place.File());
        QString words;
        EXPECT_EQ(picture.Save(words), meddling.failure);
        EXPECT_EQ(words,
                  QStringLiteral("\"%1\" has been changed by another program since it was "
                                 "loaded. Load it again, or save under another name.")
                      .arg(QString::fromUtf8(place.Name())));
        ExpectHelpful(words, place.Name());
        EXPECT_EQ(place.FileBytes(), theirs);
        EXPECT_TRUE(SameFileState(StatPath(place.File()), before));
        ExpectAlone(place, {QString::fromUtf8(place.Name())});
        if (QByteArray(meddling.what).startsWith("replaced")) {
            // What was loaded is still there to be carried over: under another name it is saved.
            EXPECT_EQ(picture.Save(words, place.Path("mine")), 0) << words.toStdString();
            ExpectSaved(kind, place.Path("mine"), shape);
        }
    }
}

TEST_P(SaveChangeEach, AFileThatChangesWhileItsSaveIsOnTheWayStays)
{
    const FaultKind& kind = GetParam();
    for (const Meddling& meddling : Meddlings()) {
        SCOPED_TRACE(meddling.what);
        const FaultPlace place(kind);
        ChangedPicture picture(kind, place.File());
        QByteArray theirs;
        QString words;
        {
            const SaveProbeScope scope([&](SaveStep step, qint64&) {
                if (step == SaveStep::Write && theirs.isNull()) {
                    meddling.meddle(place);
                    theirs = place.FileBytes();
                    theirs.detach();
                }
                return 0;
            });
            EXPECT_NE(picture.Save(words), 0);
        }
        ExpectHelpful(words, place.Name());
        EXPECT_TRUE(words.contains(QStringLiteral("has been changed by another program")))
            << words.toStdString();
        EXPECT_EQ(place.FileBytes(), theirs);
        ExpectAlone(place, {QString::fromUtf8(place.Name())});
    }
}

TEST_P(SaveChangeEach, AFileThatVanishedIsMadeAnewWithAllThatItHeld)
{
    const FaultKind& kind = GetParam();
    const FaultPlace place(kind);
    ChangedPicture picture(kind, place.File());
    const QSize shape = picture.lead.Bitmap().Pixels().size();
    const CommentSet before = ReadComments(place.File());
    ASSERT_TRUE(RemoveFile(place.File()));
    QString words;
    EXPECT_EQ(picture.Save(words), 0) << words.toStdString();
    ExpectSaved(kind, place.File(), shape);
    CommentSet after = ReadComments(place.File());
    after.Set(kDescriptionSlot, before.At(kDescriptionSlot));
    EXPECT_EQ(after, before);
    ExpectAlone(place, {QString::fromUtf8(place.Name())});
}

TEST_P(SaveChangeEach, AFileThatVanishesWhileItsSaveIsOnTheWayIsNotMadeAnewBehindItsOwnersBack)
{
    const FaultKind& kind = GetParam();
    const FaultPlace place(kind);
    ChangedPicture picture(kind, place.File());
    const SaveProbeScope scope([&](SaveStep step, qint64&) {
        if (step == SaveStep::Write) {
            RemoveFile(place.File());
        }
        return 0;
    });
    QString words;
    EXPECT_EQ(picture.Save(words), kFailureNoFile);
    EXPECT_EQ(words,
              QStringLiteral("\"%1\" is no longer where it was opened. Nothing was "
                             "written; save it under a name of its own.")
                  .arg(QString::fromUtf8(place.Name())));
    ExpectAlone(place, {});
}

TEST_P(SaveChangeEach, AFolderThatIsGoneOrTakesNothingIsTold)
{
    const FaultKind& kind = GetParam();
    const FaultPlace place(kind);
    place.MakeFolder("shut");
    const QByteArray inside = QByteArray("shut/") + place.Name();
    place.Write(inside, place.FileBytes());
    ChangedPicture picture(kind, place.Path(inside));
    const QByteArray old = place.Whole(inside);
    QString words;
    {
        place.Chmod("shut", 0555);
        const Unprivileged unprivileged; // root passes every permission
        EXPECT_EQ(picture.Save(words), kFailureDenied);
        EXPECT_EQ(words,
                  QStringLiteral("Cannot write \"%1\": you have no permission. Save it in "
                                 "another folder, or change the permissions.")
                      .arg(QString::fromUtf8(place.Name())));
        ExpectHelpful(words, place.Name());
        EXPECT_EQ(place.Whole(inside), old);
        EXPECT_EQ(picture.Save(words, place.Path("shut/new")), kFailureDenied);
        ExpectHelpful(words, "new");
    }
    place.Chmod("shut", 0755);
    {
        place.Chmod(inside, 0444);
        const Unprivileged unprivileged;
        EXPECT_EQ(picture.Save(words), kFailureDenied) << "a file that is only read";
        ExpectHelpful(words, place.Name());
        EXPECT_EQ(place.Whole(inside), old);
    }
    EXPECT_TRUE(RemoveFile(place.Path(inside)));
    EXPECT_EQ(rmdir(place.Bytes("shut").constData()), 0) << "nothing else was left in it";
    EXPECT_EQ(picture.Save(words), kFailureNoFile);
    EXPECT_EQ(words,
              QStringLiteral("Cannot write \"%1\": it is not there. Save it in a folder "
                             "that is there.")
                  .arg(QString::fromUtf8(place.Name())));
}

TEST_P(SaveChangeEach, WhatIsNoFileAnyMoreIsNotReplaced)
{
    const FaultKind& kind = GetParam();
    const FaultPlace place(kind);
    const QByteArray path = place.Bytes(place.Name());
    ChangedPicture picture(kind, place.File());
    QString words;
    ASSERT_TRUE(RemoveFile(place.File()));
    place.MakeFolder(place.Name());
    EXPECT_NE(picture.Save(words), 0);
    ExpectHelpful(words, place.Name());
    EXPECT_EQ(StatPath(place.File()).type, FileType::Folder);
    ASSERT_EQ(rmdir(path.constData()), 0);

    ASSERT_EQ(mkfifo(path.constData(), 0644), 0);
    EXPECT_NE(picture.Save(words), 0);
    ExpectHelpful(words, place.Name());
    EXPECT_NE(StatPath(place.File()).type, FileType::Regular);
    ASSERT_EQ(unlink(path.constData()), 0);

    // A link to another file of the same content: that one was not loaded.
    place.Write("theirs", "somebody else's");
    place.Link("theirs", place.Name());
    EXPECT_NE(picture.Save(words), 0);
    ExpectHelpful(words, place.Name());
    EXPECT_EQ(place.Whole("theirs"), "somebody else's");
    ExpectAlone(place, {QString::fromUtf8(place.Name()), QStringLiteral("theirs")});
}

TEST_P(SaveChangeEach, BehindALinkTheFileItselfIsSavedAndTheLinkStays)
{
    const FaultKind& kind = GetParam();
    const FaultPlace place(kind);
    place.MakeFolder("real");
    const QByteArray real = QByteArray("real/") + place.Name();
    ASSERT_EQ(std::rename(place.Bytes(place.Name()).constData(), place.Bytes(real).constData()), 0);
    place.Link(real, place.Name());
    ChangedPicture picture(kind, place.File());
    const QSize shape = picture.lead.Bitmap().Pixels().size();
    QString words;
    EXPECT_EQ(picture.Save(words), 0) << words.toStdString();
    ExpectSaved(kind, place.Path(real), shape);
    struct stat link { };
    ASSERT_EQ(lstat(place.Bytes(place.Name()).constData(), &link), 0);
    EXPECT_TRUE(S_ISLNK(link.st_mode));
    ExpectAlone(place, {QString::fromUtf8(place.Name()), QStringLiteral("real")});
}

TEST_P(SaveChangeEach, AFileThatComesWhileACreatingSaveIsOnTheWayStays)
{
    const FaultKind& kind = GetParam();
    const FaultPlace place(kind);
    ChangedPicture picture(kind, place.File());
    const SaveProbeScope scope([&](SaveStep step, qint64&) {
        if (step == SaveStep::Link || step == SaveStep::Rename) {
            place.Write("new", "somebody else's");
        }
        return 0;
    });
    QString words;
    EXPECT_EQ(picture.Save(words, place.Path("new"), kSaveCreate), kFailureGeneral);
    EXPECT_EQ(words,
              QStringLiteral("There is a file or folder named \"new\" already. Choose "
                             "another name."));
    EXPECT_EQ(place.Whole("new"), "somebody else's");
    ExpectAlone(place, {QString::fromUtf8(place.Name()), QStringLiteral("new")});
}

std::string ChangeKindName(const testing::TestParamInfo<FaultKind>& info)
{
    std::string name = info.param.sample;
    std::erase_if(name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
    return name;
}
INSTANTIATE_TEST_SUITE_P(Kinds, SaveChangeEach, testing::ValuesIn(kFaultKinds), ChangeKindName);

} // namespace
} // namespace quillane
