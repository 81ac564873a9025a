#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Tasks of other applications that the host starts.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuTasks {
 public:
  KesuTasks() = delete;

  /// Posts event "AddToCalendar": an entry was added to the calendar. No keys of its own.
  /// [KesuTasks addToCalendarwithAttributes:]
  static void addToCalendarwithAttributes(const Attributes& attributes = {});
};

}  // namespace kesu
