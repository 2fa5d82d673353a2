#include "platform/system/CallStack.h"

#include <cxxabi.h>
#include <dlfcn.h>
#include <unwind.h>

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/base/Format.h"
#include "platform/linux/system/CMemory.h"

namespace vornix {
namespace {

class Addresses {
 public:
  static _Unwind_Reason_Code collect(_Unwind_Context* context, void* addresses) {
    return static_cast<Addresses*>(addresses)->add(_Unwind_GetIP(context));
  }

  [[nodiscard]] std::size_t count() const { return count_; }
  [[nodiscard]] std::uintptr_t operator[](std::size_t index) const { return items_[index]; }

 private:
  _Unwind_Reason_Code add(std::uintptr_t address) {
    if (count_ == items_.size() || address == 0) return _URC_END_OF_STACK;
    items_[count_++] = address;
    return _URC_NO_REASON;
  }

  std::array<std::uintptr_t, 256> items_{};
  std::size_t count_ = 0;
};

std::string demangled(const char* name) {
  int status = 0;
  const CMemory<char> readable(abi::__cxa_demangle(name, nullptr, nullptr, &status));
  return readable ? readable.get() : name;
}

std::string_view fileName(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

std::string line(std::size_t number, std::uintptr_t address) {
  Dl_info info{};
  // A call that never returns may stand at the end of its function: what it would return to is
  // then another's.
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the unwinder tells addresses as numbers.
  const bool isKnown = dladdr(reinterpret_cast<const void*>(address - 1), &info) != 0;
  const bool hasSymbol = isKnown && info.dli_sname != nullptr;
  const void* start = hasSymbol ? info.dli_saddr : info.dli_fbase;
  return text::format("%-4lu%-35@ 0x%016lx %@ + %lu", number,
                      isKnown ? fileName(info.dli_fname) : "???", address,
                      hasSymbol ? demangled(info.dli_sname) : text::format("%p", start),
                      address - reinterpret_cast<std::uintptr_t>(start));
}

}  // namespace

[[gnu::noinline]] std::vector<std::string> callStackSymbols() {
  Addresses addresses;
  _Unwind_Backtrace(&Addresses::collect, &addresses);
  std::vector<std::string> symbols;
  // The first is this function's own.
  for (std::size_t index = 1; index < addresses.count(); ++index) {
    symbols.push_back(line(index - 1, addresses[index]));
  }
  return symbols;
}

}  // namespace vornix
