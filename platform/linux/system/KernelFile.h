#pragma once

#include <optional>
#include <string>

namespace vornix {

// The contents of a small file as the kernel hands them out; at most 1 MiB of it. None on failure;
// `errorNumber`, where given, then says why, and is 0 otherwise.
[[nodiscard]] std::optional<std::string> readKernelFile(const std::string& path,
                                                        int* errorNumber = nullptr);

}  // namespace vornix
