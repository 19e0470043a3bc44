// Prints values of all slot types, and poses, each as a line of JSON: its type, its message in hexadecimal digits, the
// text of the message's type, and the value as the host shows it.
#include "monitor/codec/Message.h"
#include "monitor/codec/Poses.h"
#include "monitor/codec/SlotCodec.h"
#include "tests/monitor/AllValues.h"
#include "tests/web/HexDigits.h"

#include <iostream>
#include <nlohmann/json.hpp>

using namespace Monitor;

namespace {

void print(std::string_view type, std::string_view schemaName, const std::string& schema, const Bytes& message,
           const std::string& json)
{
    const nlohmann::json line = {
        {"type", type}, {"schemaName", schemaName}, {"schema", schema}, {"message", hexOf(message)}, {"json", json}};
    std::cout << line.dump() << '\n';
}

void print(const SlotCodec& codec, const Bytes& message)
{
    std::string json, problem;
    if (!codec.toJson(message, json, problem))
        throw std::runtime_error(problem);
    print(codec.slotType(), codec.schemaName(), codec.schemaText(), message, json);
}

template <class T>
void note(Poses& poses, const std::string& label, const T& value, double stamp)
{
    poses.note(label, *SlotCodec::find(Trovio::TypeName<T>::getName()), encoded(value), Trovio::Time(stamp));
}

void printPoses()
{
    Poses poses;
    note(poses, "A/position", Trovio::Vec3<float>(1, 2, 3), 5);
    note(poses, "A/rotation", Trovio::Rotation(0, 1, 0, 0), -6.5);
    note(poses, "place", Trovio::Matrix4<double>(), 7);
    Bytes message;
    poses.take(message);
    print("poses", transformsMessage()._name, transformsMessage()._text, message,
          R"([[[[-7,500000000],"world"],"A",[[1,2,3],[0,1,0,0]]],[[[7,0],"world"],"place",[[0,0,0],[0,0,0,1]]]])");
}

} // namespace

int main()
{
    printPoses();
    Trovio::forEachSlotType([]<class T>(Trovio::TypeTag<T>) {
        for (const T& value : allValues<T>())
            print(*SlotCodec::find(Trovio::TypeName<T>::getName()), encoded(value));
    });
}
