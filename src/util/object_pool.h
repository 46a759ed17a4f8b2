#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace kiv {

// The larger entries of a book, which come one by one and mostly stay until the trace ends: made in
// chunks, they cost no visit to the heap each. The pool must outlive the objects.
template <class T>
class object_pool {
 public:
  struct give_back {
    void operator()(T* object) const {
      std::destroy_at(object);
      pool->release(reinterpret_cast<place*>(object));
    }
    object_pool* pool = nullptr;
  };
  using pointer = std::unique_ptr<T, give_back>;

  object_pool() = default;
  object_pool(const object_pool&) = delete;
  object_pool& operator=(const object_pool&) = delete;

  template <class... Arguments>
  pointer make(Arguments&&... arguments) {
    if (first_free_ == nullptr) add_chunk();
    place* taken = std::exchange(first_free_, first_free_->next);
    return pointer(std::construct_at(&taken->object, std::forward<Arguments>(arguments)...),
                   give_back{this});
  }

 private:
  union place {
    place() : next(nullptr) {}
    ~place() {}
    place(const place&) = delete;
    place& operator=(const place&) = delete;

    place* next;  // while free
    T object;
  };

  static constexpr std::uint32_t chunk_size = 16;

  void release(place* free) {
    free->next = first_free_;
    first_free_ = free;
  }
  void add_chunk() {
    chunks_.push_back(std::make_unique<place[]>(chunk_size));
    for (std::uint32_t i = chunk_size; i > 0; --i) release(&chunks_.back()[i - 1]);
  }

  std::vector<std::unique_ptr<place[]>> chunks_;
  place* first_free_ = nullptr;
};

}  // namespace kiv
