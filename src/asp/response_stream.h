// The response of a page that may send its output before it ends (Response.Flush,
// Response.Buffer = False). The page runs on a thread of its own; this channel carries its
// response head once and then pieces of its body to the HTTP thread, which takes them as fast
// as the client's socket takes them. A page that writes faster than the client reads waits
// for the piece before to be taken, so that a page of any length holds about one piece in
// memory.
//
// The HTTP side never blocks: when nothing is ready it parks its connection through `suspend`
// and the page side wakes it through `resume` (both under the channel's lock, so a wake
// always follows the park it answers).
#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

#include "asp/http_types.h"

namespace qv::asp {

class ResponseStream {
 public:
  // Output the client has not read yet, up to about this size; past it, the page waits.
  static constexpr size_t kPieceSize = 64u << 10;

  // --- The page's side ---

  // Sends the head (status and headers) of a response whose body follows in pieces.
  void Start(HttpResponse head);
  // Hands `piece` over and empties it; waits first while the client has more than a piece
  // still to read. A client that went away takes everything at once.
  void Offer(std::string& piece);
  // The page ended: `rest` is the rest of the body after a Start, or the whole response.
  void Finish(HttpResponse rest);
  // False once the client went away (or the server stops).
  bool connected() const;

  // --- The HTTP side ---

  // How to park and wake the connection; set before the first TakeHead.
  void Attach(std::function<void()> suspend, std::function<void()> resume);
  enum class Head { kWait, kStream, kWhole, kGone };
  // The head of the response, or the whole response when the page ended without sending
  // anything; kWait after parking the connection until there is one.
  Head TakeHead(HttpResponse& out);
  // Copies body bytes into `buffer`: their count, 0 after parking the connection, nullopt at
  // the end of the body; `gone` tells an end cut short.
  std::optional<size_t> Read(char* buffer, size_t size, bool& gone);
  // The client went away or the server stops: wakes a parked connection for the last time and
  // lets the page run on, its output dropped.
  void Cancel();
  size_t bytes_sent() const;

 private:
  void WakeLocked();

  mutable std::mutex mutex_;
  std::condition_variable taken_;
  std::optional<HttpResponse> head_;  // until taken
  bool started_ = false;              // the head went out before the body's end
  bool finished_ = false;
  bool cancelled_ = false;
  bool parked_ = false;
  std::string piece_;
  size_t offset_ = 0;  // of piece_ already read
  size_t sent_ = 0;
  std::function<void()> suspend_, resume_;
};

}  // namespace qv::asp
