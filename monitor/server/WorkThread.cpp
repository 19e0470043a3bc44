#include "monitor/server/WorkThread.h"

#include "base/QuietThread.h"
#include "monitor/server/Guarded.h"

namespace Monitor {

void WorkThread::end()
{
    std::thread thread;
    std::deque<Work> forgotten;
    {
        const Ostrel::LockGuard guard(_lock);
        _isOver = true;
        thread = std::move(_thread);
        forgotten.swap(_waiting);
    }
    _news.notify_all();
    if (thread.joinable())
        thread.join();
}

bool WorkThread::add(Work work)
{
    const Ostrel::LockGuard guard(_lock);
    if (_isOver || _waiting.size() >= MaxWaiting)
        return false;
    if (!_thread.joinable())
        _thread = Ostrel::quietThread(_name, [this] { run(); });
    _waiting.push_back(std::move(work));
    _news.notify_all();
    return true;
}

bool WorkThread::takeNext(Work& next)
{
    const Ostrel::LockGuard guard(_lock);
    while (_waiting.empty() && !_isOver)
        _news.wait(_lock);
    if (_isOver)
        return false;
    next = std::move(_waiting.front());
    _waiting.pop_front();
    return true;
}

void WorkThread::run()
{
    for (Work next; takeNext(next); next = nullptr)
        guarded(_name, next);
}
} // namespace Monitor
