#pragma once

#include <cstddef>
#include <string>

namespace vornix::bench {

// Each goes through all that is below a folder and answers how many items there are.
std::size_t walkRaw(const std::string& folder);
std::size_t walkWithFts(const std::string& folder);
std::size_t walkWithStandardLibrary(const std::string& folder);
std::size_t walkWithOurs(const std::string& folder);

}  // namespace vornix::bench
