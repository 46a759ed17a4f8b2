// A program to be recorded: threads that allocate in turn and at once, blocks that leak, that are
// freed by another thread, at once, or not at all.

#include <cstdlib>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <thread>
#include <vector>

namespace {

struct alignas(64) line_of_cache {
  char bytes[64];
};

struct node {
  std::unique_ptr<node> next;
  std::string text;
};

std::mutex shelf_mutex;
std::vector<std::unique_ptr<char[]>> shelf;  // filled and emptied by all threads
std::vector<void*> kept;                     // never freed

void keep(void* block) {
  const std::lock_guard lock(shelf_mutex);
  kept.push_back(block);
}

// Recursion: each call leaks a little.
void descend(int depth) {
  if (depth == 0) return;
  keep(std::malloc(static_cast<std::size_t>(depth)));
  descend(depth - 1);
}

std::unique_ptr<node> chain(int length) {
  std::unique_ptr<node> head;
  for (int i = 0; i < length; ++i) {
    auto made = std::make_unique<node>();
    made->text = std::string(40, static_cast<char>('a' + i % 26));
    made->next = std::move(head);
    head = std::move(made);
  }
  return head;
}

void work(int seed) {
  for (int round = 0; round < 200; ++round) {
    {
      auto own = std::make_unique<char[]>(100 + static_cast<std::size_t>(seed));
      const std::lock_guard lock(shelf_mutex);
      if (round % 3 == 0 && !shelf.empty()) shelf.erase(shelf.begin());
      shelf.push_back(std::move(own));
    }
    std::free(std::malloc(32));
    auto links = chain(20);
    while (links) links = std::move(links->next);
    if (round % 50 == 0) keep(new line_of_cache[2]);
    if (round % 40 == 0) keep(std::realloc(std::malloc(10), 3000));
    if (round % 60 == 0) keep(::operator new(77, std::nothrow));
  }
  descend(30);
}

}  // namespace

int main() {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(work, i);
  for (std::thread& one : threads) one.join();
  shelf.clear();
}
