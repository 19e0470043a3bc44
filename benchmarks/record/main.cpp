#include "benchmarks/harness/Workload.h"
#include "monitor/Recorder.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"
#include "trovio/Values.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// Recording to the disk that the program is started on.
namespace Bench {

namespace {

using Array = Trovio::SharedVector<float>;
constexpr std::size_t megabyte = 1'000'000; // bytes of an array
constexpr std::size_t arrays = 500;         // of a repetition

/// A name for a file, in a folder of its own.
class NewFile {
public:
    NewFile()
    {
        if (!mkdtemp(_folder))
            throw std::runtime_error("no folder can be made for a recording");
    }
    // What it takes to free a large file, and to tell the disk so, is not to be paid by the next contender.
    ~NewFile()
    {
        std::filesystem::remove_all(_folder);
        sync();
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    std::string path() const { return std::filesystem::absolute(_folder) / "bench.mcap"; }

private:
    char _folder[20] = "bench-record-XXXXXX";
};

/// An out-slot in the tree that is recorded.
template <class T>
class RecordedSlot {
public:
    RecordedSlot()
    {
        Trovio::Root::init();
        auto scene = std::make_unique<Trovio::Namespace>();
        scene->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
        scene->addOutSlot("out", &_out);
        Trovio::Root::get().addNamespace("scene", std::move(scene));
        _recorder = std::make_unique<Monitor::Recorder>();
        _recorder->start({_file.path()});
    }
    ~RecordedSlot()
    {
        _recorder.reset();
        Trovio::Root::get().removeNamespace("scene");
        Trovio::Root::shutdown();
    }
    RecordedSlot(const RecordedSlot&) = delete;
    RecordedSlot& operator=(const RecordedSlot&) = delete;

    void push(const T& value) { _out.push(Trovio::Data<T>(value, Trovio::Time(1e9))); }
    /// Until so many of those that were pushed have not been taken from the slot yet.
    void waitFor(std::uint64_t pushed, std::uint64_t waiting) const
    {
        for (auto status = _recorder->status(); status._records + status._notKept + waiting < pushed;
             status = _recorder->status())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    /// The file, whole.
    Monitor::RecorderStatus stop()
    {
        const Monitor::RecorderStatus status = _recorder->stop();
        if (!status._problem.empty())
            throw std::runtime_error(status._problem);
        return status;
    }

private:
    const NewFile _file;
    Trovio::OutSlot<T> _out{"out"};
    std::unique_ptr<Monitor::Recorder> _recorder;
};

/// The same amount, by a program that does nothing else.
Sample copyByDd()
{
    const NewFile file;
    const std::string of = "of=" + file.path(), count = "count=" + std::to_string(arrays);
    const auto start = Clock::now();
    const pid_t program = fork();
    if (program == 0) {
        dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
        execlp("dd", "dd", "if=/dev/zero", of.c_str(), "bs=1MB", count.c_str(), "conv=fdatasync", nullptr);
        _exit(127);
    }
    int status = 0;
    waitpid(program, &status, 0);
    if (status != 0)
        throw std::runtime_error("dd has failed");
    return {{nanosecondsSince(start) / arrays}, {}};
}

Sample recordArrays()
{
    RecordedSlot<Array> slot;
    Array array;
    array.acquire();
    array->assign(megabyte / sizeof(float), 0.5F);
    const auto start = Clock::now();
    for (std::size_t i = 1; i <= arrays; ++i) {
        slot.push(array);
        slot.waitFor(i, 48); // of the 64 that a slot keeps
    }
    if (slot.stop()._notKept > 0)
        throw std::runtime_error("arrays were not kept");
    return {{nanosecondsSince(start) / arrays}, {}};
}

/// Arrays of a megabyte, to the disk.
void throughput(Workload& workload)
{
    workload.setMetrics({{"a megabyte", "ms", 1e-6}});
    workload.add("dd conv=fdatasync", copyByDd);
    workload.add("recorder", recordArrays);
    workload.limit("recorder", "dd conv=fdatasync", 1 / 0.9);
}

double processorSeconds(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// Processor time of all threads but this one, for each record: encoding, chunks, checksums, writing.
Sample recordSmall()
{
    constexpr std::uint64_t records = 1'000'000, burst = 5'000;
    RecordedSlot<Trovio::Vec3<float>> slot;
    const double before = processorSeconds(RUSAGE_SELF) - processorSeconds(RUSAGE_THREAD);
    for (std::uint64_t i = 0; i < records; i += burst) {
        for (std::uint64_t k = 0; k < burst; ++k)
            slot.push({1, 2, 3});
        slot.waitFor(i + burst, 0);
    }
    if (slot.stop()._notKept > 0)
        throw std::runtime_error("records were not kept");
    const double after = processorSeconds(RUSAGE_SELF) - processorSeconds(RUSAGE_THREAD);
    return {{(after - before) / static_cast<double>(records) * 1e9}, {}};
}

void small(Workload& workload)
{
    workload.setMetrics({{"writer's threads", "ns"}});
    workload.add("recorder", recordSmall);
    workload.limitToFigure("recorder", "300 ns", 300, 0);
}

/// 20,000 records a second for a minute: how many were refused, and how many are neither in the file nor in its gaps.
Sample recordForAMinute()
{
    constexpr std::uint64_t perRound = 200, rounds = 6'000; // one each 10 ms
    RecordedSlot<Trovio::Vec3<float>> slot;
    auto next = Clock::now();
    for (std::uint64_t round = 0; round < rounds; ++round) {
        for (std::uint64_t i = 0; i < perRound; ++i)
            slot.push({1, 2, 3});
        next += std::chrono::milliseconds(10);
        std::this_thread::sleep_until(next);
    }
    const Monitor::RecorderStatus status = slot.stop();
    const std::uint64_t pushed = perRound * rounds;
    const double missing = static_cast<double>(pushed) - static_cast<double>(status._records + status._notKept);
    return {{static_cast<double>(status._records), static_cast<double>(status._notKept), missing}, {}};
}

void minute(Workload& workload)
{
    workload.setMetrics({{"kept", ""}, {"refused", ""}, {"missing", ""}});
    workload.add("recorder", [] {
        static const Sample once = recordForAMinute();
        return once;
    });
}

} // namespace

} // namespace Bench

int main(int argc, char** argv)
{
    return Bench::runWorkloads(
        {{"record.throughput", Bench::throughput}, {"record.small", Bench::small}, {"record.minute", Bench::minute}},
        argc, argv);
}
