#pragma once

#include "monitor/mcap/read/InputFile.h"

#include <map>
#include <optional>

namespace Monitor::Mcap {

/// What stands behind the data of a file: whether readers that go by it find everything.
struct FileEnd {
    std::string _problem; // empty where it is whole
    bool _hasSummary = false;
    bool _hasMagic = false; // else the file is only a beginning
    bool _isUntorn = false; // its bytes are those of one write, whatever they say
};

/// `from` is the place behind the end of the data, `chunks` what was found before it: lengths by offsets.
FileEnd readFileEnd(InputFile& file, std::uint64_t from, const std::map<std::uint64_t, std::uint64_t>& chunks);

/// Where the data end by what the footer says, for who cannot walk there; nothing where there is none.
std::optional<std::uint64_t> dataEndByFooter(InputFile& file);

/// Whether there the data have a checksum, which is written when all of them are on the disk.
bool isSealed(InputFile& file);

} // namespace Monitor::Mcap
