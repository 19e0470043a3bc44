// Prints values of all slot types, each as a line of JSON: its type, its message in hexadecimal digits, the text of the
// message's type, and the value as the host shows it.
#include "monitor/codec/Message.h"
#include "monitor/codec/SlotCodec.h"
#include "tests/monitor/AllValues.h"

#include <iostream>
#include <nlohmann/json.hpp>

using namespace Monitor;

namespace {

std::string hexOf(std::span<const std::byte> bytes)
{
    std::string digits;
    for (const std::byte byte : bytes)
        for (const unsigned shift : {4U, 0U})
            digits += "0123456789abcdef"[std::to_integer<unsigned>(byte) >> shift & 15U];
    return digits;
}

void print(const SlotCodec& codec, const Bytes& message)
{
    std::string json, problem;
    if (!codec.toJson(message, json, problem))
        throw std::runtime_error(problem);
    const nlohmann::json line = {{"type", codec.slotType()},
                                 {"schemaName", codec.schemaName()},
                                 {"schema", codec.schemaText()},
                                 {"message", hexOf(message)},
                                 {"json", json}};
    std::cout << line.dump() << '\n';
}

} // namespace

int main()
{
    Trovio::forEachSlotType([]<class T>(Trovio::TypeTag<T>) {
        for (const T& value : allValues<T>())
            print(*SlotCodec::find(Trovio::TypeName<T>::getName()), encoded(value));
    });
}
