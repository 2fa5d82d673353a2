#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <thread>
#include <vector>

#include "logging/GTMLogger.h"
#include "logging/family/GTMLogger+VNX.h"
#include "tests/contract/support/ForkedProcess.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

using contract::ForkedProcess;
using testing::EndsWith;
using testing::MatchesRegex;

constexpr int kLinesInAll = tests::kUnderSanitizer ? 40'000 : 1'000'000;
constexpr int kProcesses = 2;
constexpr int kThreads = 4;
constexpr int kLinesPerThread = kLinesInAll / kProcesses / kThreads;

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string line(const std::string& message) {
  return "....-..-.. ..:..:..\\.... [^ ]+\\[[0-9]+/0x[0-9a-f]+\\] \\[lvl=1\\] \\(unknown\\) " +
         message + "\n";
}

// A program of the family: a process of its own, whose standard output is a file, and whose home is
// the test's folder.
class FamilyLog : public testing::Test {
 protected:
  [[nodiscard]] int run(const std::function<void()>& life) const {
    return ForkedProcess([&] {
             become();
             life();
             _exit(0);
           })
        .awaitEnd();
  }
  void become() const {
    const int output = open(outputPath_.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
    if (dup2(output, STDOUT_FILENO) < 0 || setenv("HOME", folder_.path().c_str(), 1) != 0 ||
        chdir(folder_.path().c_str()) != 0) {
      _exit(98);
    }
  }
  // Sets the log up at the path and logs one message.
  [[nodiscard]] int logAt(const std::string& path) const {
    return run([&] {
      initVNXLogger(path);
      GTMLogger::sharedLogger()->logDebug("x");
    });
  }
  [[nodiscard]] std::string output() const { return readFile(outputPath_); }
  [[nodiscard]] std::string path(std::string_view name) const { return folder_.path(name); }

  tests::ScratchFolder folder_;
  const std::string outputPath_ = folder_.path("standard-output");
};

TEST_F(FamilyLog, AppendsADebugLineToTheFileAndPrintsTheSameOnStandardOutput) {
  folder_.write("Vornix.log", "old\n");
  ASSERT_EQ(logAt(path("Vornix.log")), 0);
  EXPECT_THAT(readFile(path("Vornix.log")), MatchesRegex("old\n" + line("x")));
  EXPECT_EQ("old\n" + output(), readFile(path("Vornix.log")));
}

TEST_F(FamilyLog, OfAFreshHomeWorksFromTheSecondCallOfTheFolderOn) {
  const std::string log = path("Library/Logs/com.orvane.Vornix3/Vornix.log");
  const int status = run([&] {
    initVNXLogger();
    GTMLogger::sharedLogger()->logDebug("first");
    if (access(log.c_str(), F_OK) == 0 || access("(null)", F_OK) == 0) _exit(1);
    initVNXLogger();
    GTMLogger::sharedLogger()->logDebug("second");
    if (vnx_pathForLog() != log) _exit(2);
  });
  ASSERT_EQ(status, 0);
  EXPECT_THAT(readFile(log), MatchesRegex(line("second")));
  EXPECT_THAT(output(), MatchesRegex(line("first") + line("second")));
}

TEST_F(FamilyLog, GoesToStandardOutputOnlyWhereAFolderStandsOrNoneToMakeItIn) {
  ASSERT_EQ(mkdir(path("folder").c_str(), 0700), 0);
  EXPECT_EQ(logAt(path("folder")), 0);
  EXPECT_EQ(logAt(path("missing/Vornix.log")), 0);
  EXPECT_THAT(output(), MatchesRegex(line("x") + line("x")));
}

TEST_F(FamilyLog, MakesTheFileOfADanglingLinkUnlessItsFolderIsMissing) {
  ASSERT_EQ(symlink("elsewhere.log", path("link").c_str()), 0);
  ASSERT_EQ(symlink("missing/elsewhere.log", path("lost").c_str()), 0);
  EXPECT_EQ(logAt(path("link")), 0);
  EXPECT_EQ(logAt(path("lost")), 0);
  EXPECT_THAT(readFile(path("elsewhere.log")), MatchesRegex(line("x")));
  EXPECT_THAT(output(), MatchesRegex(line("x") + line("x")));
}

TEST_F(FamilyLog, NeverWaitsForAFifoAndNeverOpensADevice) {
  ASSERT_EQ(mkfifo(path("fifo").c_str(), 0666), 0);
  EXPECT_EQ(logAt(path("fifo")), 0);
  EXPECT_EQ(logAt("/dev/full"), 0);
  EXPECT_EQ(logAt("/dev/null"), 0);
  EXPECT_THAT(output(), MatchesRegex(line("x") + line("x") + line("x")));
}

TEST_F(FamilyLog, GoesToStandardOutputOnlyWhereTheFileMayNotBeWritten) {
  chmod(folder_.path().c_str(), 0777);
  chmod(folder_.write("Vornix.log", "kept\n").c_str(), 0444);
  const int status = run([&] {
    if (geteuid() == 0 && setuid(65534) != 0) _exit(2);
    initVNXLogger(path("Vornix.log"));
    GTMLogger::sharedLogger()->logDebug("x");
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(readFile(path("Vornix.log")), "kept\n");
  EXPECT_THAT(output(), MatchesRegex(line("x")));
}

TEST_F(FamilyLog, GoesOnAfterTheFileWasRemovedOrMadeUnwritable) {
  const int status = run([&] {
    initVNXLogger(path("Vornix.log"));
    chmod(path("Vornix.log").c_str(), 0444);
    GTMLogger::sharedLogger()->logDebug("unwritable");
    if (rename(path("Vornix.log").c_str(), path("moved.log").c_str()) != 0) _exit(1);
    GTMLogger::sharedLogger()->logDebug("moved");
    if (unlink(path("moved.log").c_str()) != 0) _exit(1);
    GTMLogger::sharedLogger()->logDebug("removed");
    if (access(path("Vornix.log").c_str(), F_OK) == 0) _exit(2);
  });
  EXPECT_EQ(status, 0);
  EXPECT_THAT(output(), MatchesRegex(line("unwritable") + line("moved") + line("removed")));
}

TEST_F(FamilyLog, LosesWhatAFullDiskDoesNotTakeAndKeepsEveryLaterLineWhole) {
  const int status = run([&] {
    initVNXLogger(path("Vornix.log"));
    rlimit previous{};
    getrlimit(RLIMIT_FSIZE, &previous);
    const rlimit tight{30, previous.rlim_max};
    setrlimit(RLIMIT_FSIZE, &tight);
    GTMLogger::sharedLogger()->logDebug("cut short");
    GTMLogger::sharedLogger()->logDebug("lost");
    setrlimit(RLIMIT_FSIZE, &previous);
    GTMLogger::sharedLogger()->logDebug("kept");
  });
  EXPECT_EQ(status, 0);
  const std::string contents = readFile(path("Vornix.log"));
  ASSERT_GT(contents.size(), 31U);
  EXPECT_THAT(contents.substr(30), MatchesRegex("\n" + line("kept")));
}

TEST_F(FamilyLog, SurvivesAStandardOutputThatIsClosed) {
  const int status = run([&] {
    close(STDOUT_FILENO);
    initVNXLogger(path("Vornix.log"));
    GTMLogger::sharedLogger()->logDebug("x");
  });
  EXPECT_EQ(status, 0);
  EXPECT_THAT(readFile(path("Vornix.log")), EndsWith("x\n"));
}

void logFromThreads(int process, const std::string& path) {
  initVNXLogger(path);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([process, thread] {
      const auto logger = GTMLogger::sharedLogger();
      std::array<char, 64> message{};
      for (int count = 0; count < kLinesPerThread; ++count) {
        std::snprintf(message.data(), message.size(), "%d %d %d .", process, thread, count);
        logger->logDebug(message.data());
      }
    });
  }
  for (auto& thread : threads) thread.join();
}

// Whole lines only, those of each thread in their order; answers how many there are.
class LineCheck {
 public:
  [[nodiscard]] int count(std::string_view text) {
    int lines = 0;
    for (auto end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
      if (!accepts(text.substr(0, end))) {
        ADD_FAILURE() << text.substr(0, end);
        return -1;
      }
      text.remove_prefix(end + 1);
      ++lines;
    }
    EXPECT_EQ(text, "");
    return lines;
  }

 private:
  bool accepts(std::string_view line) {
    constexpr std::string_view kMark = "] [lvl=1] (unknown) ";
    const auto mark = line.find(kMark);
    if (mark == std::string_view::npos || line[4] != '-' || line[10] != ' ') return false;
    line.remove_prefix(mark + kMark.size());
    const int process = takeNumber(line);
    const int thread = takeNumber(line);
    const int number = takeNumber(line);
    const bool known = process >= 0 && process < kProcesses && thread >= 0 && thread < kThreads;
    return known && line == "." &&
           number == next_.at(static_cast<std::size_t>(process * kThreads + thread))++;
  }

  // With the space behind it; -1 for anything else.
  static int takeNumber(std::string_view& line) {
    if (line.empty()) return -1;
    int number = -1;
    const auto end = std::min(line.find(' '), line.size() - 1);
    if (std::from_chars(line.data(), line.data() + end, number).ptr != line.data() + end) return -1;
    line.remove_prefix(end + 1);
    return number;
  }

  std::array<int, kProcesses * kThreads> next_{};
};

TEST_F(FamilyLog, KeepsAMillionLinesOfTheThreadsOfTwoProgramsWholeAndInOrder) {
  const std::string log = path("Vornix.log");
  const auto life = [&](int process) {
    return [&, process] {
      const int nowhere = open("/dev/null", O_WRONLY);
      dup2(nowhere, STDOUT_FILENO);
      logFromThreads(process, log);
      _exit(0);
    };
  };
  const ForkedProcess first(life(0));
  const ForkedProcess second(life(1));
  EXPECT_EQ(first.awaitEnd(), 0);
  EXPECT_EQ(second.awaitEnd(), 0);
  LineCheck check;
  EXPECT_EQ(check.count(readFile(log)), kProcesses * kThreads * kLinesPerThread);
}

}  // namespace
}  // namespace vornix
