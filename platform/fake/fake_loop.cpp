#include "platform/fake/fake_loop.h"

#include <QCoreApplication>
#include <QEventLoop>

namespace quillane {

bool FakeLoop::Yield(Generation generation)
{
    ++mYields;
    if (mOnYield) {
        mOnYield();
    }
    return generation == mNewest;
}

void FakeLoop::ProcessEvents()
{
    QCoreApplication::processEvents();
}

void FakeLoop::WaitForEvents(int ms)
{
    QCoreApplication::processEvents(QEventLoop::AllEvents, ms);
}

void FakeLoop::BeginHourglass()
{
    ++mHourglass;
    ++mHourglassBegins;
}

QString FakeLoop::SystemDateText(const QDateTime& when) const
{
    return when.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

} // namespace quillane
