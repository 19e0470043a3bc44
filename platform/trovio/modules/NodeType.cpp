#include "trovio/NodeType.h"

#include "trovio/Exception.h"
#include "trovio/Node.h"
#include "trovio/messages/ExceptionText.h"
#include "trovio/messages/FrameworkLog.h"
#include "trovio/messages/NearestName.h"
#include "trovio/modules/NodeModuleFile.h"
#include <algorithm>
#include <filesystem>
#include <map>
#include <new>
#include <optional>
#include <set>

namespace Trovio {

using Ostrel::LockGuard;

namespace {

struct RegisteredType {
    NodeTypeEntry _entry;
    std::shared_ptr<NodeModuleFile> _module; // null for a type of the program itself
};

struct Registry {
    Ostrel::Mutex _lock{Ostrel::LockRank::Registry};
    std::map<std::string, RegisteredType> _types OSTREL_GUARDED_BY(_lock);
};

/// Never destroyed: types are looked up for as long as the process runs.
Registry& registry()
{
    static auto* const instance = new Registry;
    return *instance;
}

std::string joined(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "'" : ", '") + name + "'";
    return text;
}

std::optional<RegisteredType> find(const std::string& name)
{
    Registry& types = registry();
    const LockGuard guard(types._lock);
    const auto found = types._types.find(name);
    return found == types._types.end() ? std::nullopt : std::optional(found->second);
}

/// The module that is called like the type; the first in the order of the folders, or empty.
std::filesystem::path findFile(const std::string& typeName)
{
    for (const std::string& folder : NodeModuleFile::searchFolders()) {
        const auto path = std::filesystem::path(folder) / NodeModuleFile::fileNameFor(typeName);
        std::error_code ignored;
        if (std::filesystem::exists(path, ignored))
            return path;
    }
    return {};
}

/// Whether the module must leave a type to another one that has the type's name, so that it does not matter which of
/// the two is loaded first.
bool belongsElsewhere(const NodeTypeEntry& entry, const NodeModuleFile& module)
{
    const std::filesystem::path file = findFile(entry._name);
    if (file.empty() || file == module.getPath())
        return false;
    logMessage(osg::LogWarning, std::string("node type '") + entry._name + "' of module '" + module.getPath() +
                                    "' is not used: a module of that name exists at '" + file.string() + "'");
    return true;
}

/// Adds the types of a module; those whose names are taken stay as they were.
void enlist(const std::shared_ptr<NodeModuleFile>& module)
{
    Registry& types = registry();
    for (const NodeTypeEntry& entry : module->getTypes()) {
        if (belongsElsewhere(entry, *module))
            continue;
        const LockGuard guard(types._lock);
        const auto [place, added] = types._types.try_emplace(entry._name, RegisteredType{entry, module});
        const auto& owner = place->second._module;
        if (!added && (!owner || owner->getPath() != module->getPath()))
            logMessage(osg::LogWarning,
                       std::string("node type '") + entry._name + "' of module '" + module->getPath() +
                           "' is not used: " + (owner ? "module '" + owner->getPath() + "'" : "the program") +
                           " has a type of this name already");
    }
}

/// The types whose modules are there.
std::set<std::string> namesOfFiles()
{
    std::set<std::string> names;
    for (const std::string& folder : NodeModuleFile::searchFolders()) {
        std::error_code problem;
        for (std::filesystem::directory_iterator file(folder, problem), end; !problem && file != end;
             file.increment(problem)) {
            if (const auto name = NodeModuleFile::typeNameOf(file->path().filename().string()); !name.empty())
                names.insert(name);
        }
    }
    return names;
}

/// "; allowed: A, B; nearest: 'B'": the end of a message about a name that no type has.
std::string knownNames(const std::string& name)
{
    const std::vector<std::string> names = NodeType::names();
    std::string text;
    for (const std::string& known : names)
        text += (text.empty() ? "; allowed: " : ", ") + known;
    return text + nearestHint(name, names);
}

RegisteredType load(const std::string& name)
{
    const std::filesystem::path path = findFile(name);
    if (path.empty())
        throw InvalidNodeException("node type '" + name + "' is not known" + knownNames(name) + "; no " +
                                   NodeModuleFile::fileNameFor(name) + " in " +
                                   joined(NodeModuleFile::searchFolders()) +
                                   "; check the name, install its module, or name its folder in TROVIO_NODE_PATH");
    enlist(std::make_shared<NodeModuleFile>(path.string()));
    if (auto type = find(name))
        return *std::move(type);
    throw InvalidNodeException("module '" + path.string() + "' holds no node type '" + name +
                               "'; rebuild it, or remove the file");
}

void checkName(const std::string& name)
{
    if (!NodeModuleFile::isValidName(name))
        throw InvalidNodeException("'" + name + "' is not a valid node type name; allowed are letters, digits and '_'");
}

/// Loads every module that can be found; the problem of each that cannot be loaded, by the name of its type.
std::vector<NodeTypeInfo> loadAll()
{
    std::vector<NodeTypeInfo> failed;
    for (const std::string& name : namesOfFiles()) {
        try {
            if (!find(name))
                load(name);
        } catch (const InvalidNodeException& problem) {
            failed.push_back({name, {}, {}, {}, problem.getMessage()});
        }
    }
    return failed;
}

} // namespace

