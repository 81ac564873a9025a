// Loaded into a host by LD_PRELOAD: counts its calls that touch files below one directory, and lets one of them fail,
// or all from that one on. Only with errors that the call can return. Settings come from the environment:
//   KESU_FAULT_HOME    the directory; without it every call passes
//   KESU_FAULT_CALL    number of the call that fails, from 1 on; 0: none
//   KESU_FAULT_ERROR   ENOSPC, EIO, EROFS, EMFILE, EACCES, EINTR, ENOMEM, ENOLCK, or SHORT: half of the bytes
//   KESU_FAULT_LASTS   1: from that call on, each one that can return the error fails
//   KESU_FAULT_SLOW    seconds for which a sync of any thread but the main one takes
//   KESU_FAULT_TRACE   a file to which each call is appended: number, name, "!" where it failed, path, possible errors
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <initializer_list>

namespace {

constexpr int kShort = -1;  // In place of an error number.

struct NamedError {
  const char* name;
  int number;
};
constexpr NamedError kErrors[] = {{"ENOSPC", ENOSPC}, {"EIO", EIO},       {"EROFS", EROFS},
                                  {"EMFILE", EMFILE}, {"EACCES", EACCES}, {"EINTR", EINTR},
                                  {"ENOMEM", ENOMEM}, {"ENOLCK", ENOLCK}, {"SHORT", kShort}};

int numberOf(const char* name) {
  for (const NamedError& error : kErrors) {
    if (name != nullptr && std::strcmp(name, error.name) == 0) {
      return error.number;
    }
  }
  return 0;
}

/// What the environment asks for.
struct Plan {
  const char* home = std::getenv("KESU_FAULT_HOME");
  std::size_t homeLength = home != nullptr ? std::strlen(home) : 0;
  long call = std::getenv("KESU_FAULT_CALL") != nullptr ? std::atol(std::getenv("KESU_FAULT_CALL")) : 0;
  int error = numberOf(std::getenv("KESU_FAULT_ERROR"));
  bool lasts = std::getenv("KESU_FAULT_LASTS") != nullptr;
  long slow = std::getenv("KESU_FAULT_SLOW") != nullptr ? std::atol(std::getenv("KESU_FAULT_SLOW")) : 0;
  int trace = -1;

