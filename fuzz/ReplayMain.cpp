// Runs a fuzz target's LLVMFuzzerTestOneInput over files, without libFuzzer:
// built with the ordinary compiler, it replays the committed corpus and every
// input that once failed as a normal test.
//
//   replay <folder or file>...
//
// Every regular file of a folder is one input (names starting with a dot are
// skipped), in name order so that a run is repeatable. A broken invariant
// aborts inside the target; the last "replaying" line names the input.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool listInputs(const std::filesystem::path& path, std::vector<std::filesystem::path>& inputs)
{
    std::error_code error;
    if (std::filesystem::is_regular_file(path, error)) {
        inputs.push_back(path);
        return true;
    }
    if (!std::filesystem::is_directory(path, error)) {
        std::fprintf(stderr, "no such file or folder: %s\n", path.string().c_str());
        return false;
    }
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::directory_iterator(path, error)) {
        if (entry.is_regular_file() && entry.path().filename().string().rfind('.', 0) != 0)
            found.push_back(entry.path());
    }
    if (error) {
        std::fprintf(stderr, "cannot read %s: %s\n", path.string().c_str(), error.message().c_str());
        return false;
    }
    std::sort(found.begin(), found.end());
    inputs.insert(inputs.end(), found.begin(), found.end());
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s <folder or file>...\n", argv[0]);
        return 2;
    }
    std::vector<std::filesystem::path> inputs;
    for (int i = 1; i < argc; ++i) {
        if (!listInputs(argv[i], inputs))
            return 2;
    }
    LLVMFuzzerInitialize(&argc, &argv);
    for (const std::filesystem::path& input : inputs) {
        std::ifstream file(input, std::ios::binary);
        if (!file) {
            std::fprintf(stderr, "cannot read %s\n", input.string().c_str());
            return 2;
        }
        const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        std::fprintf(stderr, "replaying %s (%zu bytes)\n", input.string().c_str(), bytes.size());
        std::fflush(stderr);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs replayed\n", inputs.size());
    return 0;
}
