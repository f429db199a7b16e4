#pragma once

#include <unistd.h>

/// Owns a file descriptor, or -1 if it could not be opened.
class Descriptor {
  public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }

    [[nodiscard]] int descriptor() const { return descriptor_; }

  private:
    int descriptor_;
};
