#include "SceneFixture.h"

#include "ostrel/DirectSensorProc.h"
#include "sensorManager/ORDANSensorHandler.h"
#include "sensorManager/OTSensorHandler.h"
#include "sensorManager/TORVASensorHandler.h"
#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;

/// One message as its header shows it.
struct Message {
    int _level;
    const char* _file;
    unsigned _line;
    const char* _function;
    const char* _text;
};

void expectMessages(const LogCapture& log, const std::vector<Message>& expected)
{
    const auto entries = log.entries();
    ASSERT_EQ(entries.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(entries[i]._level, expected[i]._level);
        EXPECT_EQ(entries[i]._file, expected[i]._file);
        EXPECT_EQ(entries[i]._line, expected[i]._line);
        EXPECT_EQ(entries[i]._function, expected[i]._function);
        EXPECT_EQ(entries[i]._text, expected[i]._text);
    }
}

/// Asks the handler for all that it only acknowledges.
void askForEverything(SensorHandler& handler)
{
    std::string a = "a";
    std::string b = "b";
    handler.removeLabel(a, b);
    handler.addParameter(a, b);
    handler.removeParameter(a, b);
}

/// Observers of the two kinds whose labels reach them, noting what they get.
template <class Kind>
class NotingObserver : public Kind::UpdateObserver {
public:
    bool init(const std::string& value) override
    {
        _values.push_back(value);
        return Kind::UpdateObserver::init(value);
    }
    static inline std::vector<std::string> _values;
};

template <class Kind>
class NotingHandler : public Kind {
public:
    using Kind::Kind;
    SensorHandler::UpdateObserver* createUpdateObserver(DirectSensor*) override { return new NotingObserver<Kind>; }
};

template <class Kind>
class DeviceLabelsOf : public ::testing::Test {
};
using LabelKinds = ::testing::Types<OTSensorHandler, ORDANSensorHandler>;
TYPED_TEST_SUITE(DeviceLabelsOf, LabelKinds);

} // namespace

TYPED_TEST(DeviceLabelsOf, ReachTheSensorsThatCarryThem)
{
    const LogCapture log(0);
    NotingHandler<TypeParam> handler("h");
    const auto head = makeSensor("SFFloat", "head");
    const auto hand = makeSensor("SFFloat", "hand");
    handler.regDISensor(head.get());
    handler.regDISensor(hand.get());
    addLabel(handler, "head", "1");
    addLabel(handler, "Head", "2");
    addLabel(handler, "head", "3");
    EXPECT_EQ(NotingObserver<TypeParam>::_values, (Texts{"1", "3"}));
    head->getDirectSensorProc()->getUpdateSubject().notify(1.0);
    EXPECT_TRUE(handler.update(1.0));
}

TEST(OTKind, AcknowledgesInTheLog)
{
    const LogCapture log;
    OTSensorHandler handler("ot");
    askForEverything(handler);
    constexpr char file[] = "sensorManager/OTSensorHandler";
    expectMessages(log,
                   {{1, file, 69, "Ostrel::OTSensorHandler::OTSensorHandler(const string&)",
                     "Can not construct OTSensorHandler\n"},
                    {2, file, 383, "virtual void Ostrel::OTSensorHandler::removeLabel(std::string&, std::string&)",
                     "OTSensorHandler::removeLabel(); not impl. \n"},
                    {0, "", 0, "", "addParameters: \n"},
                    {2, file, 419, "virtual void Ostrel::OTSensorHandler::removeParameter(std::string&, std::string&)",
                     "OTSensorHandler::removeParameters(); parameters not used\n"}});
}

TEST(OTKind, AnswersEverySensorWithAnObserverButOutputs)
{
    LogCapture log(0);
    Context context;
    SensorManager& manager = *SensorManager::requestManager(context);
    auto* const handler = dynamic_cast<OTSensorHandler*>(manager.addHandler("OT", "ot", someURL()));
    ASSERT_NE(handler, nullptr);
    EXPECT_EQ(&handler->type(), SensorHandlerType::find("OT"));
    EXPECT_EQ(log.texts(), Texts{}) << "below the fatal level";
    const std::unique_ptr<Observer> unbound(handler->createUpdateObserver(nullptr));
    EXPECT_NE(unbound, nullptr);
    const auto sensor = makeSensor("SFColor", "c");
    sensor->setContext(&context);
    EXPECT_EQ(handler->createOutputUpdateObserver(sensor.get()), nullptr);
    EXPECT_EQ(log.texts(), (Texts{"createUpdateObserver() SFColor\n"}));
    sensor->setContext(nullptr);
    manager.delHandler(handler);
}

TEST(OTKind, CountRunsNegativeForMadeHandlersAndRisesWithCopies)
{
    const LogCapture log(0);
    const int before = OTSensorHandler::_objCount;
    {
        OTSensorHandler made("ot");
        EXPECT_EQ(OTSensorHandler::_objCount, before);
        OTSensorHandler copy(made);
        EXPECT_EQ(OTSensorHandler::_objCount, before + 1);
        EXPECT_EQ(copy.getName(), "");
    }
    EXPECT_EQ(OTSensorHandler::_objCount, before - 1);
}

