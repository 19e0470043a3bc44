#pragma once

#include "monitor/answer/Question.h"
#include "monitor/server/net/RequestHead.h"
#include "monitor/server/page/PageContent.h"

#include <atomic>
#include <mutex>
#include <string_view>

namespace Monitor {

/// Serves the page that shows the system in a browser. Its files are read when the first of them is asked for and then
/// kept, so that a browser gets all of one version; a path from outside is only looked up among them.
/// Threads: any.
class PageFiles {
public:
    /// The first of the folders that has a page is taken.
    explicit PageFiles(std::vector<std::string> folders) : _folders(std::move(folders)) {}
    PageFiles(const PageFiles&) = delete;
    PageFiles& operator=(const PageFiles&) = delete;

    /// Whether the path belongs to the page, also where there is no such file.
    static bool isOfPage(std::string_view path);
    /// Whether anybody may have what stands there, as it tells nothing of this program: all but the start of the page.
    static bool isPublic(std::string_view path) { return path != "/" && isOfPage(path); }

    /// Whether answer() has been called, which waits for the disk the first time.
    bool isRead() const { return _isRead; }
    /// The file, or that the client has it already, or why there is none.
    Answer answer(const RequestHead& head) const;

private:
    Answer missing(const std::string& path) const;

    const std::vector<std::string> _folders;
    mutable std::once_flag _once;
    mutable std::atomic<bool> _isRead{false};
    mutable PageContent _page; // unchanged once it was read
};
} // namespace Monitor
