// Feeds a fuzz target with every file of the folders that are named, and with nothing at all. Fails
// where there is no file to read; a finding ends the process.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<char> contentsOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::filesystem::filesystem_error("cannot open", path, {});
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

int replayFolder(const char* folder) {
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::vector<char> contents = contentsOf(entry.path());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(contents.data()), contents.size());
    ++files;
  }
  return files;
}

int replay(int count, char** folders) {
  int files = 0;
  for (int index = 1; index < count; ++index) files += replayFolder(folders[index]);
  LLVMFuzzerTestOneInput(nullptr, 0);
  std::printf("replayed %d files\n", files);
  return files > 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return replay(argc, argv);
  } catch (const std::exception& trouble) {
    std::fprintf(stderr, "%s\n", trouble.what());
    return 1;
  }
}
