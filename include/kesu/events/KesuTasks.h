#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Tasks of other applications that the host starts.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuTasks {
 public:
  KesuTasks() = delete;

  /// [KesuTasks addToCalendarwithAttributes:] Event "AddToCalendar", no keys of its own.
  static void addToCalendarwithAttributes(const Attributes& attributes = {});
};

}  // namespace kesu
