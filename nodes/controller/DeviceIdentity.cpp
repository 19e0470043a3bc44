#include "nodes/controller/DeviceIdentity.h"

#include <algorithm>
#include <fstream>

namespace Trovio::Nodes {

namespace {

constexpr std::streamsize maxLineLength = 256;

/// What follows `key` in the first line that begins with it.
std::string readValue(const std::string& file, std::string_view key)
{
    std::ifstream stream(file);
    char buffer[maxLineLength];
    while (stream.getline(buffer, maxLineLength)) {
        const std::string_view line(buffer);
        if (line.starts_with(key))
            return std::string(line.substr(key.size()));
    }
    return {};
}

/// The last part of a device file's name, if it is one that a path may be built with.
std::string fileName(const std::string& path)
{
    const auto isPlain = [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); };
    std::string name = path.substr(path.rfind('/') + 1);
    return std::all_of(name.begin(), name.end(), isPlain) ? name : std::string();
}

} // namespace

bool DeviceIdentity::isSameAs(const DeviceIdentity& other) const
{
    if (_guid != other._guid)
        return false;
    if (!_serial.empty() && !other._serial.empty())
        return _serial == other._serial;
    return _port == other._port;
}

std::string DeviceIdentity::describe() const
{
    return "name='" + _name + "' guid=" + _guid + " serial='" + _serial + "' port='" + _port + "'";
}

DevicePlace DevicePlace::find(const std::string& path, const std::string& systemFolder)
{
    const std::string name = fileName(path);
    DevicePlace place;
    if (name.starts_with("event")) {
        const std::string folder = systemFolder + "/class/input/" + name + "/device/";
        place = {readValue(folder + "phys", ""), readValue(folder + "uniq", "")};
    } else if (name.starts_with("hidraw")) {
        const std::string file = systemFolder + "/class/hidraw/" + name + "/device/uevent";
        place = {readValue(file, "HID_PHYS="), readValue(file, "HID_UNIQ=")};
    }
    if (place._port.empty())
        place._port = path;
    return place;
}

} // namespace Trovio::Nodes
