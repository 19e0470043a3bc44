#include "nodes/dds/DdsLog.h"

#include "base/Mutex.h"
#include "nodes/shared/Report.h"
#include <dds/dds.h>
#include <dds/ddsrt/log.h>

namespace Trovio::Nodes {

namespace {

thread_local DdsLog::Listening* listening = nullptr;
constexpr double reportPeriod = 1.0; // seconds; peers can cause messages at will

struct Reports {
    Ostrel::Mutex _lock;
    Seldom _seldom OSTREL_GUARDED_BY(_lock){Clock::system(), reportPeriod};

    static std::optional<std::uint64_t> admit()
    {
        static Reports& reports = *new Reports; // for the library's threads outlive static objects
        const Ostrel::LockGuard guard(reports._lock);
        return reports._seldom.admit();
    }
};

std::string textOf(const dds_log_data_t& data)
{
    std::string text(data.message, data.size);
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
        text.pop_back();
    return text;
}

void write(void*, const dds_log_data_t* data)
{
    const bool isTrouble = (data->priority & (DDS_LC_FATAL | DDS_LC_ERROR | DDS_LC_WARNING)) != 0;
    if (listening)
        listening->add(textOf(*data));
    else if (!isTrouble)
        report(osg::LogInfo, "DDS: " + textOf(*data));
    else if (const auto withheld = Reports::admit())
        report(osg::LogWarning,
               "DDS: " + textOf(*data) + (*withheld ? " (and " + std::to_string(*withheld) + " more before it)" : ""));
}

} // namespace

void DdsLog::takeOver()
{
    dds_set_log_sink(write, nullptr);
}

DdsLog::Listening::Listening() : _outer(listening)
{
    listening = this;
}

DdsLog::Listening::~Listening()
{
    listening = _outer;
}

} // namespace Trovio::Nodes
