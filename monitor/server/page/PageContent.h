#pragma once

#include <map>
#include <string>
#include <vector>

namespace Monitor {

/// The files of the page as they stood in a folder: index.html, style.css, scripts in js/, and in parts/ what others
/// have made.
struct PageContent {
    static constexpr std::size_t MaxBytes = 16 << 20; // of all files
    static constexpr std::size_t MaxScripts = 100;    // in js/

    struct File {
        const char* _type; // of its content, as HTTP calls it
        std::string _tag;  // other where the text is, in quotes
        std::string _text;
    };
    std::string _folder;                             // that they stand in; empty where there is no page
    std::map<std::string, File, std::less<>> _files; // by the path where they are served

    /// Reads the first of the folders that has an index.html. What would be beyond the limits is left out, with a
    /// warning in the log. Waits for the disk.
    static PageContent read(const std::vector<std::string>& folders);

private:
    void add(const std::string& path, const std::string& name);
    void addScripts();
    std::size_t bytes() const;
};
} // namespace Monitor
