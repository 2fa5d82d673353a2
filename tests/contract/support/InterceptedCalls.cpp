#include "tests/contract/support/InterceptedCalls.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <future>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/system/FileDescriptor.h"

namespace vornix::contract {
namespace {

int install(std::initializer_list<long> numbers) {
  std::vector<sock_filter> program{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
  for (const long number : numbers) {
    program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(number), 0, 1));
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
  }
  program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
  sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
  EXPECT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
  return static_cast<int>(
      syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &filter));
}

void attend(int listener, const std::function<void(const seccomp_data&)>& before) {
  for (;;) {
    seccomp_notif call{};
    if (ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &call) != 0) {
      // The thread got a signal meanwhile; else it has ended.
      if (errno == ENOENT || errno == EINTR) continue;
      return;
    }
    before(call.data);
    seccomp_notif_resp answer{
        .id = call.id, .val = 0, .error = 0, .flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE};
    ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &answer);
  }
}

}  // namespace

void interceptCalls(std::initializer_list<long> numbers,
                    const std::function<void(const seccomp_data&)>& before) {
  std::promise<int> listener;
  // Before the filter, so that it is not on this thread, too.
  std::thread([known = listener.get_future(), before]() mutable {
    const int descriptor = known.get();
    if (descriptor >= 0) attend(descriptor, before);
  }).detach();
  const int descriptor = install(numbers);
  EXPECT_GE(descriptor, 0) << errno;
  listener.set_value(descriptor);
}

std::string textAt(std::uint64_t argument) {
  // By the kernel, since nothing that a thread sanitizer sees makes the caller wait.
  std::array<char, 4096> text{};
  const FileDescriptor memory(open("/proc/self/mem", O_RDONLY | O_CLOEXEC));
  EXPECT_GT(pread(memory.get(), text.data(), text.size() - 1, static_cast<off_t>(argument)), 0);
  return text.data();
}

}  // namespace vornix::contract
