#include "nodes/filters/convert/Parts.h"

#include "nodes/relay/TypeChoices.h"

namespace Trovio::Nodes {

std::string compositeTypes()
{
    return typeChoices([]<class T>(TypeTag<T>) { return Composite<T>; });
}

bool readAsPose(const Settings& settings)
{
    const bool isPose = settings.choice("parts") == 1;
    if (isPose && !settings.text("type").starts_with("Matrix4"))
        throw settings.refusal("parts", "components with this type; pose with Matrix4f and Matrix4d");
    return isPose;
}

Setting partsSetting()
{
    return Setting::choice("parts", "components", "components|pose",
                           "each number, or 'position' and 'rotation' of a Matrix4");
}

} // namespace Trovio::Nodes
