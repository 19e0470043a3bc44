#pragma once

#include "monitor/mcap/format/Format.h"

#include <memory>
#include <string>

namespace Monitor {
class SlotCodec;
}

namespace Host {

/// Messages of a recording as lines of text. Values stand in JSON, as 'echo --format json' shows them.
class RecordText {
public:
    virtual ~RecordText() = default;

    virtual std::string head() const { return {}; }
    void add(const Monitor::Mcap::Schema& schema) { _schemas[schema._id] = schema._name; }
    void add(const Monitor::Mcap::Channel& channel);
    /// Empty, and counted, where the bytes are no value of a slot type and no JSON.
    std::string line(const Monitor::Mcap::Message& message);

    std::uint64_t unknown() const { return _unknown; }
    /// The first one's reason.
    const std::string& whyUnknown() const { return _whyUnknown; }

protected:
    struct Topic {
        std::string _label;
        std::string _type; // slot type, or "json"
        const Monitor::SlotCodec* _codec = nullptr;
    };
    virtual std::string line(const Topic& topic, const Monitor::Mcap::Message& message,
                             const std::string& value) const = 0;

private:
    std::map<std::uint16_t, std::string> _schemas;
    std::map<std::uint16_t, Topic> _topics;
    std::uint64_t _unknown = 0;
    std::string _whyUnknown;
};

/// Columns time, stamp, label, type and value, by RFC 4180: for spreadsheets and statistics. Times are seconds since
/// 1970 with nine decimals.
std::unique_ptr<RecordText> makeCsv();
/// An object a line, with label, time, stamp and value.
std::unique_ptr<RecordText> makeJsonLines();

} // namespace Host
