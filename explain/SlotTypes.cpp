#include "explain/SlotTypes.h"

#include "ostrel/FieldClass.h"
#include "sensorManager/FieldTypes.h"
#include "trovio/TypeName.h"

namespace Explain {

std::string slotTypeName(int code)
{
    std::string name = "none";
    Ostrel::withFieldType(code,
                          [&name]<class Row>(Row) { name = Trovio::TypeName<typename Row::SlotValue>::getName(); });
    return name;
}

std::string fieldTypeFor(const std::string& slotType)
{
    for (const Ostrel::FieldClass& fieldClass : Ostrel::FieldClass::all())
        if (slotTypeName(fieldClass.code()) == slotType)
            return fieldClass.name();
    return {};
}
} // namespace Explain
