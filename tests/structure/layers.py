"""Reads a source tree and names every place that breaks its layers.

check(root) answers a list of "path:line: complaint"; an empty list means that all is well.
"""

import re
from pathlib import Path

# What a layer may use besides itself, all arrows followed to their end.
MAY_USE = {
    "platform": (),
    "logging": ("platform",),
    "locations": ("platform", "logging"),
    "logging/family": ("platform", "logging", "locations"),
    "foundation": ("platform", "logging"),
    "fs": ("platform", "logging", "foundation"),
    "settings": ("platform", "logging", "foundation"),
    "analytics": ("platform", "logging", "foundation", "settings"),
    "agent": ("platform", "logging", "foundation", "settings", "analytics"),
    "tools": ("platform", "logging", "locations", "logging/family", "foundation", "fs", "settings",
              "analytics", "agent"),
}
REAL_PLATFORM = "platform/linux"
LIBRARY_OF = {
    "platform": "vornix_platform", "logging": "vornix_logging", "locations": "vornix_locations",
    "logging/family": "vornix_logging_family", "foundation": "vornix_foundation",
    "fs": "vornix_fs", "settings": "vornix_settings", "analytics": "vornix_analytics",
    "agent": "vornix_agent", REAL_PLATFORM: "vornix_platform_linux",
}
LAYER_OF = {library: layer for layer, library in LIBRARY_OF.items()}
ON_FAKES_ONLY = ("tests/unit", "tests/fakes")
LONGEST_FILE = 400

STANDARD_HEADERS = frozenset("""
algorithm any array atomic barrier bit bitset charconv chrono codecvt compare complex concepts
condition_variable coroutine deque exception execution expected filesystem format forward_list
fstream functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits
list locale map memory memory_resource mutex new numbers numeric optional ostream queue random
ranges ratio regex scoped_allocator semaphore set shared_mutex source_location span sstream stack
stdexcept stop_token streambuf string string_view syncstream system_error thread tuple type_traits
typeindex typeinfo unordered_map unordered_set utility valarray variant vector version
cassert cctype cerrno cfenv cfloat cinttypes climits clocale cmath csetjmp csignal cstdarg cstddef
cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype
assert.h ctype.h errno.h fenv.h float.h inttypes.h limits.h locale.h math.h setjmp.h signal.h
stdarg.h stddef.h stdint.h stdio.h stdlib.h string.h time.h uchar.h wchar.h wctype.h
""".split())

INCLUDE = re.compile(r'^\s*#\s*include(?:_next)?\s*([<"])([^>"]+)[>"]')
CONDITION = re.compile(r"^\s*#\s*(?:if|ifdef|ifndef|elif|elifdef|elifndef)\b(.*)")
SYSTEM_MACRO = re.compile(r"__linux|\blinux\b|__gnu_linux__|__unix|\bunix\b|__APPLE__|__MACH__|TARGET_OS_"
                          r"|_WIN(?:32|64)|__CYGWIN__|__MINGW|__FreeBSD__|__NetBSD__|__OpenBSD__"
                          r"|__DragonFly__|__sun\b|__ANDROID__|__GLIBC__|_POSIX_|__has_include")
STANDARD_LOCK = re.compile(r"\bstd::(?:(?:\w+_)?mutex|lock_guard|unique_lock|shared_lock|scoped_lock"
                           r"|condition_variable\w*)\b")
CHECKED_LOCKS = "platform/base/Mutex.h"
CALL = re.compile(r"\b(vornix_library|target_link_libraries|add_executable)\s*\(\s*([\w:]+)([^)]*)\)",
                  re.DOTALL)


def layer_of(path):
    """The layer a path from the tree's root belongs to; None for tests, examples and the like."""
    for layer in (REAL_PLATFORM, "logging/family"):
        if path.startswith(layer + "/"):
            return layer
    first = path.split("/", 1)[0]
    return first if first in MAY_USE else None


def may_use(user, used):
    if used == REAL_PLATFORM:
        return user == REAL_PLATFORM
    if user == REAL_PLATFORM:
        return used == "platform"
    return used == user or used in MAY_USE[user]


def files_of(root, *patterns):
    for pattern in patterns:
        for path in sorted(root.rglob(pattern)):
            relative = path.relative_to(root).as_posix()
            if path.is_file() and relative.split("/", 1)[0] not in ("build", ".git"):
                yield relative, path.read_text(encoding="utf-8", errors="replace")


def include_complaint(path, bracket, header):
    user = layer_of(path)
    if bracket == "<":
        allowed = user in (None, REAL_PLATFORM) or header in STANDARD_HEADERS
        return None if allowed else f"<{header}> is no header of the C or C++ standard library"
    used = layer_of(header)
    if user is None:
        if used == REAL_PLATFORM and path.startswith(ON_FAKES_ONLY):
            return f"a test on the fakes includes the real platform, \"{header}\""
        return None
    if used is None:
        return f"\"{header}\" is not named from the root of the tree, or stands in no layer"
    return None if may_use(user, used) else f"{user} may not use {used} (\"{header}\")"


def source_complaints(path, text):
    for number, line in enumerate(text.splitlines(), 1):
        include = INCLUDE.match(line)
        complaint = include_complaint(path, *include.groups()) if include else None
        if complaint:
            yield f"{path}:{number}: {complaint}"
        condition = CONDITION.match(line)
        hidden = layer_of(path) not in (None, REAL_PLATFORM)
        if hidden and condition and SYSTEM_MACRO.search(condition.group(1)):
            yield f"{path}:{number}: a condition on the operating system outside {REAL_PLATFORM}"
        unchecked = layer_of(path) is not None and path != CHECKED_LOCKS
        if unchecked and STANDARD_LOCK.search(line):
            yield f"{path}:{number}: a lock that no compiler checks; {CHECKED_LOCKS} has those it does"


def link_complaints(path, text):
    """Libraries follow the same arrows; programs may link everything, tests on fakes no real thing."""
    text = re.sub(r"#[^\n]*", "", text)
    programs = {call[1] for call in CALL.findall(text) if call[0] == "add_executable"}
    for name, target, arguments in CALL.findall(text):
        words = arguments.split()
        if path.startswith(ON_FAKES_ONLY) and LIBRARY_OF[REAL_PLATFORM] in words:
            yield f"{path}: a test on the fakes links the real platform"
        user = LAYER_OF.get(target)
        if name == "add_executable" or target in programs or user is None:
            continue
        for used in words:
            if used in LAYER_OF and not may_use(user, LAYER_OF[used]):
                yield f"{path}: {target} may not link {used}"


def length_complaints(root):
    for path, text in files_of(root, "*.h", "*.cpp", "*.c", "*.py", "*.sh", "*.cmake",
                               "CMakeLists.txt", "dev"):
        lines = text.count("\n")
        if lines > LONGEST_FILE:
            yield f"{path}: {lines} lines, more than {LONGEST_FILE}"


def check(root):
    root = Path(root)
    complaints = []
    for path, text in files_of(root, "*.h", "*.cpp", "*.c"):
        complaints.extend(source_complaints(path, text))
    for path, text in files_of(root, "CMakeLists.txt", "*.cmake"):
        complaints.extend(link_complaints(path, text))
    complaints.extend(length_complaints(root))
    return complaints
