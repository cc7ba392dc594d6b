// Runs a fuzz target over the files of folders, in place of the fuzzer: `replay FOLDER...`.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size);

namespace {

namespace fs = std::filesystem;

void run_file(const fs::path &path) {
  // The last name on the screen is the one that broke.
  std::fprintf(stderr, "%s\n", path.c_str());
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  // A block of exactly these bytes: a target that reads past them is seen.
  std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

}  // namespace

int main(int argc, char **argv) {
  std::vector<fs::path> paths;
  for (int i = 1; i < argc; ++i) {
    for (const auto &entry : fs::directory_iterator(argv[i])) paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  for (const fs::path &path : paths) run_file(path);
  // The empty input is in every corpus.
  LLVMFuzzerTestOneInput(nullptr, 0);
  return paths.empty() ? 1 : 0;
}
