#pragma once

#include <cstdlib>
#include <memory>

namespace vornix {

struct CMemoryRelease {
  void operator()(void* memory) const {
    std::free(memory);  // NOLINT(cppcoreguidelines-no-malloc)
  }
};

// What a C function allocated and its caller has to free.
template <typename T>
using CMemory = std::unique_ptr<T, CMemoryRelease>;

}  // namespace vornix
