#include "Scenarios.h"
#include "base/Sanitizers.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>
#include <unordered_set>
#if defined(OSTREL_ADDRESS_SANITIZER)
#include <sanitizer/common_interface_defs.h>
#endif

namespace Explorer {

namespace {

struct Options {
    std::string _scenario; // empty: all
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
#if defined(OSTREL_ADDRESS_SANITIZER)
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

/// Those of all files, or the one of that name.
std::vector<Scenario> scenariosOf(const std::string& name)
{
    std::vector<Scenario> found;
    for (const auto scenarios : {slotScenarios(), wiringScenarios(), poolScenarios()})
        std::ranges::copy_if(scenarios, std::back_inserter(found),
                             [&name](const Scenario& scenario) { return name.empty() || name == scenario._name; });
    return found;
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
    using namespace Explorer;
    catchCrashes();
    Options options;
    CLI::App app("Runs small scenarios of slots in orders that chance draws.", "explorer");
    std::vector<std::string> names;
    std::string list = "Scenarios:";
    for (const Scenario& scenario : scenariosOf("")) {
        names.emplace_back(scenario._name);
        list += "\n  " + names.back() + ": " + scenario._meaning;
    }
    app.footer(list);
    app.add_option("--scenario", options._scenario, "one of them; otherwise all")->check(CLI::IsMember(names));
    app.add_option("--seed", options._seed, "of the first schedule");
    app.add_option("--schedules", options._schedules, "how many of each scenario")->check(CLI::PositiveNumber);
    app.add_flag("--trace", options._tracing, "print every step");
    CLI11_PARSE(app, count, arguments);
    for (const Scenario& scenario : scenariosOf(options._scenario))
        explore(scenario, options);
}
