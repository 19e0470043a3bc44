#include "monitor/server/Guarded.h"

#include "explain/text/Failure.h"
#include "osg/Log.h"
#include "osg/LogMessage.h"

namespace Monitor {
namespace {

// Where there is no memory for a longer text, either, a short one is written, which needs none.
void note(const char* what, const char* problem) noexcept
{
    const auto log = [](const std::string& text) {
        osg::logText(osg::LogWarning, "Monitor", "monitor", text, osg::SourcePlace::current());
    };
    try {
        log(std::string(what) + " failed: " + problem + "; what it was to do is given up, and the rest goes on");
    } catch (const std::bad_alloc&) {
        log("out of memory");
    }
}
} // namespace

bool guarded(const char* what, const std::function<void()>& work) noexcept
{
    try {
        if (const auto failure = Explain::failureOf(work))
            note(what, failure->c_str());
        else
            return true;
    } catch (const std::bad_alloc&) {
        note(what, "out of memory");
    }
    return false;
}
} // namespace Monitor
