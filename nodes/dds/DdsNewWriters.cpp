#include "nodes/dds/DdsNewWriters.h"

#include "nodes/dds/net/DdsQos.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr double settlingTime = 0.05;      // seconds in which what is old arrives
constexpr double slack = 0.01;             // seconds by which samples may be late
constexpr std::size_t maxSamples = 65'536; // of a writer that wait

} // namespace

void DdsNewWriters::hold(Sample sample, double now)
{
    auto& [since, samples] = _writers.try_emplace(sample._info.publication_handle, Writer{now, {}}).first->second;
    if (samples.size() == maxSamples)
        samples.erase(samples.begin(), samples.begin() + maxSamples / 2); // the newest stay
    samples.push_back(std::move(sample));
}

std::vector<dds_instance_handle_t> DdsNewWriters::findDue(double now) const
{
    std::vector<dds_instance_handle_t> due;
    for (const auto& [handle, writer] : _writers)
        if (now >= writer._since + settlingTime)
            due.push_back(handle);
    return due;
}

std::optional<double> DdsNewWriters::nextDue() const
{
    std::optional<double> next;
    for (const auto& [handle, writer] : _writers)
        next = std::min(next.value_or(writer._since + settlingTime), writer._since + settlingTime);
    return next;
}

std::vector<DdsNewWriters::Sample> DdsNewWriters::release(dds_instance_handle_t writer, double now)
{
    const auto found = _writers.find(writer);
    if (found == _writers.end())
        return {};
    const double since = found->second._since;
    std::vector<Sample> samples = std::move(found->second._samples);
    _writers.erase(found);
    if (samples.empty())
        return {}; // there was no memory to hold the first
    // By the writer's clock: what it wrote while this waited is as new as the newest, give or take the wait.
    const auto written = [](const Sample& sample) { return sample._info.source_timestamp; };
    const dds_time_t newest = written(*std::ranges::max_element(samples, {}, written));
    const dds_time_t oldest = newest - toDdsDuration(now - since + slack);
    std::erase_if(samples, [&](const Sample& sample) { return written(sample) < oldest; });
    return samples;
}

} // namespace Trovio::Nodes
