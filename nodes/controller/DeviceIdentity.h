#pragma once

#include <string>

namespace Trovio::Nodes {

/// What a controller is known by, however often it is plugged in. Texts that nobody knows are empty.
struct DeviceIdentity {
    std::string _guid;   // of the model and the bus: 32 hexadecimal digits
    std::string _serial; // of this one device
    std::string _port;   // where it is plugged in
    std::string _name;

    /// The same device again: by its serial, or, where that is not known on both sides, by its port.
    bool isSameAs(const DeviceIdentity& other) const;

    /// One line, written as settings are.
    std::string describe() const;
};

/// Where a device is plugged in, and its serial, as the system knows them.
struct DevicePlace {
    std::string _port;
    std::string _serial;

    /// path is the device file. A port that the system does not know is the path itself, which identifies it as long as
    /// nothing else is plugged in or out. systemFolder: where the system shows its devices.
    static DevicePlace find(const std::string& path, const std::string& systemFolder = "/sys");
};

} // namespace Trovio::Nodes
