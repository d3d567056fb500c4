#include "core/save_support.h"
#include <linux/posix_acl_xattr.h>
#include <sys/xattr.h>

namespace quillane {

TEST(SaveAtomically, ExtendedAttributesStay)
{
    const SavePlace place;
    for (const char* name : {"a", "linked"}) {
        place.Write(name, "old");
        const QByteArray path = place.Bytes(name);
        const QByteArray large(2000, 'v');
        const bool taken = setxattr(path.constData(), "user.note", "kept", 4, 0) == 0
            && setxattr(path.constData(), "user.empty", "", 0, 0) == 0
            && setxattr(path.constData(), "user.large", large.constData(), size_t(large.size()), 0)
                == 0;
        if (!taken) {
            ASSERT_EQ(errno, ENOTSUP) << "the volume of temporary files takes attributes or not";
        }
        if (QByteArray(name) == "linked")
            place.HardLink(name, "second");
        SaveAtomically(place.Path(name), "new");
        EXPECT_EQ(place.Content(name), "new");
        if (!taken)
            continue;
        QByteArray value(4000, '\0');
        const ssize_t size =
            getxattr(path.constData(), "user.note", value.data(), size_t(value.size()));
        EXPECT_EQ(value.first(std::max<ssize_t>(size, 0)), "kept");
        EXPECT_EQ(getxattr(path.constData(), "user.empty", value.data(), 10), 0);
        EXPECT_EQ(getxattr(path.constData(), "user.large", value.data(), 4000), 2000);
        EXPECT_EQ(value.first(2000), large);
    }
}

namespace {

SaveOptions NamedDrafts()
{
    SaveOptions options;
    options.probe = [](SaveStep step, qint64&) {
        return step == SaveStep::OpenUnnamed ? EOPNOTSUPP : 0;
    };
    return options;
}

// The owner, one user more, the group, the mask, everybody.
QByteArray AccessList(quint16 ofOneUser)
{
    struct Entry {
        quint16 tag, permissions;
        quint32 id;
    };
    const Entry entries[] = {{0x01, 6, quint32(-1)},
                             {0x02, ofOneUser, 1234},
                             {0x04, 4, quint32(-1)},
                             {0x10, 6, quint32(-1)},
                             {0x20, 0, quint32(-1)}};
    const quint32 version = POSIX_ACL_XATTR_VERSION;
    return QByteArray(reinterpret_cast<const char*>(&version), sizeof version)
        + QByteArray(reinterpret_cast<const char*>(entries), sizeof entries);
}

QByteArray AccessListOf(const QByteArray& path)
{
    QByteArray value(1000, '\0');
    const ssize_t size = getxattr(path.constData(), "system.posix_acl_access", value.data(), 1000);
    return size < 0 ? QByteArray() : value.first(size);
}

} // namespace

TEST(SaveAtomically, TheAccessListIsTheFilesOwnAndNotThatOfTheFolder)
{
    const SavePlace place;
    const QByteArray list = AccessList(6);
    place.Write("a", "old");
    place.Write("b", "old");
    if (setxattr(place.Bytes("a").constData(), "system.posix_acl_access", list.constData(),
                 size_t(list.size()), 0)
        != 0) {
        ASSERT_EQ(errno, ENOTSUP) << "the volume of temporary files takes access lists or not";
        return;
    }
    const QByteArray inherited = AccessList(4);
    ASSERT_EQ(setxattr(place.Bytes().constData(), "system.posix_acl_default", inherited.constData(),
                       size_t(inherited.size()), 0),
              0);
    const quint32 modeOfB = StatPath(place.Path("b")).mode;
    for (const bool named : {false, true}) {
        const SaveOptions options = named ? NamedDrafts() : SaveOptions{};
        SaveAtomically(place.Path("a"), "new", options);
        SaveAtomically(place.Path("b"), "new", options);
        EXPECT_EQ(AccessListOf(place.Bytes("a")), list);
        EXPECT_TRUE(AccessListOf(place.Bytes("b")).isEmpty());
        EXPECT_EQ(StatPath(place.Path("b")).mode, modeOfB);
    }
    SaveAtomically(place.Path("c"), "new");
    EXPECT_FALSE(AccessListOf(place.Bytes("c")).isEmpty()) << "a new file takes the folder's";
}

TEST(SaveAtomically, OwnerGroupAndSetIdBitsStayWhereTheyMayBeSet)
{
    const SavePlace place;
    place.Write("a", "old");
    if (chown(place.Bytes("a").constData(), 1234, 2345) != 0) {
        ASSERT_EQ(errno, EPERM) << "only the superuser may give a file away";
    }
    place.Chmod("a", 06755);
    struct stat before {
    }, after{};
    ASSERT_EQ(stat(place.Bytes("a").constData(), &before), 0);
    SaveAtomically(place.Path("a"), "new");
    ASSERT_EQ(stat(place.Bytes("a").constData(), &after), 0);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
    EXPECT_EQ(after.st_mode, before.st_mode);
}

} // namespace quillane
