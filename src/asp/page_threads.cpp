// A job never waits for a free thread: a page that streams may wait for its client, and
// pages queued behind it would wait with it.
#include "asp/page_threads.h"

namespace qv::asp {

void PageThreads::Stop() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  ready_.notify_all();
  for (std::thread& t : threads_)
    t.join();
  threads_.clear();
}

void PageThreads::Run(std::function<void()> job) {
  std::lock_guard lock(mutex_);
  jobs_.push_back(std::move(job));
  if (idle_ >= jobs_.size()) {
    ready_.notify_one();
    return;
  }
  threads_.emplace_back([this] { Loop(); });
}

void PageThreads::Loop() {
  std::unique_lock lock(mutex_);
  for (;;) {
    ++idle_;
    ready_.wait(lock, [&] { return stopping_ || !jobs_.empty(); });
    --idle_;
    if (jobs_.empty()) return;  // stopping, nothing left
    std::function<void()> job = std::move(jobs_.front());
    jobs_.pop_front();
    lock.unlock();
    job();
    lock.lock();
  }
}

}  // namespace qv::asp
