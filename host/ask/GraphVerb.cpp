#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/ask/Asking.h"
#include "host/ask/LineOutput.h"

namespace Host {

int graphVerb(const Options& options)
{
    return askHost(options, [&options](HostClient& host) {
        const char* const form = options._graph == Format::Json  ? "json"
                                 : options._graph == Format::Dot ? "dot"
                                                                 : "text";
        LineOutput().write(host.ask({"/graph" + queryText({{"form", form}})}));
        return Done;
    });
}
} // namespace Host
