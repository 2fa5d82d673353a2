#pragma once

#include <map>
#include <string>
#include <string_view>

namespace vornix::tests {

// A datagram socket as the service of the system's log has it.
class SystemLogListener {
 public:
  // Throws when the path cannot be listened at.
  explicit SystemLogListener(const std::string& path);
  SystemLogListener(const SystemLogListener&) = delete;
  SystemLogListener& operator=(const SystemLogListener&) = delete;
  ~SystemLogListener();

  [[nodiscard]] bool hasDatagram() const;
  // The next datagram, or the contents of the file that came with it; a text that says so where
  // there is none.
  [[nodiscard]] std::string receive() const;
  // Whether that file can no longer be changed.
  [[nodiscard]] bool lastWasSealed() const { return sealed_; }

 private:
  int descriptor_ = -1;
  mutable bool sealed_ = false;
};

// The fields of a record of the journal. Throws for what is no record.
[[nodiscard]] std::map<std::string, std::string> journalFields(std::string_view record);

}  // namespace vornix::tests
