#pragma once

#include <string>
#include <utility>

namespace Trovio {

/// What the framework throws. Not polymorphic, and its kinds are unrelated to one another: catch each by its name.
class Exception {
public:
    explicit Exception(std::string message = {}) : _message(std::move(message)) {}

    const std::string& getMessage() const { return _message; }

public:
    std::string _message; // first, so that whoever knows an Exception only by address finds the text there
};

/// A node type that is unknown, cannot be loaded or cannot be built, or a label that is no node's.
class InvalidNodeException : public Exception {
    using Exception::Exception;
};

/// A setting that a node does not know or whose value it does not take.
class InvalidFieldException : public Exception {
    using Exception::Exception;
};

/// A label under which no namespace stands.
class InvalidNamespaceException : public Exception {
    using Exception::Exception;
};

/// A reader was released from its wait without data.
class InterruptedException : public Exception {
    using Exception::Exception;
};

} // namespace Trovio
