#include "scene/file/SceneURL.h"

#include <cctype>
#include <filesystem>
#include <string_view>

namespace Scenes {
namespace {

// Everything but letters, digits and what may stand in a path as it is.
std::string percentEncoded(const std::string& path)
{
    constexpr std::string_view plain = "-._~/";
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char byte : path) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x80 && (std::isalnum(value) || plain.find(byte) != std::string_view::npos))
            text += byte;
        else
            text.append({'%', digits[value >> 4], digits[value & 15]});
    }
    return text;
}
} // namespace

Merid::URL sceneURL(const std::string& text, const std::string& scenePath)
{
    const Merid::URL url(text);
    if (url.scheme() != "file")
        return url;
    const std::filesystem::path path = url.path();
    if (path.is_absolute())
        return url;
    const auto folder = std::filesystem::absolute(scenePath).parent_path();
    return Merid::URL("file:" + percentEncoded((folder / path).lexically_normal().string()));
}
} // namespace Scenes
