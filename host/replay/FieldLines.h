#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

namespace Host {

/// Takes the lines of fields that a test gets, frame by frame. Blocks as files and pipes do: nobody waits for a test.
class FieldLines {
public:
    virtual ~FieldLines() = default;
    /// The JSON lines of one frame; none where no field changed. False where no more are wanted.
    virtual bool put(std::uint64_t frame, std::string_view lines) = 0;
    /// After the last frame. What is wrong, and empty where nothing is.
    virtual std::string finish() = 0;

    /// To standard output.
    static std::unique_ptr<FieldLines> print();
    /// To a file, which takes the place of the old one at the end. Throws std::runtime_error where it cannot be made.
    static std::unique_ptr<FieldLines> write(const std::string& path);
    /// With those of a file, byte for byte, up to the first difference. Throws likewise where it cannot be read.
    static std::unique_ptr<FieldLines> compare(const std::string& path);
};
} // namespace Host
