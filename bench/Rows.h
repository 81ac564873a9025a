#pragma once

#include <string>
#include <vector>

#include "Figure.h"

namespace kesu::bench {

/// One row of the table: measured in a process of its own, so that state, memory and singletons do not mix.
struct Row {
  std::string name;
  void (*measure)(Figures& figures);
};

/// Something that a row runs in yet another process: it gets its arguments and returns the exit status.
struct Program {
  std::string name;
  int (*run)(const std::vector<std::string>& arguments);
};

// The rows, in the order of the table.
void measurePosting(Figures& figures);
void measureRecordRoad(Figures& figures);
void measureDelivery(Figures& figures);
void measureDeliveryOverTls(Figures& figures);
void measureStoreWrite(Figures& figures);
void measureReadBack(Figures& figures);
void measureResend(Figures& figures);
void measureKill(Figures& figures);
void measureExit(Figures& figures);
void measureAway(Figures& figures);
void measureRestart(Figures& figures);
void measureStart(Figures& figures);
void measureIdle(Figures& figures);
void measureLogging(Figures& figures);
void measureSize(Figures& figures);
void measureScreens(Figures& figures);
void measurePopup(Figures& figures);
void measureMessage(Figures& figures);

// The programs.
int fillStore(const std::vector<std::string>& arguments);    ///< HOME COUNT: stores that many records.
int postAndEnd(const std::vector<std::string>& arguments);   ///< HOME URL COUNT WAY: posts, then ends that way.
int postAndWait(const std::vector<std::string>& arguments);  ///< HOME URL COUNT: prints how much memory they take.
int deliverAll(const std::vector<std::string>& arguments);   ///< HOME URL: delivers what waits.
int sendBare(const std::vector<std::string>& arguments);     ///< URL FILE COUNT: sends the file that often.

}  // namespace kesu::bench
