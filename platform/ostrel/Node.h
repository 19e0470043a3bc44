#pragma once

#include "ostrel/BaseObject.h"
#include <cstdint>
#include <string>
#include <utility>

namespace Ostrel {

class Context;

/// What all nodes of one kind share. Outlives them.
class NodeType {
public:
    explicit NodeType(std::string name) : _name(std::move(name)) {}
    const std::string& getName() const { return _name; }

private:
    std::string _name;
};

/// Stages of a node's life. Only in Active and Updating do changed values travel as events with a time.
enum class NodeState : int {
    Created = 0, // in no context yet, or no longer
    Loading = 1, // in a context whose scene is still being built
    Active = 2,
    Updating = 3, // active, and several of its fields change together
};

/// A node of the scene: a type, a name, a place, and marks that tell which of its fields changed.
class Node : public BaseObject {
public:
    /// Bit in flags(): a field of this node changed since clearMarks().
    static constexpr std::uint32_t Marked = 4;

    explicit Node(const NodeType& type);
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    ~Node() override;

    const NodeType& type() const { return _type; }
    const std::string& getName() const { return _name; }
    void setName(const std::string& name) { _name = name; }
    /// Stands for the node where it has no name; unique in the process, e.g. "#17".
    const std::string& getIDStr() const { return _idStr; }
    /// The name, or the id where there is none.
    const std::string& getDisplayName() const { return _name.empty() ? _idStr : _name; }

    /// Null while the node belongs to no context.
    Context* context() const { return _context; }
    /// Moves the node to another context, or to none. The state becomes Active or Created accordingly.
    virtual void setContext(Context* context);

    NodeState state() const { return _state; }
    void setState(NodeState state) { _state = state; }
    bool isTraced() const { return _traced; }
    /// A traced node logs each change of a value.
    void setTraced(bool traced) { _traced = traced; }

    std::uint32_t flags() const { return _flags; }
    void setFlags(std::uint32_t bits) { _flags |= bits; }
    /// One bit for each field that changed since clearMarks().
    std::uint32_t changeMask() const { return _changeMask; }
    void setChanged(std::uint32_t bits) { _changeMask |= bits; }
    /// One bit for each field whose value is being sent right now.
    std::uint32_t isChangingMask() const { return _isChangingMask; }
    void setIsChanging(std::uint32_t bits, bool on)
    {
        _isChangingMask = on ? _isChangingMask | bits : _isChangingMask & ~bits;
    }

    bool isMarked() const { return (_flags & Marked) != 0; }
    /// Ends a round of changes: clears the marked flag and the change mask, and tells the parent.
    void clearMarks();
    /// Adds to the parent's number of marks. A node counts at its parent once for its own mark, and once while marks
    /// below it are more than none.
    void markParent(int marks);
    /// Marks that the nodes directly below this one have reported; 0 means that nothing changed below.
    int marksBelow() const { return _marksBelow; }

    Node* parent() const { return _parent; }
    /// The parent is not owned; it outlives the node or is replaced by null before it ends. Never the node itself or
    /// one below it.
    void setParent(Node* parent);

private:
    int ownMarks() const { return (isMarked() ? 1 : 0) + (_marksBelow > 0 ? 1 : 0); }

    const NodeType& _type;
    const std::string _idStr;
    std::string _name;
    Context* _context = nullptr;
    Node* _parent = nullptr;
    NodeState _state = NodeState::Created;
    bool _traced = false;
    std::uint32_t _flags = 0;
    std::uint32_t _changeMask = 0;
    std::uint32_t _isChangingMask = 0;
    int _marksBelow = 0;
};

} // namespace Ostrel
