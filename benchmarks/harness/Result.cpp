#include "benchmarks/harness/Result.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace Bench {

namespace {

double medianRatio(const Samples& samples, std::size_t contender, std::size_t against, std::size_t metric)
{
    std::vector<double> ratios;
    for (const auto& repetition : samples)
        ratios.push_back(repetition[contender]._figures[metric] / repetition[against]._figures[metric]);
    return quantile(ratios, 0.5);
}

std::vector<Verdict> makeVerdicts(const Workload& workload, const Samples& samples, std::size_t metric,
                                  std::size_t contender)
{
    std::vector<Verdict> verdicts;
    const auto& contenders = workload.contenders();
    for (const Limit& limit : workload.limits())
        for (std::size_t other = 0; other < contenders.size(); ++other)
            if (limit._metric == metric && limit._contender == contenders[contender]._name &&
                limit._against == contenders[other]._name)
                verdicts.push_back({limit._against, medianRatio(samples, contender, other, metric), limit._atMost});
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
            samples.back()[contender]._allocations,
            makeVerdicts(workload, samples, metric, contender)};
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
    std::snprintf(text, sizeof text, "%-22s %-30s %11.2f %11.2f %11.2f %-4s %8.2f %7.2f", row._workload.c_str(),
                  row._contender.c_str(), row._median, row._least, row._most, row._unit.c_str(), row._ratio,
                  row._allocations);
    std::string line = text;
    for (const Verdict& verdict : row._verdicts) {
        std::snprintf(text, sizeof text, "  %s: %.2f of %s, at most %.2f", verdict.passes() ? "pass" : "SHORT",
                      verdict._ratio, verdict._against.c_str(), verdict._atMost);
        line += text;
    }
    return line;
}

std::string toMarkdown(const Row& row)
{
    char text[200];
    const int digits = row._median < 100 ? 2 : 0;
    std::snprintf(text, sizeof text, "| %s | %s | %.*f %s | %.*f to %.*f | %.2f | %.3g |", row._workload.c_str(),
                  row._contender.c_str(), digits, row._median, row._unit.c_str(), digits, row._least, digits, row._most,
                  row._ratio, row._allocations);
    std::string line = text;
    for (const Verdict& verdict : row._verdicts) {
        std::snprintf(text, sizeof text, "%s%s: %.2f of %s, at most %.2f",
                      &verdict == &row._verdicts.front() ? " " : "; ", verdict.passes() ? "pass" : "**short**",
                      verdict._ratio, verdict._against.c_str(), verdict._atMost);
        line += text;
    }
    return line + " |";
}

std::string toJson(const Row& row)
{
    nlohmann::json json{{"workload", row._workload},
                        {"contender", row._contender},
                        {"unit", row._unit},
                        {"median", row._median},
                        {"min", row._least},
                        {"max", row._most},
                        {"ratio", row._ratio},
                        {"allocations", row._allocations},
                        {"limits", nlohmann::json::array()}};
    for (const Verdict& verdict : row._verdicts)
        json["limits"].push_back({{"against", verdict._against},
                                  {"ratio", verdict._ratio},
                                  {"atMost", verdict._atMost},
                                  {"pass", verdict.passes()}});
    return json.dump();
}

} // namespace Bench
