#include "Scenarios.h"

#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <unistd.h>
#include <unordered_set>
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

namespace Explorer {

namespace {

struct Options {
    std::string_view _scenario; // empty: all
    std::uint64_t _seed = 1;
    std::uint64_t _schedules = 20'000;
    bool _tracing = false;
};

const char* runningScenario = "";
std::uint64_t runningSeed = 0;

// Also where nothing but a write can be relied on.
void say(const char* format, const char* text, unsigned long long number)
{
    char line[256];
    const int length = std::snprintf(line, sizeof(line), format, text, number);
    if (write(STDERR_FILENO, line, static_cast<std::size_t>(length)) < 0)
        std::_Exit(1);
}

void sayHowToReplay()
{
    say("Replay: explorer --scenario %s --seed %llu --schedules 1 --trace\n", runningScenario, runningSeed);
}

void catchCrashes()
{
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_set_death_callback(sayHowToReplay);
#else
    for (const int signal : {SIGSEGV, SIGBUS, SIGABRT})
        std::signal(signal, [](int number) {
            say("FAILED %s: crashed with signal %llu\n", runningScenario, static_cast<unsigned>(number));
            sayHowToReplay();
            std::_Exit(1);
        });
#endif
}

/// How many steps a run of the scenario has, and which run it was.
std::pair<unsigned, std::uint64_t> runOnce(const Scenario& scenario, std::uint64_t seed, unsigned length, bool tracing)
{
    runningSeed = seed;
    Scheduler scheduler(seed, length, tracing);
    scenario._run(scheduler);
    return {scheduler.steps(), scheduler.fingerprint()};
}

void explore(const Scenario& scenario, const Options& options)
{
    runningScenario = scenario._name;
    const unsigned length = runOnce(scenario, 0, 0, false).first * 3 / 2; // others are longer
    std::unordered_set<std::uint64_t> different;
    for (std::uint64_t i = 0; i < options._schedules; ++i)
        different.insert(runOnce(scenario, options._seed + i, length, options._tracing).second);
    std::printf("%s: %llu schedules of up to about %u steps, %zu of them different, from seed %llu\n", scenario._name,
                static_cast<unsigned long long>(options._schedules), length, different.size(),
                static_cast<unsigned long long>(options._seed));
    std::fflush(stdout);
}

bool readNumber(std::string_view text, std::uint64_t& number)
{
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    return problem == std::errc() && end == text.data() + text.size();
}

/// False for arguments that it does not understand.
bool parse(int count, char** arguments, Options& options)
{
    for (int i = 1; i < count; ++i) {
        const std::string_view name = arguments[i];
        if (name == "--trace") {
            options._tracing = true;
            continue;
        }
        if (++i == count)
            return false;
        if (name == "--scenario")
            options._scenario = arguments[i];
        else if ((name != "--seed" || !readNumber(arguments[i], options._seed)) &&
                 (name != "--schedules" || !readNumber(arguments[i], options._schedules) || options._schedules == 0))
            return false;
    }
    return true;
}

/// How many scenarios there were to run.
int exploreAll(const Options& options)
{
    int explored = 0;
    for (const auto scenarios : {slotScenarios(), wiringScenarios(), poolScenarios()})
        for (const Scenario& scenario : scenarios)
            if (options._scenario.empty() || options._scenario == scenario._name) {
                explore(scenario, options);
                ++explored;
            }
    return explored;
}

void sayUsage()
{
    std::fputs("usage: explorer [--scenario NAME] [--seed N] [--schedules N] [--trace]\nScenarios:\n", stderr);
    for (const auto scenarios : {slotScenarios(), wiringScenarios(), poolScenarios()})
        for (const Scenario& scenario : scenarios)
            std::fprintf(stderr, "  %-32s%s\n", scenario._name, scenario._meaning);
}

} // namespace

void fail(const std::string& what)
{
    std::fflush(stdout);
    std::fprintf(stderr, "FAILED %s: %s\n", runningScenario, what.c_str());
    sayHowToReplay();
    std::_Exit(1);
}

} // namespace Explorer

int main(int count, char** arguments)
{
    Explorer::catchCrashes();
    Explorer::Options options;
    if (Explorer::parse(count, arguments, options) && Explorer::exploreAll(options) != 0)
        return 0;
    Explorer::sayUsage();
    return 2;
}
