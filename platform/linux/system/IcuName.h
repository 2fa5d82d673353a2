#pragma once

// The name that a function of ICU has in its library, for `SharedLibrary::bind`: the headers add
// the library's version to it by macros, so only a macro can tell.
#define VORNIX_TEXT_OF(name) #name
#define VORNIX_ICU_NAME(function) VORNIX_TEXT_OF(function)
