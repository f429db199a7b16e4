// References to controls that two threads may read: one read or one write at a time, and a reference reads as
// null once its object is gone.

#pragma once

#include <QPointer>
#include <QString>

#include <memory>
#include <mutex>

/// A reference that does not own its object and reads as null once the object is gone. One load or one store
/// is atomic; what is done with the object is the caller's business. Objects are destroyed on the main thread
/// only.
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

/// A reference that owns its object together with the object's parent, if it has one: a control is destroyed
/// with its parent widget, or else when this reference is replaced or goes away. One load or one store is
/// atomic. Stores, and the destruction of the reference, happen on the main thread only.
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

/// The same as WeakReference for a text: reads as null once nobody else keeps the text.
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
