#pragma once

#include <string>

namespace kesu {

// What the library makes on disk is for this user alone. Any thread; locks nothing.

/// Makes a directory of mode 0700 and the missing ones above it. Returns 0 when it is there afterwards, also behind a
/// link, else the error number.
int makeDirectories(const std::string& path);

/// The same; and an existing directory loses the rights of group and others, when it is this user's. Links are
/// followed: what must not be one is opened with O_NOFOLLOW.
int makePrivateDirectory(const std::string& path);

/// Takes the rights of group and others from an open file or directory of this user; O_PATH is enough. What belongs to
/// someone else, or refuses, stays as it is. Never adds a right.
void makePrivate(int fd);

}  // namespace kesu
