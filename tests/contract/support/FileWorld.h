#pragma once

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>

#include "platform/files/NSFileManager.h"
#include "platform/files/Volumes.h"
#include "tests/fakes/FakeFileTree.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::contract {

inline constexpr const char* kMayNotMount =
    "NOT TESTED: this account may mount nothing, not even in a user namespace of its own";

inline constexpr const char* kMayNotMountDisks =
    "NOT TESTED: this account may not make and mount a disk image";

// Not only in a user namespace of its own, as an ordinary user's stories are played in.
[[nodiscard]] bool isRootOfTheMachine();

// Items by their paths below the world's root, in memory.
class FakeFileWorld {
 public:
  FakeFileWorld() { tree_.addFolder("/root"); }

  [[nodiscard]] const NSFileManager& files() const { return files_; }
  [[nodiscard]] NSFileManager& files() { return files_; }
  [[nodiscard]] const Volumes& volumes() const { return volumes_; }
  [[nodiscard]] fakes::FakeTrash& trash() { return trash_; }
  // The absolute path, without links; the root's for an empty name.
  [[nodiscard]] static std::string path(const std::string& name) {
    return name.empty() ? "/root" : "/root/" + name;
  }

  void folder(const std::string& name) { tree_.addFolder(path(name)); }
  void file(const std::string& name) { tree_.addFile(path(name)); }
  void link(const std::string& name, const std::string& target) {
    tree_.addLink(path(name), target);
  }
  // Makes a folder the current one.
  void enter(const std::string& name) { tree_.currentFolder = path(name); }
  // An empty volume, at an empty folder.
  void mount(const std::string& name) { tree_.mountAt(path(name)); }
  // The folder or file `source` once more.
  void bind(const std::string& source, const std::string& name) {
    tree_.bind(path(source), path(name));
  }
  // From now on nobody may make or remove anything in the folder, but all else that this world made
  // so far stays the process's own. Once in a story, at its end.
  void forbidChangesIn(const std::string& name) { tree_.refuseChangesIn(path(name), EACCES); }
  // The same for looking into the folder.
  void forbidReading(const std::string& name) { tree_.refuseReading(path(name), EACCES); }

  enum class Outcome { played, mayNotMount };
  static Outcome play(const std::function<void(FakeFileWorld&)>& story) {
    FakeFileWorld world;
    story(world);
    return Outcome::played;
  }

 private:
  fakes::FakeFileTree tree_;
  fakes::FakeStandardDirectories directories_;
  fakes::FakeFileSystem fileSystem_{tree_};
  fakes::FakeTrash trash_{tree_};
  NSFileManager files_{fileSystem_, directories_, trash_};
  fakes::FakeVolumes volumes_{tree_};
};

// The same in the machine's file system. A story is played in a process of its own, so that what it
// mounts and where it goes stays there.
class LinuxFileWorld {
 public:
  // On ext4 where there is one, else in the temporary folder.
  LinuxFileWorld();
  explicit LinuxFileWorld(const std::string& parent);

  [[nodiscard]] static NSFileManager& files() { return NSFileManager::defaultManager(); }
  [[nodiscard]] static const Volumes& volumes() { return sharedVolumes(); }
  [[nodiscard]] std::string path(const std::string& name) const {
    return name.empty() ? root_ : root_ + "/" + name;
  }

  void folder(const std::string& name);
  void file(const std::string& name);
  void link(const std::string& name, const std::string& target);
  void enter(const std::string& name);
  void mount(const std::string& name);
  // The same with a size, such as "size=64k", and other options of a volume in memory.
  void mountSmall(const std::string& name, const std::string& options);
  void bind(const std::string& source, const std::string& name);
  // An empty ext4 volume that is made with these options of mkfs.ext4. It lies in memory, beside
  // the folder.
  void mountImage(const std::string& name, const std::string& options);
  // From now on nothing changes in the volume that was mounted there.
  void makeReadOnly(const std::string& name);
  void forbidChangesIn(const std::string& name);
  void forbidReading(const std::string& name);

  using Outcome = FakeFileWorld::Outcome;
  // The story's failed expectations are failures of the test.
  static Outcome play(const std::function<void(LinuxFileWorld&)>& story) {
    // Removed by this process, which does not see what the other one mounts there.
    LinuxFileWorld world;
    return playApart([&] { story(world); });
  }

 protected:
  static Outcome playApart(const std::function<void()>& story);

 private:
  void becomeSomebodyElse();
  void attach(const std::string& source, const std::string& name, const char* type,
              unsigned long flags, const char* options = nullptr);

  void requireApart();
  [[noreturn]] static void refuse();

  tests::ScratchFolder folder_;
  std::string root_ = std::filesystem::canonical(folder_.path());
  bool isApart_ = false;
};

// The same in a file system in memory.
class TmpfsFileWorld final : public LinuxFileWorld {
 public:
  TmpfsFileWorld() : LinuxFileWorld("/dev/shm") {}

  static Outcome play(const std::function<void(TmpfsFileWorld&)>& story) {
    TmpfsFileWorld world;
    return playApart([&] { story(world); });
  }
};

}  // namespace vornix::contract
