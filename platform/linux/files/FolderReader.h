#pragma once

#include <dirent.h>

#include <cerrno>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vornix {

// Reads folders one after the other through one buffer.
class FolderReader {
 public:
  // From where the folder's descriptor stands on; `visit(name, type)` gets each name, which ends in
  // a zero byte and is valid during the call, with its type as <dirent.h> names it, DT_UNKNOWN
  // where the file system does not tell. Ends at the first answer that is not 0, and gives it back;
  // what else had been read by then is not seen again. Else 0, or the system's error number. A
  // folder that somebody has removed since it was opened holds nothing.
  template <typename Visit>
  [[nodiscard]] int read(int folder, Visit visit) {
    for (;;) {
      const ssize_t length = getdents64(folder, buffer_.data(), buffer_.size());
      if (length <= 0) return length == 0 || errno == ENOENT ? 0 : errno;
      for (ssize_t at = 0; at < length;) {
        const auto* entry = reinterpret_cast<const dirent64*>(buffer_.data() + at);
        at += entry->d_reclen;
        if (isDots(entry->d_name)) continue;
        if (const int answer = visit(&entry->d_name[0], entry->d_type)) return answer;
      }
    }
  }

 private:
  static constexpr std::size_t kBufferSize = 64U << 10U;

  [[nodiscard]] static bool isDots(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
  }

  std::vector<char> buffer_ = std::vector<char>(kBufferSize);
};

// Names, the last one first, in one piece of memory.
class NameStack {
 public:
  void push(std::string_view name) { names_.append(name).push_back('\0'); }
  [[nodiscard]] std::string pop() {
    names_.pop_back();
    const auto start = names_.rfind('\0') + 1;
    std::string name = names_.substr(start);
    names_.resize(start);
    return name;
  }
  [[nodiscard]] bool empty() const { return names_.empty(); }
  // In bytes.
  [[nodiscard]] std::size_t size() const { return names_.size(); }

 private:
  std::string names_;
};

}  // namespace vornix
