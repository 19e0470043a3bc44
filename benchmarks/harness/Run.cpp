#include "benchmarks/harness/Result.h"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <semaphore>
#include <string_view>
#include <thread>

namespace Bench {

namespace {

struct Arguments {
    int _repetitions = 9;
    std::string _json;
    std::string _markdown;
    std::vector<std::string_view> _names;
};

Arguments parse(int argc, char** argv)
{
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string_view text = argv[i];
        if (text == "--repetitions" && i + 1 < argc)
            arguments._repetitions = std::max(1, std::atoi(argv[++i]));
        else if (text == "--json" && i + 1 < argc)
            arguments._json = argv[++i];
        else if (text == "--markdown" && i + 1 < argc)
            arguments._markdown = argv[++i];
        else
            arguments._names.push_back(text);
    }
    return arguments;
}

bool isChosen(std::string_view name, const std::vector<std::string_view>& chosen)
{
    return chosen.empty() || std::any_of(chosen.begin(), chosen.end(), [name](std::string_view text) {
               return name == text || (name.starts_with(text) && name[text.size()] == '.');
           });
}

/// Takes turns, so that what changes on the machine meanwhile changes for all.
Samples measure(const Workload& workload, int repetitions)
{
    Samples samples;
    for (int i = -1; i < repetitions; ++i) { // the first one warms up
        std::vector<Sample> round;
        for (const Workload::Contender& contender : workload.contenders())
            round.push_back(contender._measure());
        if (i >= 0)
            samples.push_back(std::move(round));
    }
    return samples;
}

/// Nothing is written where no file is named.
std::ofstream append(const std::string& path)
{
    return path.empty() ? std::ofstream() : std::ofstream(path, std::ios::app);
}

/// A thread that waits for the end: with it, locks and counts are real everywhere.
class SecondThread {
public:
    SecondThread() : _thread([this] { _end.acquire(); }) {}
    ~SecondThread()
    {
        _end.release();
        _thread.join();
    }

private:
    std::binary_semaphore _end{0};
    std::thread _thread;
};

} // namespace

int runWorkloads(const std::vector<Entry>& entries, int argc, char** argv)
{
    const Arguments arguments = parse(argc, argv);
    std::ofstream json = append(arguments._json);
    std::ofstream markdown = append(arguments._markdown);
    const SecondThread second;
    for (const Entry& entry : entries) {
        if (!isChosen(entry._name, arguments._names))
            continue;
        Workload workload;
        entry._build(workload);
        for (const Row& row : makeRows(entry._name, workload, measure(workload, arguments._repetitions))) {
            std::cout << toText(row) << std::endl;
            json << toJson(row) << '\n';
            markdown << toMarkdown(row) << '\n';
        }
    }
    const bool written = (arguments._json.empty() || json.good()) && (arguments._markdown.empty() || markdown.good());
    return written ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace Bench
