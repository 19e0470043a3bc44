#pragma once

#include "nodes/mqtt/JsonPayload.h"
#include "nodes/mqtt/MqttClient.h"
#include "nodes/shared/SlotList.h"

namespace Trovio::Nodes {

/// One entry of the settings in and out: "house/lamp Bool", or a member of a JSON payload, "house/room#/temperature
/// Float".
struct MqttTopic {
    std::string _topic;
    std::string _pointer; // empty: all of the payload
    ListedSlot _slot;     // its label is topic and pointer together
};

/// What an MQTT node is to do.
struct MqttSettings {
    Endpoint _broker;
    MqttConnection _connection;
    std::string _user, _passwordFile; // empty ones are left out
    std::vector<MqttTopic> _in, _out;
    int _quality = 0;           // of service, 0 to 2
    bool _retain = false;       // the broker is to keep what is sent
    bool _takesRetained = true; // what the broker has kept is taken
    PayloadForm _form;
    unsigned _queue = 1; // records that may wait in each slot of _out
};

std::span<const Setting> mqttSettingRows();

/// Throws InvalidFieldException for what the rows cannot say.
MqttSettings readMqttSettings(const Settings& settings);

} // namespace Trovio::Nodes
