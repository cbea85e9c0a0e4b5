// Threads for the pages that stream their output. Such a page cannot run on the HTTP thread
// that took its request: that thread must be free to send what the page flushes. The pool
// grows to the number of such pages running at once and keeps its threads for the next ones.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace qv::asp {

class PageThreads {
 public:
  PageThreads() = default;
  ~PageThreads() { Stop(); }
  PageThreads(const PageThreads&) = delete;
  PageThreads& operator=(const PageThreads&) = delete;

  void Run(std::function<void()> job);
  // Waits for the jobs still running or queued, and ends the threads.
  void Stop();

 private:
  void Loop();

  std::mutex mutex_;
  std::condition_variable ready_;
  std::deque<std::function<void()>> jobs_;
  std::vector<std::thread> threads_;
  size_t idle_ = 0;
  bool stopping_ = false;
};

}  // namespace qv::asp
