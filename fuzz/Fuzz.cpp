#include "fuzz/Fuzz.h"

#include "osg/Log.h"
#include "trovio/Root.h"
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace Fuzz {

void require(bool holds, const char* promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

std::string_view takeLine(std::string_view& input)
{
    const std::string_view line = input.substr(0, input.find('\n'));
    input.remove_prefix(std::min(line.size() + 1, input.size()));
    return line;
}

bool isPrintable(std::string_view message)
{
    const auto isControl = [](char before, char character) {
        const auto code = static_cast<unsigned char>(character);
        return (code < ' ' && character != '\n') || code == 0x7F || (before == '\xC2' && code >= 0x80 && code < 0xA0);
    };
    // The first character by itself, then each with the one before it.
    return !message.empty() && !isControl('\0', message.front()) &&
           std::adjacent_find(message.begin(), message.end(), isControl) == message.end();
}

} // namespace Fuzz

/// Messages are formatted, of every level, but not written.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    osg::osgLogP->setLogLevel(osg::LogDebug);
    osg::osgLogP->setHook([](const osg::LogRecord&) { return false; });
    Trovio::Root::init();
    std::atexit(Trovio::Root::shutdown);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    Fuzz::runOnce({reinterpret_cast<const char*>(bytes), size});
    return 0;
}
