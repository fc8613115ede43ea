/// What an object carries beside its own fields once somebody attaches a value to it or observes
/// it.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::object {

struct NSObjectState {
  struct Attachment {
    std::string key;
    id value;
  };
  /// An observation that wants to hear of changes to a key of this object.
  struct Hook {
    std::string key;
    std::weak_ptr<NSKeyValueObservation> observation;
    const NSKeyValueObservation* address = nullptr;
  };
  struct Registration {
    const NSObject* observer = nullptr;
    std::weak_ptr<NSObject> weakObserver;
    std::string keyPath;
    const void* context = nullptr;
    std::shared_ptr<NSKeyValueObservation> observation;
  };
  /// A change that has begun and not ended.
  struct Change {
    std::string key;
    std::thread::id thread;
    /// Begun by `setValueForKey`: the setter's own notices for the key are part of it.
    bool isAutomatic = false;
    bool isAbsorbed = false;
    std::vector<std::pair<std::shared_ptr<NSKeyValueObservation>, id>> observations;
  };

  std::mutex lock;
  std::vector<Attachment> attachments;
  std::vector<Hook> hooks;
  std::vector<Registration> registrations;
  std::vector<Change> changes;
};

}  // namespace ORLFoundation::internal::object
