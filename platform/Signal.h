#pragma once
// An event with any number of listeners, each a typed function. The owner
// raises it by calling it: `Click(key)`. A listener is connected for as long
// as its Connection lives on, or until it is disconnected; one that must not
// outlive its own object keeps a ScopedConnection.
//
// Listeners run in the order they were connected. One connected while the
// event is being raised first hears the next one; one disconnected while it
// is being raised is not called any more, even in the same raise.

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace qds {

class Connection {
 public:
  Connection() = default;
  void Disconnect() {
    if (auto alive = alive_.lock()) *alive = false;
    alive_.reset();
  }
  bool Connected() const {
    auto alive = alive_.lock();
    return alive && *alive;
  }

 private:
  template <class...>
  friend class Signal;
  explicit Connection(std::weak_ptr<bool> alive) : alive_(std::move(alive)) {}
  std::weak_ptr<bool> alive_;
};

// Disconnects when it goes, so that a listener's object may go first.
class ScopedConnection {
 public:
  ScopedConnection() = default;
  ScopedConnection(Connection c) : c_(std::move(c)) {}  // NOLINT: taken over as it comes
  ScopedConnection(ScopedConnection&& other) noexcept : c_(std::exchange(other.c_, {})) {}
  ScopedConnection& operator=(ScopedConnection&& other) noexcept {
    if (this != &other) {
      c_.Disconnect();
      c_ = std::exchange(other.c_, {});
    }
    return *this;
  }
  ScopedConnection(const ScopedConnection&) = delete;
  ScopedConnection& operator=(const ScopedConnection&) = delete;
  ~ScopedConnection() { c_.Disconnect(); }
  void Disconnect() { c_.Disconnect(); }

 private:
  Connection c_;
};

template <class... Args>
class Signal {
 public:
  using Listener = std::function<void(Args...)>;

  Signal() = default;
  // A signal belongs to its owner; its listeners never move with a copy.
  Signal(const Signal&) = delete;
  Signal& operator=(const Signal&) = delete;

  Connection Connect(Listener listener) {
    Prune();
    auto slot = std::make_shared<Slot>(Slot{std::move(listener), std::make_shared<bool>(true)});
    Connection c(slot->alive);
    slots_.push_back(std::move(slot));
    return c;
  }

  // Raises the event.
  void operator()(Args... args) const {
    if (slots_.empty()) return;
    // A copy, so that listeners may connect and disconnect as they run.
    const std::vector<std::shared_ptr<Slot>> slots = slots_;
    for (const auto& s : slots) {
      if (*s->alive && s->listener) s->listener(args...);
    }
  }

  // Whether anyone listens.
  bool Connected() const {
    for (const auto& s : slots_) {
      if (*s->alive) return true;
    }
    return false;
  }
  void DisconnectAll() {
    for (const auto& s : slots_) *s->alive = false;
    slots_.clear();
  }

 private:
  struct Slot {
    Listener listener;
    std::shared_ptr<bool> alive;
  };
  void Prune() {
    std::erase_if(slots_, [](const std::shared_ptr<Slot>& s) { return !*s->alive; });
  }
  std::vector<std::shared_ptr<Slot>> slots_;
};

}  // namespace qds
