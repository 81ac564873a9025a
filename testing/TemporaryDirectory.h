#pragma once

#include "tools/loopback/TemporaryDirectory.h"

namespace kesu::testing {

using loopback::TemporaryDirectory;

}  // namespace kesu::testing
