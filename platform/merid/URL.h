#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace Merid {

/// A URL `scheme:rest` in the characters of RFC 3986, e.g. "file:scenes/demo" or "http://[::1]:8080/".
/// Ownership: a handle to one immutable text that all copies share and count. Threads: any.
class URL {
public:
    /// No URL: all texts are empty, resolve() and path() throw.
    URL() = default;

    /// Throws std::invalid_argument, whose text names the URL, what is wrong with it, where, and what is allowed.
    explicit URL(std::string_view text);

    bool empty() const { return !_parts; }
    const std::string& str() const;
    /// In lower case, without the colon.
    const std::string& scheme() const;
    /// All that stands behind the first colon.
    const std::string& rest() const;

    /// Handles that share this URL, this one included; 0 when empty.
    long useCount() const { return _parts.use_count(); }

    /// The URL of `relative` below this one, which is taken for a folder; its query and fragment are left out. "." and
    /// ".." are worked out in `relative`. Throws std::invalid_argument when that would leave the folder, also by an
    /// encoded dot or separator, and when `relative` is empty, absolute, or has a scheme. Symbolic links are not seen.
    URL resolve(std::string_view relative) const;

    /// The decoded file name of a "file" URL ("file:a/b", "file:///a/b" or "file://localhost/a/b"). Throws
    /// std::invalid_argument for another scheme or host, a query, a fragment, or a zero byte.
    std::string path() const;

    friend bool operator==(const URL& left, const URL& right) { return left.str() == right.str(); }

private:
    struct Parts {
        std::string _text;
        std::string _scheme;
        std::string _rest;
    };
    std::shared_ptr<const Parts> _parts;
};

} // namespace Merid
