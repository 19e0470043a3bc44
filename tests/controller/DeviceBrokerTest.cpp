#include "nodes/controller/DeviceBroker.h"
#include "tests/controller/FakeDevices.h"
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace Trovio::Nodes {
namespace {

DeviceWish wishOf(const std::string& text)
{
    return DeviceWish(Settings({std::begin(DeviceWish::Rows), std::end(DeviceWish::Rows)}, text));
}

/// Remembers which device it has.
class Holder final : public ControllerUser {
public:
    explicit Holder(const std::string& wish) : _wish(wishOf(wish)) {}
    const DeviceWish& getWish() const override { return _wish; }
    void deviceTaken(const DeviceIdentity& device, const ControllerState&, const Time&) override
    {
        _has = device._port;
    }
    void inputChanged(const InputChange&, const Time&) override {}
    void lookEnded(const Time&) override {}
    void deviceMissing(const std::string&, const Time&) override { _has = "none"; }
    std::optional<Rumble> takeRumble() override { return std::nullopt; }
    void rumbleDone(bool) override {}

    std::string _has = "none";

private:
    const DeviceWish _wish;
};

// Named in the tests by their ports.
const DeviceIdentity devices[] = {{std::string(32, 'a'), "S1", "p1", "Pad"},
                                  {std::string(32, 'a'), "S2", "p2", "Pad"},
                                  {std::string(32, 'b'), "", "p3", "Old Pad"},
                                  {std::string(32, 'b'), "", "p4", "Old Pad"}};

/// Plugs devices in (+p1) and out (-p1), one after another, with a look after each.
void play(const std::string& script, FakeDevices& fake, DeviceBroker& broker)
{
    std::map<std::string, int> numbers;
    std::istringstream words(script);
    for (std::string word; words >> word; broker.look(Time(1.0))) {
        const std::string port = word.substr(1);
        if (word.front() == '-')
            fake.unplug(numbers.at(port));
        else
            numbers[port] = fake.plugIn(devices[port.back() - '1']);
    }
}

struct Assignment {
    const char* _name;
    std::vector<std::string> _wishes; // of the users, in the order in which they attach
    const char* _script;
    std::vector<std::string> _expected;
};
class BrokerGives : public ::testing::TestWithParam<Assignment> {};

TEST_P(BrokerGives, TheRightDeviceToTheRightUser)
{
    const auto& row = GetParam();
    // Whether the users come before the devices or after them must not matter.
    for (const bool usersFirst : {true, false}) {
        const bool isAboutMemory = std::string(row._script).find('-') != std::string::npos;
        if (!usersFirst && isAboutMemory)
            continue;
        auto owned = std::make_unique<FakeDevices>();
        FakeDevices& fake = *owned;
        DeviceBroker broker(std::move(owned));
        std::list<Holder> holders(row._wishes.begin(), row._wishes.end());
        if (!usersFirst)
            play(row._script, fake, broker);
        for (Holder& holder : holders) {
            broker.attach(holder);
            broker.look(Time(1.0));
        }
        if (usersFirst)
            play(row._script, fake, broker);
        std::vector<std::string> has;
        for (const Holder& holder : holders)
            has.push_back(holder._has);
        EXPECT_EQ(has, row._expected) << "users first: " << usersFirst;
    }
}

INSTANTIATE_TEST_SUITE_P(
    From, BrokerGives,
    ::testing::Values(
        Assignment{"None", {""}, "", {"none"}}, Assignment{"Order", {"", "", ""}, "+p1 +p2", {"p1", "p2", "none"}},
        Assignment{"Serial", {"serial=S2"}, "+p1 +p2", {"p2"}}, Assignment{"Port", {"port=p4"}, "+p3 +p4", {"p4"}},
        Assignment{"Name", {"name='Old Pad'"}, "+p1 +p3", {"p3"}},
        Assignment{"GuidInCapitals", {"guid=" + std::string(32, 'B')}, "+p1 +p3", {"p3"}},
        Assignment{"AllThatIsNamed", {"name=Pad serial=S3"}, "+p1 +p2", {"none"}},
        Assignment{"WhoNamesItFirst", {"", "serial=S1"}, "+p1 +p2", {"p2", "p1"}},
        Assignment{"WhoNamesItOnly", {"", "serial=S1"}, "+p1", {"none", "p1"}},
        Assignment{"WhoNamesMoreFirst", {"name=Pad", "name=Pad serial=S1", ""}, "+p1 +p2", {"p2", "p1", "none"}},
        Assignment{"SerialComingBack", {"", ""}, "+p1 +p2 -p1 -p2 +p2 +p1", {"p1", "p2"}},
        Assignment{"PortComingBack", {"", ""}, "+p3 +p4 -p3 -p4 +p4 +p3", {"p3", "p4"}},
        Assignment{"AnotherInItsPlace", {""}, "+p1 -p1 +p3", {"p3"}},
        Assignment{"NobodyElseInItsPlace", {"serial=S1"}, "+p1 -p1 +p2", {"none"}},
        Assignment{"TheNextOneFree", {""}, "+p1 +p2 -p1", {"p2"}}),
    [](const auto& row) { return std::string(row.param._name); });

TEST(DeviceWish, RefusesWhatIsNoGuid)
{
    EXPECT_THROW(wishOf("guid=0300"), InvalidFieldException);
    EXPECT_THROW(wishOf("guid=" + std::string(32, 'g')), InvalidFieldException);
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
    for (const char* path : {"", "/dev/input/event8", "/dev/hidraw3x/..", "1-2.3:1.0"})
        EXPECT_EQ(find(path), std::string(path) + " ");
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace Trovio::Nodes
