#pragma once

#include "nodes/osc/packet/OscPacket.h"
#include <string>

namespace Trovio::Nodes {

/// Guesses what the arguments of messages mean, and so which entry of 'in' would take them: three floats may be a
/// position, four of norm 1 a rotation. Looks at messages of one address, the more the better.
class OscGuess {
public:
    void note(const OscMessage& message);

    /// "i:3 Vec3f:position Rotation:rotation"; "Vec3f:value1 Bool:value2" of arguments of several kinds, with "_" for
    /// those that make no value. Empty where no slot would get one.
    /// isFixed: whether the arguments in front that seem to tell devices apart are to be as in the last message, or
    /// any.
    std::string getItems(bool isFixed = true) const;

    /// What to say in front of them.
    const char* getTitle() const;

    /// The arguments in front of a message that seem to tell devices apart, as items: texts before numbers, a whole
    /// number before floats. Empty where there are none.
    static std::string findChoice(const OscMessage& message);

private:
    std::string getSlots() const;
    std::string getMixedSlots() const;

    std::string _tags; // of the slots' arguments
    std::string _choice;
    std::size_t _chosenBy = 0;             // arguments of the choice
    bool _isUnit = true, _isColour = true; // all so far, where there are four numbers
};

/// The entry as it is written in settings: in='/tracker i:3 Vec3f'.
std::string quoteOscEntries(std::string_view entries);

} // namespace Trovio::Nodes
