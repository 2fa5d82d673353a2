#include <cxxabi.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <typeinfo>

// Takes the place of the C++ runtime's own handler, which also translates the type's name back: the
// tables for that would be relocated at every start of every program.
namespace __gnu_cxx {  // NOLINT(clang-diagnostic-reserved-identifier): the runtime's name for it

void __verbose_terminate_handler() {  // NOLINT(clang-diagnostic-reserved-identifier)
  const std::type_info* type = abi::__cxa_current_exception_type();
  if (type == nullptr) {
    std::fputs("terminate called without an active exception\n", stderr);
    std::abort();
  }
  std::fprintf(stderr, "terminate called after throwing an instance of '%s'\n", type->name());
  try {
    throw;
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "  what():  %s\n", exception.what());
  } catch (...) {
    std::fputs("  which says nothing of itself\n", stderr);
  }
  std::abort();
}

}  // namespace __gnu_cxx