std::unique_ptr<Node> NodeType::newInstance(const std::string& name)
{
    checkName(name);
    auto type = find(name);
    if (!type)
        type = load(name);
    std::unique_ptr<Node> node;
    try {
        node = type->_entry._create();
    } catch (const std::bad_alloc&) {
        throw; // says nothing of the type
    } catch (...) {
        throw InvalidNodeException("node type '" + name + "' could not be built: " + describeCurrentException());
    }
    if (!node)
        throw InvalidNodeException("node type '" + name + "' could not be built: its factory made nothing");
    node->setType(type->_entry);
    node->_module = type->_module;
    return node;
}

void NodeType::add(const NodeTypeEntry& type)
{
    checkName(type._name);
    if (!type._create)
        throw InvalidNodeException(std::string("node type '") + type._name + "' has no factory");
    Registry& types = registry();
    const LockGuard guard(types._lock);
    if (!types._types.try_emplace(type._name, RegisteredType{type, nullptr}).second)
        throw InvalidNodeException(std::string("node type '") + type._name + "' exists already; use another name");
}

void NodeType::remove(const std::string& name)
{
    Registry& types = registry();
    const LockGuard guard(types._lock);
    const auto found = types._types.find(name);
    if (found != types._types.end() && !found->second._module)
        types._types.erase(found);
}

std::vector<NodeTypeInfo> NodeType::list()
{
    std::vector<NodeTypeInfo> infos = loadAll();
    Registry& types = registry();
    {
        const LockGuard guard(types._lock);
        for (const auto& [name, type] : types._types)
            infos.push_back({name,
                             type._entry._description,
                             {type._entry._settings.begin(), type._entry._settings.end()},
                             type._module ? type._module->getPath() : "built in",
                             {}});
    }
    std::sort(infos.begin(), infos.end(), [](const auto& left, const auto& right) { return left._name < right._name; });
    return infos;
}

std::vector<std::string> NodeType::names()
{
    std::set<std::string> names = namesOfFiles();
    Registry& types = registry();
    const LockGuard guard(types._lock);
    for (const auto& [name, type] : types._types)
        names.insert(name);
    return {names.begin(), names.end()};
}

void NodeType::shutdown()
{
    std::map<std::string, RegisteredType> gone;
    {
        Registry& types = registry();
        const LockGuard guard(types._lock);
        gone.swap(types._types);
    }
    std::set<std::shared_ptr<NodeModuleFile>> modules;
    for (const auto& [name, type] : gone) {
        if (type._module)
            modules.insert(type._module);
    }
    gone.clear();
    // A node runs code of its module to its very end, so the last node must not be what closes it.
    static auto* const kept = new std::vector<std::shared_ptr<NodeModuleFile>>; // open until the process ends
    for (const auto& module : modules) {
        if (module.use_count() == 1)
            continue;
        logMessage(osg::LogWarning, "module '" + module->getPath() +
                                        "' stays loaded: " + std::to_string(module.use_count() - 1) +
                                        " of its nodes are still there; delete them before the shutdown");
        kept->push_back(module);
    }
}

} // namespace Trovio
