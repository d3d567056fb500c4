#include "platform/fake/fake_loop.h"

#include "platform/wait_for_events.h"

#include <QCoreApplication>

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
    ++mWaits;
    WaitForThreadEvents(ms);
}

bool FakeLoop::PollEsc()
{
    ++mPolls;
    return mEscPolls.contains(mPolls) || (mEscHeldFrom > 0 && mPolls >= mEscHeldFrom);
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
