#include "nodes/relay/TypeChoices.h"

namespace Trovio::Nodes {

void addChoice(std::string& choices, const std::string& name)
{
    if (!choices.empty())
        choices += '|';
    choices += name;
}

} // namespace Trovio::Nodes
