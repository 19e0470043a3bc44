#include "monitor/server/page/PageFolder.h"

#include <dlfcn.h>
#include <filesystem>

namespace Monitor {

std::vector<std::string> pageFolders()
{
    Dl_info self{};
    if (dladdr(reinterpret_cast<const void*>(&pageFolders), &self) == 0 || !self.dli_fname)
        return {};
    const auto library = std::filesystem::path(self.dli_fname).parent_path();
    std::vector<std::string> folders;
    for (const char* const way : {PAGE_FROM_LIBRARY, "../share/ostrel/web"})
        folders.push_back((library / way).lexically_normal().string());
    return folders;
}
} // namespace Monitor
