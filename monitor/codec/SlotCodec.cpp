#include "monitor/codec/SlotCodec.h"

#include "monitor/codec/Encode.h"
#include "monitor/codec/JsonReader.h"
#include "monitor/codec/JsonWriter.h"
#include "monitor/codec/Message.h"
#include "trovio/OutSlot.h"
#include "trovio/SlotTypes.h"

#include <algorithm>

namespace Monitor {

namespace {

template <class T>
class Source final : public AnySource {
public:
    explicit Source(const std::string& name) : _slot(name) {}

    Trovio::BasicOutSlot& slot() override { return _slot; }

    bool write(std::span<const std::byte> message, const Trovio::Time& stamp, std::string& problem) override
    {
        T value{};
        const bool isRead = decode(message, value, problem);
        if (isRead)
            _slot.push(Trovio::Data<T>(value, stamp));
        return isRead;
    }

private:
    Trovio::OutSlot<T> _slot;
};

/// What a handle stands for: text needs no object from a pool.
template <class T>
struct PlainValue {
    using Type = T;
};
template <class T>
struct PlainValue<Trovio::SmartPtr<T>> {
    using Type = T;
};

template <class T>
class TypedCodec final : public SlotCodec {
public:
    TypedCodec() : _slotType(Trovio::TypeName<T>::getName()), _message(messageOf(_slotType)) {}

    std::string_view slotType() const override { return _slotType; }
    std::string_view schemaName() const override { return _message._name; }
    const std::string& schemaText() const override { return _message._text; }

    bool toJson(std::span<const std::byte> message, std::string& json, std::string& problem) const override
    {
        Plain value{};
        const bool isRead = decode(message, value, problem);
        json.clear();
        if (isRead)
            appendJson(json, value);
        return isRead;
    }

    bool fromJson(const nlohmann::json& json, Bytes& message, std::string& problem) const override
    {
        Plain value{};
        JsonReader reader;
        const bool isRead = reader.get(json, value);
        if (isRead)
            encode(Trovio::Data<Plain>(value, {}), message);
        else
            problem = reader.problem() + "; a value of type " + _slotType + " is " + jsonForm<Plain>();
        return isRead;
    }

    std::unique_ptr<AnySource> makeSource(const std::string& name) const override
    {
        return std::make_unique<Source<T>>(name);
    }

private:
    using Plain = typename PlainValue<T>::Type;

    const std::string _slotType;
    const Message _message;
};

template <class T>
const SlotCodec* codecOf()
{
    static const TypedCodec<T> codec;
    return &codec;
}

std::vector<const SlotCodec*> allCodecs()
{
    std::vector<const SlotCodec*> codecs;
    Trovio::forEachSlotType([&codecs]<class T>(Trovio::TypeTag<T>) { codecs.push_back(codecOf<T>()); });
    return codecs;
}

} // namespace

std::span<const SlotCodec* const> SlotCodec::all()
{
    static const std::vector<const SlotCodec*> codecs = allCodecs();
    return codecs;
}

const SlotCodec* SlotCodec::find(std::string_view slotType)
{
    const auto found = std::ranges::find(all(), slotType, &SlotCodec::slotType);
    return found == all().end() ? nullptr : *found;
}

} // namespace Monitor