TEST(OTKind, PlainLinesGoNowhereWhenTheModuleIsMuted)
{
    const LogCapture log;
    osg::osgLogP->muteModule("Ostrel", true);
    OTSensorHandler handler("ot");
    addParameter(handler, "a", "b");
    osg::osgLogP->muteModule("Ostrel", false);
    EXPECT_EQ(log.texts(), (Texts{"Can not construct OTSensorHandler\n"})) << "messages with a header are not asked";
}

TEST(ORDANKind, AcknowledgesInTheLog)
{
    const LogCapture log;
    ORDANSensorHandler handler("ordan");
    delete handler.createUpdateObserver(nullptr);
    askForEverything(handler);
    constexpr char file[] = "sensorManager/ORDANSensorHandler";
    expectMessages(
        log, {{1, file, 71, "Ostrel::ORDANSensorHandler::ORDANSensorHandler(const string&)",
               "Can not construct ORDANSensorHandler\n"},
              {1, file, 213,
               "virtual Ostrel::SensorHandler::UpdateObserver* "
               "Ostrel::ORDANSensorHandler::createUpdateObserver(Ostrel::DirectSensor*)",
               "No Sensor in ORDANSensorHandler::createUpdateObserver()\n"},
              {2, file, 445, "virtual void Ostrel::ORDANSensorHandler::removeLabel(std::string&, std::string&)",
               "ORDANSensorHandler::removeLabel(); not impl. \n"},
              {2, file, 458, "virtual void Ostrel::ORDANSensorHandler::addParameter(std::string&, std::string&)",
               "ORDANSensorHandler::setParameters(); parameters not used\n"},
              {2, file, 471, "virtual void Ostrel::ORDANSensorHandler::removeParameter(std::string&, std::string&)",
               "ORDANSensorHandler::removeParameters(); parameters not used\n"}});
}

TEST(ORDANKind, BindsASensorWhoseLabelItKnowsAtOnce)
{
    const LogCapture log(0);
    const int before = ORDANSensorHandler::_objCount;
    {
        ORDANSensorHandler handler("ordan");
        EXPECT_EQ(ORDANSensorHandler::_objCount, before + 1);
        addLabel(handler, "head", "1");
        const auto known = makeSensor("SFFloat", "head");
        const auto unknown = makeSensor("SFFloat", "HEAD");
        const std::unique_ptr<SensorHandler::UpdateObserver> bound(handler.createUpdateObserver(known.get()));
        const std::unique_ptr<SensorHandler::UpdateObserver> free(handler.createUpdateObserver(unknown.get()));
        EXPECT_EQ(bound->getSensor(), known.get());
        EXPECT_EQ(free->getSensor(), nullptr);
        EXPECT_FALSE(bound->update(1.0));
        ORDANSensorHandler copy(handler);
        EXPECT_EQ(ORDANSensorHandler::_objCount, before + 2);
        const std::unique_ptr<SensorHandler::UpdateObserver> ofCopy(copy.createUpdateObserver(known.get()));
        EXPECT_EQ(ofCopy->getSensor(), nullptr) << "labels are not copied";
    }
    EXPECT_EQ(ORDANSensorHandler::_objCount, before);
}

TEST(TORVAKind, KeepsParametersAndServesNobody)
{
    const LogCapture log;
    EXPECT_EQ(TORVASensorHandler::create("torva", someURL()), nullptr);
    TORVASensorHandler handler("torva");
    const auto sensor = makeSensor("SFFloat", "s");
    EXPECT_EQ(handler.createUpdateObserver(sensor.get()), nullptr);
    EXPECT_EQ(handler.createOutputUpdateObserver(nullptr), nullptr);
    EXPECT_FALSE(handler.update(1.0));
    addParameter(handler, "P", "1");
    addParameter(handler, "P", "2");
    addLabel(handler, "L", "V");
    EXPECT_EQ(handler.getParameters(), (std::map<std::string, std::string>{{"P", "2"}}));
    TORVASensorHandler copy(handler);
    EXPECT_TRUE(copy.getParameters().empty());
    std::string name = "P";
    std::string other = "L";
    handler.removeParameter(name, other);
    handler.removeParameter(name, other);
    EXPECT_TRUE(handler.getParameters().empty());
    handler.removeLabel(name, other);
    expectMessages(log, {{2, "sensorManager/TORVASensorHandler", 283,
                          "virtual void Ostrel::TORVASensorHandler::removeLabel(std::string&, std::string&)",
                          "TORVASensorHandler::removeLabel(); not impl. \n"}});
    TORVASensorHandler::UpdateObserver observer;
    EXPECT_TRUE(observer.init("value", false));
    EXPECT_FALSE(observer.update(1.0));
}
