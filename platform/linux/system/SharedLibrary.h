#pragma once

#include <dlfcn.h>

#include <optional>
#include <string>

namespace vornix {

// A library opened when it is first needed, so that a run that does not need it pays nothing.
// It stays loaded until the process ends: threads of the library may be running in it. Any thread.
class SharedLibrary {
 public:
  // `soname` as the loader searches it ("libcurl.so.4"). None when it cannot be loaded; `why` then
  // holds the loader's own words.
  [[nodiscard]] static std::optional<SharedLibrary> open(const char* soname, std::string* why) {
    void* handle = dlopen(soname, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
      tell(why, soname);
      return std::nullopt;
    }
    return SharedLibrary(handle);
  }

  // Null when the library has no such symbol.
  [[nodiscard]] void* symbol(const char* name) const { return dlsym(handle_, name); }

  // The function as a pointer of type `Function*` (`library.load<decltype(curl_easy_init)>(...)`);
  // null when the library has no such symbol.
  template <typename Function>
  [[nodiscard]] Function* load(const char* name) const {
    return reinterpret_cast<Function*>(symbol(name));
  }

  // `load` into `function`; false and the missing name in `why` when there is no such symbol.
  template <typename Function>
  [[nodiscard]] bool bind(Function*& function, const char* name, std::string* why) const {
    function = load<Function>(name);
    if (function == nullptr && why != nullptr) {
      *why = std::string("no function ") + name;
    }
    return function != nullptr;
  }

 private:
  explicit SharedLibrary(void* handle) : handle_(handle) {}

  static void tell(std::string* why, const char* soname) {
    const char* message = dlerror();
    if (why != nullptr) {
      *why = message != nullptr ? message : std::string("cannot load ") + soname;
    }
  }

  void* handle_;
};

}  // namespace vornix
