#include "scene/file/ValueForm.h"

#include "ostrel/FieldTypes.h"
#include <algorithm>

namespace Scenes {
namespace {

constexpr char same[] = "as in a scene; null for what is no finite number";
constexpr char matrix3[] = "[9 numbers, row by row]", matrix4[] = "[16 numbers, row by row]";

constexpr ValueForm forms[] = {{1, "true or false", "as in a scene", "T, F or a number, where 0 is false"},
                               {3, "[red, green, blue]", same, "3 numbers, or one r"},
                               {5, "[red, green, blue, alpha]", same, "4 numbers, or one r"},
                               {7, "a number", same, "a number"},
                               {9, "a number", same, "a number"},
                               {11, "nothing: an image starts empty",
                                "{\"width\", \"height\", \"format\", \"bytes\"}, without its pixels",
                                "width, height, format and a blob"},
                               {13, "a whole number of 32 bits", "as in a scene", "a number"},
                               {15, matrix3, same, "9 numbers"},
                               {17, matrix3, same, "9 numbers"},
                               {19, matrix4, same, "16 numbers"},
                               {21, matrix4, same, "16 numbers"},
                               {23, "nothing: a node cannot be given", "the node's name or null", "not carried"},
                               {25, "[x, y, z, w], a quaternion", same, "4 numbers"},
                               {27, "a text", "as in a scene", "s"},
                               {29, "a number of seconds", same, "a number"},
                               {31, "[x, y]", same, "2 numbers"},
                               {33, "[x, y]", same, "2 numbers"},
                               {35, "[x, y, z]", same, "3 numbers"},
                               {37, "[x, y, z]", same, "3 numbers"},
                               {39, "[x, y, z, w]", same, "4 numbers"},
                               {41, "[x, y, z, w]", same, "4 numbers"}};

#define OSTREL_CODE(code, name, type) code,
constexpr int kinds[] = {OSTREL_FIELD_KINDS(OSTREL_CODE)};
#undef OSTREL_CODE
static_assert(std::ranges::equal(forms, kinds, {}, &ValueForm::_code), "each kind of fields has its row, in order");

const ValueForm& formOf(int code)
{
    return forms[(code - 1) / 2];
}

bool isMultiple(int code)
{
    return code % 2 == 0;
}
} // namespace

std::string sceneForm(int code)
{
    return (isMultiple(code) ? "a list of " : "") + std::string(formOf(code)._scene);
}

std::string jsonForm(int code)
{
    return (isMultiple(code) ? "a list, each " : "") + std::string(formOf(code)._json);
}

std::string oscForm(int code)
{
    return formOf(code)._osc + std::string(isMultiple(code) ? ", for each value" : "");
}
} // namespace Scenes
