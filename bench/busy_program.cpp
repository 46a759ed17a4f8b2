// A program that allocates from many places and depths, for a recording of some million events:
// it builds, changes and walks trees of small objects.

#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

std::mt19937_64 engine{20240229};
std::uint32_t below(std::uint32_t n) { return static_cast<std::uint32_t>(engine() % n); }

std::string word(std::uint32_t lengths) {
  return std::string(16 + 16 * below(lengths), static_cast<char>('a' + below(26)));
}

struct document {
  std::string name;
  std::map<std::string, std::string> attributes;
  std::vector<std::unique_ptr<document>> children;
};

using document_ptr = std::unique_ptr<document>;
document_ptr make_document(std::uint32_t depth);

// Kinds of documents, so that call paths differ at every depth.
template <int Kind>
[[gnu::noinline]] document_ptr make_kind(std::uint32_t depth) {
  auto made = std::make_unique<document>();
  made->name = word(2 + Kind);
  for (std::uint32_t i = 0; i < below(Kind + 2); ++i) made->attributes[word(3)] = word(3);
  if (depth != 0) {
    for (std::uint32_t i = 0; i < 1 + below(3); ++i) {
      made->children.push_back(make_document(depth - 1));
    }
  }
  return made;
}

document_ptr make_document(std::uint32_t depth) {
  switch (below(4)) {
    case 0:
      return make_kind<0>(depth);
    case 1:
      return make_kind<1>(depth);
    case 2:
      return make_kind<2>(depth);
    default:
      return make_kind<3>(depth);
  }
}

// Work that is freed at once.
[[gnu::noinline]] std::size_t print_document(const document& one, std::uint32_t depth) {
  std::string line = one.name + "(";
  for (const auto& [name, value] : one.attributes) line.append(name).append("=").append(value);
  std::size_t printed = line.size();
  for (const auto& child : one.children) printed += print_document(*child, depth + 1);
  return printed;
}

// Of what leaks only the last one can be found again.
document* lost = nullptr;

}  // namespace

// busy_program ROUNDS
int main(int argc, char** argv) {
  const unsigned long rounds = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 1000;
  std::vector<document_ptr> kept(100);
  std::size_t printed = 0;
  for (unsigned long round = 0; round < rounds; ++round) {
    auto& place = kept[below(100)];
    place = make_document(4);
    printed += print_document(*place, 0);
  }
  for (std::uint32_t i = 0; i < 20; ++i) lost = kept[i].release();
  return printed == 0;
}
