#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Runs a target over the files of a folder, its corpus. What does not hold ends the process; a folder
/// without files, or a file that cannot be read, is an error.
int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    int files = 0;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1], error)) {
        std::fprintf(stderr, "%s\n", entry.path().c_str());
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(file)), {});
        if (!file || !entry.is_regular_file())
            return 1;
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++files;
    }
    std::fprintf(stderr, "%d files\n", files);
    return files > 0 ? 0 : 1;
}
