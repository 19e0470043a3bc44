#include "trovio/modules/NodeModuleFile.h"

#include "trovio/Exception.h"
#include "trovio/messages/ExceptionText.h"
#include "trovio/modules/LibraryFile.h"
#include <algorithm>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <sstream>
#include <string_view>

namespace Trovio {

namespace {

constexpr std::string_view filePrefix = "trovio-node-";
constexpr std::string_view fileSuffix = ".so";

/// The name of the library whose absence the loader complains about; empty for any other complaint.
std::string missingLibrary(std::string_view problem)
{
    const std::size_t end = problem.find(": cannot open shared object file");
    const std::string_view name = end == std::string_view::npos ? std::string_view() : problem.substr(0, end);
    return std::string(name.find('/') == std::string_view::npos ? name : std::string_view());
}

[[noreturn]] void failToLoad(const std::string& path, const std::string& problem)
{
    std::string cure = "rebuild or reinstall the module";
    if (const std::string library = missingLibrary(problem); !library.empty()) {
        const std::string package = packageOfLibrary(library);
        cure = "install the library " + library;
        if (!package.empty())
            cure += ", in Debian the package " + package;
    }
    throw InvalidNodeException("module '" + path + "' cannot be loaded: " + problem + "; " + cure);
}

void* openLibrary(const std::string& path)
{
    if (const std::string fault = faultOfLibrary(path); !fault.empty())
        failToLoad(path, fault);
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        const char* problem = dlerror();
        failToLoad(path, problem ? problem : "unknown problem");
    }
    return library;
}

int keepOpen(void*)
{
    return 0;
}

} // namespace

NodeModuleFile::NodeModuleFile(const std::string& path)
    : _path(path), _library(openLibrary(path), dlclose), _module(readModule())
{
    checkTypes();
    if (_module->_resident)
        _library.get_deleter() = keepOpen;
}

NodeModuleFile::~NodeModuleFile() = default;

const NodeModule* NodeModuleFile::callEntry() const
{
    using Entry = const NodeModule* (*)();
    const auto entry = reinterpret_cast<Entry>(dlsym(_library.get(), "trovioNodeModule"));
    try {
        return entry ? entry() : nullptr;
    } catch (...) {
        throw InvalidNodeException("module '" + _path + "' failed in its trovioNodeModule(): " +
                                   describeCurrentException() + "; correct the module, or remove the file");
    }
}

const NodeModule* NodeModuleFile::readModule() const
{
    const NodeModule* module = callEntry();
    if (!module)
        throw InvalidNodeException("'" + _path +
                                   "' is not a node module: it has no trovioNodeModule(); remove the file");
    if (module->_version != NodeModule::Version)
        throw InvalidNodeException("module '" + _path + "' has interface version " + std::to_string(module->_version) +
                                   ", this program needs " + std::to_string(NodeModule::Version) +
                                   "; rebuild or update the module");
    return module;
}

void NodeModuleFile::checkTypes() const
{
    for (const NodeTypeEntry& type : _module->_types) {
        if (!type._name || !type._description || !type._create || !isValidName(type._name))
            throw InvalidNodeException(
                "module '" + _path + "' offers a type without a valid name, description or factory; correct its table");
    }
}

std::vector<std::string> NodeModuleFile::searchFolders()
{
    std::vector<std::string> folders;
    const char* path = std::getenv("TROVIO_NODE_PATH");
    std::istringstream elements(path ? path : "");
    for (std::string folder; std::getline(elements, folder, ':');) {
        if (!folder.empty())
            folders.push_back(folder);
    }
    Dl_info self{};
    if (dladdr(reinterpret_cast<const void*>(&packageOfLibrary), &self) != 0 && self.dli_fname)
        folders.push_back((std::filesystem::path(self.dli_fname).parent_path() / "trovio").string());
    return folders;
}

std::string NodeModuleFile::fileNameFor(const std::string& typeName)
{
    return std::string(filePrefix) + typeName + std::string(fileSuffix);
}

std::string NodeModuleFile::typeNameOf(const std::string& fileName)
{
    const std::size_t around = filePrefix.size() + fileSuffix.size();
    if (fileName.size() <= around || !fileName.starts_with(filePrefix) || !fileName.ends_with(fileSuffix))
        return {};
    const std::string name = fileName.substr(filePrefix.size(), fileName.size() - around);
    return isValidName(name) ? name : std::string();
}

bool NodeModuleFile::isValidName(const std::string& typeName)
{
    constexpr std::string_view allowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
    return !typeName.empty() && typeName.find_first_not_of(allowed) == std::string::npos;
}

std::string packageOfLibrary(const std::string& soname)
{
    // Packages whose names leave the rule.
    static constexpr std::pair<std::string_view, const char*> exceptions[] = {{"libddsc.so.0", "libddsc0debian"}};
    const auto* exception = std::find_if(std::begin(exceptions), std::end(exceptions),
                                         [&soname](const auto& row) { return row.first == soname; });
    if (exception != std::end(exceptions))
        return exception->second;
    const std::size_t dot = soname.find(".so.");
    if (dot == std::string::npos || dot == 0)
        return {};
    std::string name = soname.substr(0, dot);
    const bool endsInDigit = name.back() >= '0' && name.back() <= '9';
    name += (endsInDigit ? "-" : "") + soname.substr(dot + 4);
    for (char& character : name) {
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
        else if (character == '_')
            character = '-';
    }
    return name;
}

} // namespace Trovio
