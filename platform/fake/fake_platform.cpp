#include "platform/fake/fake_platform.h"

namespace quillane {

namespace {

void FailIfAsked(bool fails)
{
    if (fails) {
        throw Failure(kFailureGeneral, QStringLiteral("Nothing opens this."));
    }
}

} // namespace

void FakeLauncher::Run(const QString& program, const QStringList& arguments,
                       const QString& workingFolder, RunFailed failed)
{
    FailIfAsked(fails);
    started.append({program, arguments, workingFolder, std::move(failed)});
}

void FakeLauncher::Note(QStringList& list, const QString& text)
{
    FailIfAsked(fails);
    list.append(text);
}

void FakeWallpaper::Set(const QString& path, ServiceEnded whenEnded)
{
    set.append(path);
    FailIfAsked(refuses);
    ended.append(std::move(whenEnded));
}

void FakeMail::Compose(const QStringList& attachments, ServiceEnded whenEnded)
{
    composed.append(attachments);
    ended.append(std::move(whenEnded));
}

void FakeWatch::Watch(const QString& path)
{
    folder = path;
    ++watchings;
}

void FakeWatch::Fire() const
{
    if (mChanged) {
        mChanged();
    }
}

} // namespace quillane
