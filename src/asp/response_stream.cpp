// The page side appends to its own string and swaps it in here when the piece before has been
// read to its end, so that the two sides never copy under the lock more than the socket takes.
#include "asp/response_stream.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace qv::asp {

void ResponseStream::WakeLocked() {
  if (!parked_) return;
  parked_ = false;
  if (resume_) resume_();
}

void ResponseStream::Start(HttpResponse head) {
  std::lock_guard lock(mutex_);
  assert(!started_ && !finished_);
  started_ = true;
  if (cancelled_) return;
  head_ = std::move(head);
  WakeLocked();
}

void ResponseStream::Offer(std::string& piece) {
  std::unique_lock lock(mutex_);
  assert(started_ && !finished_);
  if (!cancelled_ && piece_.size() - offset_ >= kPieceSize)
    taken_.wait(lock, [&] { return piece_.size() - offset_ < kPieceSize || cancelled_; });
  if (cancelled_ || piece.empty()) {
    piece.clear();
    return;
  }
  if (offset_ == piece_.size()) {
    piece_.swap(piece);
    offset_ = 0;
  } else {
    // The client reads slower than the page writes: what it has read goes now and then.
    if (offset_ >= kPieceSize) {
      piece_.erase(0, offset_);
      offset_ = 0;
    }
    piece_ += piece;
  }
  piece.clear();
  WakeLocked();
}

void ResponseStream::Finish(HttpResponse rest) {
  std::lock_guard lock(mutex_);
  assert(!finished_);
  finished_ = true;
  if (cancelled_) return;
  if (!started_) {
    head_ = std::move(rest);
  } else if (offset_ == piece_.size()) {
    piece_ = std::move(rest.body);
    offset_ = 0;
  } else {
    piece_ += rest.body;
  }
  WakeLocked();
}

bool ResponseStream::connected() const {
  std::lock_guard lock(mutex_);
  return !cancelled_;
}

void ResponseStream::Attach(std::function<void()> suspend, std::function<void()> resume) {
  std::lock_guard lock(mutex_);
  suspend_ = std::move(suspend);
  resume_ = std::move(resume);
}

ResponseStream::Head ResponseStream::TakeHead(HttpResponse& out) {
  std::lock_guard lock(mutex_);
  if (cancelled_) return Head::kGone;
  if (!head_) {
    assert(suspend_ && !parked_);
    parked_ = true;
    suspend_();
    return Head::kWait;
  }
  out = std::move(*head_);
  head_.reset();
  return finished_ && !started_ ? Head::kWhole : Head::kStream;
}

std::optional<size_t> ResponseStream::Read(char* buffer, size_t size, bool& gone) {
  std::lock_guard lock(mutex_);
  gone = cancelled_;
  if (cancelled_) return std::nullopt;
  if (offset_ < piece_.size()) {
    const size_t n = std::min(size, piece_.size() - offset_);
    std::memcpy(buffer, piece_.data() + offset_, n);
    offset_ += n;
    sent_ += n;
    if (piece_.size() - offset_ < kPieceSize) taken_.notify_all();
    return n;
  }
  if (finished_) return std::nullopt;
  assert(suspend_ && !parked_);
  parked_ = true;
  suspend_();
  return 0;
}

void ResponseStream::Cancel() {
  std::lock_guard lock(mutex_);
  if (cancelled_) return;
  cancelled_ = true;
  WakeLocked();
  suspend_ = nullptr;
  resume_ = nullptr;
  piece_.clear();
  piece_.shrink_to_fit();
  offset_ = 0;
  head_.reset();
  taken_.notify_all();
}

size_t ResponseStream::bytes_sent() const {
  std::lock_guard lock(mutex_);
  return sent_;
}

}  // namespace qv::asp
