// Runs a fuzz target once with each file of the folders that are named: the kept corpus as a test, for any compiler.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace {

constexpr std::size_t maxInputs = 256; // of one target: a corpus is kept small by fuzz/keep

std::vector<std::filesystem::path> filesOf(const char* folder)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

/// The bytes stand alone, so that reading behind them is seen.
void replay(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

} // namespace

int main(int argc, char** argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& path : filesOf(argv[i])) {
            std::fprintf(stderr, "%s\n", path.c_str()); // the last line names what broke
            replay(path);
            ++count;
        }
    }
    std::fprintf(stderr, "%zu inputs\n", count);
    return count == 0 || count > maxInputs ? 1 : 0; // an empty corpus proves nothing
}
