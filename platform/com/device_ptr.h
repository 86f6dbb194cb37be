// Who holds an object of the layer.
#pragma once
#include <utility>

namespace sparkrig {

/// Holds one reference to a device object and gives it back. No code above the layer calls Release by hand.
template <class Interface>
class DevicePtr {
  public:
    DevicePtr() = default;
    /// Takes over the reference that the caller holds.
    explicit DevicePtr(Interface* owned) : object_(owned) {}
    DevicePtr(const DevicePtr& other) : object_(other.object_) {
        if (object_) object_->AddRef();
    }
    DevicePtr(DevicePtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    DevicePtr& operator=(DevicePtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~DevicePtr() { Reset(); }

    /// A further reference to an object that somebody else holds.
    static DevicePtr Share(Interface* borrowed) {
        if (borrowed) borrowed->AddRef();
        return DevicePtr(borrowed);
    }

    void Reset() {
        if (Interface* object = std::exchange(object_, nullptr)) object->Release();
    }
    /// For the call that creates: lets go of what is held and gives the place to store the new reference.
    Interface** Receive() {
        Reset();
        return &object_;
    }

    Interface* Get() const { return object_; }
    Interface* operator->() const { return object_; }
    Interface& operator*() const { return *object_; }
    explicit operator bool() const { return object_ != nullptr; }
    bool operator==(const DevicePtr&) const = default;

  private:
    Interface* object_ = nullptr;
};

}   // namespace sparkrig
