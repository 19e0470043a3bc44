#include "host/cli/Verbs.h"

#include "explain/NodeTypeJson.h"
#include "explain/SlotTypes.h"
#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"
#include "host/ExitCode.h"
#include "ostrel/FieldClass.h"
#include "scene/file/ValueForm.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"
#include "trovio/Root.h"

#include <algorithm>
#include <cstdio>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

bool wanted(const Options& options, std::string_view name)
{
    return options._names.empty() || std::ranges::find(options._names, name) != options._names.end();
}

// Says which of the asked names there are not. NothingFound if there is any.
int missing(const Options& options, const char* what, const std::vector<std::string_view>& known)
{
    int code = Done;
    for (const std::string& name : options._names) {
        if (std::ranges::find(known, name) != known.end())
            continue;
        std::fprintf(stderr, "no %s is called %s; there are: %s%s\n", what, inQuotes(name).c_str(),
                     listed(known).c_str(), nearestHint(name, known).c_str());
        code = NothingFound;
    }
    return code;
}

void printSetting(const Trovio::Setting& setting)
{
    const std::string initial = setting._default == nullptr   ? "must be given"
                                : setting._default[0] == '\0' ? "default: empty"
                                                              : "default: " + std::string(setting._default);
    std::printf("    %-14s %s (%s; %s)\n", setting._name, setting._meaning, Trovio::describeAllowed(setting).c_str(),
                initial.c_str());
}

void printNode(const Trovio::NodeTypeInfo& type)
{
    std::printf("%s: %s\n    from %s\n", type._name.c_str(), type._description.c_str(), escaped(type._origin).c_str());
    if (!type._problem.empty())
        std::printf("    cannot be used: %s\n", escaped(type._problem, 400).c_str());
    for (const Trovio::Setting& setting : type._settings)
        printSetting(setting);
}

} // namespace

int nodesVerb(const Options& options)
{
    Trovio::Root::init();
    const auto types = Trovio::NodeType::list();
    const bool isJson = options._format == Format::Json;
    std::vector<std::string_view> known;
    for (const Trovio::NodeTypeInfo& type : types) {
        known.push_back(type._name);
        if (!wanted(options, type._name))
            continue;
        if (isJson)
            std::fputs(nodeTypeLine(type).c_str(), stdout);
        else
            printNode(type);
    }
    if (options._names.empty() && !isJson) {
        std::printf("every node:\n");
        for (const Trovio::Setting& setting : Trovio::Node::commonSettings())
            printSetting(setting);
    }
    const int code = missing(options, "node type", known);
    Trovio::Root::shutdown();
    return types.empty() ? NothingFound : code;
}

int typesVerb(const Options& options)
{
    std::vector<std::string_view> known;
    for (const Ostrel::FieldClass& fieldClass : Ostrel::FieldClass::all()) {
        known.push_back(fieldClass.name());
        if (!wanted(options, fieldClass.name()))
            continue;
        const int code = fieldClass.code();
        std::printf("%2d %-11s slot %-11s scene: %s\n%27sJSON:  %s\n%27sOSC:   %s\n", code, fieldClass.name().c_str(),
                    slotTypeName(code).c_str(), sceneForm(code).c_str(), "", jsonForm(code).c_str(), "",
                    oscForm(code).c_str());
    }
    return missing(options, "field type", known);
}

int versionVerb(const Options&)
{
    std::printf("ostrel-host %s\n", HOST_VERSION);
    return Done;
}
} // namespace Host
