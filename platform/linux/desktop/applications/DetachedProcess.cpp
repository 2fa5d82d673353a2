#include "platform/linux/desktop/applications/DetachedProcess.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>

#include "platform/linux/system/FileDescriptor.h"

namespace vornix::desktop {
namespace {

constexpr int kLastSignal = 64;
constexpr std::size_t kLongestNumber = 12;

// What the new process tells: its number, then, if anything goes wrong, an error number.
struct Report {
  std::int32_t process = 0;
  std::int32_t error = 0;
};

// Everything that the new process needs, made before it exists: between fork and exec it may call
// nothing that takes a lock.
class Image {
 public:
  explicit Image(const DetachedProgram& program) : program_(program) {
    for (const std::string& argument : program_.arguments) words_.push_back(pointer(argument));
    words_.push_back(nullptr);
    for (const std::string& variable : program_.environment)
      variables_.push_back(pointer(variable));
    if (!program_.processVariable.empty()) {
      number_ = program_.processVariable + "=";
      numberStart_ = number_.size();
      number_.resize(numberStart_ + kLongestNumber);
      variables_.push_back(number_.data());
    }
    variables_.push_back(nullptr);
  }

  // Does not return. Only async-signal-safe calls.
  [[noreturn]] void run(int reportPipe) {
    Report report{.process = getpid()};
    writeNumber(report.process);
    restoreSignals();
    if (isReady()) execve(program_.path.c_str(), words_.data(), variables_.data());
    report.error = errno;
    // Nobody is left to be told when this fails.
    if (write(reportPipe, &report, sizeof report) < 0) _exit(126);
    _exit(127);
  }

 private:
  // The system's call takes these as writable but does not write.
  static char* pointer(const std::string& text) { return const_cast<char*>(text.c_str()); }

  void writeNumber(std::int32_t number) {
    if (numberStart_ == 0) return;
    std::array<char, kLongestNumber> digits{};
    std::size_t count = 0;
    for (; number > 0; number /= 10) digits.at(count++) = static_cast<char>('0' + number % 10);
    for (std::size_t i = 0; i < count; ++i) number_[numberStart_ + i] = digits.at(count - 1 - i);
    number_[numberStart_ + count] = '\0';
  }

  static void restoreSignals() {
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    for (int signal = 1; signal <= kLastSignal; ++signal) sigaction(signal, &standard, nullptr);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
  }

  [[nodiscard]] bool isReady() const {
    if (!program_.workingDirectory.empty() && chdir(program_.workingDirectory.c_str()) != 0)
      return false;
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    if (null < 0) return false;
    for (int descriptor = 0; descriptor <= 2; ++descriptor) {
      if (dup2(null, descriptor) < 0 || fcntl(descriptor, F_SETFD, 0) != 0) return false;
    }
    // Kernels before 5.11 refuse; our own descriptors close themselves.
    close_range(3, UINT_MAX, CLOSE_RANGE_CLOEXEC);
    return true;
  }

  const DetachedProgram& program_;
  std::vector<char*> words_;
  std::vector<char*> variables_;
  std::string number_;
  std::size_t numberStart_ = 0;
};

// The process in between makes the new one nobody's child but the system's.
[[noreturn]] void startFromBetween(Image& image, int reportPipe) {
  setsid();
  const pid_t process = fork();
  if (process == 0) image.run(reportPipe);
  const Report report{.process = process, .error = process < 0 ? errno : 0};
  _exit(write(reportPipe, &report, sizeof report) == sizeof report ? 0 : 1);
}

void waitFor(pid_t process) {
  while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
  }
}

std::optional<Report> nextReport(int pipe) {
  Report report;
  ssize_t count = 0;
  do {
    count = read(pipe, &report, sizeof report);
  } while (count < 0 && errno == EINTR);
  return count == sizeof report ? std::optional(report) : std::nullopt;
}

// The pipe ends when the program is running, since its other end closes itself then.
Report collectReports(int pipe) {
  Report whole;
  while (const auto report = nextReport(pipe)) {
    whole.process = report->process;
    if (report->error != 0) whole.error = report->error;
  }
  return whole;
}

// Out of the way of the standard descriptors, which may be closed in a careless parent.
FileDescriptor raised(int descriptor) {
  const FileDescriptor low(descriptor);
  return FileDescriptor(fcntl(descriptor, F_DUPFD_CLOEXEC, 3));
}

// Both ends invalid, and `errno` set, when there are no descriptors left.
std::array<FileDescriptor, 2> makePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return {};
  return {raised(ends[0]), raised(ends[1])};
}

Report start(Image& image) {
  auto [reading, writing] = makePipe();
  if (!reading.isOpen() || !writing.isOpen()) return {.error = errno};
  const pid_t between = fork();
  if (between < 0) return {.error = errno};
  if (between == 0) startFromBetween(image, writing.get());
  writing = FileDescriptor();
  const Report report = collectReports(reading.get());
  waitFor(between);
  return report;
}

}  // namespace

std::optional<std::int32_t> startDetached(const DetachedProgram& program,
                                          std::optional<NSError>& error) {
  Image image(program);
  const Report report = start(image);
  if (report.error == 0 && report.process > 0) return report.process;
  error = posixError(report.error != 0 ? report.error : ECHILD, program.path);
  return std::nullopt;
}

}  // namespace vornix::desktop
