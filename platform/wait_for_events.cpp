#include "platform/wait_for_events.h"

#include <QEventLoop>

namespace quillane {

void WaitForThreadEvents(int ms)
{
    QEventLoop loop;
    const int timer = loop.startTimer(ms);
    loop.processEvents(QEventLoop::WaitForMoreEvents);
    loop.killTimer(timer);
}

} // namespace quillane
