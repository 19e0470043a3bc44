#include "SceneFixture.h"
#include "ostrel/FieldTypes.h"
#include "ostrel/Scene.h"
#include "sensorManager/TrovioSensorHandler.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/PassNode.h"
#include "tests/support/Says.h"
#include "trovio/NodeType.h"
#include "trovio/Root.h"
#include <functional>
#include <gtest/gtest.h>
#include <sstream>

namespace {

using Trovio::Root;

const std::string longText(100, 'x'); // longer than what a string holds without memory of its own

std::string pictureOf(const Trovio::NamespaceInfo& info)
{
    std::ostringstream text;
    text << info._label << "{";
    for (const auto& slot : info._slots)
        text << slot._label << " " << slot._home << " " << slot._typeName << "; ";
    for (const auto& route : info._routes) {
        text << route._from << ">" << route._to << " " << route._connections << " ";
        for (const auto& pair : route._pairs)
            text << pair._from << ">" << pair._to << " " << pair._reason << "; ";
    }
    for (const auto& route : info._externalRoutes)
        text << route._pattern << ">" << route._target << " " << route._slots << "; ";
    for (const auto& child : info._children)
        text << pictureOf(child);
    text << "}";
    return text.str();
}

/// A scene with sensors in both directions, plain ones and texts, with routes, and with nodes that pass values on.
class MemoryOut : public ::testing::Test {
protected:
    MemoryOut()
    {
        std::string problem;
        osg::osgLogP->setLogFile("/dev/null", problem); // what is lost for want of memory is not what is tested
        Root::init();
        Trovio::NodeType::add({"Pass", "", {}, [] { return std::unique_ptr<Trovio::Node>(new PassNode()); }});
        Root::get().addRoute("Context/in/*", "elsewhere/*");
        _handler = addHandler("first");
        const char* const routes[][2] = {
            {"out/*", "in/*"}, {"Pass/out", "Pass2/in"}, {"Pass2/out", "Pass/in"}, {"out/plain", "Pass/in"}};
        for (const auto& [from, to] : routes)
            addLabel(*_handler, from, to);
        _text = &add("SFString", "out/text", true);
        add("SFFloat", "out/plain", true);
        _received = &add("SFString", "in/text", false);
        add("SFFloat", "in/plain", false);
        addParameter(*_handler, "Pass", "");
    }
    ~MemoryOut() override
    {
        _scene.clear();
        manager().delHandler(_handler);
        Root::shutdown();
        std::string problem;
        osg::osgLogP->setLogFile("", problem);
    }

    SensorManager& manager() { return *SensorManager::requestManager(_scene.context()); }
    SensorHandler* addHandler(const std::string& name) { return manager().addHandler("Trovio", name, someURL()); }
    DirectSensor& add(std::string_view type, const std::string& label, bool output)
    {
        return _scene.add(makeSensor(type, label, output, 4));
    }

    std::string picture()
    {
        return pictureOf(Root::get().inspect()) + std::to_string(_scene.size()) + " " +
               std::to_string(BaseObject::_objCount) + (manager().findHandler("second") ? " second" : "");
    }

    /// Both work without a failure. With one, act has happened or has not, whatever it lets the caller know.
    void failEach(const std::function<void()>& act, const std::function<void()>& undo)
    {
        const std::string before = picture();
        act();
        const std::string after = picture();
        undo();
        ASSERT_EQ(picture(), before);
        ASSERT_NE(after, before);
        bool happened = true;
        std::uint64_t n = 1;
        for (; happened && n < 10'000; ++n) {
            bool threw = false;
            {
                const AllocationFailure failure(n);
                try {
                    act();
                } catch (const std::bad_alloc&) {
                    threw = true;
                }
                happened = failure.happened();
            }
            const std::string now = picture();
            ASSERT_TRUE(now == before || (!threw && now == after)) << n << ": " << now << "\nbefore: " << before;
            if (now == after)
                undo();
            ASSERT_EQ(picture(), before) << n;
        }
        EXPECT_FALSE(happened);
    }

    Scene _scene;
    SensorHandler* _handler = nullptr;
    DirectSensor* _text = nullptr;
    DirectSensor* _received = nullptr;
};

TEST_F(MemoryOut, HandlersComeWholeOrNotAtAll)
{
    const std::string name = "second";
    const Merid::URL url = someURL();
    auto& all = manager();
    failEach([&] { all.addHandler("Trovio", name, url); }, [&] { all.delHandler(name); });
}

TEST_F(MemoryOut, SensorsComeWholeOrNotAtAllAndGoWithoutMemory)
{
    const std::pair<const char*, const char*> rows[] = {
        {"SFFloat", "out/x"}, {"SFString", "in/x"}, {"SFVec3f", "in/plain2"}, {"SFString", "plain"}};
    add("SFFloat", "in/x2", false);
    for (const auto& [type, label] : rows) {
        DirectSensor* sensor = nullptr;
        const auto come = [&, &type = type, &label = label] { sensor = &add(type, label, *label == 'o'); };
        const auto go = [&] { _scene.remove(*sensor); };
        failEach(come, go);
        come();
        failEach(go, come);
        go();
    }
}

TEST_F(MemoryOut, NodesComeWholeOrNotAtAllAndGoWithoutMemory)
{
    std::string type = "Pass", label = "Pass2", settings = "", named = "label=Other";
    const auto come = [&] { _handler->addParameter(type, settings); };
    const auto go = [&] { _handler->removeParameter(label, settings); };
    failEach(come, go);
    failEach([&] { _handler->addParameter(type, named); },
             [&] {
                 std::string other = "Other";
                 _handler->removeParameter(other, settings);
             });
    come();
    failEach(go, come);
    // From here on the same one of the two joints that would close the loop is held back.
    _handler->removeParameter(type, settings);
    come();
    failEach([&] { _handler->removeParameter(type, settings); }, come);
}

TEST_F(MemoryOut, RoutesComeWholeOrNotAtAllAndGoWithoutMemory)
{
    addParameter(*_handler, "Pass", "");
    const std::pair<const char*, const char*> rows[] = {
        {"out/*", "in/*"}, {"out/plain", "Pass2/in"}, {"*/plain", "in/plain"}, {"Pass/out", "in/text"}};
    for (const auto& row : rows) {
        std::string from = row.first, to = row.second;
        const auto come = [&] { _handler->addLabel(from, to); };
        const auto go = [&] { _handler->removeLabel(from, to); };
        failEach(come, go);
        come();
        failEach(go, come);
        go();
    }
}

TEST_F(MemoryOut, FrameLosesAtMostTheValuesOnTheirWay)
{
    const auto textOf = [](DirectSensor* sensor) -> std::string& {
        return dynamic_cast<SFString&>(*sensor->getField()).value();
    };
    const auto& slot =
        dynamic_cast<Trovio::BasicInSlot&>(*static_cast<TrovioSensorHandler*>(_handler)->getSlot(_received));
    const std::string before = picture();
    bool happened = true;
    for (std::uint64_t n = 1; happened && n < 1'000; ++n) {
        textOf(_text) = longText + std::to_string(n);
        {
            const AllocationFailure failure(n);
            _scene.frame(1.0);
            _scene.frame(2.0); // what went out comes in
            happened = failure.happened();
        }
        const auto counts = slot.getCounts();
        EXPECT_EQ(counts.stored, counts.overwritten + counts.taken + counts.waiting) << n;
        _scene.frame(3.0);
        _scene.frame(4.0);
        EXPECT_EQ(textOf(_received), textOf(_text)) << n;
        ASSERT_EQ(picture(), before) << n;
    }
    EXPECT_FALSE(happened);
}

} // namespace
