#pragma once

#include "base/Mutex.h"
#include "merid/URL.h"
#include "trovio/Explanation.h"
#include "trovio/Inspection.h"
#include "trovio/Labels.h"
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Trovio {

class BasicInSlot;
class BasicOutSlot;
class Node;
class Scope;

/// Holds slots under labels, routes between them, and child namespaces.
/// Scope:     a namespace sees its own slots, and those of its children that their external routes show to it, under
///            the label that the external route gives them.
/// Routes:    are standing rules. They connect an out-slot with an in-slot as soon as both are seen, and disconnect
///            them when one goes.
/// Ownership: owns its children and only refers to its slots: remove a slot before deleting it.
/// Memory:    each operation either happens or, when it throws for want of memory, has not happened; taking out and
///            removing need none.
/// Threads:   any thread; one lock guards the whole tree and is never held while a node starts, stops or is
///            configured. Whoever removes a namespace sees to it that nobody else still uses its address.
class Namespace {
public:
    Namespace();
    /// Touches no slot: slots may be gone before the namespace that referred to them.
    virtual ~Namespace();
    Namespace(const Namespace&) = delete;
    Namespace& operator=(const Namespace&) = delete;

    /// What relative file names in the settings of this namespace are resolved against.
    void setBaseURL(const Merid::URL& url);
    Merid::URL getBaseURL() const; // empty before setBaseURL()

    /// Dirty: routes, nodes or settings changed since this was last set to false.
    void setDirty(bool dirty);
    bool isDirty() const;

    /// The label under which it stands in its parent; empty without a parent.
    std::string getLabel() const;

    /// Applies blank-separated name=value settings. A plain namespace has none, so only a blank text is valid.
    /// Throws InvalidFieldException and changes nothing.
    virtual void setFieldValues(const std::string& settings);

    /// Puts a child under label or, if that is taken, under the label with the lowest free number from 2 behind it.
    /// Returns the label used. Nodes in the child start once it stands under the root; if one throws from start(),
    /// the child is taken out again, deleted, and the exception goes on to the caller.
    /// Throws InvalidNamespaceException for null and for a label that is empty or longer than 1,024 bytes.
    std::string addNamespace(const std::string& label, std::unique_ptr<Namespace> child);

    /// The same for a node, under the label of its settings or else of its type. A node that was given no settings
    /// is configured with its defaults first. Throws InvalidNodeException for null.
    std::string addNamespace(std::unique_ptr<Node> node);

    /// Null if no child has this label. The namespace keeps ownership.
    Namespace* getNamespace(const std::string& label) const;

    /// Takes a child out: stops its nodes, undoes the connections that routes made to and in it, and hands it back.
    /// A child that is still starting, or that somebody else is removing, is not found, nor is one in such a child.
    /// Throws InvalidNamespaceException if no child has this label. Waits until the nodes have stopped.
    std::unique_ptr<Namespace> removeNamespace(const std::string& label);

    /// Connects every out-slot whose label matches from with the in-slot that to names. A '*' in from stands for any
    /// run of characters; each '*' in to is replaced by what the '*' of from matched, in turn. The same route added
    /// twice counts two. Throws Exception for a bad pattern: empty, longer than 1,024 bytes, or more '*' in to; and,
    /// with the loop spelled out, where records would come back into a node that passed them on. A pair of slots that
    /// closes such a loop later, when it appears, stays apart, with that reason and one message in the log.
    void addRoute(const std::string& from, const std::string& to);

    /// Takes one such route away and undoes its connections. An unknown route is reported in the log.
    void removeRoute(const std::string& from, const std::string& to);

    /// Shows every slot whose label matches pattern to the parent, under the label that target gives: '*' as in
    /// addRoute, {NamespaceLabel} this namespace's label there, {SlotLabel} the slot's label here.
    void addExternalRoute(const std::string& pattern, const std::string& target);
    void removeExternalRoute(const std::string& pattern, const std::string& target);

    /// Throws Exception, and changes nothing, for null and for a label that is taken, empty or longer than 1,024
    /// bytes. Connections that routes ask for are made before the call returns.
    virtual void addInSlot(const std::string& label, BasicInSlot* slot);
    virtual void addOutSlot(const std::string& label, BasicOutSlot* slot);

    /// Undoes every connection that routes made to the slot, then forgets it. An unknown label does nothing.
    virtual void removeSlot(const std::string& label);

    /// A copy of everything in and below this namespace, as it was at one moment, but for what belongs to tools.
    NamespaceInfo inspect() const;

    /// The slots that are seen here under the label, each with the activity of where it stands. Costs what these
    /// slots' own connections cost, unlike inspect().
    std::vector<SlotInfo> findSlots(const std::string& label) const;

    /// Whether records flow from one label seen here to another, through routes and nodes, and if not, the first cause
    /// on the way. '*' as in addRoute: the first pair that does not flow is explained. A record older than staleAfter,
    /// in seconds by its time stamp, is stale, and a reader that is so far behind does not read.
    /// Throws Exception for a bad pattern. Looks through the whole tree, so it is for people, not for every frame.
    Explanation explain(const std::string& from, const std::string& to, double staleAfter = 1.0) const;

private:
    friend class Node;
    friend class Root;
    using Children = std::map<std::string, std::unique_ptr<Namespace>>;

    /// Joining: linked, its nodes are starting. Leaving: its nodes are stopping.
    enum class Presence { Free, Joining, Standing, Leaving };

    /// Unlike the public operations these expect the tree lock to be held.
    std::string freeLabel(const std::string& wanted) OSTREL_REQUIRES(_treeLock);
    Children::iterator link(const std::string& label, std::unique_ptr<Namespace>& child) OSTREL_REQUIRES(_treeLock);
    void makeRoomToStop(Namespace& child) OSTREL_REQUIRES(_treeLock);
    std::unique_ptr<Namespace> unlink(Children::iterator position) noexcept OSTREL_REQUIRES(_treeLock);
    bool standsUnderRoot() const OSTREL_REQUIRES(_treeLock); // and is not leaving
    bool isInMotion() const OSTREL_REQUIRES(_treeLock);      // it or one above it is joining or leaving
    void startConnecting() OSTREL_REQUIRES(_treeLock);
    void stopConnecting() noexcept OSTREL_REQUIRES(_treeLock);
    void collectNodes(std::vector<Node*>& nodes) OSTREL_REQUIRES(_treeLock);
    std::unique_ptr<Namespace> takeOut(Children::iterator position) noexcept OSTREL_EXCLUDES(_treeLock);
    static void startAll(const std::vector<Node*>& nodes) OSTREL_EXCLUDES(_treeLock);
    static void stopAll(const std::vector<Node*>& nodes) noexcept OSTREL_EXCLUDES(_treeLock);
    NamespaceInfo inspectLocked() const OSTREL_REQUIRES(_treeLock);
    /// Unless only what belongs to a tool has changed.
    void setChanged(const std::string& label) OSTREL_REQUIRES(_treeLock) { _dirty = _dirty || !isForTools(label); }
    /// Calls visit(path, scope) for everything below, but for what belongs to tools.
    template <class Visit>
    void forEachBelow(const std::string& path, const Visit& visit) const OSTREL_REQUIRES(_treeLock);

    std::string adopt(const std::string& wanted, std::unique_ptr<Namespace> child) OSTREL_EXCLUDES(_treeLock);
    /// Takes out and deletes all children, and forgets all routes and slots. For the root, at shutdown.
    void clear() OSTREL_EXCLUDES(_treeLock);

    static Ostrel::Mutex _treeLock;
    Namespace* _parent OSTREL_GUARDED_BY(_treeLock) = nullptr;
    std::string _label OSTREL_GUARDED_BY(_treeLock);
    Presence _presence OSTREL_GUARDED_BY(_treeLock) = Presence::Free;
    Children _children OSTREL_GUARDED_BY(_treeLock);
    std::size_t _nodeCount OSTREL_GUARDED_BY(_treeLock) = 0; // nodes here and below
    std::vector<Node*> _toStop OSTREL_GUARDED_BY(_treeLock); // empty; has room for all of them
    // Up to which number labels of children are known to be taken, by the label that was wanted.
    std::map<std::string, unsigned long> _numbersTaken OSTREL_GUARDED_BY(_treeLock);
    const std::unique_ptr<Scope> _scope OSTREL_PT_GUARDED_BY(_treeLock);
    Merid::URL _baseURL OSTREL_GUARDED_BY(_treeLock);
    bool _dirty OSTREL_GUARDED_BY(_treeLock) = false;
};

} // namespace Trovio
