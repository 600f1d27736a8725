// Holds a handler that can be replaced at any time, from any thread, even by itself while it runs.
#ifndef HOST_HANDLER_SLOT_H
#define HOST_HANDLER_SLOT_H

#include <memory>
#include <mutex>
#include <utility>

template <class HANDLER>
class HANDLER_SLOT {
 public:
  // An empty handler empties the slot.
  void set(HANDLER handler) {
    std::shared_ptr<const HANDLER> replaced;
    if (handler) replaced = std::make_shared<const HANDLER>(std::move(handler));
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_handler.swap(replaced);
  }

  // Null if none is installed. The handler lives as long as the caller holds it.
  std::shared_ptr<const HANDLER> get() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_handler;
  }

 private:
  std::mutex m_mutex;
  std::shared_ptr<const HANDLER> m_handler;
};

#endif
