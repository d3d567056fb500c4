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
                       const QString& workingFolder)
{
    FailIfAsked(fails);
    started.append({program, arguments, workingFolder});
}

void FakeLauncher::Note(QStringList& list, const QString& text)
{
    FailIfAsked(fails);
    list.append(text);
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
