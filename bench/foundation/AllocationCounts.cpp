// How often operations allocate that other operations call for each file of a folder.
#include <cstdlib>
#include <new>

#include "bench/foundation/Comparisons.h"
#include "foundation/NSString+NSStringAdditions.h"

namespace {

thread_local std::size_t allocations = 0;

void* counted(std::size_t size) {
  ++allocations;
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

void* operator new(std::size_t size) {
  return counted(size);
}
void* operator new[](std::size_t size) {
  return counted(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace vornix::bench {
namespace {

template <typename Operation>
std::size_t allocationsOf(Operation operation) {
  const std::size_t before = allocations;
  keep(operation());
  return allocations - before;
}

std::size_t allocationsOfSubpathTests() {
  return allocationsOf([] {
    return isSubpathOf("/home/anna/Library/Caches/com.example.editor/index",
                       "/home/anna/Library") &&
           !isSubpathOf("/home/anna/Library", "/home/anna/Library/Caches") &&
           !isSubpathOf("/home/annabel/Library", "/home/anna") && isSubpathOf("/usr", "/");
  });
}

std::size_t allocationsOfNameComparisons() {
  return allocationsOf([] {
    return compareApplicationResourceNameByWords("Disk Utility", "utility disk", " ") +
           compareApplicationResourceNameByWords("Disk Utility", "Disk Utility 2", " ") +
           compareApplicationResourceNameByWords("Disk Utility", "disk", " ");
  });
}

// A counter that counts nothing would find that all is well.
std::size_t allocationsOfALongText() {
  return allocationsOf([] { return std::string(100, 'x'); });
}

}  // namespace

std::vector<Count> allocationCounts() {
  return {{"allocations: a long text (the counter works)", 1, allocationsOfALongText},
          {"allocations: isSubpathOf, ASCII", 0, allocationsOfSubpathTests},
          {"allocations: compareApplicationResourceNameByWords, ASCII", 0,
           allocationsOfNameComparisons}};
}

}  // namespace vornix::bench
