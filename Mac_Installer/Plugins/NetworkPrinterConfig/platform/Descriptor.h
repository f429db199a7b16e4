// Owns a file descriptor, or -1 if it could not be opened.

#pragma once

#include <unistd.h>

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
