#include "SceneFixture.h"

#include "sensorManager/ORDANSensorHandler.h"
#include "sensorManager/OTSensorHandler.h"
#include "sensorManager/TORVASensorHandler.h"
#include <gtest/gtest.h>
#include <regex>

namespace {

using Texts = std::vector<std::string>;
template <class Handler>
std::unique_ptr<SensorHandler> make()
{
    return std::make_unique<Handler>("h");
}

/// Notes the label values that reach its observers.
struct NotingHandler : OTSensorHandler {
    struct Observer : OTSensorHandler::UpdateObserver {
        explicit Observer(Texts& values) : _values(values) {}
        bool init(const std::string& value) override
        {
            _values.push_back(value);
            return OTSensorHandler::UpdateObserver::init(value);
        }
        Texts& _values;
    };
    using OTSensorHandler::OTSensorHandler;
    SensorHandler::UpdateObserver* createUpdateObserver(DirectSensor*) override { return new Observer(_values); }
    Texts _values;
};

} // namespace

TEST(DeviceKinds, AcknowledgeInTheLog)
{
    const struct {
        std::unique_ptr<SensorHandler> (*_make)();
        std::string _kind;
        Texts _messages; // level, line, function and text, with @ for the kind and ~ for two arguments that are texts
    } rows[] = {
        {make<OTSensorHandler>,
         "OT",
         {"1:69 Ostrel::@::@(const string&): Can not construct @\n",
          "2:383 virtual void Ostrel::@::removeLabel(~): @::removeLabel(); not impl. \n", "0:0 : addParameters: \n",
          "2:419 virtual void Ostrel::@::removeParameter(~): @::removeParameters(); parameters not used\n"}},
        {make<ORDANSensorHandler>,
         "ORDAN",
         {"1:71 Ostrel::@::@(const string&): Can not construct @\n",
          "1:213 virtual Ostrel::SensorHandler::UpdateObserver* Ostrel::@::createUpdateObserver(Ostrel::DirectSensor*)"
          ": No Sensor in @::createUpdateObserver()\n",
          "2:445 virtual void Ostrel::@::removeLabel(~): @::removeLabel(); not impl. \n",
          "2:458 virtual void Ostrel::@::addParameter(~): @::setParameters(); parameters not used\n",
          "2:471 virtual void Ostrel::@::removeParameter(~): @::removeParameters(); parameters not used\n"}},
        {make<TORVASensorHandler>,
         "TORVA",
         {"2:283 virtual void Ostrel::@::removeLabel(~): @::removeLabel(); not impl. \n"}}};
    for (const auto& row : rows) {
        const LogCapture log;
        const auto handler = row._make();
        delete handler->createUpdateObserver(nullptr);
        std::string a = "a", b = "b";
        handler->removeLabel(a, b);
        handler->addParameter(a, b);
        handler->removeParameter(a, b);
        Texts messages;
        for (const auto& entry : log.entries()) {
            EXPECT_EQ(entry._file, entry._line ? "sensorManager/" + row._kind + "SensorHandler" : "");
            std::string& message =
                messages.emplace_back(std::to_string(entry._level) + ":" + std::to_string(entry._line) + " " +
                                      entry._function + ": " + entry._text);
            message = std::regex_replace(message, std::regex("\\b" + row._kind + "SensorHandler"), "@");
            message = std::regex_replace(message, std::regex("std::string&, std::string&"), "~");
        }
        EXPECT_EQ(messages, row._messages);
    }
}

TEST(OTKind, LabelsReachTheSensorsThatCarryThem)
{
    const LogCapture log(0);
    NotingHandler handler("h");
    const auto head = makeSensor("SFFloat", "head");
    const auto hand = makeSensor("SFFloat", "hand");
    handler.regDISensor(head.get());
    handler.regDISensor(hand.get());
    addLabel(handler, "head", "1");
    addLabel(handler, "Head", "2");
    addLabel(handler, "head", "3");
    EXPECT_EQ(handler._values, (Texts{"1", "3"}));
}

TEST(OTKind, AnswersEverySensorWithAnObserverButOutputs)
{
    LogCapture log(0);
    Context context;
    SensorManager& manager = *SensorManager::requestManager(context);
    SensorHandler* const handler = manager.addHandler("OT", "ot", someURL());
    ASSERT_NE(handler, nullptr);
    EXPECT_EQ(&handler->type(), SensorHandlerType::find("OT"));
    EXPECT_NE(std::unique_ptr<Observer>(handler->createUpdateObserver(nullptr)), nullptr);
    EXPECT_EQ(log.texts(), Texts{}) << "below the fatal level";
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
        const OTSensorHandler copy(made);
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

TEST(ORDANKind, BindsASensorWhoseLabelItKnowsAtOnce)
{
    const LogCapture log(0);
    const int before = ORDANSensorHandler::_objCount;
    {
        ORDANSensorHandler handler("ordan");
        addLabel(handler, "head", "1");
        ORDANSensorHandler copy(handler);
        EXPECT_EQ(ORDANSensorHandler::_objCount, before + 2);
        const auto known = makeSensor("SFFloat", "head");
        const auto unknown = makeSensor("SFFloat", "HEAD");
        const auto boundTo = [](SensorHandler& from, DirectSensor* sensor) {
            return std::unique_ptr<SensorHandler::UpdateObserver>(from.createUpdateObserver(sensor))->getSensor();
        };
        EXPECT_EQ(boundTo(handler, known.get()), known.get());
        EXPECT_EQ(boundTo(handler, unknown.get()), nullptr);
        EXPECT_EQ(boundTo(copy, known.get()), nullptr) << "labels are not copied";
    }
    EXPECT_EQ(ORDANSensorHandler::_objCount, before);
}

TEST(TORVAKind, KeepsParametersAndServesNobody)
{
    const LogCapture log;
    TORVASensorHandler handler("torva");
    EXPECT_EQ(handler.createUpdateObserver(makeSensor("SFFloat", "s").get()), nullptr);
    EXPECT_EQ(handler.createOutputUpdateObserver(nullptr), nullptr);
    EXPECT_FALSE(handler.update(1.0));
    addParameter(handler, "P", "1");
    addParameter(handler, "P", "2");
    addLabel(handler, "L", "V");
    EXPECT_EQ(handler.getParameters(), (std::map<std::string, std::string>{{"P", "2"}}));
    EXPECT_TRUE(TORVASensorHandler(handler).getParameters().empty());
    std::string name = "P";
    std::string other = "L";
    handler.removeParameter(name, other);
    handler.removeParameter(name, other);
    EXPECT_TRUE(handler.getParameters().empty());
    EXPECT_EQ(log.texts(), Texts());
    EXPECT_TRUE(TORVASensorHandler::UpdateObserver().init("value", false));
}
