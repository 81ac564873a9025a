#include "delivery/PostOutcome.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

HttpReply reply(int status, HttpError error, bool hasBody) {
  HttpReply made;
  made.status = status;
  made.error = error;
  if (hasBody) {
    made.body = "";
  }
  return made;
}

TEST(PostOutcome, FollowsTheTable) {
  using enum PostAction;
  const struct {
    int status;
    HttpError error;
    bool hasBody;
    PostAction first;
    PostAction resend;
  } rows[] = {
      {200, HttpError::None, true, None, DeleteFile},
      {204, HttpError::None, true, None, DeleteFile},
      {299, HttpError::None, true, None, DeleteFile},
      {300, HttpError::None, true, StoreRecord, None},
      {302, HttpError::BadRedirect, false, StoreRecord, None},
      {304, HttpError::None, true, StoreRecord, None},
      {400, HttpError::None, true, None, None},
      {401, HttpError::None, true, StoreRecord, None},
      {403, HttpError::None, true, None, None},
      {403, HttpError::ConnectionLost, false, None, None},
      {404, HttpError::None, true, StoreRecord, None},
      {429, HttpError::None, true, StoreRecord, None},
      {500, HttpError::None, true, StoreRecord, None},
      {199, HttpError::None, true, StoreRecord, None},
      {200, HttpError::ConnectionLost, false, StoreRecord, None},
      {200, HttpError::ConnectionLost, true, StoreRecord, DeleteFile},
      {200, HttpError::TooLarge, false, StoreRecord, None},
      {0, HttpError::CannotConnect, false, StoreRecord, None},
      {0, HttpError::CannotResolve, false, StoreRecord, None},
      {0, HttpError::Tls, false, StoreRecord, None},
      {0, HttpError::TimedOut, false, StoreRecord, None},
      {0, HttpError::Cancelled, false, StoreRecord, None},
  };
  for (const auto& row : rows) {
    const HttpReply given = reply(row.status, row.error, row.hasBody);
    EXPECT_EQ(actionAfter(PostKind::First, given), row.first) << row.status << "/" << static_cast<int>(row.error);
    EXPECT_EQ(actionAfter(PostKind::Resend, given), row.resend) << row.status << "/" << static_cast<int>(row.error);
  }
}

}  // namespace
}  // namespace kesu
