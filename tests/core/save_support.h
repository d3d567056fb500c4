#pragma once
// What the tests of saving share: a journal folder of their own, the kinds of places a save meets,
// contents that tell whether they are whole.
#include "core/atomic_save.h"
#include "core/save_journal.h"
#include "core/temp_folder.h"
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quillane {

/// Where thousands of saves need not wait for a disk: in memory if there is such a place.
inline QByteArray QuickFolder()
{
    return access("/dev/shm", W_OK | X_OK) == 0 ? "/dev/shm" : QDir::tempPath().toUtf8();
}

/// A folder for what is saved, and the only journal folder while this lives.
class SavePlace : public TempFolder {
public:
    explicit SavePlace(const QByteArray& in = QDir::tempPath().toUtf8())
        : TempFolder(in),
          mState(in)
    {
        mBefore = qgetenv("XDG_STATE_HOME");
        qputenv("XDG_STATE_HOME", mState.Bytes("state"));
    }
    ~SavePlace() { qputenv("XDG_STATE_HOME", mBefore); }

    QByteArray JournalFolder() const { return SaveJournalFolders().constFirst(); }
    /// Names of the journals that stand.
    QStringList Journals() const
    {
        QStringList names;
        if (StatPath(PathFromBytes(JournalFolder())).type != FileType::Folder)
            return names;
        ListFolder(PathFromBytes(JournalFolder()), [&](DirEntry&& entry) {
            names.append(entry.name);
            return true;
        });
        return names;
    }
    void HardLink(const QByteArray& name, const QByteArray& second) const
    {
        ASSERT_EQ(link(Bytes(name).constData(), Bytes(second).constData()), 0);
    }
    nlink_t LinkCount(const QByteArray& name) const
    {
        struct stat now { };
        EXPECT_EQ(stat(Bytes(name).constData(), &now), 0);
        return now.st_nlink;
    }
    QByteArray Whole(const QByteArray& name) const { return ReadWholeFile(Path(name), 1 << 24); }

private:
    TempFolder mState;
    QByteArray mBefore;
};

/// Ways in which a save meets its target.
enum class SaveRoad { Replace, ReplaceNamed, Create, CreateNamed, HardLinks, KeepPrevious };
inline constexpr SaveRoad kSaveRoads[] = {SaveRoad::Replace,   SaveRoad::ReplaceNamed,
                                          SaveRoad::Create,    SaveRoad::CreateNamed,
                                          SaveRoad::HardLinks, SaveRoad::KeepPrevious};

/// Prepares the file "a" (content `old`) and what belongs to the road.
inline void PrepareRoad(const SavePlace& place, SaveRoad road, const QByteArray& old)
{
    if (road == SaveRoad::Create || road == SaveRoad::CreateNamed)
        return;
    place.Write("a", old);
    if (road == SaveRoad::HardLinks)
        place.HardLink("a", "second");
    if (road == SaveRoad::KeepPrevious)
        place.Write("a~", "older");
}

/// Names that may stand in the folder besides the target, before and after a save.
inline QStringList NamesOfRoad(SaveRoad road)
{
    if (road == SaveRoad::HardLinks)
        return {"a", "second"};
    if (road == SaveRoad::KeepPrevious)
        return {"a", "a~"};
    return {"a"};
}

/// Saves "a" on a road; probe is asked behind what the road needs.
inline void SaveOnRoad(const SavePlace& place, SaveRoad road, const QByteArray& content,
                       const SaveProbe& probe = {})
{
    const bool named = road == SaveRoad::ReplaceNamed || road == SaveRoad::CreateNamed;
    SaveOptions options;
    if (road == SaveRoad::KeepPrevious)
        options.keepPreviousAs = place.Path("a~");
    options.probe = [&](SaveStep step, qint64& bytes) {
        if (named && step == SaveStep::OpenUnnamed)
            return EOPNOTSUPP;
        return probe ? probe(step, bytes) : 0;
    };
    SaveAtomically(place.Path("a"), content, options);
}

} // namespace quillane
