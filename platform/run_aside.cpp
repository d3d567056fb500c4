#include "platform/run_aside.h"

#include <QCoreApplication>
#include <QThread>
#include <atomic>
#include <exception>
#include <memory>

namespace quillane {

namespace {

constexpr int kAsideWait = 20; // milliseconds between two looks; an event ends a wait sooner

} // namespace

void RunAside(UiLoop& loop, const std::function<void()>& work)
{
    std::atomic<bool> done = false;
    std::exception_ptr trouble;
    QObject* const waker = QCoreApplication::instance();
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        try {
            work();
        } catch (...) {
            trouble = std::current_exception();
        }
        done = true;
        // An empty event ends the wait at once.
        QMetaObject::invokeMethod(
            waker, [] {}, Qt::QueuedConnection);
    }));
    thread->start();
    // Once at least: what was asked for before the work is handled however soon that is done.
    do {
        loop.WaitForEvents(kAsideWait);
    } while (!done);
    thread->wait();
    if (trouble) {
        std::rethrow_exception(trouble);
    }
}

} // namespace quillane
