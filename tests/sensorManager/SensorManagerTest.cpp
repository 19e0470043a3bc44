#include "ProbeHandler.h"
#include "tests/support/Says.h"

#include "ostrel/DirectSensorProc.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>

namespace {

using Texts = std::vector<std::string>;

class Manager : public ::testing::Test {
protected:
    ~Manager() override
    {
        ProbeHandler::_whileOffered = nullptr;
        ProbeHandler::takeEvents();
    }

    /// In the order in which they are offered.
    std::vector<std::unique_ptr<DirectSensor>> makeSensors(std::size_t count)
    {
        std::vector<std::unique_ptr<DirectSensor>> sensors(count);
        for (auto& sensor : sensors)
            sensor = makeSensor("SFFloat", "s");
        std::sort(sensors.begin(), sensors.end());
        for (std::size_t i = 0; i < count; ++i) {
            sensors[i]->setLabel("s" + std::to_string(i));
            sensors[i]->setContext(&_context);
        }
        return sensors;
    }

    LogCapture _log{2}; // what a host shows by default, so that every line is one that a user sees
    Context _context;
    SensorManager& _manager = *SensorManager::requestManager(_context);
};

} // namespace

TEST_F(Manager, IsOneForAContextAndEndsWithIt)
{
    EXPECT_EQ(SensorManager::requestManager(_context), &_manager);
    EXPECT_EQ(_manager.references(), 1U) << "held by the context alone";
    const int before = BaseObject::_objCount;
    EXPECT_NE(SensorManager::requestManager(*std::make_unique<Context>()), &_manager);
    EXPECT_EQ(BaseObject::_objCount, before);
    EXPECT_EQ(_log.texts(), Texts{});
}

TEST_F(Manager, OffersEverySensorToEveryHandlerWhicheverComesLater)
{
    const auto early = makeSensor("SFFloat", "early");
    early->setContext(&_context);
    SensorHandler* const first = _manager.addHandler("Probe", "first", someURL());
    EXPECT_EQ(_manager.findHandler("first"), first);
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"in early"}));

    _manager.addHandler("Probe", "second", someURL());
    ProbeHandler::takeEvents();
    const auto late = makeSensor("SFFloat", "late", true);
    late->setContext(&_context);
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"out late", "out late"}));

    early->setContext(nullptr);
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"deleted", "deleted"}));
    EXPECT_TRUE(_manager.delHandler("first"));
    EXPECT_TRUE(_manager.delHandler("second"));
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"deleted", "deleted"})) << "observers go with their handler";
    EXPECT_EQ(_log.texts(), Texts{});
}

TEST_F(Manager, RefusalsChangeNothingAndSayWhatWasWrong)
{
    Context otherContext;
    SensorHandler* const foreign = SensorManager::requestManager(otherContext)->addHandler("Probe", "x", someURL());
    SensorHandler* const taken = _manager.addHandler("Probe", "taken", someURL());
    EXPECT_EQ(_manager.addHandler("Unheard-of", "taken", someURL()), nullptr);
    EXPECT_EQ(_manager.addHandler("probe", "other", someURL()), nullptr);
    EXPECT_EQ(_manager.addHandler("Probe", "refused", someURL()), nullptr);
    EXPECT_EQ(_manager.addHandler("TORVA", "torva", someURL()), nullptr);
    EXPECT_FALSE(_manager.delHandler("other"));
    EXPECT_FALSE(_manager.delHandler(static_cast<SensorHandler*>(nullptr)));
    EXPECT_FALSE(_manager.delHandler(foreign));
    EXPECT_EQ(
        _log.texts(),
        (Texts{"There is already a SensorHandler with that name: taken\n", "Unknown SensorHandlerType: probe\n",
               "Can not create new SensorHandler of type Probe\n", "Can not create new SensorHandler of type TORVA\n",
               "Can not delete 'other' SensorHandler\n", "Invalid Handler; cannot del. entry\n"}));
    EXPECT_EQ(_log.entries()[0]._level, 1);
    EXPECT_EQ(_log.entries()[1]._level, 2);
    EXPECT_EQ(_log.entries()[0]._file, "sensorManager/SensorManager");
    EXPECT_TRUE(says(_log.entries()[0]._function, "Ostrel::SensorManager::addHandler("));
    EXPECT_TRUE(_manager.delHandler(taken));
    EXPECT_TRUE(SensorManager::requestManager(otherContext)->delHandler(foreign));
}

TEST_F(Manager, SensorsMayLeaveWhileANewHandlerIsOfferedThem)
{
    auto sensors = makeSensors(4);
    ProbeHandler::_whileOffered = [&sensors](SensorHandler&, DirectSensor& sensor) {
        if (&sensor != sensors[1].get())
            return true;
        for (const std::size_t leaving : {0U, 1U, 2U})
            sensors[leaving]->setContext(nullptr);
        return false;
    };
    SensorHandler* const handler = _manager.addHandler("Probe", "h", someURL());
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"in s0", "in s1", "deleted", "in s3"}));
    _manager.delHandler(handler);
    EXPECT_EQ(_log.texts(), Texts{});
}

