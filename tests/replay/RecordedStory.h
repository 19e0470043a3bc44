#pragma once

#include "monitor/codec/Encode.h"
#include "monitor/codec/SlotCodec.h"
#include "monitor/mcap/format/FileTime.h"
#include "monitor/mcap/write/Recording.h"
#include "trovio/Values.h"

#include <cmath>
#include <numbers>

/// A recording of a hand with a wand, as a recorder would have made it of a scene with an OSC node: 'position' moves
/// and trembles, 'grip' comes and stays away for a while, 'trigger' is pulled now and then. Frames at 60 Hz.
class RecordedStory {
public:
    static constexpr double Start = 1'700'000'000; // date of the first record

    /// `node` is the label of the node in the tree, as "Context/Wand".
    static void write(const std::string& path, const std::string& node, const std::string& scene, double seconds)
    {
        RecordedStory(path, node, scene).tell(seconds);
    }

private:
    RecordedStory(const std::string& path, const std::string& node, const std::string& scene)
        : _file(path, Monitor::Mcap::OutputFile::create(path), "story"),
          _position(addSlot(node + "/position", "Vec3f")),
          _grip(addSlot(node + "/grip", "Float")),
          _trigger(addSlot(node + "/trigger", "Bool")),
          _frames(_file.addChannel("@frames", "json", {}))
    {
        _file.attach("wand.toml", "application/toml", scene, Monitor::Mcap::fileTimeOf(Start));
    }

    std::uint16_t addSlot(const std::string& label, const char* type)
    {
        const auto* const codec = Monitor::SlotCodec::find(type);
        return _file.addChannel(label, "cdr", {0, std::string(codec->schemaName()), "ros2msg", codec->schemaText()});
    }

    template <class T>
    void add(std::uint16_t channel, double at, const T& value)
    {
        constexpr double age = 0.004; // of a record when it comes
        Monitor::Bytes bytes;
        Monitor::encode(Trovio::Data<T>(value, {}), bytes);
        _file.add(channel, Monitor::Mcap::fileTimeOf(Start + at), Monitor::Mcap::fileTimeOf(Start + at - age), bytes);
    }

    double noise()
    {
        _random = _random * 6364136223846793005U + 1442695040888963407U;
        return static_cast<double>(_random >> 33U) / static_cast<double>(1U << 30U) - 1;
    }

    Trovio::Vec3<float> hand(double at)
    {
        const auto swing = [&](double hertz) { return std::sin(2 * std::numbers::pi * hertz * at) + 0.01 * noise(); };
        return {static_cast<float>(0.4 * swing(0.5)), static_cast<float>(1.3 + 0.2 * swing(0.8)),
                static_cast<float>(-0.3 + 0.1 * swing(1.1))};
    }

    void tell(double seconds)
    {
        constexpr double rate = 60; // a second; records come at any time in between
        for (int i = 0; i / rate < seconds; ++i) {
            const double at = i / rate;
            add(_position, at + (i == 0 ? 0 : 0.002 * (1 + noise())), hand(at));
            const bool isAway = std::fmod(at, 3) > 1 && std::fmod(at, 3) < 1.6;
            if (!isAway && i % 2 == 0)
                add(_grip, at + 0.005, static_cast<float>(0.5 + 0.5 * noise()));
            if (i % 40 == 7)
                add(_trigger, at + 0.006, i % 80 == 7);
            const double frame = Start + at + 0.01;
            char text[80];
            std::snprintf(text, sizeof text, "{\"number\":%d,\"time\":%.17g}", i + 1, frame);
            const auto time = Monitor::Mcap::fileTimeOf(frame);
            _file.add(_frames, time, time, Monitor::Mcap::asBytes(text));
        }
        if (const std::string problem = _file.finish(); !problem.empty())
            throw std::runtime_error(problem);
    }

    Monitor::Mcap::Recording _file;
    const std::uint16_t _position, _grip, _trigger, _frames;
    std::uint64_t _random = 1;
};
