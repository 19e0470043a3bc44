#pragma once

#include "nodes/controller/DeviceIdentity.h"
#include "trovio/Settings.h"

namespace Trovio::Nodes {

/// Which controllers a node may use: those that have all the texts that its settings give. An empty text admits all.
/// A plain value.
class DeviceFilter {
public:
    /// Any controller.
    DeviceFilter() = default;

    /// Throws InvalidFieldException.
    explicit DeviceFilter(const Settings& settings);

    static constexpr Setting Rows[] = {
        Setting::text("guid", "", "GUID of the controller's model; empty: any", "32 hexadecimal digits, or nothing"),
        Setting::text("serial", "", "serial of the controller; empty: any"),
        Setting::text("port", "", "where the controller is plugged in; empty: anywhere"),
        Setting::text("name", "", "name of the controller's model; empty: any"),
    };

    bool admits(const DeviceIdentity& device) const;

    /// How many texts it gives. Whoever says more about a device has the better right to it.
    int getPrecision() const;

    /// "with serial='12'"; empty if any will do.
    std::string describe() const;

private:
    DeviceIdentity _wanted;
};

} // namespace Trovio::Nodes
