#include "benchmarks/harness/Result.h"

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace Bench {

namespace {

double medianRatio(const Samples& samples, std::size_t contender, std::size_t against, std::size_t metric)
{
    std::vector<double> ratios;
    for (const auto& repetition : samples)
        ratios.push_back(repetition[contender]._figures[metric] / repetition[against]._figures[metric]);
    return quantile(ratios, 0.5);
}

double medianFigure(const Samples& samples, std::size_t contender, std::size_t metric)
{
    std::vector<double> figures;
    for (const auto& repetition : samples)
        figures.push_back(repetition[contender]._figures[metric]);
    return quantile(figures, 0.5);
}

std::optional<double> mostAllocations(const Samples& samples, std::size_t contender)
{
    std::optional<double> most;
    for (const auto& repetition : samples)
        most = std::max(most, repetition[contender]._allocations); // nothing is less than any number
    return most;
}

double judge(const Limit& limit, const Workload& workload, const Samples& samples, std::size_t contender)
{
    if (limit._expected)
        return medianFigure(samples, contender, limit._metric) / *limit._expected;
    const auto& all = workload.contenders();
    const auto other = std::find_if(all.begin(), all.end(), [&](const auto& it) { return it._name == limit._against; });
    if (other == all.end())
        throw std::logic_error("a limit is set against '" + limit._against + "', which does not run");
    return medianRatio(samples, contender, static_cast<std::size_t>(other - all.begin()), limit._metric);
}

std::vector<Verdict> makeVerdicts(const Workload& workload, const Samples& samples, std::size_t metric,
                                  std::size_t contender)
{
    std::vector<Verdict> verdicts;
    const std::string& name = workload.contenders()[contender]._name;
    for (const Limit& limit : workload.limits())
        if (limit._metric == metric && limit._contender == name)
            verdicts.push_back({"of " + limit._against, judge(limit, workload, samples, contender), limit._atMost});
    if (!workload.mayAllocate(name))
        verdicts.push_back({"allocations", mostAllocations(samples, contender).value(), 0});
    return verdicts;
}

Row makeRow(const std::string& name, const Workload& workload, const Samples& samples, std::size_t metric,
            std::size_t contender)
{
    const Metric& what = workload.metrics()[metric];
    std::vector<double> figures;
    for (const auto& repetition : samples)
        figures.push_back(repetition[contender]._figures[metric] * what._scale);
    const double median = quantile(figures, 0.5);
    const auto [least, most] = std::minmax_element(figures.begin(), figures.end());
    return {what._name.empty() ? name : name + " " + what._name,
            workload.contenders()[contender]._name,
            what._unit,
            median,
            *least,
            *most,
            medianRatio(samples, contender, 0, metric),
            mostAllocations(samples, contender),
            makeVerdicts(workload, samples, metric, contender)};
}

std::string toText(const Verdict& verdict, const char* ifShort)
{
    char text[120];
    std::snprintf(text, sizeof text, "%s: %.3g %s, at most %.3g", verdict.passes() ? "pass" : ifShort, verdict._found,
                  verdict._what.c_str(), verdict._atMost);
    return text;
}

/// As wide as the number would be.
std::string spell(const char* format, const std::optional<double>& number, int width = 0)
{
    char text[40];
    if (!number || std::isnan(*number)) // nothing is no multiple of nothing
        return std::string(static_cast<std::size_t>(std::max(width - 1, 0)), ' ') + "–";
    std::snprintf(text, sizeof text, format, width, *number);
    return text;
}

} // namespace

std::vector<Row> makeRows(const std::string& name, const Workload& workload, const Samples& samples)
{
    std::vector<Row> rows;
    for (std::size_t metric = 0; metric < workload.metrics().size(); ++metric)
        for (std::size_t contender = 0; contender < workload.contenders().size(); ++contender)
            rows.push_back(makeRow(name, workload, samples, metric, contender));
    return rows;
}

std::string toText(const Row& row)
{
    char text[160];
    std::snprintf(text, sizeof text, "%-22s %-30s %11.2f %11.2f %11.2f %-4s %s %s", row._workload.c_str(),
                  row._contender.c_str(), row._median, row._least, row._most, row._unit.c_str(),
                  spell("%*.2f", row._ratio, 8).c_str(), spell("%*.3g", row._allocations, 7).c_str());
    std::string line = text;
    for (const Verdict& verdict : row._verdicts)
        line += "  " + toText(verdict, "SHORT");
    return line;
}

std::string toMarkdown(const Row& row)
{
    char text[200];
    const int digits = row._median < 100 ? 2 : 0;
    std::snprintf(text, sizeof text, "| %s | %s | %.*f %s | %.*f to %.*f | %s | %s |", row._workload.c_str(),
                  row._contender.c_str(), digits, row._median, row._unit.c_str(), digits, row._least, digits, row._most,
                  spell("%*.2f", row._ratio).c_str(), spell("%*.3g", row._allocations).c_str());
    std::string line = text;
    for (const Verdict& verdict : row._verdicts)
        line += (&verdict == &row._verdicts.front() ? " " : "; ") + toText(verdict, "**short**");
    return line + " |";
}

std::string toJson(const Row& row)
{
    nlohmann::json json{
        {"workload", row._workload}, {"contender", row._contender}, {"unit", row._unit},
        {"median", row._median},     {"min", row._least},           {"max", row._most},
        {"ratio", row._ratio},       {"allocations", nullptr},      {"limits", nlohmann::json::array()}};
    if (row._allocations)
        json["allocations"] = *row._allocations;
    for (const Verdict& verdict : row._verdicts)
        json["limits"].push_back({{"what", verdict._what},
                                  {"found", verdict._found},
                                  {"atMost", verdict._atMost},
                                  {"pass", verdict.passes()}});
    return json.dump();
}

} // namespace Bench