TEST_F(Manager, HandlersMayGoWhileTheyAreOfferedSensors)
{
    auto sensors = makeSensors(2);
    const auto deleteIt = [this](SensorHandler& handler, DirectSensor&) {
        EXPECT_TRUE(_manager.delHandler(&handler));
        return false;
    };
    ProbeHandler::_whileOffered = deleteIt;
    EXPECT_EQ(_manager.addHandler("Probe", "h", someURL()), nullptr);

    ProbeHandler::_whileOffered = nullptr;
    for (const char* name : {"a", "b", "c"})
        _manager.addHandler("Probe", name, someURL());
    ProbeHandler::takeEvents();
    ProbeHandler::_whileOffered = [&](SensorHandler& handler, DirectSensor& sensor) {
        if (_manager.findHandler("a") && _manager.findHandler("b") && _manager.findHandler("c"))
            return deleteIt(handler, sensor);
        sensor.setContext(nullptr);
        return false;
    };
    makeSensor("SFFloat", "last")->setContext(&_context);
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"in last", "deleted", "deleted", "in last"})) << "not the third";
    for (const char* name : {"a", "b", "c"})
        _manager.delHandler(name);
}

TEST_F(Manager, HandlerThatThrowsAtASensorIsTakenBack)
{
    const auto sensors = makeSensors(2);
    ProbeHandler::_whileOffered = [&sensors](SensorHandler&, DirectSensor& sensor) {
        return &sensor == sensors[0].get() ? true : throw std::runtime_error("no");
    };
    EXPECT_THROW(_manager.addHandler("Probe", "h", someURL()), std::runtime_error);
    EXPECT_EQ(_manager.findHandler("h"), nullptr);
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"in s0", "in s1", "deleted"}));
}

TEST_F(Manager, SecondRegistrationIsLoggedAndOfferedOnce)
{
    SensorHandler* const handler = _manager.addHandler("Probe", "h", someURL());
    const auto named = makeSensor("SFFloat", "no-name");
    named->setContext(&_context);
    const auto nameless = makeSensor("SFFloat", "no-id");
    nameless->setName("");
    nameless->setContext(&_context);
    _manager.registerSensor(*named);
    _manager.registerSensor(*nameless);
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"in no-name", "in no-id"}));
    const std::string type = named->type().getName();
    EXPECT_EQ(_log.texts(), (Texts{"Can not register " + type + "/no-name a second time\n",
                                   "Can not register " + type + "/" + nameless->getIDStr() + " a second time\n"}));
    named->setContext(nullptr);
    nameless->setContext(nullptr);
    _manager.delHandler(handler);
}

TEST(ManagerObservers, UnregisteringMakesAManagerThatDoesNotKnowTheSensor)
{
    const LogCapture log(2);
    Context context;
    DirectSensor sensor;
    sensor.setName("stray");
    sensor.setContext(&context); // no proc, so not registered
    const int before = BaseObject::_objCount;
    DirectSensorProc::unregisterSubject().notify(1.0, &sensor);
    EXPECT_EQ(BaseObject::_objCount, before + 1);
    EXPECT_EQ(log.texts(), (Texts{"Can not unregister " + sensor.type().getName() + "/stray; unreg. node\n"}));
}

TEST(ManagerObservers, NotificationWithoutSensorOrContextIsAWarning)
{
    const LogCapture log(2);
    DirectSensor sensor;
    Context noSensor;
    for (Subject* subject : {&DirectSensorProc::registerSubject(), &DirectSensorProc::unregisterSubject()}) {
        subject->notify(1.0, &sensor);
        subject->notify(1.0, &noSensor);
        subject->notify(1.0);
    }
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void*>(&sensor));
    const std::string pointers = std::string(": ") + address + "/(nil)\n";
    const std::string nulls = ": (nil)/(nil)\n";
    const std::string reg = "Cannot register sensor without Context";
    const std::string unreg = "Cannot unregister sensor without Context";
    EXPECT_EQ(log.texts(),
              (Texts{reg + pointers, reg + nulls, reg + nulls, unreg + pointers, unreg + nulls, unreg + nulls}));
}

TEST_F(Manager, CopyIsInertAndReportedWhenItEnds)
{
    SensorHandler* const handler = _manager.addHandler("Probe", "h", someURL());
    {
        SensorManager copy(_manager);
        EXPECT_EQ(copy.findHandler("h"), nullptr);
    }
    EXPECT_EQ(SensorManager::requestManager(_context), &_manager);
    EXPECT_EQ(_log.texts(), (Texts{"No valid _managerMap entry while destructing SensorManager\n"}));
    _manager.delHandler(handler);
}

TEST(ManagerEnd, LeavesItsHandlersAlive)
{
    auto context = std::make_unique<Context>();
    const std::unique_ptr<SensorHandler> handler(
        SensorManager::requestManager(*context)->addHandler("Probe", "h", someURL()));
    context.reset();
    EXPECT_EQ(handler->getName(), "h");
}
