#pragma once

#include "trovio/NodeModule.h"
#include <memory>
#include <string>
#include <vector>

namespace Trovio {

/// An open module whose version fits. Closes with the object, unless the module wants to stay.
class NodeModuleFile {
public:
    /// Throws InvalidNodeException for a file that is no fitting module, with a text that says what to do.
    explicit NodeModuleFile(const std::string& path);
    ~NodeModuleFile();
    NodeModuleFile(const NodeModuleFile&) = delete;
    NodeModuleFile& operator=(const NodeModuleFile&) = delete;

    const std::string& getPath() const { return _path; }
    std::span<const NodeTypeEntry> getTypes() const { return _module->_types; }

    /// The folders in which modules are looked for, in order.
    static std::vector<std::string> searchFolders();
    /// The file name of the module of a type. The name must be valid.
    static std::string fileNameFor(const std::string& typeName);
    /// The type name in a module's file name; empty for any other file name.
    static std::string typeNameOf(const std::string& fileName);
    /// [A-Za-z0-9_]+
    static bool isValidName(const std::string& typeName);

private:
    const NodeModule* readModule() const;
    const NodeModule* callEntry() const;
    void checkTypes() const;

    const std::string _path;
    std::unique_ptr<void, int (*)(void*)> _library;
    const NodeModule* _module;
};

/// Which Debian package holds a shared library, by the naming rules of that system: "liblo.so.7" is in "liblo7".
/// Empty for a name that is no versioned library's.
std::string packageOfLibrary(const std::string& soname);

} // namespace Trovio
