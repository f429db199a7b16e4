// A value of which each load and each store is atomic, such as a QPointer, which by itself is not.

#pragma once

#include <mutex>
#include <utility>

template <class Value>
class Atomic {
  public:
    [[nodiscard]] Value load() const {
        const std::lock_guard lock(mutex_);
        return value_;
    }

    void store(Value value) {
        const std::lock_guard lock(mutex_);
        value_ = std::move(value);
    }

  private:
    mutable std::mutex mutex_;
    Value value_;
};
