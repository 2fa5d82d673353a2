#include "tests/contract/support/PausedCall.h"

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <future>
#include <thread>

#include "platform/linux/system/FileDescriptor.h"

namespace vornix::contract {
namespace {

// Tells of this thread's calls from now on; -1 where that cannot be.
int listenTo(long call) {
  std::array<sock_filter, 4> program{{
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  }};
  const sock_fprog filter{program.size(), program.data()};
  EXPECT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
  return static_cast<int>(
      syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &filter));
}

// False when the thread has ended.
bool awaitCall(int listener, seccomp_notif& call) {
  pollfd wanted{.fd = listener, .events = POLLIN, .revents = 0};
  EXPECT_EQ(poll(&wanted, 1, -1), 1);
  if ((wanted.revents & POLLIN) == 0) return false;
  call = {};
  return ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &call) == 0;
}

void letGo(int listener, const seccomp_notif& call) {
  seccomp_notif_resp answer{
      .id = call.id, .val = 0, .error = 0, .flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE};
  EXPECT_EQ(ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &answer), 0);
}

}  // namespace

bool playWithPauses(long call, const std::function<void(int)>& meanwhile,
                    const std::function<void()>& part) {
  std::promise<int> listening;
  std::thread thread([&] {
    const int listener = listenTo(call);
    listening.set_value(listener);
    if (listener >= 0) part();
  });
  const FileDescriptor listener(listening.get_future().get());
  seccomp_notif paused{};
  for (int number = 0; listener.isOpen() && awaitCall(listener.get(), paused); ++number) {
    meanwhile(number);
    letGo(listener.get(), paused);
  }
  thread.join();
  return listener.isOpen();
}

}  // namespace vornix::contract
