#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/files/FolderDescent.h"
#include "platform/linux/files/FolderReader.h"
#include "platform/linux/files/ItemPlace.h"
#include "platform/linux/files/secure/RandomBytes.h"
#include "platform/linux/files/secure/RemovalQueue.h"

namespace vornix {

// Removes one item, as `FileRemover` has it. Goes from descriptor to descriptor, so that neither
// the length of paths nor what folders are swapped for meanwhile matters.
class SecureRemoval {
 public:
  SecureRemoval(RandomBytes& random, std::uint32_t flags);

  // Answers 0 or the system's error number.
  [[nodiscard]] int run(ItemPlace place);

 private:
  struct Level {
    std::string name{};
    // Still to be removed.
    NameStack folders{};
    bool hasMore = false;
  };

  [[nodiscard]] int emptyFolder(const ItemPlace& place);
  [[nodiscard]] int readFolder();
  [[nodiscard]] int readAgain();
  [[nodiscard]] int keepOrRemove(const char* name, unsigned char type);
  [[nodiscard]] int keep(std::string_view name);
  [[nodiscard]] int enter(std::string name);
  [[nodiscard]] int leave();
  [[nodiscard]] int removeOther(const RemovalQueue::Folder& folder, const char* name,
                                unsigned char type);
  [[nodiscard]] int overwriteAndRemove(const RemovalQueue::Folder& folder, const char* name);
  [[nodiscard]] int pinFolder(RemovalQueue::Folder& folder);
  // Tries once more where descriptors had run out and some could be let go.
  template <typename Opening>
  [[nodiscard]] int withDescriptors(Opening open);

  const bool isRecursive_;
  const bool isSecure_;
  RemovalQueue queue_;
  FolderDescent descent_{FileDescriptor()};
  // The folder reached, for the queue; null until it is needed.
  RemovalQueue::Folder pinned_;
  FolderReader reader_;
  std::vector<Level> levels_;
};

}  // namespace vornix
