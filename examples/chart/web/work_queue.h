// What waits for a thread that draws: so much and no more, and never two pieces of the same work at once.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <new>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// Any thread may call any operation.
template <class Work>
class WorkQueue {
 public:
  explicit WorkQueue(size_t most) : m_most(most) {}

  /// Work of one key is done one after the other: the second may find what the first has made. An empty key
  /// is nobody else's. False when there is no room.
  bool Push(std::string key, Work work) {
    try {
      const std::lock_guard lock(m_mutex);
      if (m_isClosed || m_waiting.size() >= m_most) return false;
      m_waiting.push_back({std::move(key), std::move(work)});
    } catch (const std::bad_alloc&) {
      return false;
    }
    m_changed.notify_one();
    return true;
  }

  struct Taken {
    std::string key;
    Work work;
  };
  /// Waits for the oldest work that may be begun; nothing once the queue is closed. `Done` must follow.
  std::optional<Taken> Take() {
    std::unique_lock lock(m_mutex);
    for (;;) {
      if (m_isClosed) return std::nullopt;
      const auto next = std::find_if(m_waiting.begin(), m_waiting.end(),
                                     [&](const Taken& waiting) { return !m_busy.contains(waiting.key); });
      if (next != m_waiting.end()) {
        std::optional<Taken> taken(std::move(*next));
        m_waiting.erase(next);
        if (!taken->key.empty()) m_busy.insert(taken->key);
        return taken;
      }
      m_changed.wait(lock);
    }
  }

  void Done(const std::string& key) {
    if (key.empty()) return;
    {
      const std::lock_guard lock(m_mutex);
      m_busy.erase(key);
    }
    m_changed.notify_all();
  }

  /// Nothing comes in or is begun from now on. What was waiting.
  std::vector<Work> Close() {
    std::vector<Work> left;
    {
      const std::lock_guard lock(m_mutex);
      m_isClosed = true;
      for (Taken& waiting : m_waiting) left.push_back(std::move(waiting.work));
      m_waiting.clear();
    }
    m_changed.notify_all();
    return left;
  }

 private:
  const size_t m_most;
  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::deque<Taken> m_waiting;
  std::set<std::string> m_busy;
  bool m_isClosed = false;
};