  Plan() {
    if (const char* file = std::getenv("KESU_FAULT_TRACE")) {
      constexpr int kFlags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC;
      trace = static_cast<int>(::syscall(SYS_openat, AT_FDCWD, file, kFlags, 0600));
    }
  }
};

const Plan& plan() {
  static const Plan made;
  return made;
}

std::atomic<long> g_calls{0};

bool isInHome(const char* path) {
  const Plan& asked = plan();
  return asked.homeLength != 0 && std::strncmp(path, asked.home, asked.homeLength) == 0;
}

/// The path of a descriptor; empty when it has none.
struct DescriptorPath {
  explicit DescriptorPath(int descriptor) {
    if (plan().homeLength != 0 && descriptor >= 0) {
      char link[64];
      std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
      const long length = ::syscall(SYS_readlinkat, AT_FDCWD, link, text, sizeof text - 1);
      text[length > 0 ? length : 0] = '\0';
    }
  }
  char text[PATH_MAX] = {};
};

void trace(long number, const char* name, bool fails, const char* path, std::initializer_list<int> possible) {
  char line[PATH_MAX + 256];
  int length = std::snprintf(line, sizeof line, "%ld %s%s %s", number, name, fails ? "!" : "", path);
  for (const NamedError& error : kErrors) {
    for (const int one : possible) {
      if (one == error.number) {
        length += std::snprintf(line + length, sizeof line - static_cast<std::size_t>(length), " %s", error.name);
      }
    }
  }
  line[length++] = '\n';
  ::syscall(SYS_write, plan().trace, line, static_cast<std::size_t>(length));
}

/// Counts a call. Returns what it shall fail with; 0 when it passes.
int faultOf(const char* name, const char* path, std::initializer_list<int> possible) {
  if (!isInHome(path)) {
    return 0;
  }
  const Plan& asked = plan();
  const long number = ++g_calls;
  bool fails = asked.call > 0 && (number == asked.call || (asked.lasts && number > asked.call));
  if (fails) {
    fails = false;
    for (const int one : possible) {
      fails = fails || one == asked.error;
    }
  }
  if (asked.trace >= 0) {
    trace(number, name, fails, path, possible);
  }
  return fails ? asked.error : 0;
}

int faultOf(const char* name, int descriptor, std::initializer_list<int> possible) {
  return faultOf(name, DescriptorPath(descriptor).text, possible);
}

int faultAt(const char* name, int directory, const char* path, std::initializer_list<int> possible) {
  return path[0] == '/' || directory == AT_FDCWD ? faultOf(name, path, possible) : faultOf(name, directory, possible);
}

/// The same for a call that waits for the disk.
int faultOfSync(const char* name, int descriptor) {
  const int fault = faultOf(name, descriptor, {ENOSPC, EIO, EINTR});
  if (plan().slow > 0 && ::gettid() != ::getpid() && isInHome(DescriptorPath(descriptor).text)) {
    const timespec time{plan().slow, 0};
    ::nanosleep(&time, nullptr);
  }
  return fault;
}

template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// Returns -1 with the error where there is one, else what `call` returns.
template <typename Call>
int checked(int fault, const Call& call) {
  if (fault == 0) {
    return call();
  }
  errno = fault;
  return -1;
}

template <typename Call>
ssize_t transferred(const char* name, int descriptor, std::size_t count, bool isWrite, const Call& call) {
  const int fault = isWrite ? faultOf(name, descriptor, {ENOSPC, EIO, EINTR, kShort})
                            : faultOf(name, descriptor, {EIO, EINTR, kShort});
  if (fault > 0) {
    errno = fault;
    return -1;
  }
  return call(fault == kShort && count > 1 ? count / 2 : count);
}

bool makesFile(int flags) {
  return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

int faultOfOpen(const char* name, int directory, const char* path, int flags) {
  if (makesFile(flags)) {
    return faultAt(name, directory, path, {ENOSPC, EIO, EROFS, EMFILE, EACCES});
  }
  if ((flags & O_ACCMODE) != O_RDONLY) {
    return faultAt(name, directory, path, {EIO, EROFS, EMFILE, EACCES});
  }
  return faultAt(name, directory, path, {EIO, EMFILE, EACCES});
}

mode_t modeArgument(int flags, std::va_list arguments) {
  return makesFile(flags) ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

#define KESU_OPEN(name)                                                                                  \
  extern "C" int name(const char* path, int flags, ...) {                                                \
    std::va_list arguments;                                                                              \
    va_start(arguments, flags);                                                                          \
    const mode_t mode = modeArgument(flags, arguments);                                                  \
    va_end(arguments);                                                                                   \
    static auto* const real = next<int(const char*, int, ...)>(#name);                                   \
    return checked(faultOfOpen("open", AT_FDCWD, path, flags), [&] { return real(path, flags, mode); }); \
  }
#define KESU_OPENAT(name)                                                                                              \
  extern "C" int name(int directory, const char* path, int flags, ...) {                                               \
    std::va_list arguments;                                                                                            \
    va_start(arguments, flags);                                                                                        \
    const mode_t mode = modeArgument(flags, arguments);                                                                \
    va_end(arguments);                                                                                                 \
    static auto* const real = next<int(int, const char*, int, ...)>(#name);                                            \
    return checked(faultOfOpen("openat", directory, path, flags), [&] { return real(directory, path, flags, mode); }); \
  }
#define KESU_TRANSFER(name, isWrite, Bytes, Offset)                                              \
  extern "C" ssize_t name(int descriptor, Bytes bytes, std::size_t count, Offset offset) {       \
    static auto* const real = next<ssize_t(int, Bytes, std::size_t, Offset)>(#name);             \
    return transferred(#name, descriptor, count, isWrite,                                        \
                       [&](std::size_t part) { return real(descriptor, bytes, part, offset); }); \
  }
#define KESU_PLAIN_TRANSFER(name, isWrite, Bytes)                                        \
  extern "C" ssize_t name(int descriptor, Bytes bytes, std::size_t count) {              \
    static auto* const real = next<ssize_t(int, Bytes, std::size_t)>(#name);             \
    return transferred(#name, descriptor, count, isWrite,                                \
                       [&](std::size_t part) { return real(descriptor, bytes, part); }); \
  }
#define KESU_SYNC(name, ...)                                                          \
  extern "C" int name(int descriptor) __VA_ARGS__ {                                   \
    static auto* const real = next<int(int)>(#name);                                  \
    return checked(faultOfSync(#name, descriptor), [&] { return real(descriptor); }); \
  }
#define KESU_FALLOCATE(name, Offset)                                    \
  extern "C" int name(int descriptor, Offset offset, Offset length) {   \
    static auto* const real = next<int(int, Offset, Offset)>(#name);    \
    const int fault = faultOf(#name, descriptor, {ENOSPC, EIO, EINTR}); \
    return fault != 0 ? fault : real(descriptor, offset, length);       \
  }
#define KESU_TRUNCATE(name, Offset)                                                                     \
  extern "C" int name(int descriptor, Offset length) noexcept {                                         \
    static auto* const real = next<int(int, Offset)>(#name);                                            \
    return checked(faultOf(#name, descriptor, {EIO, EINTR}), [&] { return real(descriptor, length); }); \
  }
#define KESU_MAP(name, Offset)                                                                                   \
  extern "C" void* name(void* address, std::size_t length, int protection, int flags, int descriptor,            \
                        Offset offset) noexcept {                                                                \
    if (descriptor >= 0 && faultOf(#name, descriptor, {ENOMEM}) != 0) {                                          \
      errno = ENOMEM;                                                                                            \
      return MAP_FAILED;                                                                                         \
    }                                                                                                            \
    return reinterpret_cast<void*>(::syscall(SYS_mmap, address, length, protection, flags, descriptor, offset)); \
  }
// Taking a lock, as SQLite does; every other command passes, and so does giving one back.
#define KESU_CONTROL(name)                                                                                  \
  extern "C" int name(int descriptor, int command, ...) {                                                   \
    std::va_list arguments;                                                                                 \
    va_start(arguments, command);                                                                           \
    void* const argument = va_arg(arguments, void*);                                                        \
    va_end(arguments);                                                                                      \
    static auto* const real = next<int(int, int, ...)>(#name);                                              \
    const bool takes = command == F_SETLK && static_cast<const struct flock*>(argument)->l_type != F_UNLCK; \
    const int fault = takes ? faultOf(#name, descriptor, {ENOLCK}) : 0;                                     \
    return checked(fault, [&] { return real(descriptor, command, argument); });                             \
  }

KESU_OPEN(open)
KESU_OPEN(open64)
KESU_OPENAT(openat)
KESU_OPENAT(openat64)
KESU_PLAIN_TRANSFER(read, false, void*)
KESU_PLAIN_TRANSFER(write, true, const void*)
KESU_TRANSFER(pread, false, void*, off_t)
KESU_TRANSFER(pread64, false, void*, off64_t)
KESU_TRANSFER(pwrite, true, const void*, off_t)
KESU_TRANSFER(pwrite64, true, const void*, off64_t)
KESU_SYNC(fsync)
KESU_SYNC(fdatasync)
KESU_SYNC(syncfs, noexcept)
KESU_FALLOCATE(posix_fallocate, off_t)
KESU_FALLOCATE(posix_fallocate64, off64_t)
KESU_TRUNCATE(ftruncate, off_t)
KESU_TRUNCATE(ftruncate64, off64_t)
KESU_MAP(mmap, off_t)
KESU_MAP(mmap64, off64_t)
KESU_CONTROL(fcntl)
KESU_CONTROL(fcntl64)

extern "C" int flock(int descriptor, int operation) noexcept {
  static auto* const real = next<int(int, int)>("flock");
  return checked(faultOf("flock", descriptor, {ENOLCK}), [&] { return real(descriptor, operation); });
}

extern "C" int mkdir(const char* path, mode_t mode) noexcept {
  static auto* const real = next<int(const char*, mode_t)>("mkdir");
  // What exists is noticed before anything else.
  if (::syscall(SYS_faccessat, AT_FDCWD, path, F_OK) == 0) {
    return real(path, mode);
  }
  return checked(faultOf("mkdir", path, {ENOSPC, EIO, EROFS, EACCES}), [&] { return real(path, mode); });
}

extern "C" int unlink(const char* path) noexcept {
  static auto* const real = next<int(const char*)>("unlink");
  return checked(faultOf("unlink", path, {EIO, EROFS, EACCES}), [&] { return real(path); });
}

extern "C" int unlinkat(int directory, const char* path, int flags) noexcept {
  static auto* const real = next<int(int, const char*, int)>("unlinkat");
  return checked(faultAt("unlinkat", directory, path, {EIO, EROFS, EACCES}),
                 [&] { return real(directory, path, flags); });
}

extern "C" int rename(const char* from, const char* to) noexcept {
  static auto* const real = next<int(const char*, const char*)>("rename");
  return checked(faultOf("rename", to, {ENOSPC, EIO, EROFS, EACCES}), [&] { return real(from, to); });
}

extern "C" int renameat(int fromDirectory, const char* from, int toDirectory, const char* to) noexcept {
  static auto* const real = next<int(int, const char*, int, const char*)>("renameat");
  return checked(faultAt("renameat", toDirectory, to, {ENOSPC, EIO, EROFS, EACCES}),
                 [&] { return real(fromDirectory, from, toDirectory, to); });
}

extern "C" int linkat(int fromDirectory, const char* from, int toDirectory, const char* to, int flags) noexcept {
  static auto* const real = next<int(int, const char*, int, const char*, int)>("linkat");
  return checked(faultAt("linkat", toDirectory, to, {ENOSPC, EIO, EROFS, EACCES}),
                 [&] { return real(fromDirectory, from, toDirectory, to, flags); });
}

extern "C" DIR* opendir(const char* path) {
  static auto* const real = next<DIR*(const char*)>("opendir");
  const int fault = faultOf("opendir", path, {EIO, EMFILE, EACCES});
  if (fault != 0) {
    errno = fault;
    return nullptr;
  }
  return real(path);
}
