// The objects of global.asa's <OBJECT RUNAT=Server SCOPE=Application> tags: one instance for
// the whole application, used by requests on any thread. A request sees it through a view of
// its own that calls the instance under the instance's lock, and values cross as copies both
// ways, since neither the engine's text buffers nor an object's count may be touched from two
// threads at once. Objects of a request cannot go in (they die with their engine); objects
// that come out (an item of a collection) are views under the same lock.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "automation/object.h"

namespace qv::asp {

struct SharedInstance {
  explicit SharedInstance(Ref<Object> object) : object(std::move(object)) {}
  ~SharedInstance();
  std::mutex mutex;
  Ref<Object> object;  // touched under `mutex` only
};

struct ApplicationObject {
  std::u16string id;
  std::shared_ptr<SharedInstance> instance;
};

// A view for one request.
Ref<Object> NewSharedView(std::shared_ptr<SharedInstance> instance);

}  // namespace qv::asp
