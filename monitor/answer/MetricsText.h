#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace Monitor {

/// Text in the format OpenMetrics 1.0, or in the older one that every reader knows, family after family. Names and
/// helps are ours, and are taken as they are; the values of labels may be anything.
class MetricsText {
public:
    enum class Format { OpenMetrics, Plain };
    explicit MetricsText(Format format) : _format(format) {}

    using Label = std::pair<std::string_view, std::string_view>; // name and value
    using Labels = std::initializer_list<Label>;

    /// All samples up to the next family belong to it. type: "counter", "gauge", "info", "stateset".
    void family(std::string_view name, std::string_view type, std::string_view help);
    void sample(Labels labels, std::uint64_t value);
    /// One that is no number is written as such.
    void sample(Labels labels, double value);

    /// The whole, with its end.
    std::string finish() &&;

private:
    void begin(Labels labels);
    void putEscaped(std::string_view value);

    const Format _format;
    std::string _text;
    std::string _name; // of samples
};

} // namespace Monitor
