#include "fuzz/NodeTypes.h"

#include "nodes/filters/Clamp.h"
#include "nodes/filters/DeadZone.h"
#include "nodes/filters/OnChange.h"
#include "nodes/filters/OneEuro.h"
#include "nodes/filters/Scale.h"
#include "nodes/filters/convert/Align.h"
#include "nodes/filters/convert/Axes.h"
#include "nodes/filters/convert/Convert.h"
#include "nodes/filters/convert/Join.h"
#include "nodes/filters/convert/Split.h"
#include "nodes/generator/Generator.h"
#include "nodes/guard/Guard.h"
#include "nodes/osc/OscNode.h"
#include "nodes/serial/SerialNode.h"
#ifdef FUZZ_CONTROLLER
#include "nodes/controller/ControllerNode.h"
#endif
#ifdef FUZZ_DDS
#include "nodes/dds/DdsNode.h"
#endif
#ifdef FUZZ_MQTT
#include "nodes/mqtt/MqttNode.h"
#endif

namespace Fuzz {

const std::vector<const Trovio::NodeTypeEntry*>& nodeTypes()
{
    using namespace Trovio::Nodes;
    static const std::vector<const Trovio::NodeTypeEntry*> types{
        &OscNode::getEntry(),        &Generator::getEntry(),  &Guard::getEntry(),   &Align::getEntry(),
        &Axes::getEntry(),           &Clamp::getEntry(),      &Convert::getEntry(), &DeadZone::getEntry(),
        &Join::getEntry(),           &OnChange::getEntry(),   &OneEuro::getEntry(), &Scale::getEntry(),
        &Split::getEntry(),          &SerialNode::getEntry(),
#ifdef FUZZ_CONTROLLER
        &ControllerNode::getEntry(),
#endif
#ifdef FUZZ_DDS
        &DdsNode::getEntry(),
#endif
#ifdef FUZZ_MQTT
        &MqttNode::getEntry(),
#endif
    };
    return types;
}

} // namespace Fuzz
