#include "delivery/PostOutcome.h"

namespace kesu {
namespace {

constexpr int kBadRequest = 400;
constexpr int kForbidden = 403;

bool isSuccess(int status) {
  return status >= 200 && status <= 299;
}

/// The record itself is at fault, so that no later attempt can succeed.
bool isRefusedForGood(int status) {
  return status == kBadRequest || status == kForbidden;
}

}  // namespace

bool isDelivered(const HttpReply& reply) {
  return reply.error == HttpError::None && isSuccess(reply.status);
}

PostAction actionAfter(PostKind kind, const HttpReply& reply) {
  switch (kind) {
    case PostKind::First:
      return isDelivered(reply) || isRefusedForGood(reply.status) ? PostAction::None : PostAction::StoreRecord;
    case PostKind::Resend:
      return reply.body.has_value() && isSuccess(reply.status) ? PostAction::DeleteFile : PostAction::None;
  }
  return PostAction::None;
}

}  // namespace kesu
