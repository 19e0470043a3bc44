#pragma once

namespace Trovio {

/// What a node derives from, beside Node, that may hear late of what it waits for: that nothing has come yet means
/// nothing until then.
class Settling {
public:
    virtual ~Settling();

    /// Seconds from its start, such as the time between signs of life of a peer. Any thread, under any lock but the
    /// log's.
    virtual double getSettlingTime() const noexcept = 0;
};

} // namespace Trovio
