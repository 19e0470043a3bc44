#include "ostrel/FieldTypes.h"

#include "ostrel/FieldClass.h"
#include <algorithm>
#include <array>

namespace Ostrel {

#define OSTREL_INSTANTIATE(CODE, NAME, TYPE)                                                                           \
    template class SingleField<CODE, TYPE>;                                                                            \
    template class MultiField<CODE + 1, TYPE>;
OSTREL_FIELD_KINDS(OSTREL_INSTANTIATE)
#undef OSTREL_INSTANTIATE

namespace {

template <class F>
std::unique_ptr<Field> make()
{
    return std::make_unique<F>();
}

// find() goes by it.
#define OSTREL_CODE(CODE, NAME, TYPE) CODE,
constexpr int kindCodes[] = {OSTREL_FIELD_KINDS(OSTREL_CODE)};
#undef OSTREL_CODE

constexpr bool areCodesInOrder()
{
    int expected = -1;
    return std::ranges::all_of(kindCodes, [&expected](int code) { return code == (expected += 2); });
}
static_assert(areCodesInOrder(), "each kind of fields has the next odd code");

} // namespace

std::span<const FieldClass> FieldClass::all()
{
#define OSTREL_CLASS_ROWS(CODE, NAME, TYPE)                                                                            \
    FieldClass(CODE, "SF" #NAME, make<SF##NAME>), FieldClass(CODE + 1, "MF" #NAME, make<MF##NAME>),
    static const std::array table{OSTREL_FIELD_KINDS(OSTREL_CLASS_ROWS)};
#undef OSTREL_CLASS_ROWS
    return table;
}

const FieldClass* FieldClass::find(int code)
{
    const auto classes = all();
    if (code < 1 || code > static_cast<int>(classes.size()))
        return nullptr;
    return &classes[static_cast<std::size_t>(code - 1)];
}

const FieldClass* FieldClass::find(std::string_view name)
{
    const auto classes = all();
    const auto found =
        std::find_if(classes.begin(), classes.end(), [name](const FieldClass& row) { return row.name() == name; });
    return found == classes.end() ? nullptr : &*found;
}

const std::string& fieldTypeName(int code)
{
    return FieldClass::find(code)->name();
}

} // namespace Ostrel
