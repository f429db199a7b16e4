// References shared between two threads. Each load or store is atomic, and a reference to a destroyed object
// reads as null.

#pragma once

#include <QPointer>
#include <QString>

#include <memory>
#include <mutex>

/// A non-owning reference. Each load or store is atomic; access to the object itself is not synchronized.
/// Objects must be destroyed on the main thread.
template <class Object>
class WeakReference {
  public:
    [[nodiscard]] Object* load() const {
        const std::lock_guard lock(mutex_);
        return object_;
    }

    void store(Object* object) {
        const std::lock_guard lock(mutex_);
        object_ = object;
    }

  private:
    mutable std::mutex mutex_;
    QPointer<Object> object_;
};

/// A reference that shares ownership with the object's parent: the object is destroyed with its parent or, if
/// it has none, when this reference is replaced or destroyed. Each load or store is atomic. Stores and
/// destruction on the main thread only.
template <class Object>
class OwningReference {
  public:
    OwningReference() = default;
    OwningReference(const OwningReference&) = delete;
    OwningReference& operator=(const OwningReference&) = delete;
    ~OwningReference() { store(nullptr); }

    [[nodiscard]] Object* load() const { return object_.load(); }

    void store(Object* object) {
        Object* const previous = object_.load();
        object_.store(object);
        if (previous != nullptr && previous != object && previous->parent() == nullptr) {
            delete previous;
        }
    }

  private:
    WeakReference<Object> object_;
};

/// WeakReference for a text, owned by shared_ptr: reads as null once no owner is left.
template <>
class WeakReference<const QString> {
  public:
    [[nodiscard]] QString load() const {
        const std::lock_guard lock(mutex_);
        const std::shared_ptr<const QString> text = text_.lock();
        return text ? *text : QString();
    }

    void store(const std::shared_ptr<const QString>& text) {
        const std::lock_guard lock(mutex_);
        text_ = text;
    }

  private:
    mutable std::mutex mutex_;
    std::weak_ptr<const QString> text_;
};
