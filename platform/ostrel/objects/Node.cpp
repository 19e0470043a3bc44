#include "ostrel/Node.h"

namespace Ostrel {

namespace {

std::string nextIdStr()
{
    static std::uint64_t last = 0;
    return "#" + std::to_string(++last);
}

} // namespace

Node::Node(const NodeType& type) : _type(type), _idStr(nextIdStr()) {}

Node::~Node()
{
    setParent(nullptr);
}

void Node::setContext(Context* context)
{
    _context = context;
    _state = context ? NodeState::Active : NodeState::Created;
}

void Node::clearMarks()
{
    if (isMarked())
        markParent(-1);
    _flags &= ~Marked;
    _changeMask = 0;
}

void Node::markParent(int marks)
{
    // A parent has one mark to pass on when it gets its first, and one to take back when it loses its last.
    for (Node* node = _parent; node && marks != 0; node = node->_parent) {
        const bool before = node->_marksBelow > 0;
        node->_marksBelow += marks;
        marks = (node->_marksBelow > 0 ? 1 : 0) - (before ? 1 : 0);
    }
}

void Node::setParent(Node* parent)
{
    markParent(-ownMarks());
    _parent = parent;
    markParent(ownMarks());
}

} // namespace Ostrel
