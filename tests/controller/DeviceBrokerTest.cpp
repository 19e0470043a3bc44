#include "nodes/controller/DeviceBroker.h"
#include "tests/controller/FakeDevices.h"
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace Trovio::Nodes {
namespace {

DeviceFilter filterOf(const std::string& text)
{
    return DeviceFilter(Settings({std::begin(DeviceFilter::Rows), std::end(DeviceFilter::Rows)}, text));
}

/// Remembers which device it has, by its port.
struct Holder final : ControllerUser {
    explicit Holder(const std::string& settings) : _filter(filterOf(settings)) {}
    const DeviceFilter& getFilter() const override { return _filter; }
    void deviceTaken(const DeviceIdentity& device, const ControllerState&, const Time&) override
    {
        _has = device._port;
    }
    void inputChanged(const InputChange&, const Time&) override {}
    void pollEnded(const Time&) override {}
    void deviceMissing(const std::string& reason, const Time&) override
    {
        _has = reason.starts_with("there is no free controller") ? "none" : reason;
    }
    std::optional<Rumble> takeRumble() override { return std::nullopt; }
    void rumbleDone(bool) override {}
    void pollFailed() noexcept override {}

    const DeviceFilter _filter;
    std::string _has = "none";
};

const std::map<std::string, DeviceIdentity> devices = {{"p1", {std::string(32, 'a'), "S1", "p1", "Pad"}},
                                                       {"p2", {std::string(32, 'a'), "S2", "p2", "Pad"}},
                                                       {"p3", {std::string(32, 'b'), "", "p3", "Old Pad"}},
                                                       {"p4", {std::string(32, 'b'), "", "p4", "Old Pad"}}};

TEST(BrokerGives, TheRightDeviceToTheRightUser)
{
    const struct {
        const char* _name;
        std::vector<std::string> _filters; // of the users
        const char* _script;               // + plugs a device in, - out, * attaches the next user
        std::vector<std::string> _expected;
    } rows[] = {{"Order", {"", "", ""}, "* * * +p1 +p2", {"p1", "p2", "none"}},
                {"Serial", {"serial=S2"}, "* +p1 +p2", {"p2"}},
                {"Port", {"port=p4"}, "+p3 +p4 *", {"p4"}},
                {"Name", {"name='Old Pad'"}, "+p1 * +p3", {"p3"}},
                {"GuidInCapitals", {"guid=" + std::string(32, 'B')}, "+p1 * +p3", {"p3"}},
                {"AllThatIsNamed", {"name=Pad serial=S3"}, "* +p1 +p2", {"none"}},
                {"WhoNamesItFirst", {"", "serial=S1"}, "* * +p1 +p2", {"p2", "p1"}},
                {"WhoNamesItEvenLater", {"", "serial=S1"}, "+p1 +p2 * *", {"p2", "p1"}},
                {"WhoNamesItOnly", {"", "serial=S1"}, "+p1 * *", {"none", "p1"}},
                {"WhoNamesMore", {"name=Pad", "name=Pad serial=S1", ""}, "* +p1 * +p2 *", {"p2", "p1", "none"}},
                {"SerialComingBack", {"", ""}, "* * +p1 +p2 -p1 -p2 +p2 +p1", {"p1", "p2"}},
                {"PortComingBack", {"", ""}, "* * +p3 +p4 -p3 -p4 +p4 +p3", {"p3", "p4"}},
                {"AnotherInItsPlace", {""}, "* +p1 -p1 +p3", {"p3"}},
                {"NobodyElseInItsPlace", {"serial=S1"}, "* +p1 -p1 +p2", {"none"}}};
    for (const auto& row : rows) {
        auto* fake = new FakeDevices;
        DeviceBroker broker{std::unique_ptr<ControllerDevices>(fake)};
        std::list<Holder> holders(row._filters.begin(), row._filters.end());
        auto next = holders.begin();
        std::map<std::string, int> numbers;
        std::istringstream words(row._script);
        for (std::string word; words >> word; broker.poll(Time(1.0))) {
            const std::string port = word.substr(1);
            if (word.front() == '*')
                broker.attach(*next++);
            else if (word.front() == '-')
                fake->unplug(numbers.at(port));
            else
                numbers[port] = fake->plugIn(devices.at(port));
        }
        std::vector<std::string> has;
        for (const Holder& holder : holders)
            has.push_back(holder._has);
        EXPECT_EQ(has, row._expected) << row._name;
    }
}

TEST(DeviceBroker, TriesAgainWhatDoesNotOpen)
{
    auto* fake = new FakeDevices;
    DeviceBroker broker{std::unique_ptr<ControllerDevices>(fake)};
    fake->_problem = "no permission";
    fake->plugIn(devices.at("p1"));
    Holder holder("");
    broker.attach(holder);
    EXPECT_EQ(broker.poll(Time(1.0)), 1.0) << "seconds until it tries again";
    EXPECT_EQ(holder._has, "no permission");
    fake->_problem.clear();
    broker.poll(Time(2.0));
    EXPECT_EQ(holder._has, "p1");
}

TEST(DeviceFilter, RefusesWhatIsNoGuid)
{
    EXPECT_THROW(filterOf("guid=0300"), InvalidFieldException);
    EXPECT_THROW(filterOf("guid=" + std::string(32, 'g')), InvalidFieldException);
}

TEST(DevicePlace, IsReadFromTheSystem)
{
    const std::filesystem::path folder = ::testing::TempDir() + "controller-system";
    const auto write = [&](const char* file, const char* text) {
        std::filesystem::create_directories((folder / file).parent_path());
        std::ofstream(folder / file) << text;
    };
    write("class/input/event7/device/phys", "usb-0000:00:14.0-2/input0\n");
    write("class/input/event7/device/uniq", "AB12\n");
    write("class/hidraw/hidraw3/device/uevent", "DRIVER=x\nHID_PHYS=usb-1.4/input1\nHID_UNIQ=\n");
    const auto find = [&](const char* path) {
        const DevicePlace place = DevicePlace::find(path, folder.string());
        return place._port + " " + place._serial;
    };
    EXPECT_EQ(find("/dev/input/event7"), "usb-0000:00:14.0-2/input0 AB12");
    EXPECT_EQ(find("/dev/hidraw3"), "usb-1.4/input1 ");
    for (const char* path : {"", "/dev/input/event8", "/dev/hidraw3/..", "1-2.3:1.0"})
        EXPECT_EQ(find(path), std::string(path) + " ");
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace Trovio::Nodes
