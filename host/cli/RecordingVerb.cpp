#include "explain/text/Escape.h"
#include "host/ExitCode.h"
#include "host/cli/Verbs.h"
#include "host/recording/Contents.h"
#include "host/recording/Export.h"
#include "host/recording/Progress.h"
#include "monitor/mcap/Finish.h"

#include <cstdio>

namespace Host {

namespace {

using Verdict = Monitor::Mcap::FileState::Verdict;

bool isReadable(Verdict verdict)
{
    return verdict == Verdict::Whole || verdict == Verdict::Cut;
}

int info(const Options& options)
{
    const Contents contents(options._names.front());
    std::fputs((options._format == Format::Json ? contents.json() : contents.text()).c_str(), stdout);
    return isReadable(contents.state()._verdict) ? Done : Failed;
}

int check(const Options& options)
{
    const Contents contents(options._names.front());
    const bool good = isReadable(contents.state()._verdict);
    std::fprintf(good ? stdout : stderr, "%s: %s; messages %llu\n", Explain::escaped(options._names.front()).c_str(),
                 contents.verdict().c_str(), static_cast<unsigned long long>(contents.messages()));
    return good ? Done : Failed;
}

int finish(const Options& options)
{
    const std::string& path = options._names.front();
    Progress progress("finishing");
    const auto before = Monitor::Mcap::finishFile(path, [&progress](std::uint64_t done, std::uint64_t all) {
        progress.show(done, all);
        return true;
    });
    const bool wasWhole = before._verdict == Verdict::Whole && before._indexed;
    std::printf("%s: %s\n", Explain::escaped(path).c_str(),
                wasWhole ? "was whole, nothing to finish" : "has its end now, and readers by index open it");
    return Done;
}
} // namespace

int recordingVerb(const Options& options)
{
    switch (options._action) {
    case Options::Action::Info:
        return info(options);
    case Options::Action::Check:
        return check(options);
    case Options::Action::Finish:
        return finish(options);
    case Options::Action::Export:
        return exportRecording(options);
    }
    return BadUsage; // not reached: an action is required
}
} // namespace Host
