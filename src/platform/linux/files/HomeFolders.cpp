#include "platform/linux/files/HomeFolders.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <memory>
#include <string_view>
#include <utility>

#include "platform/linux/base/PrivateDirectory.h"
#include "platform/linux/base/UniqueFd.h"

namespace kesu {
namespace {

using Folder = HomeFolders::Folder;

struct Place {
  Folder parent;
  const char* name;
};

Place placeOf(Folder folder) {
  switch (folder) {
    case Folder::Home:
      break;
    case Folder::Documents:
      return {Folder::Home, "/Documents"};
    case Folder::Library:
      return {Folder::Home, "/Library"};
    case Folder::Caches:
      return {Folder::Library, "/Caches"};
    case Folder::Preferences:
      return {Folder::Library, "/Preferences"};
  }
  return {Folder::Home, ""};
}

// The path of an existing directory without links, else "".
std::string realDirectory(const std::string& path) {
  const std::unique_ptr<char, decltype([](char* text) { ::free(text); })> real(::realpath(path.c_str(), nullptr));
  struct stat info {};
  const bool isDirectory = real && ::stat(real.get(), &info) == 0 && S_ISDIR(info.st_mode);
  return isDirectory ? std::string(real.get()) : std::string();
}

// O_PATH: closing a descriptor that could read would release the locks that the database has on its file.
void tighten(int directory, const char* name) {
  if (const UniqueFd file(::openat(directory, name, O_PATH | O_NOFOLLOW | O_CLOEXEC)); file) {
    makePrivate(file.get());
  }
}

void tightenDefaults(const std::string& preferences) {
  const std::unique_ptr<DIR, decltype([](DIR* directory) { ::closedir(directory); })> listing(
      ::opendir(preferences.c_str()));
  if (!listing) {
    return;
  }
  makePrivate(::dirfd(listing.get()));
  while (const dirent* entry = ::readdir(listing.get())) {
    if (std::string_view(entry->d_name).starts_with("kesu.defaults")) {
      tighten(::dirfd(listing.get()), entry->d_name);
    }
  }
}

// Other versions, or a careless copy of the directory, may have left our files open to everyone.
void tightenOurs(Folder folder, const std::string& path) {
  if (folder == Folder::Preferences) {
    tightenDefaults(path);
  } else if (folder == Folder::Caches) {
    tighten(AT_FDCWD, (path + "/ImageCache").c_str());
  }
}

}  // namespace

HomeFolders::HomeFolders(std::string home) : home_(std::move(home)) {}

std::string HomeFolders::path(Folder folder) {
  if (home_.empty() || forkGuard_.isForkedChild()) {
    return {};
  }
  const MutexLock lock(mutex_);
  return resolve(folder);
}

std::string HomeFolders::resolve(Folder folder) {
  std::string& found = found_[static_cast<std::size_t>(folder)];
  if (!found.empty()) {
    return found;
  }
  const Place place = placeOf(folder);
  const std::string path = folder == Folder::Home ? home_ : resolve(place.parent) + place.name;
  found = realDirectory(path);
  if (found.empty()) {
    return path;
  }
  tightenOurs(folder, found);
  return found;
}

}  // namespace kesu
