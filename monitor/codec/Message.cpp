#include "monitor/codec/Message.h"

#include <algorithm>
#include <span>
#include <stdexcept>

namespace Monitor {

namespace {

struct Row {
    std::string_view _slotType;
    std::string_view _package;
    std::string_view _name;
    std::string_view _fields;
};

constexpr std::string_view own = "ostrel_msgs";
constexpr std::string_view imageFields = "std_msgs/Header header\nuint32 height\nuint32 width\nstring encoding\n"
                                         "uint8 is_bigendian\nuint32 step\nuint8[] data\n";

// One row for each element type: of its array, the message is made.
constexpr Row elements[] = {
    {"Bool", "std_msgs", "Bool", "bool data\n"},
    {"Color", own, "Color", "float32 r\nfloat32 g\nfloat32 b\n"},
    {"ColorRGBA", "std_msgs", "ColorRGBA", "float32 r\nfloat32 g\nfloat32 b\nfloat32 a\n"},
    {"Double", "std_msgs", "Float64", "float64 data\n"},
    {"Float", "std_msgs", "Float32", "float32 data\n"},
    {"Image", "sensor_msgs", "Image", imageFields},
    {"Long", "std_msgs", "Int64", "int64 data\n"},
    {"Matrix3d", own, "Matrix3d", "float64[9] elements\n"},
    {"Matrix3f", own, "Matrix3f", "float32[9] elements\n"},
    {"Matrix4d", own, "Matrix4d", "float64[16] elements\n"},
    {"Matrix4f", own, "Matrix4f", "float32[16] elements\n"},
    {"Rotation", "geometry_msgs", "Quaternion", "float64 x 0\nfloat64 y 0\nfloat64 z 0\nfloat64 w 1\n"},
    {"String", "std_msgs", "String", "string data\n"},
    {"Time", own, "Time", "float64 seconds\n"},
    {"Vec2d", own, "Vec2d", "float64 x\nfloat64 y\n"},
    {"Vec2f", own, "Vec2f", "float32 x\nfloat32 y\n"},
    {"Vec3d", "geometry_msgs", "Point", "float64 x\nfloat64 y\nfloat64 z\n"},
    {"Vec3f", "geometry_msgs", "Point32", "float32 x\nfloat32 y\nfloat32 z\n"},
    {"Vec4d", own, "Vec4d", "float64 x\nfloat64 y\nfloat64 z\nfloat64 w\n"},
    {"Vec4f", own, "Vec4f", "float32 x\nfloat32 y\nfloat32 z\nfloat32 w\n"},
};

/// Messages that others are made of.
constexpr Row parts[] = {
    {"", "builtin_interfaces", "Time", "int32 sec\nuint32 nanosec\n"},
    {"", "std_msgs", "Header", "builtin_interfaces/Time stamp\nstring frame_id\n"},
    {"", "geometry_msgs", "Vector3", "float64 x\nfloat64 y\nfloat64 z\n"},
    {"", "geometry_msgs", "Transform", "geometry_msgs/Vector3 translation\ngeometry_msgs/Quaternion rotation\n"},
    {"", "geometry_msgs", "TransformStamped",
     "std_msgs/Header header\nstring child_frame_id\ngeometry_msgs/Transform transform\n"},
};

std::string partName(const Row& row)
{
    return std::string(row._package) + "/" + std::string(row._name);
}

std::string messageName(std::string_view package, std::string_view name)
{
    return std::string(package) + "/msg/" + std::string(name);
}

/// Null for "float32" and the like.
const Row* findPart(std::string_view type)
{
    for (const auto& rows : {std::span<const Row>(elements), std::span<const Row>(parts)})
        for (const Row& row : rows)
            if (partName(row) == type)
                return &row;
    return nullptr;
}

/// Appends every message that these fields are made of, each once.
void addParts(std::string& text, std::string_view fields)
{
    while (!fields.empty()) {
        const std::string_view field = fields.substr(0, fields.find('\n'));
        fields.remove_prefix(std::min(field.size() + 1, fields.size()));
        const Row* const part = findPart(field.substr(0, field.find_first_of(" [")));
        if (!part)
            continue;
        const std::string head = std::string(80, '=') + "\nMSG: " + partName(*part) + "\n";
        if (text.find(head) != std::string::npos)
            continue;
        text += head + std::string(part->_fields);
        addParts(text, part->_fields);
    }
}

std::string wholeText(const std::string& fields)
{
    std::string text = fields;
    addParts(text, fields);
    return text;
}

/// An array of numbers where the message is a number, else of messages.
std::string arrayElement(const Row& row)
{
    const bool isSingle = std::ranges::count(row._fields, '\n') == 1 && row._fields.find('[') == std::string_view::npos;
    return isSingle ? std::string(row._fields.substr(0, row._fields.find(' '))) : partName(row);
}

} // namespace

Message messageOf(std::string_view slotType)
{
    const bool isArray = slotType.ends_with("[]");
    const std::string_view element = slotType.substr(0, slotType.size() - (isArray ? 2 : 0));
    const auto* const row = std::ranges::find(elements, element, &Row::_slotType);
    if (row == std::end(elements))
        throw std::out_of_range("no slot type: " + std::string(slotType));
    if (isArray)
        return {messageName(own, std::string(element) + "Array"), wholeText(arrayElement(*row) + "[] values\n")};
    return {messageName(row->_package, row->_name), wholeText(std::string(row->_fields))};
}

const Message& transformsMessage()
{
    static const Message message{messageName("tf2_msgs", "TFMessage"),
                                 wholeText("geometry_msgs/TransformStamped[] transforms\n")};
    return message;
}

} // namespace Monitor
