#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/ask/Asking.h"

#include <cstdio>

namespace Host {

int graphVerb(const Options& options)
{
    return askHost(options, [&options](HostClient& host) {
        const char* const form = options._graph == Format::Json  ? "json"
                                 : options._graph == Format::Dot ? "dot"
                                                                 : "text";
        const std::string graph = host.ask({"/graph" + queryText({{"form", form}})});
        std::fputs(graph.c_str(), stdout);
        return Done;
    });
}
} // namespace Host
