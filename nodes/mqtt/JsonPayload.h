#pragma once

#include "nodes/text/TextReceiver.h"
#include "nodes/text/TextSender.h"
#include <nlohmann/json_fwd.hpp>

namespace Trovio::Nodes {

/// The largest payload that is read or written, in bytes.
constexpr std::size_t MaxPayload = 1048576;
/// How many arrays and objects may stand in one another.
constexpr int MaxJsonDepth = 16;

/// What came as a message: words and numbers as people type them, or JSON.
/// Threads: a plain value, for as long as the payload stays.
class JsonPayload {
public:
    explicit JsonPayload(std::string_view payload);
    ~JsonPayload();

    /// The member that a pointer such as "/sensor/temperature" names; an empty one means all of it, as it came. Numbers
    /// are found in words, in arrays, and in objects whose members are x, y, z, w or r, g, b, a.
    /// What is returned lives until the next call. Nothing where there is no such member.
    std::optional<TextContent> find(const std::string& pointer);

private:
    const nlohmann::json& document();

    const std::string_view _payload;
    std::unique_ptr<nlohmann::json> _document; // once it was asked for
    std::string _text;
    std::vector<TextNumber> _numbers;
};

/// Whether a setting may name that member. An empty pointer is none.
bool isJsonPointer(const std::string& pointer);

/// How values are written.
struct PayloadForm {
    enum class Vectors { Array, Object } _vectors = Vectors::Array;         // [1, 2, 3], or {"x": 1, "y": 2, "z": 3}
    enum class Switches { Bool, Number, OnOff } _switches = Switches::Bool; // true, 1, ON
};

/// The payload for a record, as the member that the pointer names, or all of it. Nothing for a record that no payload
/// can carry: a component that is no number, a text that is no UTF-8 inside JSON, more than MaxPayload bytes.
std::optional<std::string> formatPayload(const TextRecord& record, const std::string& pointer, const PayloadForm& form);

} // namespace Trovio::Nodes
