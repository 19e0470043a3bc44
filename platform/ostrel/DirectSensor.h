#pragma once

#include "ostrel/DirectSensorProc.h"
#include "ostrel/Node.h"
#include <cstdint>
#include <memory>
#include <string>

namespace Ostrel {

/// A node whose value comes from the world outside, or goes there.
/// Registered, once, exactly while it has both a context and a proc: the register subject is notified after it got
/// them, the unregister subject before it loses one of them or ends.
class DirectSensor : public Node {
public:
    /// Without proc.
    DirectSensor();
    /// With a proc for this field.
    explicit DirectSensor(std::unique_ptr<Field> field);
    ~DirectSensor() override;

    /// Under this label the sensor is known outside; an empty one keeps it unknown.
    const std::string& getLabel() const { return _label; }
    void setLabel(const std::string& label) { _label = label; }
    const std::string& getDescription() const { return _description; }
    void setDescription(const std::string& description) { _description = description; }
    /// Values that may wait for the next frame; 0 and 1 mean the newest only.
    std::uint32_t getBufferSize() const { return _bufferSize; }
    void setBufferSize(std::uint32_t size) { _bufferSize = size; }
    /// Whether the value is sent out instead of fed. Read whenever the sensor is serviced.
    bool isOutput() const { return _output; }
    void setOutput(bool output)
    {
        _turns += output != _output ? 1 : 0;
        _output = output;
    }
    /// How often any sensor of the process changed between in and out. The scene thread's only.
    static std::uint64_t turns() { return _turns; }

    /// Null when the sensor has none. The sensor owns it.
    DirectSensorProc* getDirectSensorProc() const { return _proc.get(); }
    /// Replaces the proc, null removes it; the sensor becomes its field's node.
    void setDirectSensorProc(std::unique_ptr<DirectSensorProc> proc);
    /// The proc's field; null without proc or field.
    Field* getField() const { return _proc ? _proc->getField() : nullptr; }

    /// An exception of a register observer passes on; the sensor is registered then all the same.
    void setContext(Context* context) override;
    bool isRegistered() const { return _registered; }

    /// The type of all direct sensors.
    static const NodeType& sensorType();

private:
    void registerSelf();
    void unregisterSelf();

    static std::uint64_t _turns;

    std::string _label;
    std::string _description;
    std::uint32_t _bufferSize = 0;
    bool _output = false;
    bool _registered = false;
    std::unique_ptr<DirectSensorProc> _proc;
};

} // namespace Ostrel
