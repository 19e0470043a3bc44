#pragma once

#include "nodes/shared/FileDescriptor.h"
#include <string>
#include <sys/types.h>
#include <vector>

namespace Bench {

/// This program once more, in a process of its own that ends when this object does, or its owner.
class FarProcess {
public:
    explicit FarProcess(std::vector<std::string> arguments);
    ~FarProcess();
    FarProcess(const FarProcess&) = delete;
    FarProcess& operator=(const FarProcess&) = delete;

    /// In that process: returns when it is to end.
    static void waitForEnd();

private:
    Trovio::Nodes::FileDescriptor _lifeline; // its standard input ends when this is closed
    pid_t _process;
};

} // namespace Bench
